// A person editing a file in zentrel-edit on a real X display: real key and mouse events through
// the X test extension (xdotool) type, select with a drag, replace the selection, undo and save;
// the file on disk shows each step. The selection left in a file is there when it opens again.
#include <gtest/gtest.h>

#include <string>

#include "tests/e2e/editordriver.h"

namespace {

using namespace e2e;

using EditorTyping = EditorDriven;

TEST_F(EditorTyping, TypesSelectsWithADragUndoesAndSaves) {
    const std::string file = Path("typing.html");
    ASSERT_TRUE(WriteFile(file, "one\r\ntwo\r\n"));
    CChild editor;
    ASSERT_NO_FATAL_FAILURE(StartEditor(editor, file, "zentrel-edit-typing.log"));

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

    Quit(editor, "zentrel-edit-typing.log");
}

// The selection left in a file comes back when the editor opens it again: typing replaces it.
TEST_F(EditorTyping, TheSelectionComesBackWhenTheFileIsOpenedAgain) {
    const std::string file = Path("reopened.html");
    ASSERT_TRUE(WriteFile(file, "one two three\r\n"));
    {
        CChild editor;
        ASSERT_NO_FATAL_FAILURE(StartEditor(editor, file, "zentrel-edit-reopened.log"));
        ASSERT_TRUE(Xdo({"key", "--delay", "20", "ctrl+Home", "ctrl+Right", "shift+ctrl+Right"}));
        Quit(editor, "zentrel-edit-reopened.log");
    }
    CChild editor;
    ASSERT_NO_FATAL_FAILURE(StartEditor(editor, file, "zentrel-edit-reopened.log"));
    ASSERT_TRUE(Xdo({"type", "X"}));
    EXPECT_EQ(SaveAndRead(file, "one Xthree\r\n"), "one Xthree\r\n");
    Quit(editor, "zentrel-edit-reopened.log");
}

}  // namespace
