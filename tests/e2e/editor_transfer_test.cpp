// Text moving between zentrel-edit and other programs on a real X display: the clipboard read
// and filled by another X client (xclip), characters of several scripts included, drags of the
// selection with the mouse within a window and from one editor window into another, and a file
// dragged in from another program.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/e2e/editordriver.h"

namespace {

using namespace e2e;

// The first row of text, in a window's own coordinates: below the menu bar, right of the gutter.
constexpr int kFirstRowX = 100, kFirstRowY = 29;

class EditorTransfer : public EditorDriven {
protected:
    void SetUp() override {
        EditorDriven::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        if (QStandardPaths::findExecutable("xclip").isEmpty()) GTEST_SKIP() << "xclip is not installed";
    }

    // What another X client reads from the clipboard.
    std::string ClipboardText() {
        return Run({"xclip", "-o", "-selection", "clipboard"}, "xclip-out.log") ? ReadLog(Path("xclip-out.log")) : "";
    }

    // Drags with the left button from one point of the screen to another, as a hand does: the
    // toolkit starts a drag, and finds the window under it, only from motion between the press
    // and the release, each step seen before the next. With `copy` Ctrl is held at the drop.
    bool Drag(int x0, int y0, int x1, int y1, bool copy) {
        const auto at = [](int x, int y) {
            return std::vector<std::string>{"mousemove", "--sync", std::to_string(x), std::to_string(y), "sleep", "0.05"};
        };
        std::vector<std::string> args = at(x0, y0);
        args.insert(args.end(), {"mousedown", "1"});
        // A synchronised move waits for the pointer to move: no step lands where it already is.
        constexpr int kSteps = 12;
        for (int i = 1; i < kSteps; ++i) {
            const std::vector<std::string> step = at(x0 + (x1 - x0) * i / kSteps, y0 + (y1 - y0) * i / kSteps + 4);
            args.insert(args.end(), step.begin(), step.end());
        }
        if (copy) args.insert(args.end(), {"keydown", "ctrl"});
        const std::vector<std::string> rest = at(x1, y1);
        args.insert(args.end(), rest.begin(), rest.end());
        args.insert(args.end(), {"mouseup", "1"});
        if (copy) args.insert(args.end(), {"keyup", "ctrl"});
        return Xdo(args);
    }
    // Puts the window named `name` at the top of the screen, `left` from its edge, in the size
    // given: no window manager arranges windows here.
    bool Place(const std::string& name, int left, int width, int height) {
        return Xdo({"search", "--sync", "--onlyvisible", "--name", name, "windowsize", "--sync", std::to_string(width),
                    std::to_string(height), "windowmove", "--sync", std::to_string(left), "0"});
    }
    // Gives the window of the editor on `name` the focus, and with it the editor's keys.
    bool Focus(const std::string& name) { return Xdo({"search", "--onlyvisible", "--name", name, "windowfocus", "--sync"}); }
};

TEST_F(EditorTransfer, TheClipboardCarriesTextBothWaysInEveryScript) {
    const std::string file = Path("clipboard.html");
    const std::string page = "<p>\xE2\x82\xAC \xD0\xB8 \xE4\xB8\xAD</p>\r\n";  // the euro sign, a Cyrillic and a Chinese letter
    ASSERT_TRUE(WriteFile(file, page));
    CChild editor;
    ASSERT_NO_FATAL_FAILURE(StartEditor(editor, file, "zentrel-edit-clipboard.log"));

    ASSERT_TRUE(Xdo({"key", "--delay", "20", "ctrl+a", "ctrl+c"}));
    EXPECT_EQ(WaitFor([&] { return ClipboardText(); }, page), page);

    // Another program's text, with a letter that the editor's code page lacks, pasted at the end.
    const std::string theirs = "<b>\xE2\x82\xAC \xD0\xB8 \xE4\xB8\xAD \xC5\x99</b>";
    ASSERT_TRUE(WriteFile(Path("theirs.txt"), theirs));
    CChild owner;
    ASSERT_TRUE(owner.Start({"xclip", "-quiet", "-i", "-selection", "clipboard", Path("theirs.txt")},
                            DisplayEnvironment(m_display), Path("xclip-in.log")));
    ASSERT_EQ(WaitFor([&] { return ClipboardText(); }, theirs), theirs);
    ASSERT_TRUE(Xdo({"key", "--delay", "20", "ctrl+End", "ctrl+v"}));
    const std::string pasted = page + theirs;
    EXPECT_EQ(SaveAndRead(file, pasted), pasted);
    Quit(editor, "zentrel-edit-clipboard.log");
}

TEST_F(EditorTransfer, ADragWithinTheWindowMovesTheSelectionAndOneUndoPutsItBack) {
    const std::string file = Path("drag.html");
    const std::string text = "drag this line\r\nstays\r\n";
    ASSERT_TRUE(WriteFile(file, text));
    CChild editor;
    ASSERT_NO_FATAL_FAILURE(StartEditor(editor, file, "zentrel-edit-drag.log"));
    ASSERT_TRUE(Xdo({"key", "--delay", "20", "ctrl+Home", "shift+End"}));

    // Dropped below the text: at its end.
    ASSERT_TRUE(Drag(kFirstRowX, kFirstRowY, 500, 400, false));
    const std::string moved = "\r\nstays\r\ndrag this line";
    EXPECT_EQ(SaveAndRead(file, moved), moved);
    ASSERT_TRUE(Xdo({"key", "ctrl+z"}));
    EXPECT_EQ(SaveAndRead(file, text), text);
    Quit(editor, "zentrel-edit-drag.log");
}

TEST_F(EditorTransfer, ADragWithCtrlIntoAnotherWindowCopiesTheText) {
    const std::string from = Path("from.html"), to = Path("to.html");
    ASSERT_TRUE(WriteFile(from, "copied text\r\n"));
    ASSERT_TRUE(WriteFile(to, "target\r\n"));
    CChild source, target;
    ASSERT_NO_FATAL_FAILURE(StartEditor(source, from, "zentrel-edit-from.log"));
    ASSERT_NO_FATAL_FAILURE(StartEditor(target, to, "zentrel-edit-to.log"));
    constexpr int kTargetLeft = 640;
    ASSERT_TRUE(Place("to.html", kTargetLeft, 600, 500));
    ASSERT_TRUE(Place("from.html", 0, 600, 500));
    ASSERT_TRUE(Focus("from.html"));
    ASSERT_TRUE(Xdo({"key", "--delay", "20", "ctrl+Home", "shift+End"}));

    ASSERT_TRUE(Drag(kFirstRowX, kFirstRowY, kTargetLeft + 300, 300, true));
    ASSERT_TRUE(Focus("to.html"));
    EXPECT_EQ(SaveAndRead(to, "target\r\ncopied text"), "target\r\ncopied text");
    // The source kept its text: a letter typed at its end saves beside it.
    ASSERT_TRUE(Focus("from.html"));
    ASSERT_TRUE(Xdo({"key", "--delay", "20", "ctrl+End", "exclam"}));
    EXPECT_EQ(SaveAndRead(from, "copied text\r\n!"), "copied text\r\n!");
    Quit(source, "zentrel-edit-from.log");
    ASSERT_TRUE(Focus("to.html"));
    Quit(target, "zentrel-edit-to.log");
}

// A file dragged in with Ctrl goes to the editor through the control's drop event, and the editor
// opens it. Ctrl goes down only near the end: the view takes a drag that entered where it could
// not yet drop.
TEST_F(EditorTransfer, AFileDraggedInIsOpened) {
    const std::string file = Path("before-drop.html"), dropped = Path("dropped.html");
    ASSERT_TRUE(WriteFile(file, "before\r\n"));
    ASSERT_TRUE(WriteFile(dropped, "<p>dropped</p>\r\n"));
    CChild editor, source;
    ASSERT_NO_FATAL_FAILURE(StartEditor(editor, file, "zentrel-edit-drop.log"));
    ASSERT_TRUE(source.Start({E2E_FILEDRAG, dropped}, DisplayEnvironment(m_display), Path("filedrag.log")));
    constexpr int kSourceLeft = 1050;
    ASSERT_TRUE(Place("filedrag", kSourceLeft, 200, 200));
    ASSERT_TRUE(Focus("before-drop.html"));

    ASSERT_TRUE(Drag(kSourceLeft + 100, 100, 300, 300, true));
    EXPECT_TRUE(Xdo({"search", "--sync", "--onlyvisible", "--name", "dropped.html"}))
        << "the dropped file was not opened:\n" << ReadLog(Path("zentrel-edit-drop.log"));
    ASSERT_TRUE(Focus("dropped.html"));
    Quit(editor, "zentrel-edit-drop.log");
}

}  // namespace
