// Code completion in zentrel-edit on a real X display: typing "<ta" brings up the picker with
// TABLE current, Enter puts it in, a space offers its attributes and `bgcolor="` the colours.
// The screen at each step is kept under e2e/ in the build folder.
#include <gtest/gtest.h>

#include <string>

#include "tests/e2e/editordriver.h"

namespace {

using namespace e2e;

using EditorPicker = EditorDriven;

TEST_F(EditorPicker, TypingATagOffersTagsAttributesAndColours) {
    const std::string file = Path("picker.html");
    ASSERT_TRUE(WriteFile(file, ""));
    CChild editor;
    ASSERT_NO_FATAL_FAILURE(StartEditor(editor, file, "zentrel-edit-picker.log"));

    ASSERT_TRUE(Xdo({"type", "--delay", "60", "<ta"}));
    EXPECT_FALSE(Grab("picker-tags.png").isNull());
    ASSERT_TRUE(Xdo({"key", "--delay", "60", "Return", "space"}));
    EXPECT_FALSE(Grab("picker-attributes.png").isNull());
    ASSERT_TRUE(Xdo({"type", "--delay", "60", "bgcolor=\""}));
    EXPECT_FALSE(Grab("picker-colours.png").isNull());
    ASSERT_TRUE(Xdo({"key", "--delay", "60", "Down", "Return"}));
    // Row 0 is More..., and the first colour was current: Down picks the second, red.
    const std::string want = "<TABLE bgcolor=\"#FF0000\"";
    EXPECT_EQ(SaveAndRead(file, want), want);
    Quit(editor, "zentrel-edit-picker.log");
}

}  // namespace
