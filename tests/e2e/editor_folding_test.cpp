// A person folding lines in zentrel-edit on a real X display: select four lines with the keyboard,
// fold them with the key command, find the plus box that the folded row shows in the gutter, and
// click it open. The screen is read back after each step.
#include <gtest/gtest.h>

#include <QImage>

#include <optional>
#include <string>

#include "tests/e2e/editordriver.h"

namespace {

using namespace e2e;

bool IsDark(const QImage& image, int x, int y) { return qGray(image.pixel(x, y)) < 96; }

// The plus box: a dark frame of 9 by 9 pixels around a light field with a dark cross of 5 pixels
// each way. The minus boxes of a selection's bracket have no upright bar and are not matched.
bool IsPlusBoxAt(const QImage& image, int x, int y) {
    for (int i = 0; i < 9; ++i)
        if (!IsDark(image, x + i, y) || !IsDark(image, x + i, y + 8) || !IsDark(image, x, y + i) || !IsDark(image, x + 8, y + i))
            return false;
    for (int i = 2; i <= 6; ++i)
        if (!IsDark(image, x + i, y + 4) || !IsDark(image, x + 4, y + i)) return false;
    return !IsDark(image, x + 2, y + 2) && !IsDark(image, x + 6, y + 6);
}

std::optional<QPoint> FindPlusBox(const QImage& image) {
    for (int y = 0; y + 9 <= image.height(); ++y)
        for (int x = 0; x + 9 <= image.width(); ++x)
            if (IsPlusBoxAt(image, x, y)) return QPoint(x, y);
    return std::nullopt;
}

class EditorFolding : public EditorDriven {
protected:
    // Grabs the screen until a plus box shows (or, with `shown` false, none does) or time is up.
    std::optional<QPoint> WaitForPlusBox(bool shown) {
        return Poll([&] { return FindPlusBox(Grab("folding-screen.png")); },
                    [&](const std::optional<QPoint>& box) { return box.has_value() == shown; });
    }
};

TEST_F(EditorFolding, FoldsSelectedLinesWithTheKeyAndOpensThemWithAClickOnThePlusBox) {
    std::string text;
    for (int i = 1; i <= 12; ++i) text += "line " + std::to_string(i) + "\r\n";
    const std::string file = Path("folding.html");
    ASSERT_TRUE(WriteFile(file, text));
    CChild editor;
    ASSERT_NO_FATAL_FAILURE(StartEditor(editor, file, "zentrel-edit-folding.log"));
    ASSERT_FALSE(WaitForPlusBox(false).has_value()) << "a plus box before anything was folded";

    ASSERT_TRUE(Xdo({"key", "--delay", "20", "ctrl+Home", "shift+Down", "shift+Down", "shift+Down", "shift+Down", "ctrl+minus"}));
    const std::optional<QPoint> box = WaitForPlusBox(true);
    ASSERT_TRUE(box.has_value()) << "no plus box after the fold";

    const QPoint centre = *box + QPoint(4, 4);
    ASSERT_TRUE(Xdo({"mousemove", std::to_string(centre.x()), std::to_string(centre.y()), "click", "1"}));
    EXPECT_FALSE(WaitForPlusBox(false).has_value()) << "the click on the plus box left the block folded";

    Quit(editor, "zentrel-edit-folding.log");
}

}  // namespace
