// What a change of text or width does to the rows; where the breaker ends rows is in
// tests/edit/cases/linebreaks.cases, the wrap width in wrap.cases. Plain bytes are 9 pixels,
// lines 19; the gutter is 60.
#include "platform/window/keys.h"
#include "tests/view/viewfixture.h"

namespace {

std::vector<long> Lengths(const CLineIndex& t) {
    std::vector<long> out;
    for (long i = 0; i < t.m_nCount; ++i) out.push_back(t.GetAt(i));
    return out;
}

class Wrapping : public ViewFixture {
protected:
    std::vector<long> Wrap(const std::string& text, LONG cx = 260) {
        Open(text, cx, 300, OPT_WORDWRAP);
        return Lengths(ctrl->Lines());
    }
};

TEST_F(Wrapping, ALineFeedTypedIntoALineAddsALineAndInvalidatesToTheBottom) {
    Wrap("ab\ncd\nef\n");
    Window().ClearInvalidated();
    doc->InsertText(4, "\n", 1, nullptr);
    EXPECT_EQ(Lengths(ctrl->Lines()), (std::vector<long>{3, 2, 2, 3, 0}));
    ASSERT_FALSE(Window().Invalidated().empty());
    EXPECT_EQ(Window().Invalidated().back().bottom, 300);
    EXPECT_EQ(Window().Invalidated().back().top, 19);
}

TEST_F(Wrapping, ReformatAtAnUnchangedWidthDoesNothingAndKeepsTheTopText) {
    std::string text;
    for (int i = 0; i < 200; ++i) text += "line " + std::to_string(i) + " with some words to wrap here\n";
    Wrap(text, 400);
    ctrl->OnVScroll(SB_THUMBPOSITION, 120);
    const long topPos = ctrl->Lines().GetLineStart(ctrl->GetTopLine());
    Window().ClearInvalidated();
    EXPECT_FALSE(ctrl->Reformat(TRUE));
    EXPECT_TRUE(Window().Invalidated().empty());
    // Narrower: more rows, but the same text stays at the top.
    Window().SetClientSize(250, 300);
    EXPECT_GT(ctrl->GetTopLine(), 120);
    EXPECT_EQ(ctrl->Lines().GetLineStart(ctrl->GetTopLine()), topPos);
}

}  // namespace
