// A long wrapped text attached to a view that already shows: its rows fill the window many
// times over, so the vertical bar shows and narrows the window, and the rows must be those of a
// whole layout at the width that the bar leaves.
#include <gtest/gtest.h>

#include <string>

#include "platform/window/scrollbar.h"
#include "tests/qt/qtviewfixture.h"
#include "tests/view/viewtest.h"

TEST_F(QtViewFixture, ALongTextIsLaidOutForTheWidthItsVerticalBarLeaves) {
    std::string text;
    while (text.size() < 400000) text += "<p class=\"row\">a paragraph of words that wraps in a narrow window</p>\n";
    for (const bool wrap : {true, false}) {
        SCOPED_TRACE(wrap ? "wrapped" : "not wrapped");
        document = CreateHtmlDocument();
        document->SetText(text);
        ctrl = CreateZentrelCtrl();
        ctrl->SetOption(OPT_WORDWRAP, wrap);
        hwnd = CreateQtChildWindow(ctrl, nullptr, {0, 0, 300, 200});
        ASSERT_NE(hwnd, nullptr);
        QtWidgetFromHwnd(hwnd)->show();
        RECT before;
        GetClientRect(hwnd, &before);
        ctrl->SetDocument(static_cast<IDispatch*>(document.Get()));

        ScrollBarState bar;
        ASSERT_TRUE(GetScrollBarState(hwnd, SB_VERT, &bar));
        EXPECT_TRUE(bar.visible);
        RECT after;
        GetClientRect(hwnd, &after);
        EXPECT_LT(after.right - after.left, before.right - before.left);
        EXPECT_EQ(ctrl->BreakWidth(), wrap ? ctrl->GetWrapWidth() : WIDTH_UNLIMITED);
        EXPECT_EQ(DifferenceFromWholeLayout(*ctrl), "");
        CloseView();
    }
}
