// A person setting up the page in zentrel-edit on a real X display: File > Page Setup opens the
// dialog, line numbers are switched on, a width is typed into an inch field and the focus leaves
// it; the page picture shows the number strip and follows the typed width. The screens are kept
// as build/e2e/pagesetup-*.png.
#include <gtest/gtest.h>

#include <QImage>

#include "tests/e2e/editordriver.h"

namespace {

using namespace e2e;

class EditorPageSetup : public EditorDriven {
protected:
    // Pixels that differ between two screens.
    static int Differences(const QImage& a, const QImage& b) {
        if (a.size() != b.size()) return -1;
        int n = 0;
        for (int y = 0; y < a.height(); ++y)
            for (int x = 0; x < a.width(); ++x) n += a.pixel(x, y) != b.pixel(x, y);
        return n;
    }
};

TEST_F(EditorPageSetup, TypingAnInchValueRedrawsThePagePicture) {
    const std::string file = Path("pagesetup.html");
    ASSERT_TRUE(WriteFile(file, "<p>Some text to print</p>\r\n"));
    CChild editor;
    StartEditor(editor, file, "pagesetup-editor.log");
    ASSERT_TRUE(Xdo({"key", "alt+f", "u"}));
    ASSERT_TRUE(Xdo({"search", "--sync", "--onlyvisible", "--name", "Print Setup", "windowfocus", "--sync"}))
        << "the page setup dialog did not show";
    QThread::msleep(300);
    const QImage plain = Grab("pagesetup-opened.png");
    // Include Line Numbers (its mnemonic is shared, so it takes the focus and space checks it):
    // the picture gets its number strip.
    ASSERT_TRUE(Xdo({"key", "alt+i", "space"}));
    QThread::msleep(300);
    const QImage numbered = Grab("pagesetup-numbers.png");
    EXPECT_GT(Differences(plain, numbered), 50) << "no number strip in the page picture";
    // The line number width: select the field, type 1.5 and leave it.
    ASSERT_TRUE(Xdo({"key", "alt+l", "ctrl+a", "1", "period", "5", "minus", "Tab"}));  // the minus is refused
    QThread::msleep(300);
    const QImage wider = Grab("pagesetup-typed.png");
    EXPECT_GT(Differences(numbered, wider), 50) << "the picture did not follow the typed width";
    ASSERT_TRUE(Xdo({"key", "Escape"}));
    ASSERT_TRUE(Xdo({"search", "--sync", "--onlyvisible", "--name", "pagesetup.html", "windowfocus", "--sync"}));
    Quit(editor, "pagesetup-editor.log");
}

}  // namespace
