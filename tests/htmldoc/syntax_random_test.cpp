// Random edits on real pages of all eras: after every few edits, the classes and tokens of the
// edited document equal those of a fresh document with the same text, whatever parts of the
// text were asked for in between.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <sstream>

#include "htmldoc/htmldocument.h"

namespace {

bool LongRun() {
    const char* env = std::getenv("ZENTREL_LONG_TESTS");
    return env && *env && std::string(env) != "0";
}

std::string ReadPage(const std::string& name) {
    std::ifstream in(std::string(ZENTREL_SOURCE_DIR) + "/tests/htmldoc/pages/" + name, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

// Pieces that change the lexer's state a lot, and some that change little.
const char* const kPieces[] = {"<", ">", "\"", "'", "=", "/", "-->", "<!--", "<b>", "</b>", "&amp;", "&#", ";",
                               "<script>", "</script>", "<svg>", "</svg>", "<![CDATA[", "]]>", "<?", "?>",
                               " ", "\n", "x", "align=", "bgcolor=red ", "<td width=3>", "&", "</", "<!", "<title>"};

std::string Snapshot(CHtmlDocument& doc, bool tokens) {
    std::string out;
    for (long i = 0; i < doc.GetLength(); ++i) {
        out += static_cast<char>('a' + doc.GetClassAt(i));
        if (tokens) {
            ISourceTokenInfo t;
            doc.GetToken(i, &t);
            out += std::to_string(t.nKind) + ":" + std::to_string(t.nStart) + "+" + std::to_string(t.nLength) + " ";
        }
    }
    return out;
}

void CheckAgainstFresh(CHtmlDocument& doc, bool tokens, const std::string& context) {
    ComPtr<CHtmlDocument> fresh = CreateHtmlDocument();
    fresh->SetText(doc.GetText());
    std::string expected = Snapshot(*fresh, tokens), actual = Snapshot(doc, tokens);
    if (expected == actual) return;
    size_t at = 0;
    while (at < expected.size() && at < actual.size() && expected[at] == actual[at]) ++at;
    FAIL() << context << ": first difference at snapshot offset " << at << " of text:\n" << doc.GetText();
}

void EditAtRandom(CHtmlDocument& doc, std::mt19937& rng) {
    long length = doc.GetLength();
    long pos = std::uniform_int_distribution<long>(0, length)(rng);
    int what = std::uniform_int_distribution<int>(0, 9)(rng);
    if (what < 5) {
        const char* piece = kPieces[std::uniform_int_distribution<size_t>(0, std::size(kPieces) - 1)(rng)];
        doc.InsertText(pos, piece, static_cast<long>(std::strlen(piece)), nullptr);
    } else if (what < 8 && length > 0) {
        long count = std::uniform_int_distribution<long>(1, std::min<long>(40, length - std::min(pos, length - 1)))(rng);
        doc.DeleteText(std::min(pos, length - 1), count, nullptr);
    } else if (what == 8) {
        doc.Undo(nullptr, nullptr);
    } else {
        doc.Redo(nullptr, nullptr);
    }
}

// Asks for classes here and there, as a painter of some lines would.
void QueryAtRandom(CHtmlDocument& doc, std::mt19937& rng) {
    if (doc.GetLength() == 0) return;
    long pos = std::uniform_int_distribution<long>(0, doc.GetLength() - 1)(rng);
    long end = std::min(doc.GetLength(), pos + 200);
    for (long i = pos; i < end; ++i) {
        doc.GetClassAt(i);
        ISourceTokenInfo t;
        doc.GetToken(i, &t);
    }
}

class SyntaxRandomEdits : public ::testing::TestWithParam<const char*> {};

TEST_P(SyntaxRandomEdits, ClassesAndTokensEqualAFreshClassification) {
    std::string page = ReadPage(GetParam());
    ASSERT_FALSE(page.empty());
    int rounds = LongRun() ? 300 : 30;
    int steps = LongRun() ? 60 : 25;
    for (int round = 0; round < rounds; ++round) {
        std::mt19937 rng(static_cast<uint32_t>(round * 7919 + 13));
        ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
        doc->SetText(page);
        if (round % 3 == 0) QueryAtRandom(*doc, rng);
        if (round % 3 == 1) doc->GetClassAt(doc->GetLength() - 1);
        for (int step = 0; step < steps; ++step) {
            EditAtRandom(*doc, rng);
            if (step % 4 == 0) QueryAtRandom(*doc, rng);
        }
        CheckAgainstFresh(*doc, round % 4 == 0, std::string(GetParam()) + " round " + std::to_string(round));
        if (HasFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(Pages, SyntaxRandomEdits, ::testing::Values("legacy.html", "frames.html", "modern.html"));

TEST(SyntaxRandomEdits, ALargeTextThatIsEditedInManyPlaces) {
    // Several kilobytes apart, so that edits meet checkpoints and stale codes of earlier ones.
    std::string text;
    for (int i = 0; i < 8; ++i) text += ReadPage("modern.html") + ReadPage("legacy.html");
    std::mt19937 rng(5);
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText(text);
    int steps = LongRun() ? 2000 : 150;
    for (int step = 0; step < steps; ++step) {
        EditAtRandom(*doc, rng);
        if (step % 10 == 0) QueryAtRandom(*doc, rng);
        if (step % 50 == 49) {
            CheckAgainstFresh(*doc, false, "step " + std::to_string(step));
            if (HasFailure()) return;
        }
    }
}

TEST(SyntaxRandomEdits, TypingARunAtOnePlaceGrowsTheGapsBetweenCheckpoints) {
    // Thousands of pieces typed one behind the other, so that the text between two saved states
    // grows past several spacings of them while the classification keeps up with each piece.
    std::string text;
    for (int i = 0; i < 4; ++i) text += ReadPage("modern.html");
    std::mt19937 rng(11);
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText(text);
    long caret = doc->GetLength() / 3;
    for (int step = 0; step < (LongRun() ? 20000 : 3000); ++step) {
        const char* piece = kPieces[std::uniform_int_distribution<size_t>(0, std::size(kPieces) - 1)(rng)];
        const long length = static_cast<long>(std::strlen(piece));
        doc->InsertText(caret, piece, length, nullptr);
        caret += length;
        doc->GetClassAt(caret - 1);
        if (step % 500 == 499) {
            CheckAgainstFresh(*doc, false, "step " + std::to_string(step));
            if (HasFailure()) return;
        }
    }
}

}  // namespace
