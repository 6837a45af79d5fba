// Moves and edits of ranges: double-byte characters, words, lines, matches, steps, indent
// and overtype.
#include <gtest/gtest.h>

#include "htmldoc/sourcerange.h"
#include "platform/codepage/codepage.h"
#include "tests/htmldoc/recordingsink.h"

namespace {

// Positions that repeated calls of `move` visit from `from`, until it stops moving.
template <class Move>
std::vector<long> Walk(ISourceRange* range, long from, Move move) {
    range->SetRange(from, from);
    std::vector<long> seen;
    for (;;) {
        long before = range->GetActive();
        move(range);
        if (range->GetActive() == before) return seen;
        seen.push_back(range->GetActive());
    }
}

class DoubleByteRange : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(SetProcessCodePage(932)); }
    void TearDown() override { SetProcessCodePage(1252); }
};

TEST_F(DoubleByteRange, DoubleByteCharactersAreOneStepEvenWithAsciiTrailBytes) {
    // 0x83 0x5C has a backslash as its trail byte; 0x81 0x81 0x81 0x40 are two characters
    // made of lead-valued bytes, which only counting from a sure boundary can split right.
    CAttachedDoc d(std::string("a\x83\x5C" "b\x81\x81\x81\x40" "c", 9));
    EXPECT_EQ(Walk(d.sel.Get(), 0, [](ISourceRange* r) { r->MoveCharLeft(FALSE, -1); }),
              (std::vector<long>{1, 3, 4, 6, 8, 9}));
    EXPECT_EQ(Walk(d.sel.Get(), 9, [](ISourceRange* r) { r->MoveCharLeft(FALSE, 1); }),
              (std::vector<long>{8, 6, 4, 3, 1, 0}));
    // A double-byte character is part of a word, its trail byte notwithstanding.
    long pos;
    d.doc->NextWord(0, &pos);
    EXPECT_EQ(pos, 9);
    // The column of a line move never lands inside a character.
    d.doc->SetText(std::string("abc\n\x83\x5C\x83\x5C", 8));
    d.sel->SetRange(2, 2);
    d.sel->MoveLineDown(FALSE, 1);
    EXPECT_EQ(d.sel->GetActive(), 6);
    // A typed double-byte character merges with the typing around it.
    d.sel->SetRange(8, 8);
    d.sel->ReplaceText("\x83\x41", 2, nullptr);
    d.sel->ReplaceText("x", 1, nullptr);
    d.doc->Undo(nullptr, nullptr);
    EXPECT_EQ(d.doc->GetLength(), 8);
}

TEST(RangeMoves, WordsStopAtRunsOfOneKindAndAtLineBreaks) {
    CAttachedDoc d("<div class=\"a_b\">  x\r\nend");
    EXPECT_EQ(Walk(d.sel.Get(), 0, [](ISourceRange* r) { r->MoveWordRight(FALSE, 1); }),
              (std::vector<long>{1, 5, 10, 12, 15, 19, 20, 22, 25}));
    EXPECT_EQ(Walk(d.sel.Get(), 25, [](ISourceRange* r) { r->MoveWordLeft(FALSE, 1); }),
              (std::vector<long>{22, 20, 19, 15, 12, 10, 5, 1, 0}));
    long pos;
    d.doc->PrevWord(24, &pos);
    EXPECT_EQ(pos, 22);
    d.doc->NextWord(2, &pos);
    EXPECT_EQ(pos, 5);
    d.sel->SetRange(0, 0);
    d.sel->MoveWordRight(TRUE, 3);
    EXPECT_EQ(std::make_pair(d.sel->GetActive(), d.sel->GetAnchor()), std::make_pair(10L, 0L));
}

TEST(RangeMoves, LineMovesKeepTheByteColumnAndEndAtTheTextEnds) {
    CAttachedDoc d("first line\r\nab\r\n\nlast one");
    d.sel->SetRange(7, 7);
    d.sel->MoveLineDown(FALSE, 1);
    EXPECT_EQ(d.sel->GetActive(), 14);  // short line: at its end, before CR LF
    d.sel->MoveLineDown(FALSE, 1);
    EXPECT_EQ(d.sel->GetActive(), 16);  // empty line
    d.sel->SetRange(7, 7);
    d.sel->MoveLineDown(FALSE, 3);
    EXPECT_EQ(d.sel->GetActive(), 24);
    d.sel->MoveLineDown(FALSE, 1);
    EXPECT_EQ(d.sel->GetActive(), 25);  // below the last line: the end of the text
    d.sel->MoveLineDown(FALSE, -10);
    EXPECT_EQ(d.sel->GetActive(), 0);
    // The triple click: line start, then extend down one line.
    d.sel->SetRange(13, 13);
    d.sel->MoveToLineStart(FALSE);
    d.sel->MoveLineDown(TRUE, 1);
    EXPECT_EQ(std::make_pair(d.sel->GetAnchor(), d.sel->GetActive()), std::make_pair(12L, 16L));
    long brk;
    d.doc->PrevLineBreak(16, &brk);
    EXPECT_EQ(brk, 14);
    d.doc->PrevLineBreak(17, &brk);
    EXPECT_EQ(brk, 16);
    d.doc->PrevLineBreak(5, &brk);  // a wrap point: the last character of the row it ends
    EXPECT_EQ(brk, 4);
}

