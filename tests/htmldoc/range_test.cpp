// Moves and edits of ranges, played from cases/ranges.cases on the selection of a document:
// double-byte characters, words, lines, matches, steps, indent and overtype.
#include <gtest/gtest.h>

#include <sstream>

#include "htmldoc/sourcerange.h"
#include "tests/codepagescope.h"
#include "tests/htmldoc/recordingsink.h"
#include "tests/platform/casefile.h"

namespace {

std::string Ends(ISourceRange* range) {
    return std::to_string(range->GetActive()) + "," + std::to_string(range->GetAnchor());
}

void SetEnds(ISourceRange* range, const std::string& ends) {
    range->SetRange(std::stol(ends), std::stol(ends.substr(ends.find(',') + 1)));
}

// One move of the case file's language on the range; false for a name it does not know.
bool Move(CAttachedDoc& d, const std::string& move) {
    std::istringstream in(move);
    std::string name, arg;
    in >> name;
    std::getline(in >> std::ws, arg);
    const BOOL extend = name.size() > 1 && name[0] == 'x';
    if (extend) name.erase(0, 1);
    const long count = arg.empty() ? 0 : std::strtol(arg.c_str(), nullptr, 10);
    ISourceRange* r = d.sel.Get();
    auto step = QueryAs<ISourceRangeStep>(r, IID_ISourceRangeStep);
    if (name == "left") r->MoveCharLeft(extend, count);
    else if (name == "wordleft") r->MoveWordLeft(extend, count);
    else if (name == "wordright") r->MoveWordRight(extend, count);
    else if (name == "down") r->MoveLineDown(extend, count);
    else if (name == "linestart") r->MoveToLineStart(extend);
    else if (name == "match") r->MoveToMatch(extend, 0);
    else if (name == "step") step->StepForward(extend);
    else if (name == "back") step->StepBack(extend);
    else if (name == "indent") r->IndentLines(nullptr);
    else if (name == "unindent") r->UnindentLines(nullptr);
    else if (name == "type") r->ReplaceText(arg.data(), static_cast<long>(arg.size()), nullptr);
    else if (name == "overtype") r->OvertypeText(arg.data(), static_cast<long>(arg.size()), nullptr);
    else if (name == "undo") d.doc->Undo(nullptr, nullptr);
    else return false;
    return true;
}

// NextWord, PrevWord or PrevLineBreak of the document from a position.
long Find(CHtmlDocument& doc, const std::string& what) {
    const long from = std::stol(what.substr(what.find(' ') + 1));
    long pos = -1;
    if (what.starts_with("nextword")) doc.NextWord(from, &pos);
    else if (what.starts_with("prevword")) doc.PrevWord(from, &pos);
    else if (what.starts_with("prevbreak")) doc.PrevLineBreak(from, &pos);
    return pos;
}

TEST(RangeCases, MovesAndEditsOfTheSelection) {
    std::unique_ptr<CodePageScope> codePage;
    for (const CaseRow& row : ReadCaseRows("htmldoc/cases/ranges.cases")) {
        SCOPED_TRACE(row.where);
        if (row[0] == "codepage") {
            codePage.reset();
            codePage = std::make_unique<CodePageScope>(static_cast<UINT>(row.Long(1)));
            continue;
        }
        CAttachedDoc d(row[1]);
        if (row[0] == "walk") {
            std::string seen;
            d.sel->SetRange(row.Long(2), row.Long(2));
            for (long before = -1; before != d.sel->GetActive();) {
                before = d.sel->GetActive();
                ASSERT_TRUE(Move(d, row[3])) << row[3];
                if (d.sel->GetActive() != before) seen += (seen.empty() ? "" : " ") + std::to_string(d.sel->GetActive());
            }
            EXPECT_EQ(seen, row[4]);
        } else if (row[0] == "move") {
            SetEnds(d.sel.Get(), row[2]);
            std::istringstream moves(row[3]);
            for (std::string move; std::getline(moves, move, ';');) ASSERT_TRUE(Move(d, TrimCaseField(move))) << move;
            if (row[4] != "*") {
                EXPECT_EQ(Ends(d.sel.Get()), row[4]);
            }
            if (row.fields.size() > 5) {
                EXPECT_EQ(d.Text(), row[5]);
            }
        } else if (row[0] == "find") {
            EXPECT_EQ(Find(*d.doc, row[2]), row.Long(3));
        } else if (row[0] == "empty") {
            SetEnds(d.sel.Get(), row[2]);
            EXPECT_EQ(d.sel->IsEmpty() ? 1 : 0, row.Long(3));
        } else {
            ADD_FAILURE() << "unknown verb " << row[0];
        }
    }
}

}  // namespace
