// zentrel-edit: a host application for the control. It opens an HTML file (the bundled sample
// page when none is given) in a window with the control, and shows the control's events in the
// status line. Without a display it renders the window to a PNG and says where it put it.
//
// Usage: zentrel-edit [--screenshot PNG] [--codepage CP] [--script JS [--script-timeout SECONDS]] [FILE]
//        zentrel-edit --print-pdf OUT.pdf|--printer QUEUE [page setup options] [FILE]
// The process code page is the one that holds the file's characters unless --codepage names one.
// With --screenshot the editor shows its window, saves what the screen shows of it to PNG once
// it is painted, and exits: a picture of the real window on a real display, for tests.
// With --script the editor runs a JavaScript file with `control` and `document` as globals
// instead of showing its window, prints what the script prints, and exits with 0, or with 1
// when the script throws or runs longer than its time limit (10 s unless given).
// With --print-pdf (or --printer) the editor prints the file to a PDF (or to that printer queue)
// through the control's print engine, with no dialog and no window, and exits; the page setup
// values come from the options after it.
#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QWindow>
#include <cstdio>
#include <cstdlib>

#include "app/codepagechoice.h"
#include "app/editorwindow.h"
#include "app/printoptions.h"
#include "platform/codepage/codepage.h"
#include "widget/scriptrunner.h"

namespace {

constexpr int kShowTimeoutMs = 10000;
constexpr double kDefaultScriptSeconds = 10;
constexpr const char* kUsage = "usage: zentrel-edit [--screenshot PNG] [--codepage CP] [--script JS [--script-timeout SECONDS]] [FILE]";

QString DefaultDocument() { return QString::fromUtf8(ZENTREL_SAMPLE_DIR "/sample.html"); }

bool HasDisplay() {
    const QString platform = QGuiApplication::platformName();
    return platform != "offscreen" && platform != "minimal";
}

struct Arguments {
    QString file = DefaultDocument();
    QString screenshot;  // empty: run interactively
    QString codePage;    // empty: the file's
    QString script;      // empty: no script
    double scriptSeconds = kDefaultScriptSeconds;
    PrintRequest print;
};

// The value after an option, or false with the reason on stderr.
bool OptionValue(const QStringList& args, qsizetype* i, const char* what, QString* out) {
    if (*i + 1 >= args.size()) {
        std::fprintf(stderr, "zentrel-edit: %s needs %s\n", qPrintable(args[*i]), what);
        return false;
    }
    *out = args[++*i];
    return true;
}

// Reads the command line; false, with the reason on stderr, for one that makes no sense.
bool ParseArguments(const QStringList& args, Arguments* out) {
    bool haveFile = false;
    for (qsizetype i = 1; i < args.size(); ++i) {
        const QString& arg = args[i];
        QString error;
        if (ParsePrintOption(args, &i, &out->print, &error)) {
            if (error.isEmpty()) continue;
            std::fprintf(stderr, "zentrel-edit: %s\n", qPrintable(error));
            return false;
        }
        if (arg == "--screenshot") {
            if (!OptionValue(args, &i, "the name of a PNG file", &out->screenshot)) return false;
        } else if (arg == "--script") {
            if (!OptionValue(args, &i, "the name of a JavaScript file", &out->script)) return false;
        } else if (arg == "--script-timeout") {
            QString seconds;
            bool ok = false;
            if (!OptionValue(args, &i, "a number of seconds", &seconds)) return false;
            out->scriptSeconds = seconds.toDouble(&ok);
            if (!ok || out->scriptSeconds <= 0) {
                std::fprintf(stderr, "zentrel-edit: --script-timeout needs a number of seconds above 0\n");
                return false;
            }
        } else if (arg == "--codepage" && i + 1 < args.size()) {
            out->codePage = args[++i];
        } else if (arg.startsWith("--") || haveFile) {
            std::fprintf(stderr, "zentrel-edit: unexpected argument %s\n%s\n%s\n", qPrintable(arg), kUsage, PrintOptionsUsage());
            return false;
        } else {
            out->file = arg;
            haveFile = true;
        }
    }
    if (out->print.any && !out->print.Prints()) {
        std::fprintf(stderr, "zentrel-edit: the page setup options need --print-pdf OUT.pdf or --printer QUEUE\n");
        return false;
    }
    return true;
}

bool SavePicture(const QPixmap& picture, const QString& png) {
    if (picture.isNull() || !picture.save(png, "PNG")) {
        std::fprintf(stderr, "zentrel-edit: cannot write %s\n", qPrintable(png));
        return false;
    }
    return true;
}

// Shows the window, waits until the display shows it, paints it through to the display, and
// saves what the screen holds in the window's area.
int ScreenshotOfShownWindow(CEditorWindow& window, const QString& png) {
    window.show();
    QElapsedTimer clock;
    clock.start();
    while (!window.windowHandle() || !window.windowHandle()->isExposed()) {
        if (clock.elapsed() > kShowTimeoutMs) {
            std::fprintf(stderr, "zentrel-edit: the window was not shown within %d ms\n", kShowTimeoutMs);
            return 1;
        }
        QApplication::processEvents(QEventLoop::AllEvents, 50);
    }
    QApplication::processEvents();
    window.repaint();  // paints now and hands the pixels to the display before the grab is asked for
    if (!SavePicture(window.screen()->grabWindow(window.winId()), png)) return 1;
    std::printf("Wrote the screen's picture of the window to %s\n", qPrintable(QFileInfo(png).absoluteFilePath()));
    return 0;
}

// Runs the script over the window's control and document; 0 when it ran through.
int RunScript(CEditorWindow& window, const Arguments& args) {
    CScriptRunner runner;
    runner.SetGlobal("control", window.Control());
    runner.SetGlobal("document", window.Document());
    const auto limit = std::chrono::milliseconds(static_cast<int64_t>(args.scriptSeconds * 1000));
    const CScriptRunner::Outcome outcome = runner.RunFile(args.script, limit);
    if (outcome.ok) return 0;
    std::fprintf(stderr, "%s\n", qPrintable(outcome.message));
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    // Without a display the view still renders, offscreen, to a picture.
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY") && !std::getenv("QT_QPA_PLATFORM"))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QApplication app(argc, argv);
    QApplication::setApplicationName("zentrel-edit");  // names the folder of the views it keeps
    Arguments args;
    if (!ParseArguments(QApplication::arguments(), &args)) return 2;
    if (const UINT cp = ChooseCodePage(ReadFileHead(args.file.toStdString()), args.codePage.toStdString()); !cp || !SetProcessCodePage(cp)) {
        std::fprintf(stderr, "zentrel-edit: unknown code page %s\n", qPrintable(args.codePage));
        return 2;
    }
    CEditorWindow window;
    if (!window.OpenFile(args.file)) return 1;
    window.resize(1000, 800);
    if (!args.script.isEmpty()) return RunScript(window, args);
    if (args.print.Prints()) return window.PrintWithoutDialog(args.print, args.file);
    if (!HasDisplay()) {
        const QString png = args.screenshot.isEmpty() ? QFileInfo(args.file).completeBaseName() + "-zentrel.png" : args.screenshot;
        if (!SavePicture(window.grab(), png)) return 1;
        std::printf("No display: wrote the view of %s to %s\n", qPrintable(args.file), qPrintable(QFileInfo(png).absoluteFilePath()));
        return 0;
    }
    if (!args.screenshot.isEmpty()) return ScreenshotOfShownWindow(window, args.screenshot);
    window.show();
    return app.exec();
}
