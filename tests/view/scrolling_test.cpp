// A range kept in view from the right edge of the widest scroll range; the scroll bars, paging and
// the other ranges are in tests/edit/cases/scrollbars.cases. Plain bytes are 9 pixels wide, the
// gutter 60; the window is 400 by 300.
#include "tests/view/viewfixture.h"

namespace {

std::string Lines(int n, const std::string& line = "line") {
    std::string text;
    for (int i = 0; i < n; ++i) text += line + "\n";
    return text;
}

class Scrolling : public ViewFixture {};

TEST_F(Scrolling, AtTheRightEdgeOfTheDefaultColumnMaxARangeBringsTheTextBack) {
    Open(Lines(30, std::string(100, 'a')));
    ASSERT_EQ(ctrl->m_nColumnMax, 0x7FFFFFFF);
    ctrl->OnHScroll(SB_RIGHT, 0);
    ASSERT_EQ(ctrl->m_nLeftPixel, 0x7FFFFFFF);
    // Near the start of a line and near its end, with the range in either order (the right
    // rule applied last or first); the view follows, within the scroll range.
    for (long column : {3L, 95L, 0L}) {
        for (bool backwards : {true, false}) {
            const long pos = 5 * 101 + column;
            ctrl->OnHScroll(SB_RIGHT, 0);
            ctrl->ScrollRangeIntoView(backwards ? pos + 1 : pos, backwards ? pos : pos + 1);
            EXPECT_GE(ctrl->m_nLeftPixel, 0) << column << backwards;
            EXPECT_LE(ctrl->m_nLeftPixel, column * 9) << column << backwards;
            EXPECT_GT(ctrl->m_nLeftPixel + 340, column * 9) << column << backwards;
            EXPECT_EQ(ctrl->GetTopLine(), 0) << column << backwards;
        }
    }
}

}  // namespace
