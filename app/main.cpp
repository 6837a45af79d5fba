// zentrel-edit: a host application for the control. It opens an HTML file (the bundled sample
// page when none is given) in a window with the control, and shows the control's events in the
// status line. Without a display it renders the window to a PNG and says where it put it.
#include <QApplication>
#include <QFileInfo>
#include <QGuiApplication>
#include <cstdio>
#include <cstdlib>

#include "app/editorwindow.h"

namespace {

QString DefaultDocument() { return QString::fromUtf8(ZENTREL_SAMPLE_DIR "/sample.html"); }

bool HasDisplay() {
    const QString platform = QGuiApplication::platformName();
    return platform != "offscreen" && platform != "minimal";
}

}  // namespace

int main(int argc, char** argv) {
    // Without a display the view still renders, offscreen, to a picture.
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY") && !std::getenv("QT_QPA_PLATFORM"))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QApplication app(argc, argv);
    QString path = argc > 1 ? QString::fromLocal8Bit(argv[1]) : DefaultDocument();
    CEditorWindow window;
    if (!window.OpenFile(path)) return 1;
    window.resize(1000, 800);
    if (!HasDisplay()) {
        QString png = QFileInfo(path).completeBaseName() + "-zentrel.png";
        window.grab().save(png);
        std::printf("No display: wrote the view of %s to %s\n", qPrintable(path), qPrintable(QFileInfo(png).absoluteFilePath()));
        return 0;
    }
    window.show();
    return app.exec();
}
