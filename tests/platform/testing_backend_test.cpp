#include <gtest/gtest.h>

#include <utility>

#include "platform/testing/testplatform.h"
#include "platform/window/paint.h"
#include "tests/platform/recorder.h"

namespace {

const RECT kRect{0, 0, 200, 100};

class TestBackendTest : public ::testing::Test {
protected:
    HWND Create(CRecorder& h) { return CreateWindowFor(&h, nullptr, kRect); }

    CTestPlatformScope scope;
    CRecorder handler;
};

TEST(TestPlatformScope, InstallsRestoresAndAbandonsItsWindows) {
    IPlatformBackend* before = GetPlatformBackend();
    HWND hwnd = nullptr;
    std::vector<UINT> heard;
    {
        CTestPlatformScope outer;
        {
            CTestPlatformScope inner;
            EXPECT_EQ(GetPlatformBackend(), &inner.Platform());
            CRecorder handler;  // gone before the scope: the scope must not call it
            hwnd = CreateWindowFor(&handler, nullptr, kRect);
            ASSERT_TRUE(IsWindow(hwnd));
            PostMessage(hwnd, WM_USER + 1, 0, 0);
            heard = handler.Messages();
        }
        EXPECT_EQ(GetPlatformBackend(), &outer.Platform());
        EXPECT_FALSE(IsWindow(hwnd));
    }
    EXPECT_EQ(GetPlatformBackend(), before);
    EXPECT_EQ(heard, (std::vector<UINT>{WM_CREATE, WM_SIZE}));
}

TEST_F(TestBackendTest, DestroyAllWindowsSendsWmDestroyToEach) {
    CRecorder other;
    HWND a = Create(handler);
    HWND b = CreateWindowFor(&other, a, kRect);
    scope->DestroyAllWindows();
    EXPECT_FALSE(IsWindow(a));
    EXPECT_FALSE(IsWindow(b));
    EXPECT_EQ(handler.Of(WM_DESTROY).size(), 1u);
    EXPECT_EQ(other.Of(WM_DESTROY).size(), 1u);
}

TEST_F(TestBackendTest, AdvancingTheClockFiresTimersAtTheirDueTimesInOrder) {
    CRecorder other;
    HWND a = Create(handler);
    HWND b = Create(other);
    std::vector<std::pair<DWORD, HWND>> ticks;
    handler.react = other.react = [&](HWND h, UINT msg, WPARAM, LPARAM) -> LRESULT {
        if (msg == WM_TIMER) ticks.push_back({GetTickCount(), h});
        return 0;
    };
    SetTimer(a, 1, 5);
    SetTimer(b, 3, 7);
    scope->AdvanceClock(20);
    std::vector<std::pair<DWORD, HWND>> expected{{5, a}, {7, b}, {10, a}, {14, b}, {15, a}, {20, a}};
    EXPECT_EQ(ticks, expected);
    EXPECT_EQ(GetTickCount(), 20u);
    EXPECT_EQ(other.Of(WM_TIMER)[0].wParam, 3u);
}

TEST_F(TestBackendTest, TimerHandlersMayKillResetOrDestroyWhileTheClockRuns) {
    HWND hwnd = Create(handler);
    int fired = 0;
    handler.react = [&](HWND h, UINT msg, WPARAM id, LPARAM) -> LRESULT {
        if (msg != WM_TIMER) return 0;
        ++fired;
        if (fired == 2) SetTimer(h, 1, 100);  // slower from now on
        if (fired == 3) DestroyWindow(h);
        return 0;
    };
    SetTimer(hwnd, 1, 10);
    scope->AdvanceClock(1000);
    EXPECT_EQ(fired, 3);  // at 10, 20 and 120
    EXPECT_FALSE(IsWindow(hwnd));
    EXPECT_EQ(GetTickCount(), 1000u);
}

TEST_F(TestBackendTest, SettingTheClockKeepsTheTimeTimersHaveLeft) {
    HWND hwnd = Create(handler);
    SetTimer(hwnd, 1, 10);
    scope->AdvanceClock(4);
    scope->SetTickCount(0xFFFFFFF0u);
    scope->AdvanceClock(5);
    EXPECT_TRUE(handler.Of(WM_TIMER).empty());
    scope->AdvanceClock(0x11);
    EXPECT_EQ(handler.Of(WM_TIMER).size(), 2u);
    EXPECT_EQ(GetTickCount(), 6u);  // wrapped like a tick count
}

TEST_F(TestBackendTest, FireTimerSendsWmTimerOnlyForRunningTimers) {
    HWND hwnd = Create(handler);
    CTestWindowBackend* window = TestWindow(hwnd);
    EXPECT_FALSE(window->FireTimer(1));
    SetTimer(hwnd, 1, 5);
    EXPECT_TRUE(window->FireTimer(1));
    ASSERT_EQ(handler.Of(WM_TIMER).size(), 1u);
    EXPECT_EQ(handler.Of(WM_TIMER)[0].wParam, 1u);
    KillTimer(hwnd, 1);
    EXPECT_FALSE(window->FireTimer(1));
    EXPECT_EQ(handler.Of(WM_TIMER).size(), 1u);
}

TEST_F(TestBackendTest, InvalidationIsRecordedAndUpdatePaintsThePendingPart) {
    HWND hwnd = Create(handler);
    CTestWindowBackend* window = TestWindow(hwnd);
    RECT line{0, 10, 200, 20};
    RECT beyond{150, 90, 400, 300};
    InvalidateRect(hwnd, &line, FALSE);
    InvalidateRect(hwnd, &beyond, FALSE);
    EXPECT_EQ(window->Invalidated(), (std::vector<RECT>{line, beyond}));
    EXPECT_EQ(window->PendingUpdate(), (RECT{0, 10, 200, 100}));  // the union, within the client

    std::vector<RECT> painted;
    handler.react = [&](HWND h, UINT msg, WPARAM, LPARAM) -> LRESULT {
        if (msg != WM_PAINT) return 0;
        PAINTSTRUCT ps;
        BeginPaint(h, &ps);
        painted.push_back(ps.rcPaint);
        EndPaint(h, &ps);
        return 0;
    };
    UpdateWindow(hwnd);
    UpdateWindow(hwnd);  // nothing left to paint
    EXPECT_EQ(window->UpdateCount(), 2);
    EXPECT_EQ(window->PaintCount(), 1);
    EXPECT_EQ(painted, (std::vector<RECT>{{0, 10, 200, 100}}));
    EXPECT_EQ(handler.Of(WM_PAINT).size(), 1u);
    EXPECT_TRUE(window->PendingUpdate().IsEmpty());

    window->ClearInvalidated();
    EXPECT_TRUE(window->Invalidated().empty());
    InvalidateRect(hwnd, nullptr, FALSE);
    EXPECT_EQ(window->Invalidated(), (std::vector<RECT>{kRect}));
    EXPECT_TRUE(window->Paint());
    EXPECT_EQ(painted.back(), kRect);

    RECT bottom{0, 80, 200, 100};  // shrinking clips what is pending
    InvalidateRect(hwnd, &bottom, FALSE);
    window->SetClientSize(200, 50);
    EXPECT_FALSE(window->Paint());
}

TEST_F(TestBackendTest, ResizingSendsWmSizeOnlyWhenTheSizeChanges) {
    HWND hwnd = Create(handler);
    CTestWindowBackend* window = TestWindow(hwnd);
    handler.log.clear();
    window->SetClientSize(640, 480);
    window->SetClientSize(640, 480);
    window->SetClientSize(-5, 30);
    auto sizes = handler.Of(WM_SIZE);
    ASSERT_EQ(sizes.size(), 2u);
    EXPECT_EQ(LOWORD(sizes[0].lParam), 640);
    EXPECT_EQ(HIWORD(sizes[0].lParam), 480);
    EXPECT_EQ(LOWORD(sizes[1].lParam), 0);
    EXPECT_EQ(HIWORD(sizes[1].lParam), 30);
    RECT rc;
    GetClientRect(hwnd, &rc);
    EXPECT_EQ(rc, (RECT{0, 0, 0, 30}));
}

TEST_F(TestBackendTest, FocusMovesWithKillThenSetNamingEachOther) {
    CRecorder other;
    HWND a = Create(handler);
    HWND b = Create(other);
    std::vector<std::pair<HWND, UINT>> order;
    handler.react = other.react = [&](HWND h, UINT msg, WPARAM, LPARAM) -> LRESULT {
        if (msg == WM_SETFOCUS || msg == WM_KILLFOCUS) order.push_back({h, msg});
        return 0;
    };
    SetFocus(a);
    SetFocus(a);  // no change, no messages
    SetFocus(b);
    scope->MoveFocus(nullptr);
    std::vector<std::pair<HWND, UINT>> expected{
        {a, WM_SETFOCUS}, {a, WM_KILLFOCUS}, {b, WM_SETFOCUS}, {b, WM_KILLFOCUS}};
    EXPECT_EQ(order, expected);
    EXPECT_EQ(handler.Of(WM_KILLFOCUS)[0].wParam, reinterpret_cast<WPARAM>(b));
    EXPECT_EQ(other.Of(WM_SETFOCUS)[0].wParam, reinterpret_cast<WPARAM>(a));
    EXPECT_EQ(other.Of(WM_KILLFOCUS)[0].wParam, 0u);
    EXPECT_FALSE(TestWindow(b)->HasFocus());
}

}  // namespace
