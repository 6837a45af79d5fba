// The context scan of code completion against data: tests/picker/contexts.txt gives lines of
// HTML with the context expected at every caret position, and single places with the range,
// tag, attribute and value the scan must find.
#include <gtest/gtest.h>

#include <fstream>
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

struct ContextData {
    std::vector<std::pair<std::string, std::string>> lines;  // text, letters
    std::vector<std::pair<std::string, int>> places;          // "@" lines, with their line number
};

ContextData ReadData() {
    std::ifstream in(std::string(ZENTREL_SOURCE_DIR) + "/tests/picker/contexts.txt");
    EXPECT_TRUE(in) << "contexts.txt missing";
    ContextData data;
    std::string line, text;
    for (int number = 1; std::getline(in, line); ++number) {
        if (line.rfind("< ", 0) == 0) text = UnescapeCaseField(line.substr(2));
        if (line.rfind("> ", 0) == 0) data.lines.emplace_back(text, line.substr(2));
        if (line.rfind("@ ", 0) == 0) data.places.emplace_back(line.substr(2), number);
    }
    return data;
}

TEST(CompletionScan, ContextAtEveryCaretPosition) {
    const ContextData data = ReadData();
    size_t positions = 0;
    for (const auto& [text, letters] : data.lines) {
        std::string actual;
        for (long pos = 0; pos <= static_cast<long>(text.size()); ++pos)
            actual += Letter(AnalyzeTagIn(text.data(), static_cast<long>(text.size()), pos, NoLeadBytes).context);
        EXPECT_EQ(actual, letters) << "in: " << text;
        positions += actual.size();
    }
    EXPECT_GT(positions, 300u);
}

// "@ CONTEXT START-END TAG ATTRIBUTE VALUE | TEXT", with {|} for the caret and - for empty.
TEST(CompletionScan, RangeAndNamesAtPlaces) {
    const ContextData data = ReadData();
    ASSERT_FALSE(data.places.empty());
    for (const auto& [place, number] : data.places) {
        const size_t bar = place.find(" | ");
        ASSERT_NE(bar, std::string::npos) << "line " << number;
        std::string text = UnescapeCaseField(place.substr(bar + 3));
        const size_t caret = text.find("{|}");
        ASSERT_NE(caret, std::string::npos) << "line " << number;
        text.erase(caret, 3);
        const TagContext ctx = AnalyzeTagIn(text.data(), static_cast<long>(text.size()), static_cast<long>(caret), NoLeadBytes);
        std::ostringstream actual;
        actual << Letter(ctx.context) << ' ' << ctx.rangeStart << '-' << ctx.rangeEnd << ' ' << Dash(ctx.tag) << ' '
               << Dash(ctx.attribute) << ' ' << Dash(ctx.value);
        EXPECT_EQ(actual.str(), place.substr(0, bar)) << "line " << number << ": " << text;
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
