// The line table after every change of the text against a whole layout of the same text: random
// inserts, deletes and replacements of line ends (LF, CR LF, lone CR), tabs, spaces, hyphens,
// long words, rows of kilobytes and double-byte characters, with word wrap at several widths and
// without it; a whole layout handed out row by row in pieces against the same layout made in one
// go; a whole layout at random byte widths against a walk of the breaking rules one byte at a
// time; and a whole layout split over two threads against one on a single thread.
// ZENTREL_LONG_TESTS=1 runs many more edits.
#include <cstdlib>
#include <random>
#include <sstream>

#include "platform/codepage/codepage.h"
#include "src/layout/linelengthlist.h"
#include "src/layout/rowwrapper.h"
#include "src/layout/textfeed.h"
#include "src/view/module.h"
#include "tests/codepagescope.h"
#include "tests/view/viewfixture.h"

namespace {

bool LongRun() {
    const char* env = std::getenv("ZENTREL_LONG_TESTS");
    return env && *env && std::string(env) != "0";
}

std::string Escaped(const std::string& text) {
    std::string out;
    for (unsigned char c : text) {
        if (c == '\n') out += "\\n";
        else if (c == '\r') out += "\\r";
        else if (c == '\t') out += "\\t";
        else if (c < 0x20 || c >= 0x80) out += "\\x" + std::string(1, "0123456789ABCDEF"[c >> 4]) + "0123456789ABCDEF"[c & 15];
        else out += static_cast<char>(c);
    }
    return out;
}

struct Setting {
    bool wrap;
    LONG width;  // of the window; the 60-pixel gutter is not text
    UINT codePage;
};

std::ostream& operator<<(std::ostream& os, const Setting& s) {
    return os << (s.wrap ? "wrap" : "nowrap") << s.width << "_cp" << s.codePage;
}

class Relayout : public ViewFixture, public ::testing::WithParamInterface<Setting> {
protected:
    void SetUp() override {
        SetProcessCodePage(GetParam().codePage);
        ZentrelApp().InitInstance();
        Open("", GetParam().width, 200, GetParam().wrap ? OPT_WORDWRAP : 0);
    }
    void TearDown() override {
        ViewFixture::TearDown();
        SetProcessCodePage(1252);
        ZentrelApp().InitInstance();
    }

    // Pieces of text that end rows in every way the breaker knows.
    std::string Piece() {
        static const char* const kPieces[] = {
            "x", " ", "  ", "-", "\t", "\n", "\r\n", "\r", "\n\n", "word ", "a-b-", "ab\tcd",
            "averyveryverylongwordthatisfarwiderthananyrowofthewindow", "<p class=\"x\">", " \r\n ",
        };
        static const char* const kDoubleByte[] = {"\x82\xA0", "\x82\xA0\x82\xA2\x82\xA4", "a\x88\x9F b"};
        if (GetParam().codePage == 932 && rng() % 4 == 0) return kDoubleByte[rng() % std::size(kDoubleByte)];
        // Now and then a row longer than the windows the layout reads the text through.
        if (rng() % 40 == 0) return std::string(4000 + rng() % 9000, static_cast<char>('a' + rng() % 26));
        std::string out;
        for (unsigned n = 1 + rng() % 3; n > 0; --n) out += kPieces[rng() % std::size(kPieces)];
        return out;
    }
    // A random position in the text on a character boundary.
    long Boundary() {
        const std::string text = doc->GetText();
        const long target = static_cast<long>(rng() % (text.size() + 1));
        long pos = 0;
        while (pos < target) pos += IsLeadByte(static_cast<BYTE>(text[static_cast<size_t>(pos)])) ? 2 : 1;
        return std::min<long>(pos, static_cast<long>(text.size()));
    }
    void RandomEdit() {
        long a = Boundary(), b = Boundary();
        if (a > b) std::swap(a, b);
        // Most edits are short, as typing is; some take out or replace long stretches.
        if (rng() % 4 != 0) b = std::min(b, a + static_cast<long>(rng() % 6));
        while (b > a && b < doc->GetLength() && !OnBoundary(b)) ++b;
        const std::string piece = Piece();
        switch (rng() % 3) {
            case 0: doc->InsertText(a, piece.data(), static_cast<long>(piece.size()), nullptr); break;
            case 1: doc->DeleteText(a, b - a, nullptr); break;
            default: doc->ReplaceText(a, b - a, piece.data(), static_cast<long>(piece.size()), nullptr); break;
        }
    }
    bool OnBoundary(long pos) {
        const std::string text = doc->GetText();
        long p = 0;
        while (p < pos) p += IsLeadByte(static_cast<BYTE>(text[static_cast<size_t>(p)])) ? 2 : 1;
        return p == pos;
    }
    // An empty string when a layout handed out in pieces of random sizes, as a printout asks for
    // it, has the rows of a whole layout; else the first difference.
    std::string PiecewiseDifference() {
        CLineIndex fresh;
        ctrl->WrapAll(ctrl->GetOptionsWord(), ctrl->BreakWidth(), &fresh);
        CRowWrapper wrapper(*ctrl, ctrl->GetDocumentText(), ctrl->GetOptionsWord(), ctrl->BreakWidth());
        CLineLengthList pieces;
        while (!wrapper.IsDone())
            if (wrapper.WrapRows(1 + static_cast<long>(rng() % 4), &pieces) == 0) return "a wrapper not done gave no row";
        for (long i = 0; i < std::max<long>(pieces.m_nCount, fresh.m_nCount); ++i)
            if (i >= pieces.m_nCount || i >= fresh.m_nCount || pieces.GetAt(i) != fresh.GetAt(i))
                return "the wrapper's row " + std::to_string(i) + " differs from a whole layout's";
        return {};
    }

