// A person editing a file in zentrel-edit on a real X display: real key and mouse events through
// the X test extension (xdotool) type, select with a drag, replace the selection, undo and save;
// the file on disk shows each step.
#include <gtest/gtest.h>

#include <QFile>
#include <QStandardPaths>
#include <QThread>

#include <chrono>
#include <string>
#include <vector>

#include "tests/e2e/xdisplay.h"

namespace {

using namespace e2e;

class EditorTyping : public EditorWithInput {
protected:
    static std::string Read(const std::string& path) {
        QFile file(QString::fromStdString(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
    }

    // Saves with the editor's key and waits until the file holds `want`; gives what it holds.
    std::string SaveAndRead(const std::string& path, const std::string& want) {
        Xdo({"key", "ctrl+s"});
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kStepMs);
        std::string now = Read(path);
        while (now != want && std::chrono::steady_clock::now() < deadline) {
            QThread::msleep(50);
            now = Read(path);
        }
        return now;
    }
};

TEST_F(EditorTyping, TypesSelectsWithADragUndoesAndSaves) {
    const std::string file = Path("typing.html");
    ASSERT_TRUE(WriteFile(file, "one\r\ntwo\r\n"));
    CChild editor;
    ASSERT_TRUE(editor.Start({ZENTREL_EDIT, file}, DisplayEnvironment(m_display), Path("zentrel-edit-typing.log")));
    ASSERT_TRUE(Xdo({"search", "--sync", "--onlyvisible", "--name", "typing.html", "windowfocus", "--sync"}))
        << "the editor's window did not show:\n" << ReadLog(Path("zentrel-edit-typing.log"));
    // The window under the pointer: its own coordinates address the view below the menu bar.
    ASSERT_TRUE(Xdo({"search", "--sync", "--onlyvisible", "--name", "typing.html", "windowraise"}));

    ASSERT_TRUE(Xdo({"key", "--delay", "20", "ctrl+End"}));
    ASSERT_TRUE(Xdo({"type", "--delay", "20", "three"}));
    ASSERT_TRUE(Xdo({"key", "--delay", "20", "Return"}));
    ASSERT_TRUE(Xdo({"type", "--delay", "20", "four"}));
    const std::string typed = "one\r\ntwo\r\nthree\r\nfour";
    EXPECT_EQ(SaveAndRead(file, typed), typed);

    // A drag from below the text up into the menu bar selects everything; the typed X replaces it.
    ASSERT_TRUE(Xdo({"search", "--onlyvisible", "--name", "typing.html", "mousemove", "--window", "%1", "500", "600",
                     "mousedown", "1", "mousemove", "--window", "%1", "300", "200", "sleep", "0.2", "mousemove",
                     "--window", "%1", "62", "5", "sleep", "0.3", "mouseup", "1"}));
    ASSERT_TRUE(Xdo({"type", "X"}));
    EXPECT_EQ(SaveAndRead(file, "X"), "X");

    ASSERT_TRUE(Xdo({"key", "--delay", "20", "ctrl+z"}));
    EXPECT_EQ(SaveAndRead(file, typed), typed);

    ASSERT_TRUE(Xdo({"key", "ctrl+q"}));
    const CChild::Ending ending = editor.Wait(kEditorMs);
    EXPECT_TRUE(ending.finished && ending.code == 0) << ReadLog(Path("zentrel-edit-typing.log"));
}

}  // namespace