TEST(RangeMatch, TagsMatchTheirPartnersAcrossNestingOfTheSameName) {
    //                    0         1         2         3         4
    //                    0123456789012345678901234567890123456789012345
    const std::string t = "<div id=\"a>\"><DIV><br/></div><!-- </div> --></Div>";
    CAttachedDoc d(t);
    auto match = [&](long from) {
        d.sel->SetRange(from, from);
        d.sel->MoveToMatch(FALSE, 0);
        return d.sel->GetActive();
    };
    long outerClose = static_cast<long>(t.rfind("</Div>"));
    EXPECT_EQ(match(0), outerClose);   // '<' of the outer start tag
    EXPECT_EQ(match(2), outerClose);   // on its name
    EXPECT_EQ(match(outerClose), 0);   // and back
    EXPECT_EQ(match(13), 23);          // the inner pair, names in other case
    EXPECT_EQ(match(25), 13);
    EXPECT_EQ(match(18), 22);          // <br/> has no partner: '<' to '>'
    EXPECT_EQ(match(22), 18);          // and '>' to '<'
    EXPECT_EQ(match(12), 0);           // the '>' behind a quoted '>'
    EXPECT_EQ(match(8), 8);            // inside an attribute: nothing to match
}

TEST(RangeMatch, BracketsNestAndAreFoundJustBehindTheCaret) {
    CAttachedDoc d("f(a[1], (b)) {x}");
    auto match = [&](long from, BOOL extend = FALSE) {
        d.sel->SetRange(from, from);
        d.sel->MoveToMatch(extend, 0);
        return d.sel->GetActive();
    };
    EXPECT_EQ(match(1), 11);
    EXPECT_EQ(match(11), 1);
    EXPECT_EQ(match(3), 5);
    EXPECT_EQ(match(12), 1);  // behind ')'
    EXPECT_EQ(match(7), 7);  // a blank behind a comma: no match
    EXPECT_EQ(match(13, TRUE), 15);
    EXPECT_EQ(d.sel->GetAnchor(), 13);
    d.doc->SetText("((unclosed");
    EXPECT_EQ(match(0), 0);
}

TEST(RangeStep, StepsGoFromTagToTag) {
    CAttachedDoc d("a <b>x < y</b> <!-- c --> z");
    EXPECT_EQ(Walk(d.sel.Get(), 0, [](ISourceRange* r) {
                  QueryAs<ISourceRangeStep>(r, IID_ISourceRangeStep)->StepForward(FALSE);
              }),
              (std::vector<long>{2, 10, 15}));
    EXPECT_EQ(Walk(d.sel.Get(), 27, [](ISourceRange* r) {
                  QueryAs<ISourceRangeStep>(r, IID_ISourceRangeStep)->StepBack(TRUE);
              }),
              (std::vector<long>{15, 10, 2}));
    EXPECT_EQ(d.sel->GetAnchor(), 27);
}

TEST(RangeEdit, IsEmptyMeansWithinOneLine) {
    CAttachedDoc d("one\ntwo\nthree");
    d.sel->SetRange(1, 3);
    EXPECT_TRUE(d.sel->IsEmpty());
    d.sel->SetRange(4, 0);
    EXPECT_FALSE(d.sel->IsEmpty());
    d.sel->SetRange(5, 5);
    EXPECT_TRUE(d.sel->IsEmpty());
}

TEST(RangeEdit, IndentTouchesEveryLineOfTheRangeButNotAFinalColumnZero) {
    CAttachedDoc d("a\nb\r\n\nc\nd");
    d.sel->SetRange(1, 8);  // from inside line 0 to column 0 of line 4 ("d" is not touched)
    d.sel->IndentLines(&d.sink);
    EXPECT_EQ(d.Text(), "\ta\n\tb\r\n\t\n\tc\nd");
    EXPECT_EQ(std::make_pair(d.sel->GetActive(), d.sel->GetAnchor()), std::make_pair(2L, 12L));
    d.sel->UnindentLines(&d.sink);
    EXPECT_EQ(d.Text(), "a\nb\r\n\nc\nd");
    EXPECT_EQ(d.sink.Of(CSinkEvent::Change).size(), 2u);
    d.doc->Undo(nullptr, nullptr);
    EXPECT_EQ(d.Text(), "\ta\n\tb\r\n\t\n\tc\nd");
    // A range starting at column 0 keeps the whole lines, tabs included.
    d.doc->SetText("x\n    y\nz");
    d.sel->SetRange(0, 8);
    d.sel->UnindentLines(nullptr);
    EXPECT_EQ(d.Text(), "x\ny\nz");
    d.sel->IndentLines(nullptr);
    EXPECT_EQ(d.Text(), "\tx\n\ty\nz");
    EXPECT_EQ(std::make_pair(d.sel->GetStart(), d.sel->GetEnd()), std::make_pair(0L, 6L));
}

// Typing over one character at a time, its undo as one step and over a selection are in
// overwrite_toggles.cases and undo_redo.cases; here several characters in one call.
TEST(RangeEdit, OvertypeOfSeveralCharactersStopsAtTheLineEnd) {
    CAttachedDoc d("abc\r\nxyz");
    d.sel->SetRange(1, 1);
    d.sel->OvertypeText("1", 1, nullptr);
    d.sel->OvertypeText("345", 3, nullptr);
    EXPECT_EQ(d.Text(), "a1345\r\nxyz");
    EXPECT_EQ(d.sel->GetActive(), 5);
}

}  // namespace
