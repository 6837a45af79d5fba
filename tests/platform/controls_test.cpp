// Child controls as the busy panel uses them, window placement, and the wait cursor.
#include <gtest/gtest.h>

#include "platform/testing/testplatform.h"
#include "platform/window/controls.h"
#include "tests/platform/recorder.h"

namespace {

class ControlsTest : public ::testing::Test {
protected:
    ControlsTest() : parent(CreateWindowFor(&handler, nullptr, RECT{0, 0, 300, 200})) {}

    CTestPlatformScope scope;
    CRecorder handler;
    HWND parent;
};

TEST_F(ControlsTest, ChildControlsAreHiddenUntilShownAndRecordWhatTheyShow) {
    HWND text = CreateChildControl(ChildControlKind::Static, parent, 10, RECT{40, 10, 300, 42});
    HWND anim = CreateChildControl(ChildControlKind::Animation, parent, 11, RECT{4, 4, 36, 36});
    ASSERT_NE(text, nullptr);
    ASSERT_NE(anim, nullptr);
    EXPECT_EQ(scope->ChildControlsOf(parent), (std::vector<HWND>{text, anim}));
    CTestWindowBackend* label = TestWindow(text);
    EXPECT_EQ(label->Kind(), ChildControlKind::Static);
    EXPECT_FALSE(label->Shown());
    EXPECT_FALSE(IsWindowVisible(text));

    EXPECT_TRUE(SetWindowText(text, "Reformatting doumcument..."));
    EXPECT_EQ(GetWindowText(text), "Reformatting doumcument...");
    EXPECT_EQ(label->Text(), "Reformatting doumcument...");
    EXPECT_TRUE(MoveWindow(text, 40, 10, 268, 32, TRUE));
    EXPECT_EQ(label->WindowRect(), (RECT{40, 10, 308, 42}));
    EXPECT_FALSE(ShowWindow(text, SW_SHOW));  // it was hidden
    EXPECT_TRUE(IsWindowVisible(text));
    // A shown control that hides, moves or goes leaves its parent to paint what it uncovers.
    TestWindow(parent)->ClearInvalidated();
    EXPECT_TRUE(ShowWindow(text, SW_HIDE));
    ShowWindow(anim, SW_SHOW);
    MoveWindow(anim, 8, 4, 32, 32, FALSE);
    EXPECT_EQ(TestWindow(parent)->Invalidated(), (std::vector<RECT>{{40, 10, 308, 42}, {4, 4, 36, 36}}));

    EXPECT_FALSE(AnimatePlay(anim));  // nothing opened yet
    EXPECT_TRUE(AnimateOpen(anim, 242));
    EXPECT_TRUE(AnimatePlay(anim));
    EXPECT_EQ(TestWindow(anim)->AnimationResource(), 242u);
    EXPECT_TRUE(TestWindow(anim)->AnimationPlaying());
    EXPECT_TRUE(AnimateStop(anim));
    EXPECT_FALSE(TestWindow(anim)->AnimationPlaying());
    EXPECT_FALSE(AnimateOpen(text, 242));  // a static control plays nothing

    EXPECT_EQ(SendMessage(text, WM_PAINT, 0, 0), 0);  // no handler of its own
    DestroyWindow(anim);
    EXPECT_EQ(TestWindow(parent)->Invalidated().back(), (RECT{8, 4, 40, 36}));
}

TEST_F(ControlsTest, ChildControlsGoWithTheirParentAndNeedOne) {
    HWND text = CreateChildControl(ChildControlKind::Static, parent, 10, RECT{});
    ShowWindow(text, SW_SHOW);
    ShowWindow(parent, SW_HIDE);
    EXPECT_FALSE(IsWindowVisible(text));  // a hidden parent hides its children
    DestroyWindow(parent);
    EXPECT_FALSE(IsWindow(text));
    EXPECT_EQ(GetWindowText(text), "");
    EXPECT_EQ(CreateChildControl(ChildControlKind::Static, parent, 10, RECT{}), nullptr);
    EXPECT_EQ(CreateChildControl(ChildControlKind::Static, nullptr, 10, RECT{}), nullptr);
}

TEST_F(ControlsTest, MovingAWindowResizesIt) {
    handler.log.clear();
    EXPECT_TRUE(MoveWindow(parent, 5, 5, 120, 80, TRUE));
    ASSERT_EQ(handler.Of(WM_SIZE).size(), 1u);
    EXPECT_EQ(LOWORD(handler.Of(WM_SIZE)[0].lParam), 120);
    EXPECT_EQ(HIWORD(handler.Of(WM_SIZE)[0].lParam), 80);
}

TEST_F(ControlsTest, WaitCursorCallsNestAndAnUnmatchedEndIsIgnored) {
    BeginWaitCursor();
    BeginWaitCursor();
    EXPECT_EQ(scope->WaitCursorDepth(), 2);
    EndWaitCursor();
    EndWaitCursor();
    EndWaitCursor();
    EXPECT_EQ(scope->WaitCursorDepth(), 0);
    BeginWaitCursor();
    EXPECT_EQ(scope->WaitCursorDepth(), 1);
    EndWaitCursor();
}

}  // namespace
