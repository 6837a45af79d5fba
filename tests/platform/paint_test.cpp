// Window painting on the test backend: paint contexts, window contexts, the invalid area, and
// what ScrollWindow does to pixels and to what is invalid.
#include <gtest/gtest.h>

#include "platform/testing/testplatform.h"
#include "platform/window/paint.h"
#include "tests/platform/recorder.h"

namespace {

const RECT kClient{0, 0, 100, 60};
constexpr COLORREF kRed = 0x0000FF;
constexpr COLORREF kBlue = 0xFF0000;

class PaintTest : public ::testing::Test {
protected:
    PaintTest() {
        // Each WM_PAINT fills the whole client area with the colour of the moment; only what
        // was invalid can change.
        handler.react = [this](HWND h, UINT msg, WPARAM, LPARAM) -> LRESULT {
            if (msg != WM_PAINT) return 0;
            PAINTSTRUCT ps;
            CDC* dc = BeginPaint(h, &ps);
            paints.push_back(ps.rcPaint);
            if (dc) dc->FillSolidRect(kClient, paintColor);
            EndPaint(h, &ps);
            return 0;
        };
        hwnd = CreateWindowFor(&handler, nullptr, kClient);
        window = TestWindow(hwnd);
    }
    // Paints everything in `color`, then leaves `paintColor` as the next colour.
    void PaintAll(COLORREF color, COLORREF next) {
        paintColor = color;
        RedrawWindow(hwnd, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        paintColor = next;
    }

    CTestPlatformScope scope;
    CRecorder handler;
    HWND hwnd = nullptr;
    CTestWindowBackend* window = nullptr;
    COLORREF paintColor = kRed;
    std::vector<RECT> paints;
};

TEST_F(PaintTest, PaintContextReachesOnlyTheInvalidAreaAndValidatesIt) {
    PaintAll(kRed, kBlue);
    RECT a{0, 0, 10, 10}, b{50, 40, 60, 50};
    InvalidateRect(hwnd, &a, FALSE);
    InvalidateRect(hwnd, &b, FALSE);
    RECT update;
    EXPECT_TRUE(GetUpdateRect(hwnd, &update, FALSE));
    EXPECT_EQ(update, (RECT{0, 0, 60, 50}));

    EXPECT_TRUE(UpdateWindow(hwnd));
    EXPECT_EQ(paints.back(), (RECT{0, 0, 60, 50}));
    EXPECT_FALSE(GetUpdateRect(hwnd, &update, FALSE));
    EXPECT_EQ(update, RECT{});
    EXPECT_EQ(window->Pixel(5, 5), kBlue);
    EXPECT_EQ(window->Pixel(55, 45), kBlue);
    EXPECT_EQ(window->Pixel(30, 20), kRed);  // inside the bounds, outside the region
    ASSERT_FALSE(window->Drawn().empty());
    CRgn expected(a);
    expected.Unite(b);
    EXPECT_EQ(window->Drawn().back().visible, expected);
}

TEST_F(PaintTest, ValidateAndRedrawWindowDecideWhatTheNextPaintGets) {
    PaintAll(kRed, kBlue);
    InvalidateRect(hwnd, nullptr, FALSE);
    RECT top{0, 0, 100, 30};
    EXPECT_TRUE(ValidateRect(hwnd, &top));
    EXPECT_TRUE(window->Paint());
    EXPECT_EQ(paints.back(), (RECT{0, 30, 100, 60}));
    EXPECT_EQ(window->Pixel(0, 29), kRed);
    EXPECT_EQ(window->Pixel(0, 30), kBlue);

    RECT band{0, 10, 100, 20};
    RedrawWindow(hwnd, &band, RDW_INVALIDATE);  // no paint until asked
    EXPECT_EQ(window->PendingUpdate(), band);
    RedrawWindow(hwnd, nullptr, RDW_VALIDATE | RDW_UPDATENOW);
    EXPECT_FALSE(window->Paint());
    EXPECT_EQ(window->Pixel(0, 15), kRed);
}

TEST_F(PaintTest, HandlerWithoutBeginPaintHasItsAreaValidatedByTheDefault) {
    handler.react = nullptr;
    InvalidateRect(hwnd, nullptr, FALSE);
    EXPECT_TRUE(window->Paint());
    EXPECT_FALSE(window->Paint());
    EXPECT_EQ(handler.Of(WM_PAINT).size(), 1u);
}

TEST_F(PaintTest, WindowContextDrawsAtOnceAndIsCountedUntilReleased) {
    PaintAll(kRed, kBlue);
    CDC* dc = GetDC(hwnd);
    ASSERT_NE(dc, nullptr);
    EXPECT_EQ(window->OpenWindowDCs(), 1);
    dc->InvertRect(RECT{0, 0, 2, 2});
    EXPECT_EQ(window->Pixel(1, 1), 0xFFFF00u);  // red inverted is cyan
    EXPECT_EQ(ReleaseDC(hwnd, dc), 1);
    EXPECT_EQ(window->OpenWindowDCs(), 0);

    CDC* screen = GetDC(nullptr);  // the screen: measuring, and drawing that shows nowhere
    ASSERT_NE(screen, nullptr);
    RECT box;
    screen->GetClipBox(&box);
    EXPECT_EQ(box, (RECT{0, 0, CTestPlatform::kScreenSize.cx, CTestPlatform::kScreenSize.cy}));
    EXPECT_EQ(ReleaseDC(nullptr, screen), 1);
    EXPECT_EQ(ReleaseDC(nullptr, screen), 0);  // only once
}

TEST_F(PaintTest, ScrollWindowMovesPixelsAndInvalidatesWhatItUncovers) {
    // Rows of distinct colours, so that a move can be traced.
    CDC* dc = GetDC(hwnd);
    for (LONG y = 0; y < 60; ++y) dc->FillSolidRect(RECT{0, y, 100, y + 1}, static_cast<COLORREF>(y));
    ReleaseDC(hwnd, dc);

    EXPECT_TRUE(ScrollWindow(hwnd, 0, -20, nullptr, nullptr));  // content moves up by 20
    EXPECT_EQ(window->Pixel(7, 0), 20u);
    EXPECT_EQ(window->Pixel(7, 39), 59u);
    EXPECT_EQ(window->Pixel(7, 50), 50u);  // uncovered: left as it was until painted
    EXPECT_EQ(window->PendingUpdate(), (RECT{0, 40, 100, 60}));
    ASSERT_EQ(window->Scrolls().size(), 1u);
    EXPECT_EQ(window->Scrolls()[0].scroll, kClient);

    window->Paint();
    EXPECT_EQ(paints.back(), (RECT{0, 40, 100, 60}));
    EXPECT_EQ(window->Pixel(7, 50), kRed);
    EXPECT_EQ(window->Pixel(7, 39), 59u);
}

TEST_F(PaintTest, ScrollInsideARectangleLeavesTheRestAndCarriesWhatWasInvalid) {
    PaintAll(kRed, kBlue);
    RECT text{20, 0, 100, 60};  // a gutter of 20 stays put
    RECT dirty{30, 10, 40, 20};
    InvalidateRect(hwnd, &dirty, FALSE);
    ScrollWindow(hwnd, 15, 0, &text, &text);
    CRgn expected(RECT{45, 10, 55, 20});  // the old invalid part, moved along
    expected.Unite(RECT{20, 0, 35, 60});  // and the uncovered strip
    EXPECT_EQ(window->PendingRegion(), expected);
    window->Paint();
    EXPECT_EQ(window->Pixel(10, 10), kRed);  // the gutter was not touched
    EXPECT_EQ(window->Pixel(25, 30), kBlue);
    EXPECT_EQ(window->Pixel(50, 15), kBlue);
    EXPECT_EQ(window->Pixel(35, 15), kRed);  // the old place of the invalid part was covered

    ScrollWindow(hwnd, 200, 0, nullptr, nullptr);  // further than the window: all uncovered
    EXPECT_EQ(window->PendingUpdate(), kClient);
}

TEST_F(PaintTest, ServicesOnAnInvalidWindowFailHarmlessly) {
    DestroyWindow(hwnd);
    PAINTSTRUCT ps;
    RECT rc{1, 2, 3, 4};
    EXPECT_EQ(BeginPaint(hwnd, &ps), nullptr);
    EXPECT_EQ(GetDC(hwnd), nullptr);
    EXPECT_FALSE(GetUpdateRect(hwnd, &rc, FALSE));
    EXPECT_EQ(rc, RECT{});
    EXPECT_FALSE(ScrollWindow(hwnd, 0, 5, nullptr, nullptr));
    EXPECT_FALSE(RedrawWindow(hwnd, nullptr, RDW_INVALIDATE));
    EXPECT_FALSE(ValidateRect(hwnd, nullptr));
}

}  // namespace
