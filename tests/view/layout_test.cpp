// The control's line table against its document: whole layouts of long and large texts. Short
// texts, edited at random, are laid out again against whole layouts in relayout_test.
#include "tests/view/viewfixture.h"

namespace {

class LayoutOf : public ViewFixture {};

// A text long enough that the breaker's reader leaves its copied windows for the text pointer
// part-way through, and spans lines across the switch.
TEST_F(LayoutOf, ALongTextHoldsExactlyTheHardLinesWithoutWrap) {
    std::string text;
    for (int i = 0; text.size() < 400000; ++i) text += std::string(static_cast<size_t>(i % 97), 'a') + (i % 3 ? "\n" : "\r\n");
    Open(text, 800, 600);
    EXPECT_EQ(ctrl->GetLineCount(), doc->LineCount());
    long start = 0;
    for (long i = 0; i < ctrl->GetLineCount(); ++i) {
        long hardStart = 0;
        doc->GetTextLineStart(i, &hardStart);
        ASSERT_EQ(ctrl->Lines().GetLineStart(i), hardStart) << i;
        start += ctrl->Lines().GetAt(i);
    }
    EXPECT_EQ(start, doc->GetLength());
}

// A file loaded into a view that shows its document arrives as one insertion of the whole text;
// a large change is laid out in one pass and must come out as a whole layout does.
TEST_F(LayoutOf, ALargeChangeComesOutAsAWholeLayout) {
    Open("", 500, 300, OPT_WORDWRAP);
    std::string text;
    while (text.size() < (3u << 20)) text += SamplePage();
    Window().ClearInvalidated();
    doc->SetText(text);
    ASSERT_EQ(DifferenceFromWholeLayout(*ctrl), "");
    EXPECT_EQ(Window().Invalidated().back().bottom, 300);
    // Taking most of it out again, in one deletion.
    doc->DeleteText(100, doc->GetLength() - 200, nullptr);
    EXPECT_EQ(DifferenceFromWholeLayout(*ctrl), "");
    EXPECT_EQ(ctrl->Lines().m_nTotal, 200);
}

}  // namespace
