// The editor driven as a person drives it: real key and mouse events through the X test
// extension (xdotool) on a private display, with the files it saves read back. Tests skip where
// xdotool is missing.
#pragma once
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

    // Asks `read` again until `done` holds for its answer or a step's time is up; gives the last answer.
    template <class Reader, class Done>
    static auto Poll(Reader read, Done done) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kStepMs);
        auto now = read();
        while (!done(now) && std::chrono::steady_clock::now() < deadline) {
            QThread::msleep(100);
            now = read();
        }
        return now;
    }
    template <class Reader>
    static std::string WaitFor(Reader read, const std::string& want) {
        return Poll(read, [&](const std::string& now) { return now == want; });
    }
    // Saves with the editor's key and waits until the file holds `want`; gives what it holds.
    std::string SaveAndRead(const std::string& path, const std::string& want) {
        Xdo({"key", "ctrl+s"});
        return WaitFor([&] { return ReadLog(path); }, want);
    }

    int m_display = -1;
};

}  // namespace e2e