    // Text with long stretches of common bytes between the bytes that end them.
    std::string StretchyText() {
        static const char* const kEnds[] = {"\n", "\r\n", "\r", "\t", " ", "-", "\xE9", "\x82\xA0", "a\x88\x9F"};
        std::string out;
        for (unsigned n = rng() % 60; n > 0; --n) {
            for (unsigned k = rng() % 40; k > 0; --k) out += static_cast<char>(rng() % 3 == 0 ? ' ' : 'a' + rng() % 26);
            out += kEnds[rng() % std::size(kEnds)];
        }
        return out;
    }

    // Byte widths at random: zero now and then, and wide bytes that overflow a row in a few.
    void RandomWidths() {
        for (LONG& w : ctrl->m_WrapMetrics.m_aWidth) w = static_cast<LONG>(rng() % 5 == 0 ? 0 : rng() % 24);
    }

    std::mt19937 rng;
};

// The row lengths of a line table or a row list.
template <class Rows>
std::vector<long> RowsOf(const Rows& table) {
    std::vector<long> rows;
    for (long i = 0; i < table.m_nCount; ++i) rows.push_back(table.GetAt(i));
    return rows;
}

// The rows of `text` by the breaking rules taken one byte at a time, without collapsed blocks:
// a line feed ends a row; at the width the row breaks behind the last space, hyphen or tab, or
// in front of the last double-byte character, or else in front of the byte that overflowed.
std::vector<long> ByteWiseRows(const std::string& text, const LONG* widths, long charWidth, long tabPixels,
                               long width) {
    std::vector<long> rows;
    const long n = static_cast<long>(text.size());
    for (long pos = 0; pos < n;) {
        long scan = pos, breakPos = pos, x = 0;
        while (scan < n) {
            const auto c = static_cast<unsigned char>(text[static_cast<size_t>(scan)]);
            long size = 1;
            if (c == '\n') {
                ++scan;
                break;
            }
            if (c == '\t') {
                breakPos = scan + 1;
                x += tabPixels - x % tabPixels;
            } else if (IsLeadByte(c)) {
                breakPos = scan;
                size = 2;
                x += 2 * charWidth;
            } else if (c != '\r') {
                x += widths[c];
                if (c == ' ' || c == '-') breakPos = scan + 1;
            }
            scan += size;
            if (x >= width) {
                if (breakPos > pos) scan = breakPos;
                else if (scan - pos > size) scan -= size;
                break;
            }
        }
        // A lead byte as the text's last byte leaves the rest as one row.
        const long len = scan > n ? n - pos : scan - pos;
        rows.push_back(len);
        pos += len;
    }
    if (n == 0 || text.back() == '\n') rows.push_back(0);
    return rows;
}

TEST_P(Relayout, TheTableAfterEveryChangeIsAWholeLayoutOfTheText) {
    // A fixed seed per setting, so that a failure repeats; the long run tries new ones.
    const Setting& s = GetParam();
    const unsigned seed = LongRun() ? std::random_device{}() : s.codePage * 1000u + static_cast<unsigned>(s.width) + s.wrap;
    rng.seed(seed);
    const int texts = LongRun() ? 400 : 12, edits = LongRun() ? 400 : 120;
    for (int t = 0; t < texts; ++t) {
        std::string start;
        for (unsigned n = rng() % 40; n > 0; --n) start += Piece();
        doc->SetText(start);
        ASSERT_EQ(DifferenceFromWholeLayout(*ctrl), "") << "seed " << seed << ", set " << Escaped(start);
        for (int e = 0; e < edits; ++e) {
            const std::string before = doc->GetText();
            RandomEdit();
            ASSERT_EQ(DifferenceFromWholeLayout(*ctrl), "")
                << "seed " << seed << ", from " << Escaped(before) << " to " << Escaped(doc->GetText());
            ASSERT_EQ(PiecewiseDifference(), "") << "seed " << seed << ", text " << Escaped(doc->GetText());
        }
    }
}

TEST_P(Relayout, AWholeLayoutAtRandomWidthsBreaksWhereAByteWiseWalkBreaks) {
    const Setting& s = GetParam();
    rng.seed(s.codePage * 7u + static_cast<unsigned>(s.width) + s.wrap);
    const DWORD options = ctrl->GetOptionsWord() | OPT_SCREENMETRICS;
    for (int t = 0; t < (LongRun() ? 4000 : 200); ++t) {
        RandomWidths();
        const std::string text = StretchyText();
        doc->SetText(text);
        CLineIndex table;
        ctrl->WrapAll(options, ctrl->BreakWidth(), &table);
        const std::vector<long> expected =
            ByteWiseRows(text, ctrl->m_WrapMetrics.m_aWidth, ctrl->m_nCharWidth, ctrl->m_nTabPixels, ctrl->BreakWidth());
        ASSERT_EQ(RowsOf(table), expected) << "text " << Escaped(text);
    }
}

// The rows of the text from a whole layout on one thread, handed out row by row.
std::vector<long> RowsOnOneThread(CZentrelCtrl& ctrl, DWORD options) {
    CRowWrapper wrapper(ctrl, ctrl.GetDocumentText(), options, ctrl.BreakWidth());
    CLineLengthList list;
    while (wrapper.WrapRows(1, &list) > 0) {
    }
    return RowsOf(list);
}

// Split at a line feed near the middle, with the helper reading windows of a few hundred bytes,
// so that its rows cross windows and step back over their edges; a lead byte in front of the
// line feed makes the two threads' rows meet behind it.
TEST_P(Relayout, ALayoutSplitOverTwoThreadsHasTheRowsOfOneThread) {
    const Setting& s = GetParam();
    rng.seed(s.codePage * 13u + static_cast<unsigned>(s.width) + s.wrap);
    const DWORD options = ctrl->GetOptionsWord() | OPT_SCREENMETRICS;
    for (int t = 0; t < (LongRun() ? 3000 : 150); ++t) {
        RandomWidths();
        // Every other text has a lead byte (in code page 932) in front of the line feed it splits at.
        std::string front = StretchyText(), back = StretchyText();
        if (t % 2) back.resize(front.size(), 'b');
        const std::string text = t % 2 ? front + "\xE9\n" + back : front + back;
        doc->SetText(text);
        const CLayoutSplit split{0, 2 * CFedTextReader::kLookBehind + 1 + static_cast<long>(rng() % 300)};
        CRowWrapper wrapper(*ctrl, ctrl->GetDocumentText(), options, ctrl->BreakWidth());
        CLineLengthList list;
        wrapper.WrapRest(&list, split);
        ASSERT_EQ(RowsOf(list), RowsOnOneThread(*ctrl, options)) << "window " << split.nWindowBytes << ", text " << Escaped(text);
        ASSERT_TRUE(wrapper.IsDone());
    }
}

// A text large enough for the load and the layout to use two threads on their own.
TEST_P(Relayout, ALargeLoadHasTheRowsOfOneThread) {
    rng.seed(GetParam().codePage + 5u);
    std::string text;
    while (text.size() < CLayoutSplit{}.nMinBytes + 4096) text += Piece();
    doc->SetText(text);
    ASSERT_EQ(doc->GetText(), text);
    ASSERT_EQ(RowsOf(ctrl->Lines()), RowsOnOneThread(*ctrl, ctrl->GetOptionsWord()));
}

INSTANTIATE_TEST_SUITE_P(Settings, Relayout,
                         ::testing::Values(Setting{false, 300, 1252}, Setting{true, 150, 1252},
                                           Setting{true, 260, 1252}, Setting{true, 420, 1252},
                                           Setting{false, 300, 932}, Setting{true, 170, 932},
                                           Setting{true, 330, 932}),
                         [](const ::testing::TestParamInfo<Setting>& info) {
                             std::ostringstream os;
                             os << info.param;
                             return os.str();
                         });

}  // namespace
