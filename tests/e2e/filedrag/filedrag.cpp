// A stand-in for a file manager in the end-to-end tests: a small window named "filedrag" that
// starts a drag of one local file (a text/uri-list, offered to be copied or linked) when the left
// button goes down in it. Usage: e2e-filedrag FILE
#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWidget>

namespace {

class CFileDragSource : public QWidget {
public:
    explicit CFileDragSource(QString path) : m_path(std::move(path)) { setWindowTitle("filedrag"); }

protected:
    void mousePressEvent(QMouseEvent* e) override {
        if (e->button() != Qt::LeftButton) return;
        auto* drag = new QDrag(this);
        auto* mime = new QMimeData;
        mime->setUrls({QUrl::fromLocalFile(m_path)});
        drag->setMimeData(mime);
        drag->exec(Qt::CopyAction | Qt::LinkAction);
    }

private:
    QString m_path;
};

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc != 2) return 2;
    CFileDragSource window(QString::fromLocal8Bit(argv[1]));
    window.resize(200, 200);
    window.show();
    return app.exec();
}
