// Hard line numbering under edits, on texts long enough to span many chunks of the table.
#include <gtest/gtest.h>

#include <random>

#include "htmldoc/hardlines.h"

namespace {

std::vector<long> StartsOf(const std::string& text) {
    std::vector<long> starts{0};
    for (size_t i = 0; i < text.size(); ++i)
        if (text[i] == '\n') starts.push_back(static_cast<long>(i) + 1);
    return starts;
}

void ExpectSameLines(const CHardLines& lines, const std::string& text) {
    std::vector<long> starts = StartsOf(text);
    ASSERT_EQ(lines.LineCount(), static_cast<long>(starts.size()));
    ASSERT_EQ(lines.Length(), static_cast<long>(text.size()));
    for (size_t l = 0; l < starts.size(); ++l) {
        ASSERT_EQ(lines.LineStart(static_cast<long>(l)), starts[l]) << "line " << l;
        // The first and last byte of the line, and its end, which belongs to it as well.
        long end = l + 1 < starts.size() ? starts[l + 1] - 1 : static_cast<long>(text.size());
        for (long pos : {starts[l], end}) ASSERT_EQ(lines.LineFromPos(pos), static_cast<long>(l)) << "pos " << pos;
    }
}

TEST(HardLines, RandomEditsOverManyChunks) {
    std::mt19937 rng(7);
    std::string text;
    for (int i = 0; i < 6000; ++i) text += std::string(static_cast<size_t>(i % 13), 'x') + (i % 5 ? "\n" : "\r\n");
    CHardLines lines;
    lines.Assign(text);
    ASSERT_NO_FATAL_FAILURE(ExpectSameLines(lines, text));
    auto pick = [&](long hi) { return std::uniform_int_distribution<long>(0, hi)(rng); };
    for (int step = 0; step < 400; ++step) {
        long pos = pick(static_cast<long>(text.size()));
        long room = static_cast<long>(text.size()) - pos;
        // Small edits mostly; now and then one that removes or adds thousands of lines.
        long removed = step % 50 == 0 ? std::min(room, pick(40000)) : std::min(room, pick(30));
        std::string inserted;
        long newLines = step % 37 == 0 ? pick(3000) : pick(3);
        for (long i = 0; i < newLines; ++i) inserted += "ab\n";
        if (pick(1)) inserted += "tail";
        lines.Replace(pos, removed, inserted);
        text.replace(static_cast<size_t>(pos), static_cast<size_t>(removed), inserted);
        if (step % 20 == 0) {
            ASSERT_NO_FATAL_FAILURE(ExpectSameLines(lines, text)) << "step " << step;
        } else {
            long probe = pick(static_cast<long>(text.size()));
            std::vector<long> starts = StartsOf(text);
            long line = static_cast<long>(std::upper_bound(starts.begin(), starts.end(), probe) - starts.begin()) - 1;
            ASSERT_EQ(lines.LineFromPos(probe), line) << "step " << step;
            ASSERT_EQ(lines.LineStart(line), starts[static_cast<size_t>(line)]);
        }
    }
    ExpectSameLines(lines, text);
}

// A large text's table is made from its two halves at once; the line over the middle is put
// together from both. Split anywhere: inside a line, at a line feed, in a text without one.
TEST(HardLines, AssignedInTwoHalvesAtOnce) {
    std::mt19937 rng(11);
    for (int round = 0; round < 300; ++round) {
        std::string text;
        const int pieces = static_cast<int>(rng() % 40);
        for (int i = 0; i < pieces; ++i) text += std::string(rng() % 5, 'x') + (rng() % 3 ? "\n" : "\r\n");
        if (round % 7 == 0) text = std::string(rng() % 300, 'y');
        CHardLines lines;
        lines.Assign(text, 0);
        ASSERT_NO_FATAL_FAILURE(ExpectSameLines(lines, text)) << "round " << round;
    }
}

}  // namespace
