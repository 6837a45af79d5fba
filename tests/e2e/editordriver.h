// The editor driven as a person drives it: real key and mouse events through the X test
// extension (xdotool) on a private display, with the files it saves read back. Tests skip where
// xdotool is missing.
#pragma once
#include <QFile>
#include <QImage>
#include <QStandardPaths>
#include <QThread>

#include <chrono>
#include <string>
#include <vector>

#include "tests/e2e/xdisplay.h"

namespace e2e {

constexpr int kStepMs = 15000;

class EditorDriven : public EditorOnXDisplay {
protected:
    void SetUp() override {
        EditorOnXDisplay::SetUp();
        if (IsSkipped()) return;
        if (QStandardPaths::findExecutable("xdotool").isEmpty()) GTEST_SKIP() << "xdotool is not installed";
        m_display = StartServer();
        ASSERT_GE(m_display, 0) << "Xvfb did not start:\n" << ReadLog(Path("xvfb.log"));
    }

    // The whole screen as the server shows it now, kept as `name` in the test folder; a null
    // image when it can't be taken.
    QImage Grab(const char* name) {
        const std::string shot = Path(name);
        if (!Run({"import", "-window", "root", shot}, "import.log")) return {};
        return QImage(QString::fromStdString(shot)).convertToFormat(QImage::Format_RGB32);
    }

    // Runs a program on the display and waits for it; its output goes to `log`.
    bool Run(const std::vector<std::string>& argv, const char* log) {
        CChild child;
        if (!child.Start(argv, DisplayEnvironment(m_display), Path(log))) return false;
        const CChild::Ending ending = child.Wait(kStepMs);
        return ending.finished && ending.code == 0;
    }
    // Runs xdotool on the display with these arguments and waits for it; its output is kept.
    bool Xdo(const std::vector<std::string>& args) {
        std::vector<std::string> argv{"xdotool"};
        argv.insert(argv.end(), args.begin(), args.end());
        return Run(argv, "xdotool.log");
    }

    // Starts the editor on `file` and waits until its window shows and has the focus.
    void StartEditor(CChild& editor, const std::string& file, const char* log, std::vector<std::string> options = {}) {
        options.insert(options.begin(), ZENTREL_EDIT);
        options.push_back(file);
        ASSERT_TRUE(editor.Start(options, DisplayEnvironment(m_display), Path(log)));
        const std::string name = file.substr(file.rfind('/') + 1);
        ASSERT_TRUE(Xdo({"search", "--sync", "--onlyvisible", "--name", name, "windowfocus", "--sync"}))
            << "the editor's window did not show:\n" << ReadLog(Path(log));
        ASSERT_TRUE(Xdo({"search", "--sync", "--onlyvisible", "--name", name, "windowraise"}));
    }
    // Quits the editor with its key and checks that it ended well.
    void Quit(CChild& editor, const char* log) {
        ASSERT_TRUE(Xdo({"key", "ctrl+q"}));
        const CChild::Ending ending = editor.Wait(kEditorMs);
        EXPECT_TRUE(ending.finished && ending.code == 0) << ReadLog(Path(log));
    }

    static std::string Read(const std::string& path) {
        QFile file(QString::fromStdString(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
    }
    static void Write(const std::string& path, const std::string& bytes) {
        QFile file(QString::fromStdString(path));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes.data(), static_cast<qint64>(bytes.size()));
    }

    // Waits until `read` gives `want`, up to a step's time; gives the last answer.
    template <class Reader>
    static std::string WaitFor(Reader read, const std::string& want) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kStepMs);
        std::string now = read();
        while (now != want && std::chrono::steady_clock::now() < deadline) {
            QThread::msleep(50);
            now = read();
        }
        return now;
    }
    // Saves with the editor's key and waits until the file holds `want`; gives what it holds.
    std::string SaveAndRead(const std::string& path, const std::string& want) {
        Xdo({"key", "ctrl+s"});
        return WaitFor([&] { return Read(path); }, want);
    }

    int m_display = -1;
};

}  // namespace e2e
