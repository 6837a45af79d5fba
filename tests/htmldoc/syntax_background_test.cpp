// Classification in the background: after a load, and behind an edit whose effect runs far, the
// document classifies in slices on a window of its own, a bit per turn of the message loop. A jump
// far into a page not classified yet is answered from a window classified from a guessed state,
// and the background classification from the top then confirms or corrects every byte, asking
// for a repaint of each one whose class changed.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "htmldoc/htmldocument.h"
#include "platform/testing/testplatform.h"
#include "platform/testing/testwindow.h"

namespace {

// A page of ordinary markup with, now and then, a block that a guess made inside it reads
// wrongly: a long comment or script full of markup, a textarea, a value holding tags, CDATA.
std::string Page(size_t bytes, std::mt19937& rng) {
    const char* const lines[] = {
        "<p class=\"note\" id=p7>Some text &amp; a <a href=\"x.html\" title='Go'>link</a></p>\n",
        "<td width=120 bgcolor=red align=center>cell &copy; &#169;</td>\n",
        "  <div data-x=\"1\"><span style=\"color: blue\">text</span> a < b</div>\n",
        "<img src=a.png alt=\"<b>not a tag</b>\" width=\"x12\">\n",
        "<!-- a short note -->\n",
    };
    auto repeat = [&](std::string open, std::string close, int count) {
        for (int i = 0; i < count; ++i) open += lines[rng() % std::size(lines)];
        return open + close;
    };
    std::string text;
    while (text.size() < bytes) {
        switch (rng() % 40) {
        case 0: text += repeat("<!--\n", "-->\n", 600 + static_cast<int>(rng() % 3000)); break;
        case 1: text += repeat("<script>\nvar s = '", "';\n</script>\n", 300 + static_cast<int>(rng() % 1500)); break;
        case 2: text += repeat("<textarea name=t>", "</textarea>\n", 50 + static_cast<int>(rng() % 200)); break;
        case 3: text += repeat("<p title=\"", "\">after</p>\n", 40); break;
        case 4: text += repeat("<![CDATA[", "]]>\n", 30); break;
        default: text += lines[rng() % std::size(lines)];
        }
    }
    return text;
}

// A document whose background classification runs when the test turns the message loop.
class BackgroundTest : public ::testing::Test {
protected:
    // Delivers the slices waiting now; gives how many ran.
    int Pump() {
        HWND hwnd = doc->Syntax().Window();
        CTestWindowBackend* window = hwnd ? TestWindow(hwnd) : nullptr;
        return window && window->IsPostWaiting() ? window->PumpPostedMessages() : 0;
    }
    // Turns of the message loop until no slice waits; gives how many it took.
    int PumpUntilIdle() {
        int turns = 0;
        while (Pump() > 0) ++turns;
        return turns;
    }

    CTestPlatformScope platform;
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
};

class GuessedWindows : public BackgroundTest {
protected:
    // What a painter of a window full of lines at pos asks for.
    void Paint(long pos) {
        const long end = std::min(doc->GetLength(), pos + 4000);
        for (long i = pos; i < end; ++i) shown[static_cast<size_t>(i)] = {doc->GetClassAt(i), spans.size()};
    }

