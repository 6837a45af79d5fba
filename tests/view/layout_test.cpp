// The control's line table against its document: whole layouts of short, long and large texts.

#include "platform/testing/testplatform.h"
#include "tests/view/viewtest.h"

namespace {

std::vector<long> LengthsOf(const CLineIndex& t) {
    std::vector<long> out;
    for (long i = 0; i < t.m_nCount; ++i) out.push_back(t.GetAt(i));
    return out;
}

class Layout : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        control = MakeControlThroughFactory();
        ctrl = AsControl(control.Get());
        ctrl->SetOption(OPT_WORDWRAP, GetParam());
        ctrl->CreateControlWindow(nullptr, {0, 0, 360, 200});
        doc = CreateHtmlDocument();
        doc->SetText(SamplePage() + "a-long-hyphenated-word\twith tabs\r\nand\n\nblank lines");
        ctrl->SetDocument(static_cast<IDispatch*>(doc.Get()));
    }
    void TearDown() override { ctrl->DestroyControlWindow(); }
    // A fresh layout of the present text.
    std::vector<long> Fresh() {
        CLineIndex t;
        ctrl->WrapAll(ctrl->GetOptionsWord(), GetParam() ? ctrl->GetWrapWidth() : WIDTH_UNLIMITED, &t);
        return LengthsOf(t);
    }

    CTestPlatformScope platform;
    ComPtr<IDispatch> control;
    CZentrelCtrl* ctrl = nullptr;
    ComPtr<CHtmlDocument> doc;
};

TEST_P(Layout, AWholeLayoutIsAFixedPointOfTheBreaker) {
    std::vector<long> before = LengthsOf(ctrl->Lines());
    std::string why;
    ASSERT_TRUE(ctrl->Lines().CheckInvariants(&why)) << why;
    if (GetParam()) {
        EXPECT_GT(before.size(), 100u);  // 300 pixels of text wrap most of the 66 lines
    }
    for (long pos = 0; pos < doc->GetLength(); pos += 37) {
        LayoutRange range{pos, pos};
        ctrl->RewrapLines(pos, &range, 0x7FFFFFFF);
        ASSERT_EQ(LengthsOf(ctrl->Lines()), before) << "from " << pos;
    }
    EXPECT_EQ(before, Fresh());
}

INSTANTIATE_TEST_SUITE_P(WordWrap, Layout, ::testing::Bool());

}  // namespace

namespace {

// A text long enough that the breaker's reader leaves its copied windows for the text pointer
// part-way through, and spans lines across the switch.
TEST(LayoutOfALongText, HoldsExactlyTheHardLinesWithoutWrap) {
    CTestPlatformScope platform;
    ComPtr<IDispatch> control = MakeControlThroughFactory();
    CZentrelCtrl* ctrl = AsControl(control.Get());
    ctrl->CreateControlWindow(nullptr, {0, 0, 800, 600});
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    std::string text;
    for (int i = 0; text.size() < 400000; ++i) text += std::string(static_cast<size_t>(i % 97), 'a') + (i % 3 ? "\n" : "\r\n");
    doc->SetText(text);
    ctrl->SetDocument(static_cast<IDispatch*>(doc.Get()));
    EXPECT_EQ(ctrl->GetLineCount(), doc->LineCount());
    long start = 0;
    for (long i = 0; i < ctrl->GetLineCount(); ++i) {
        long hardStart = 0;
        doc->GetTextLineStart(i, &hardStart);
        ASSERT_EQ(ctrl->Lines().GetLineStart(i), hardStart) << i;
        start += ctrl->Lines().GetAt(i);
    }
    EXPECT_EQ(start, doc->GetLength());
    ctrl->DestroyControlWindow();
}

}  // namespace

namespace {

// A file loaded into a view that shows its document arrives as one insertion of the whole text;
// a large change is laid out in one pass and must come out as a whole layout does.
TEST(LayoutOfALargeChange, ComesOutAsAWholeLayout) {
    CTestPlatformScope platform;
    ComPtr<IDispatch> control = MakeControlThroughFactory();
    CZentrelCtrl* ctrl = AsControl(control.Get());
    ctrl->SetOption(OPT_WORDWRAP, TRUE);
    ctrl->CreateControlWindow(nullptr, {0, 0, 500, 300});
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    ctrl->SetDocument(static_cast<IDispatch*>(doc.Get()));
    std::string text;
    while (text.size() < (3u << 20)) text += SamplePage();
    TestWindow(ctrl->GetSafeHwnd())->ClearInvalidated();
    doc->SetText(text);
    CLineIndex fresh;
    ctrl->WrapAll(ctrl->GetOptionsWord(), ctrl->GetWrapWidth(), &fresh);
    ASSERT_EQ(ctrl->GetLineCount(), fresh.m_nCount);
    for (long i = 0; i < fresh.m_nCount; i += 97) ASSERT_EQ(ctrl->Lines().GetAt(i), fresh.GetAt(i)) << i;
    EXPECT_EQ(TestWindow(ctrl->GetSafeHwnd())->Invalidated().back().bottom, 300);
    // Taking most of it out again, in one deletion.
    doc->DeleteText(100, doc->GetLength() - 200, nullptr);
    ctrl->WrapAll(ctrl->GetOptionsWord(), ctrl->GetWrapWidth(), &fresh);
    EXPECT_EQ(ctrl->GetLineCount(), fresh.m_nCount);
    EXPECT_EQ(ctrl->Lines().m_nTotal, 200);
    std::string why;
    EXPECT_TRUE(ctrl->Lines().CheckInvariants(&why)) << why;
    ctrl->DestroyControlWindow();
}

}  // namespace
