// Scrolling: the scroll bars and their scale, paging, the thumb, keeping a range in view, and where
// the caret goes; keeping the caret in view is in tests/edit/cases/scrolling.cases. Lines are 19
// pixels, plain bytes 9, the gutter 60; the window is 400 by 300, so 15 whole lines show.
#include "platform/window/keys.h"
#include "tests/view/viewfixture.h"

namespace {

std::string Lines(int n, const std::string& line = "line") {
    std::string text;
    for (int i = 0; i < n; ++i) text += line + "\n";
    return text;
}

class Scrolling : public ViewFixture {
protected:
    int SumOfScrolls() {
        int dy = 0;
        for (const ScrollCall& s : Window().Scrolls()) dy += s.dy;
        return dy;
    }
};

TEST_F(Scrolling, TheVerticalBarCountsLinesUpTo19999AndScalesBeyond) {
    Open(Lines(19998));
    EXPECT_EQ(ctrl->GetLineCount(), 19999);
    EXPECT_EQ(ctrl->GetScrollScale(), 1);
    EXPECT_EQ(Window().Bar(SB_VERT).info.nMax, 19998);
    doc->SetText(Lines(19999));
    EXPECT_EQ(ctrl->GetScrollScale(), 2);
    doc->SetText(Lines(49999));
    ASSERT_EQ(ctrl->GetScrollScale(), 3);
    ctrl->OnVScroll(SB_THUMBTRACK, 1);
    EXPECT_EQ(ctrl->GetTopLine(), 3);
    ctrl->OnVScroll(SB_THUMBPOSITION, 2);
    EXPECT_EQ(ctrl->GetTopLine(), 6);
    const ScrollBarState& bar = Window().Bar(SB_VERT);
    EXPECT_EQ(bar.info.nMax, 50000 / 3 - 1);
    EXPECT_EQ(bar.info.nPage, 15u / 3);
    EXPECT_EQ(bar.info.nPos, 2);
}

TEST_F(Scrolling, PagingJumpsAtOnceOrInSevenFramesThatAddUpToThePage) {
    Open(Lines(100));
    ctrl->OnVScroll(SB_PAGEDOWN, 0);
    EXPECT_EQ(ctrl->GetTopLine(), 15);
    ASSERT_EQ(Window().Scrolls().size(), 1u);
    EXPECT_EQ(Window().Scrolls()[0].dy, -15 * 19);

    ctrl->SetOption(OPT_SMOOTHREFRESH, TRUE);
    Window().ClearDrawn();
    const size_t before = Window().Scrolls().size();
    ctrl->OnVScroll(SB_PAGEUP, 0);
    EXPECT_EQ(ctrl->GetTopLine(), 0);
    EXPECT_EQ(Window().Scrolls().size() - before, 7u);
    EXPECT_EQ(SumOfScrolls(), -15 * 19 + 15 * 19);
    EXPECT_FALSE(Window().Drawn().empty());      // the frames were painted as they went
    EXPECT_TRUE(Window().PendingRegion().IsEmpty());
}

TEST_F(Scrolling, SidewaysScrollsMoveTheTextButNotTheGutterAndBothWaysRepaintAll) {
    Open(Lines(50, std::string(200, 'a')));
    ctrl->ScrollTo(0, 90);
    ASSERT_FALSE(Window().Scrolls().empty());
    const ScrollCall sideways = Window().Scrolls().back();
    EXPECT_EQ(sideways.dx, -90);
    EXPECT_EQ(sideways.scroll.left, 60);
    EXPECT_EQ(sideways.clip.left, 60);
    const size_t scrolls = Window().Scrolls().size();
    ctrl->ScrollTo(3, 0);  // both at once: a full repaint, no pixels moved
    EXPECT_EQ(Window().Scrolls().size(), scrolls);
    EXPECT_EQ(Window().Bar(SB_HORZ).info.nPos, 0);
    EXPECT_TRUE(Window().Bar(SB_HORZ).visible);
}

TEST_F(Scrolling, TheCaretOutOfSightBehindTheGutterStaysShown) {
    Open(Lines(5, std::string(300, 'a')));
    Focus();
    EXPECT_TRUE(Window().CaretShown());
    EXPECT_EQ(Window().CaretRect().left, 60);
    EXPECT_EQ(Window().CaretRect().Height(), 19);
    ctrl->OnHScroll(SB_PAGERIGHT, 0);
    EXPECT_EQ(Window().CaretRect().left, -4096);
    EXPECT_TRUE(Window().CaretShown());
    ctrl->SetOption(OPT_OVERWRITE, TRUE);
    ctrl->CreateViewCaret();
    ctrl->PlaceCaret();
    EXPECT_EQ(Window().CaretRect().Width(), 9);
    platform->MoveFocus(nullptr);
    EXPECT_FALSE(Window().CaretShown());
}

TEST_F(Scrolling, ARangeTallerThanTheWindowShowsTheEndItsFirstArgumentNames) {
    Open(Lines(100));
    ctrl->ScrollRangeIntoView(80 * 5, 10 * 5);
    EXPECT_EQ(ctrl->GetTopLine(), 80 - 14);
    ctrl->ScrollRangeIntoView(10 * 5, 80 * 5);
    EXPECT_EQ(ctrl->GetTopLine(), 10);
}

TEST_F(Scrolling, WordWrapHidesTheHorizontalBarAndNoSidewaysRuleApplies) {
    Open(Lines(30, std::string(100, 'a')));
    ctrl->SetOption(OPT_WORDWRAP, TRUE);
    EXPECT_FALSE(Window().Bar(SB_HORZ).visible);
    Focus();
    ctrl->SetSelection(35, 35);
    EXPECT_EQ(ctrl->m_nLeftPixel, 0);
    EXPECT_TRUE(Window().Bar(SB_VERT).visible);
}

TEST_F(Scrolling, AReformatClampsTheTopLineByVScrollAlwaysMatch) {
    Open(Lines(100));
    ctrl->OnVScroll(SB_THUMBPOSITION, 98);
    EXPECT_EQ(ctrl->GetTopLine(), 98);
    ctrl->ClampScrollPosition();
    EXPECT_EQ(ctrl->GetTopLine(), 98);  // the last line may stand alone at the top
    ctrl->SetOption(OPT_VSCROLLALWAYSMATCH, TRUE);
    EXPECT_EQ(ctrl->GetTopLine(), 101 - 15);
}

TEST_F(Scrolling, ScrollingToTheSamePlaceDoesNotTouchTheCaret) {
    Open(Lines(40));
    Focus();
    const int changes = Window().CaretChanges();
    EXPECT_FALSE(ctrl->ScrollTo(0, 0));
    EXPECT_EQ(Window().CaretChanges(), changes);
    ctrl->ScrollToTop();
    EXPECT_EQ(Window().CaretChanges(), changes);
}

TEST_F(Scrolling, ARangeWithoutHorizontalMarginsScrollsOnlyAsFarAsItTakes) {
    Open(Lines(100, std::string(100, 'a')));
    ctrl->SetScrollMarginHorizontal(0);
    ctrl->SetScrollByHorizontal(0);
    ctrl->ScrollTo(50, 0);
    // Two positions on lines 52 and 53, both in view: nothing moves.
    ctrl->ScrollRangeIntoView(52 * 101 + 3, 53 * 101 + 5);
    EXPECT_EQ(ctrl->GetTopLine(), 50);
    EXPECT_EQ(ctrl->m_nLeftPixel, 0);
    // The far end 20 pixels right of the 340-pixel view.
    ctrl->ScrollRangeIntoView(52 * 101 + 3, 53 * 101 + 40);
    EXPECT_EQ(ctrl->GetTopLine(), 50);
    EXPECT_EQ(ctrl->m_nLeftPixel, 20);
}

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
