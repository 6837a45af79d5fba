// The caret's counting and ownership, as the owner's backend sees them.
#include <gtest/gtest.h>

#include "platform/testing/testplatform.h"
#include "platform/window/caret.h"
#include "tests/platform/recorder.h"

namespace {

const RECT kRect{0, 0, 200, 100};

class CaretTest : public ::testing::Test {
protected:
    ~CaretTest() override { DestroyCaret(); }
    HWND Create(CRecorder& h) { return CreateWindowFor(&h, nullptr, kRect); }

    CTestPlatformScope scope;
    CRecorder handler, other;
};

TEST_F(CaretTest, NewCaretStartsHiddenAndShowsWhenTheCountReachesZero) {
    HWND hwnd = Create(handler);
    CTestWindowBackend* window = TestWindow(hwnd);
    ASSERT_TRUE(CreateCaret(hwnd, nullptr, 2, 15));
    EXPECT_EQ(GetCaretOwner(), hwnd);
    EXPECT_FALSE(IsCaretShown());
    EXPECT_FALSE(window->CaretShown());
    SetCaretPos(30, 40);
    EXPECT_EQ(window->CaretRect(), (RECT{30, 40, 32, 55}));

    EXPECT_TRUE(HideCaret(hwnd));  // count 2
    EXPECT_TRUE(ShowCaret(hwnd));  // 1
    EXPECT_FALSE(IsCaretShown());
    EXPECT_TRUE(ShowCaret(nullptr));  // 0: null names the owner
    EXPECT_TRUE(IsCaretShown());
    EXPECT_TRUE(window->CaretShown());
    EXPECT_TRUE(ShowCaret(hwnd));  // does not go below 0: one hide hides again
    EXPECT_TRUE(HideCaret(hwnd));
    EXPECT_FALSE(window->CaretShown());

    POINT pt;
    EXPECT_TRUE(GetCaretPos(&pt));
    EXPECT_EQ(pt, (POINT{30, 40}));
}

TEST_F(CaretTest, OnlyTheOwnerCountsAndANewCaretReplacesTheOld) {
    HWND a = Create(handler);
    HWND b = Create(other);
    CreateCaret(a, nullptr, 1, 10);
    ShowCaret(a);
    EXPECT_FALSE(ShowCaret(b));
    EXPECT_FALSE(HideCaret(b));
    EXPECT_TRUE(IsCaretShown());

    EXPECT_TRUE(CreateCaret(b, nullptr, 8, 10));
    EXPECT_FALSE(TestWindow(a)->CaretShown());  // the old owner heard that its caret went
    EXPECT_EQ(GetCaretOwner(), b);
    EXPECT_FALSE(IsCaretShown());
    EXPECT_FALSE(CreateCaret(a, &other, 1, 1));  // bitmaps are not supported
    EXPECT_EQ(GetCaretOwner(), b);
}

TEST_F(CaretTest, DestroyingTheOwnerDestroysTheCaret) {
    HWND hwnd = Create(handler);
    CreateCaret(hwnd, nullptr, 1, 10);
    ShowCaret(hwnd);
    DestroyWindow(hwnd);
    EXPECT_EQ(GetCaretOwner(), nullptr);
    EXPECT_FALSE(IsCaretShown());
    EXPECT_FALSE(SetCaretPos(1, 1));
    EXPECT_FALSE(DestroyCaret());
    EXPECT_EQ(GetCaretRect(), RECT{});
}

TEST_F(CaretTest, MovesAndShowsAreReportedOnlyWhenTheyChangeSomething) {
    HWND hwnd = Create(handler);
    CTestWindowBackend* window = TestWindow(hwnd);
    CreateCaret(hwnd, nullptr, 1, 10);
    const int afterCreate = window->CaretChanges();
    SetCaretPos(0, 0);  // where it is already
    HideCaret(hwnd);    // hidden already
    ShowCaret(hwnd);
    EXPECT_EQ(window->CaretChanges(), afterCreate);
    SetCaretPos(5, 0);
    EXPECT_EQ(window->CaretChanges(), afterCreate + 1);
}

}  // namespace
