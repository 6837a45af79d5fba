// The window layer with no backend, the test backend's scopes, and arguments no script can
// spell; the rest of the window services are played from cases/*.script.
#include <gtest/gtest.h>

#include "platform/testing/testplatform.h"
#include "platform/window/scrollbar.h"
#include "tests/platform/recorder.h"

namespace {

const RECT kRect{0, 0, 300, 200};

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

TEST(ScrollBars, NoInformationToSetIsRefused) {
    CTestPlatformScope scope;
    CRecorder handler;
    HWND hwnd = CreateWindowFor(&handler, nullptr, kRect);
    EXPECT_EQ(SetScrollInfo(hwnd, SB_VERT, nullptr, TRUE), 0);
}

}  // namespace