    struct Shown {
        long cls = -1;
        size_t spansBefore = 0;  // repaint spans asked for before it was shown
    };
    std::vector<Shown> shown;
    std::vector<std::pair<long, long>> spans;
};

TEST_F(GuessedWindows, RandomJumpsEndAsAClassificationFromTheTopWithEveryChangeRepainted) {
    for (uint32_t seed = 1; seed <= 3; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 rng(seed);
        doc->SetText(Page(3 << 20, rng));
        doc->Syntax().SetRepaint([&](long start, long end) { spans.emplace_back(start, end); });
        spans.clear();
        auto anywhere = [&] { return std::uniform_int_distribution<long>(0, doc->GetLength() - 1)(rng); };
        // Jumps with edits at some of them, while the background has only begun.
        for (int i = 0; i < 12; ++i) {
            const long pos = anywhere();
            doc->GetClassAt(pos);
            const char* pieces[] = {"<!--", "-->", "\"", "<b>", "x", "</script>", "<script>", "'"};
            const char* piece = pieces[rng() % std::size(pieces)];
            doc->InsertText(pos, piece, static_cast<long>(std::strlen(piece)), nullptr);
            if (i % 3 == 0) doc->DeleteText(anywhere(), 1 + static_cast<long>(rng() % 30), nullptr);
            if (i % 4 == 0) Pump();
        }
        // Then jumps that show what they get, the background moving between some of them.
        shown.assign(static_cast<size_t>(doc->GetLength()), Shown{});
        for (int i = 0; i < 30; ++i) {
            Paint(anywhere());
            if (i % 5 == 0) Pump();
        }
        EXPECT_TRUE(doc->Syntax().HasGuesses());
        PumpUntilIdle();
        ASSERT_EQ(doc->Syntax().ValidEnd(), doc->GetLength());
        EXPECT_FALSE(doc->Syntax().HasGuesses());

        ComPtr<CHtmlDocument> fresh = CreateHtmlDocument();
        fresh->SetText(doc->GetText());
        fresh->Syntax().ClassifyTo(fresh->GetLength());
        long wrong = 0, unrepainted = 0;
        for (long p = 0; p < doc->GetLength(); ++p) {
            const long cls = fresh->GetClassAt(p);
            if (doc->GetClassAt(p) != cls && wrong++ == 0) ADD_FAILURE() << "first wrong class at " << p;
            const Shown& s = shown[static_cast<size_t>(p)];
            if (s.cls < 0 || s.cls == cls) continue;
            bool repainted = false;
            for (size_t k = s.spansBefore; k < spans.size() && !repainted; ++k)
                repainted = spans[k].first <= p && p < spans[k].second;
            if (!repainted && unrepainted++ == 0) ADD_FAILURE() << "shown wrongly and not repainted at " << p;
        }
        EXPECT_EQ(wrong, 0);
        EXPECT_EQ(unrepainted, 0);
    }
}

TEST_F(GuessedWindows, AJumpClassifiesAWindowNotTheTextInFrontOfIt) {
    std::mt19937 rng(9);
    doc->SetText(Page(8 << 20, rng));
    const long end = doc->GetLength() - 1;
    doc->GetClassAt(end);
    EXPECT_LT(doc->Syntax().ValidEnd(), 1 << 20);
    // A painter's way down from there, and back up a screen, reads on from the same windows.
    for (long p = end - 6000; p < end; ++p) doc->GetClassAt(p);
    EXPECT_LT(doc->Syntax().ValidEnd(), 1 << 20);
    EXPECT_TRUE(doc->Syntax().HasGuesses());
}

// A page of plain paragraphs.
std::string Paragraphs(size_t bytes) {
    std::string text;
    for (int i = 0; text.size() < bytes; ++i)
        text += "<p class=\"c" + std::to_string(i % 7) + "\">Paragraph " + std::to_string(i) + " &amp; <b>more</b></p>\n";
    return text;
}

TEST_F(BackgroundTest, ALoadedTextIsClassifiedInSlicesOnTheMessageLoop) {
    doc->SetText(Paragraphs(4 << 20));
    // A load does not wait for classification; the first look (a view's first paint) classifies
    // what it needs and leaves the rest to the background.
    EXPECT_EQ(doc->GetClassAt(1), SC_TAG);
    EXPECT_LT(doc->Syntax().ValidEnd(), 1 << 20);
    ASSERT_EQ(Pump(), 1);
    const long afterOne = doc->Syntax().ValidEnd();
    EXPECT_LT(afterOne, doc->GetLength());  // a slice takes a millisecond, not the whole text
    EXPECT_GT(PumpUntilIdle(), 1);
    EXPECT_EQ(doc->Syntax().ValidEnd(), doc->GetLength());
    EXPECT_EQ(Pump(), 0);
}

TEST_F(BackgroundTest, AnEditThatRecoloursFarLeavesTheRestToTheBackground) {
    const std::string text = Paragraphs(4 << 20);
    doc->SetText(text);
    doc->GetClassAt(0);
    PumpUntilIdle();
    const long lastTagName = static_cast<long>(text.rfind('<')) + 2;  // past "</"
    ASSERT_EQ(doc->GetClassAt(lastTagName), SC_TAG);
    // An opened comment turns everything behind it into comment, far more than an edit
    // classifies at once.
    doc->InsertText(0, "<!--", 4, nullptr);
    EXPECT_LT(doc->Syntax().ValidEnd(), doc->GetLength());
    PumpUntilIdle();
    EXPECT_EQ(doc->Syntax().ValidEnd(), doc->GetLength());
    EXPECT_EQ(doc->GetClassAt(lastTagName + 4), SC_COMMENT);
}

}  // namespace
