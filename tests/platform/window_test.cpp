#include <gtest/gtest.h>

#include "platform/testing/testplatform.h"
#include "platform/window/window.h"
#include "tests/platform/recorder.h"

namespace {

constexpr UINT WM_REPAINT = WM_USER + 1;
const RECT kRect{0, 0, 300, 200};

class WindowTest : public ::testing::Test {
protected:
    HWND Create(CRecorder& handler, HWND parent = nullptr) { return CreateWindowFor(&handler, parent, kRect); }

    CTestPlatformScope scope;
    CRecorder handler;
};

TEST(WindowWithoutBackend, NothingIsCreatedAndServicesAnswerZero) {
    ASSERT_EQ(GetPlatformBackend(), nullptr);
    CRecorder handler;
    EXPECT_EQ(CreateWindowFor(&handler, nullptr, kRect), nullptr);
    EXPECT_TRUE(handler.log.empty());
    EXPECT_EQ(GetTickCount(), 0u);
    EXPECT_EQ(GetKeyState(VK_SHIFT), 0);
    EXPECT_FALSE(MessageBeep(0));
    EXPECT_EQ(GetFocus(), nullptr);
}

TEST_F(WindowTest, CreationSendsCreateThenSizeWithTheClientSize) {
    HWND hwnd = Create(handler);
    ASSERT_NE(hwnd, nullptr);
    EXPECT_TRUE(IsWindow(hwnd));
    ASSERT_EQ(handler.Messages(), (std::vector<UINT>{WM_CREATE, WM_SIZE}));
    EXPECT_EQ(handler.log[0].hwnd, hwnd);
    EXPECT_EQ(handler.log[0].lParam, 0);
    EXPECT_EQ(handler.log[1].wParam, 0u);
    EXPECT_EQ(LOWORD(handler.log[1].lParam), 300);
    EXPECT_EQ(HIWORD(handler.log[1].lParam), 200);
    RECT rc;
    ASSERT_TRUE(GetClientRect(hwnd, &rc));
    EXPECT_EQ(rc, (RECT{0, 0, 300, 200}));
}

TEST_F(WindowTest, RefusedCreationDestroysTheWindowAgain) {
    HWND seen = nullptr;
    handler.react = [&](HWND hwnd, UINT msg, WPARAM, LPARAM) -> LRESULT {
        seen = hwnd;
        return msg == WM_CREATE ? -1 : 0;
    };
    EXPECT_EQ(Create(handler), nullptr);
    EXPECT_EQ(handler.Messages(), (std::vector<UINT>{WM_CREATE, WM_DESTROY}));
    EXPECT_FALSE(IsWindow(seen));
    EXPECT_TRUE(scope->Windows().empty());

    CRecorder child;  // no handler, or a parent that is gone: nothing is made
    EXPECT_EQ(CreateWindowFor(nullptr, nullptr, kRect), nullptr);
    EXPECT_EQ(Create(child, seen), nullptr);
    EXPECT_TRUE(child.log.empty());
}

TEST_F(WindowTest, DestroyedHandleIsInvalidEverywhere) {
    HWND hwnd = Create(handler);
    ASSERT_TRUE(SetTimer(hwnd, 1, 10));
    ASSERT_TRUE(PostMessage(hwnd, WM_REPAINT, 0, 0));
    ASSERT_TRUE(DestroyWindow(hwnd));
    EXPECT_EQ(handler.Of(WM_DESTROY).size(), 1u);
    EXPECT_FALSE(DestroyWindow(hwnd));
    EXPECT_EQ(handler.Of(WM_DESTROY).size(), 1u);

    EXPECT_FALSE(IsWindow(hwnd));
    EXPECT_EQ(GetWindowBackend(hwnd), nullptr);
    EXPECT_FALSE(PostMessage(hwnd, WM_REPAINT, 0, 0));
    EXPECT_EQ(SendMessage(hwnd, WM_REPAINT, 0, 0), 0);
    MSG msg;
    EXPECT_FALSE(PeekMessage(&msg, hwnd, 0, 0, PM_REMOVE));
    EXPECT_EQ(DispatchPostedMessages(hwnd), 0);
    RECT rc;
    EXPECT_FALSE(GetClientRect(hwnd, &rc));
    EXPECT_FALSE(InvalidateRect(hwnd, nullptr, FALSE));
    EXPECT_FALSE(UpdateWindow(hwnd));
    EXPECT_EQ(SetTimer(hwnd, 2, 10), 0u);
    EXPECT_FALSE(KillTimer(hwnd, 1));
    EXPECT_EQ(SetFocus(hwnd), nullptr);
    NotifyWindowResized(hwnd);
    EXPECT_EQ(handler.log.back().message, WM_DESTROY);  // nothing reached the handler after it

    CRecorder other;  // handles are never reused
    EXPECT_NE(Create(other), hwnd);
    EXPECT_FALSE(IsWindow(hwnd));
}

TEST_F(WindowTest, DestroyDuringDestroyAndPostDuringDestroyAreRefused) {
    HWND hwnd = Create(handler);
    BOOL again = TRUE, posted = TRUE;
    handler.react = [&](HWND h, UINT msg, WPARAM, LPARAM) -> LRESULT {
        if (msg == WM_DESTROY) {
            EXPECT_TRUE(IsWindow(h));  // still usable while it hears of its end
            again = DestroyWindow(h);
            posted = PostMessage(h, WM_REPAINT, 0, 0);
        }
        return 0;
    };
    EXPECT_TRUE(DestroyWindow(hwnd));
    EXPECT_FALSE(again);
    EXPECT_FALSE(posted);
    EXPECT_EQ(handler.Of(WM_DESTROY).size(), 1u);
}

TEST_F(WindowTest, ChildrenAreDestroyedAfterTheirParentHearsOfIt) {
    std::vector<HWND> order;
    auto note = [&](HWND h, UINT msg, WPARAM, LPARAM) -> LRESULT {
        if (msg == WM_DESTROY) order.push_back(h);
        return 0;
    };
    CRecorder childHandler, grandHandler;
    handler.react = childHandler.react = grandHandler.react = note;
    HWND parent = Create(handler);
    HWND child = Create(childHandler, parent);
    HWND grandchild = Create(grandHandler, child);
    ASSERT_TRUE(parent && child && grandchild);
    DestroyWindow(parent);
    EXPECT_EQ(order, (std::vector<HWND>{parent, child, grandchild}));
    EXPECT_FALSE(IsWindow(child));
    EXPECT_FALSE(IsWindow(grandchild));
}

TEST_F(WindowTest, PeekFindsTheFirstMessageInRangeAndLeavesOthersInOrder) {
    HWND hwnd = Create(handler);
    PostMessage(hwnd, WM_TIMER, 1, 0);
    PostMessage(hwnd, WM_REPAINT, 0, 10);
    PostMessage(hwnd, WM_KEYDOWN, 2, 0);
    PostMessage(hwnd, WM_REPAINT, 0, 20);

    MSG msg;
    ASSERT_TRUE(PeekMessage(&msg, hwnd, WM_REPAINT, WM_REPAINT, PM_NOREMOVE));
    EXPECT_EQ(msg.lParam, 10);
    ASSERT_TRUE(PeekMessage(&msg, hwnd, WM_REPAINT, WM_REPAINT, PM_NOREMOVE));
    EXPECT_EQ(msg.lParam, 10);  // a look leaves it where it was
    ASSERT_TRUE(PeekMessage(&msg, hwnd, WM_REPAINT, WM_REPAINT, PM_REMOVE));
    EXPECT_EQ(msg.lParam, 10);
    EXPECT_EQ(msg.hwnd, hwnd);
    ASSERT_TRUE(PeekMessage(&msg, hwnd, WM_REPAINT, WM_REPAINT, PM_NOREMOVE));
    EXPECT_EQ(msg.lParam, 20);
    EXPECT_FALSE(PeekMessage(&msg, hwnd, WM_MOUSEMOVE, WM_MOUSEWHEEL, PM_NOREMOVE));
    EXPECT_FALSE(PeekMessage(&msg, hwnd, WM_TIMER, WM_KEYDOWN, PM_NOREMOVE));  // first above last
    EXPECT_FALSE(PeekMessage(nullptr, hwnd, 0, 0, PM_REMOVE));
    EXPECT_FALSE(PeekMessage(&msg, nullptr, 0, 0, PM_NOREMOVE));  // queues belong to one window

    ASSERT_TRUE(PeekMessage(&msg, hwnd, 0, 0, PM_NOREMOVE));  // 0, 0: any
    EXPECT_EQ(msg.message, WM_TIMER);

    handler.log.clear();
    EXPECT_EQ(DispatchPostedMessages(hwnd), 3);
    ASSERT_EQ(handler.Messages(), (std::vector<UINT>{WM_TIMER, WM_KEYDOWN, WM_REPAINT}));
    EXPECT_EQ(handler.log[2].lParam, 20);
}

TEST_F(WindowTest, DispatchDeliversOnlyWhatWasQueuedWhenItStarted) {
    HWND hwnd = Create(handler);
    handler.log.clear();
    handler.react = [](HWND h, UINT msg, WPARAM wp, LPARAM) -> LRESULT {
        if (msg == WM_REPAINT) PostMessage(h, WM_REPAINT, wp + 10, 0);  // a handler that posts again
        return 0;
    };
    PostMessage(hwnd, WM_REPAINT, 1, 0);
    PostMessage(hwnd, WM_REPAINT, 2, 0);
    EXPECT_EQ(DispatchPostedMessages(hwnd), 2);
    ASSERT_EQ(handler.log.size(), 2u);
    EXPECT_EQ(handler.log[1].wParam, 2u);
    EXPECT_EQ(DispatchPostedMessages(hwnd), 2);
    EXPECT_EQ(handler.log[2].wParam, 11u);
    EXPECT_EQ(handler.log[3].wParam, 12u);
}

TEST_F(WindowTest, MessagesTakenOutByTheHandlerAreNotDeliveredAgain) {
    HWND hwnd = Create(handler);
    handler.log.clear();
    // The first repaint swallows the repaints behind it, as a merging handler does.
    handler.react = [](HWND h, UINT msg, WPARAM, LPARAM) -> LRESULT {
        MSG next;
        while (msg == WM_REPAINT && PeekMessage(&next, h, WM_REPAINT, WM_REPAINT, PM_NOREMOVE) && next.lParam != 0)
            PeekMessage(&next, h, WM_REPAINT, WM_REPAINT, PM_REMOVE);
        return 0;
    };
    PostMessage(hwnd, WM_REPAINT, 0, 1);
    PostMessage(hwnd, WM_REPAINT, 0, 2);
    PostMessage(hwnd, WM_TIMER, 0, 0);
    PostMessage(hwnd, WM_REPAINT, 0, 3);
    PostMessage(hwnd, WM_REPAINT, 0, 0);
    EXPECT_EQ(DispatchPostedMessages(hwnd), 3);
    ASSERT_EQ(handler.Messages(), (std::vector<UINT>{WM_REPAINT, WM_TIMER, WM_REPAINT}));
    EXPECT_EQ(handler.log[0].lParam, 1);
    EXPECT_EQ(handler.log[2].lParam, 0);
}

TEST_F(WindowTest, WindowDestroyedDuringDispatchStopsItAndDropsTheRest) {
    HWND hwnd = Create(handler);
    handler.react = [](HWND h, UINT msg, WPARAM, LPARAM) -> LRESULT {
        if (msg == WM_REPAINT) DestroyWindow(h);
        return 0;
    };
    PostMessage(hwnd, WM_REPAINT, 0, 0);
    PostMessage(hwnd, WM_TIMER, 0, 0);
    EXPECT_EQ(DispatchPostedMessages(hwnd), 1);
    EXPECT_FALSE(IsWindow(hwnd));
    EXPECT_TRUE(handler.Of(WM_TIMER).empty());
}

TEST_F(WindowTest, DiscardHandsEveryQueuedMessageToTheDropFunctionInOrder) {
    static std::vector<LPARAM> dropped;
    dropped.clear();
    HWND hwnd = Create(handler);
    PostMessage(hwnd, WM_REPAINT, 0, 7);
    PostMessage(hwnd, WM_TIMER, 0, 8);
    DiscardPostedMessages(hwnd, [](const MSG& m) { dropped.push_back(m.lParam); });
    EXPECT_EQ(dropped, (std::vector<LPARAM>{7, 8}));
    EXPECT_EQ(DispatchPostedMessages(hwnd), 0);
    PostMessage(hwnd, WM_REPAINT, 0, 9);
    DiscardPostedMessages(hwnd, nullptr);  // no drop function: just emptied
    EXPECT_EQ(DispatchPostedMessages(hwnd), 0);
}

TEST_F(WindowTest, TimersAreTrackedPerWindow) {
    HWND hwnd = Create(handler);
    EXPECT_EQ(SetTimer(hwnd, 0, 10), 0u);
    EXPECT_EQ(SetTimer(hwnd, 1, 5), 1u);
    EXPECT_EQ(TestWindow(hwnd)->Timers(), (std::map<UINT, UINT>{{1, 5}}));
    EXPECT_EQ(SetTimer(hwnd, 1, 0), 1u);  // replaces, and a period of 0 becomes 1
    EXPECT_EQ(TestWindow(hwnd)->Timers(), (std::map<UINT, UINT>{{1, 1}}));
    EXPECT_FALSE(KillTimer(hwnd, 2));
    EXPECT_TRUE(KillTimer(hwnd, 1));
    EXPECT_FALSE(KillTimer(hwnd, 1));
    EXPECT_TRUE(TestWindow(hwnd)->Timers().empty());
}

TEST_F(WindowTest, InvalidationReachesTheBackendExceptForEmptyRectangles) {
    HWND hwnd = Create(handler);
    RECT empty{10, 10, 10, 50};
    RECT band{0, 20, 300, 40};
    EXPECT_TRUE(InvalidateRect(hwnd, &empty, FALSE));
    EXPECT_TRUE(InvalidateRect(hwnd, &band, FALSE));
    EXPECT_TRUE(InvalidateRect(hwnd, nullptr, TRUE));
    EXPECT_EQ(TestWindow(hwnd)->Invalidated(), (std::vector<RECT>{band, kRect}));
}

TEST_F(WindowTest, SetFocusGivesThePreviousFocusWindow) {
    CRecorder otherHandler;
    HWND a = Create(handler);
    HWND b = Create(otherHandler);
    EXPECT_EQ(SetFocus(a), nullptr);
    EXPECT_EQ(SetFocus(b), a);
    EXPECT_EQ(SetFocus(nullptr), b);  // asks nothing of the backend
    EXPECT_EQ(GetFocus(), b);
    DestroyWindow(b);
    EXPECT_EQ(GetFocus(), nullptr);
}

}  // namespace
