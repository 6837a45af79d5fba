// The context scan of code completion against data: cases/contexts.cases gives lines of HTML
// with the context expected at every caret position, and single places with the range, tag,
// attribute and value the scan must find.
#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "src/edit/completionscan.h"
#include "tests/platform/casefile.h"

namespace {

BOOL NoLeadBytes(BYTE) { return FALSE; }

char Letter(long context) {
    static const std::map<long, char> kLetters = {{CTX_TEXT, 't'},    {CTX_TAG, 'g'},       {CTX_COMMENT, 'c'},
                                                  {CTX_TAGNAME, 'n'}, {CTX_ATTRIBUTE, 'a'}, {CTX_VALUE, 'v'}};
    const auto it = kLetters.find(context);
    return it == kLetters.end() ? '?' : it->second;
}

std::string Dash(const std::string& s) { return s.empty() ? "-" : s; }

std::string ContextAt(const std::string& text, long pos) {
    return {Letter(AnalyzeTagIn(text.data(), static_cast<long>(text.size()), pos, NoLeadBytes).context)};
}

// The context at every caret position of a text, and the range and names found at single places.
TEST(CompletionScan, ContextsAndPlacesOfTheCases) {
    for (const CaseRow& row : ReadCaseRows("picker/cases/contexts.cases")) {
        SCOPED_TRACE(row.where);
        std::string text = row[1];
        if (row[0] == "contexts") {
            std::string letters;
            for (long pos = 0; pos <= static_cast<long>(text.size()); ++pos) letters += ContextAt(text, pos);
            EXPECT_EQ(letters, row[2]);
            continue;
        }
        const size_t caret = text.find("{|}");
        ASSERT_NE(caret, std::string::npos);
        text.erase(caret, 3);
        const TagContext ctx = AnalyzeTagIn(text.data(), static_cast<long>(text.size()), static_cast<long>(caret), NoLeadBytes);
        std::ostringstream place;
        place << Letter(ctx.context) << ' ' << ctx.rangeStart << '-' << ctx.rangeEnd << ' ' << Dash(ctx.tag) << ' '
              << Dash(ctx.attribute) << ' ' << Dash(ctx.value);
        EXPECT_EQ(place.str(), row[2]);
    }
}

// Positions outside the text are clamped to it.
TEST(CompletionScan, OutOfRangePositionsAreClamped) {
    const std::string text = "<b x=1>";
    EXPECT_EQ(AnalyzeTagIn(text.data(), 7, -5, NoLeadBytes).rangeStart, 0);
    EXPECT_EQ(AnalyzeTagIn(text.data(), 7, 99, NoLeadBytes).context, CTX_TEXT);
    EXPECT_EQ(AnalyzeTagIn("", 0, 0, NoLeadBytes).context, CTX_TEXT);
}

}  // namespace
