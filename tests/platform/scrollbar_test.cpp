// Scroll bar rules: clamping of page and position, hiding or disabling a bar with nothing to
// scroll, ShowScrollBar, and what the backend is told.
#include <gtest/gtest.h>

#include "platform/testing/testplatform.h"
#include "platform/window/scrollbar.h"
#include "tests/platform/recorder.h"

namespace {

class ScrollBarTest : public ::testing::Test {
protected:
    ScrollBarTest() : hwnd(CreateWindowFor(&handler, nullptr, RECT{0, 0, 200, 100})), window(TestWindow(hwnd)) {}

    int Set(int bar, UINT mask, int nMin, int nMax, UINT page, int pos) {
        SCROLLINFO si;
        si.fMask = mask;
        si.nMin = nMin;
        si.nMax = nMax;
        si.nPage = page;
        si.nPos = pos;
        return SetScrollInfo(hwnd, bar, &si, TRUE);
    }

    CTestPlatformScope scope;
    CRecorder handler;
    HWND hwnd;
    CTestWindowBackend* window;
};

TEST_F(ScrollBarTest, PageAndPositionAreClampedToTheRange) {
    // 100 lines, 30 visible: the last position shows lines 70 to 99.
    EXPECT_EQ(Set(SB_VERT, SIF_ALL, 0, 99, 30, 500), 70);
    EXPECT_EQ(Set(SB_VERT, SIF_POS, 0, 0, 0, -4), 0);
    EXPECT_EQ(Set(SB_VERT, SIF_PAGE | SIF_POS, 0, 0, 1000, 50), 0);  // page limited to 100
    SCROLLINFO si;
    si.fMask = SIF_ALL;
    ASSERT_TRUE(GetScrollInfo(hwnd, SB_VERT, &si));
    EXPECT_EQ(si.nPage, 100u);
    EXPECT_EQ(si.nMax, 99);
    EXPECT_EQ(si.nPos, 0);
    EXPECT_EQ(Set(SB_HORZ, SIF_RANGE | SIF_POS, 10, 20, 0, 25), 20);  // without a page nMax is reachable
    EXPECT_EQ(Set(SB_HORZ, SIF_RANGE, 10, 5, 0, 0), 10);             // an upside-down range is empty
}

TEST_F(ScrollBarTest, BarWithNothingToScrollIsHiddenOrWithDisableNoScrollDisabled) {
    Set(SB_VERT, SIF_ALL, 0, 99, 30, 0);
    EXPECT_TRUE(window->Bar(SB_VERT).visible);
    EXPECT_TRUE(window->Bar(SB_VERT).enabled);
    EXPECT_EQ(window->Bar(SB_VERT).info.nPage, 30u);

    Set(SB_VERT, SIF_ALL, 0, 19, 30, 0);
    EXPECT_FALSE(window->Bar(SB_VERT).visible);

    Set(SB_VERT, SIF_ALL | SIF_DISABLENOSCROLL, 0, 29, 30, 0);  // exactly one page: nothing to scroll
    EXPECT_TRUE(window->Bar(SB_VERT).visible);
    EXPECT_FALSE(window->Bar(SB_VERT).enabled);

    Set(SB_VERT, SIF_ALL | SIF_DISABLENOSCROLL, 0, 30, 30, 0);
    EXPECT_TRUE(window->Bar(SB_VERT).enabled);
    EXPECT_FALSE(window->Bar(SB_HORZ).visible);  // the other bar is its own
}

TEST_F(ScrollBarTest, ShowScrollBarOverridesUntilTheRangeIsSetAgain) {
    Set(SB_HORZ, SIF_ALL, 0, 99, 10, 0);
    EXPECT_TRUE(ShowScrollBar(hwnd, SB_BOTH, FALSE));
    EXPECT_FALSE(window->Bar(SB_HORZ).visible);
    EXPECT_FALSE(window->Bar(SB_VERT).visible);
    Set(SB_HORZ, SIF_POS, 0, 0, 0, 5);  // a position alone does not bring it back
    EXPECT_FALSE(window->Bar(SB_HORZ).visible);
    EXPECT_EQ(window->Bar(SB_HORZ).info.nPos, 5);
    Set(SB_HORZ, SIF_RANGE, 0, 99, 0, 0);
    EXPECT_TRUE(window->Bar(SB_HORZ).visible);

    ShowScrollBar(hwnd, SB_VERT, TRUE);  // shown with nothing to scroll
    ScrollBarState state;
    ASSERT_TRUE(GetScrollBarState(hwnd, SB_VERT, &state));
    EXPECT_TRUE(state.visible);
    EXPECT_FALSE(state.enabled);
}

TEST_F(ScrollBarTest, BackendHearsOnlyRealChangesAndBadArgumentsFail) {
    Set(SB_VERT, SIF_ALL, 0, 99, 30, 10);
    const int changes = window->ScrollBarChanges();
    Set(SB_VERT, SIF_ALL, 0, 99, 30, 10);
    EXPECT_EQ(window->ScrollBarChanges(), changes);
    Set(SB_VERT, SIF_POS, 0, 0, 0, 11);
    EXPECT_EQ(window->ScrollBarChanges(), changes + 1);

    SCROLLINFO si;
    EXPECT_EQ(SetScrollInfo(hwnd, 2, &si, TRUE), 0);
    EXPECT_EQ(SetScrollInfo(hwnd, SB_VERT, nullptr, TRUE), 0);
    EXPECT_FALSE(GetScrollInfo(hwnd, SB_BOTH, &si));
    DestroyWindow(hwnd);
    EXPECT_FALSE(ShowScrollBar(hwnd, SB_VERT, TRUE));
    EXPECT_EQ(SetScrollInfo(hwnd, SB_VERT, &si, TRUE), 0);
}

}  // namespace
