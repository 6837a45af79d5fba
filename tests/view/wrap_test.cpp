// Where the line breaker ends lines, with the test fonts' widths: wrapping measures every byte
// in the widest edit face, the bold one here: 10 pixels for most bytes, 6 for narrow ones
// (space, i, l, ...), 14 for wide ones (m, w, ...); a tab stop every 45 pixels; a double-byte
// character 18. A window 260 pixels wide with the 60-pixel gutter wraps at 200.
#include "platform/codepage/codepage.h"
#include "platform/window/keys.h"
#include "src/view/module.h"
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
        NewControl(cx, 300, OPT_WORDWRAP);
        doc = CreateHtmlDocument();
        doc->SetText(text);
        ctrl->SetDocument(static_cast<IDispatch*>(doc.Get()));
        return Lengths(ctrl->Lines());
    }
    static std::string Repeat(char c, int n) { return std::string(static_cast<size_t>(n), c); }
};

TEST_F(Wrapping, BreaksBehindTheLastSpaceAndCutsWordsLongerThanALine) {
    // Words of four and a space are 46 pixels: four fit, the fifth overflows.
    EXPECT_EQ(Wrap("aaaa aaaa aaaa aaaa aaaa aaaa"), (std::vector<long>{20, 9}));
    // No break opportunity: the character that reaches the width starts the next line.
    EXPECT_EQ(Wrap(Repeat('a', 25)), (std::vector<long>{19, 6}));
}

TEST_F(Wrapping, AWidthReachedExactlyCountsAsOverflow) {
    const std::string head = Repeat('a', 14) + " ";  // 146 pixels
    EXPECT_EQ(Wrap(head + Repeat('i', 8)), (std::vector<long>{23}));      // 194: fits
    EXPECT_EQ(Wrap(head + Repeat('i', 9)), (std::vector<long>{15, 9}));   // 200: over
}

TEST_F(Wrapping, HyphensAndTabsAreBreakOpportunitiesBehindThem) {
    EXPECT_EQ(Wrap(Repeat('a', 16) + "-" + Repeat('a', 5)), (std::vector<long>{17, 5}));
    // The tab runs from 30 to the stop at 45; fifteen more bytes fit, the sixteenth does not.
    EXPECT_EQ(Wrap("aaa\t" + Repeat('a', 16)), (std::vector<long>{4, 16}));
}

TEST_F(Wrapping, OfSeveralSpacesAtTheEdgeTheOneThatReachesTheWidthEndsTheLine) {
    EXPECT_EQ(Wrap(Repeat('a', 19) + "    bb"), (std::vector<long>{21, 4}));
}

TEST_F(Wrapping, CRAndLFCostNoWidthAndStayTogether) {
    EXPECT_EQ(Wrap(Repeat('a', 18) + " \r\nb"), (std::vector<long>{21, 1}));
    EXPECT_EQ(Wrap(Repeat('a', 19) + "\r\n"), (std::vector<long>{21, 0}));
}

TEST_F(Wrapping, ADoubleByteCharacterThatOverflowsMovesWhole) {
    ASSERT_TRUE(SetProcessCodePage(932));
    ZentrelApp().InitInstance();
    const std::string kana = "\x82\xA0";  // one character, 18 pixels
    EXPECT_EQ(Wrap(Repeat('a', 17) + kana + kana + "a"), (std::vector<long>{19, 3}));
    SetProcessCodePage(1252);
    ZentrelApp().InitInstance();
}

TEST_F(Wrapping, ANarrowWindowStillWrapsAtFiveAverageCharacters) {
    Wrap("text", 100);
    EXPECT_EQ(ctrl->GetWrapWidth(), 5 * 9 + 60);
    Wrap("text", 400);
    EXPECT_EQ(ctrl->GetWrapWidth(), 340);
    ctrl->SetOption(OPT_WORDWRAP, FALSE);
    EXPECT_EQ(ctrl->GetWrapWidth(), 0x3FFFFFFF);
    EXPECT_EQ(Lengths(ctrl->Lines()), (std::vector<long>{4}));
}

TEST_F(Wrapping, WithoutWordWrapOnlyLineFeedsEndLines) {
    Wrap("x");
    ctrl->SetOption(OPT_WORDWRAP, FALSE);
    doc->SetText(Repeat('a', 5000) + "\n" + Repeat('b', 300));
    EXPECT_EQ(Lengths(ctrl->Lines()), (std::vector<long>{5001, 300}));
}

TEST_F(Wrapping, TheLastLineIsEmptyExactlyWhenTheTextEndsInALineFeed) {
    EXPECT_EQ(Wrap("ab\ncd\n"), (std::vector<long>{3, 3, 0}));
    EXPECT_EQ(Wrap("ab\ncd"), (std::vector<long>{3, 2}));
    // Edits near the end are repaired as a whole layout would lay them out (relayout_test);
    // deleting everything leaves one empty line.
    doc->DeleteText(0, doc->GetLength(), nullptr);
    EXPECT_EQ(Lengths(ctrl->Lines()), (std::vector<long>{0}));
}

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

namespace {

class WrappedRows : public ViewFixture {};

TEST_F(WrappedRows, EndAndFarRightClicksStayOnTheRowTheyAreOn) {
    NewControl(260, 300, OPT_WORDWRAP);
    doc = CreateHtmlDocument();
    doc->SetText("aaaa aaaa aaaa aaaa aaaa aaaa\nb");
    ctrl->SetDocument(static_cast<IDispatch*>(doc.Get()));
    ASSERT_EQ(ctrl->Lines().GetAt(0), 20);  // the first row ends at a wrap point behind a space
    // In front of the row's last character, the space: the wrap point itself starts row 1.
    EXPECT_EQ(ctrl->GetLineEnd(3), 19);
    EXPECT_EQ(ctrl->FindPositionFromCoordinate(1000, 5), 19);
    POINT pt;
    ctrl->DocPointFromPosition(19, &pt);
    EXPECT_EQ(pt.y, 0);
    // A row that ends at a line feed ends in front of it.
    EXPECT_EQ(ctrl->GetLineEnd(22), 29);
    EXPECT_EQ(ctrl->FindPositionFromCoordinate(1000, 19 + 5), 29);
}

}  // namespace
