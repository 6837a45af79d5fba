// The control in a real Qt window, painted and read back as the viewport shows it: syntax
// colours in the cells that the document's classes give, the selection, the right margin line,
// hidden tabs, the gutter with its line numbers, and cells where the mapping says they are.
// The checks look at cell backgrounds and at whether a cell has ink, and of which colour, never
// at the shapes of glyphs, so that they hold whatever the rasteriser does with the edges.
#include <gtest/gtest.h>

#include <QAbstractScrollArea>
#include <QCoreApplication>
#include <QImage>
#include <QPixmap>
#include <algorithm>
#include <cctype>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "htmldoc/htmldocument.h"
#include "platform/qt/qtplatform.h"
#include "platform/qt/qtwindow.h"
#include "platform/window/paint.h"
#include "src/resources/gutterpictures.h"
#include "src/view/zentrelctrl.h"
#include "tests/qt/qtviewfixture.h"
#include "tests/view/viewfixture.h"

namespace {

constexpr LONG kWidth = 480, kHeight = 240;
constexpr COLORREF kWhite = 0xFFFFFF, kBlack = 0x000000;
constexpr COLORREF kBlue = 0xFF0000, kNavy = 0x800000, kMagenta = 0xFF00FF, kGrey = 0xC0C0C0, kRed = 0x0000FF;
constexpr COLORREF kYellow = 0x00FFFF, kGreen = 0x008000, kPurple = 0x800080, kTeal = 0x808000, kMaroon = 0x000080;
constexpr COLORREF kHidden = 0x808080;  // the invisible characters' text colour
const COLORREF kFace = GetSysColor(COLOR_BTNFACE), kShadow = GetSysColor(COLOR_BTNSHADOW);

QRgb ToQRgb(COLORREF c) { return qRgb(c & 0xFF, (c >> 8) & 0xFF, (c >> 16) & 0xFF); }

// How text of each syntax class looks with the default styles.
struct Look {
    COLORREF text, back;
};
constexpr Look kClassLook[] = {
    {kBlack, kWhite},    // text
    {kWhite, kGrey},     // comment
    {kYellow, kRed},     // error
    {kBlue, kWhite},     // tag name
    {kBlue, kWhite},     // the rest of a tag
    {kMagenta, kWhite},  // attribute
    {kGreen, kWhite},    // string value
    {kNavy, kWhite},     // integer value
    {kPurple, kWhite},   // enumerated value
    {kTeal, kWhite},     // colour value
    {kMaroon, kWhite},   // URL value
};
// Punctuation inside a tag (its brackets, the equals sign) is drawn as an operator.
Look LookOf(long k, char c) {
    if (k == SC_TAG_ELEMENT && std::ispunct(static_cast<unsigned char>(c))) return {kNavy, kWhite};
    return kClassLook[k];
}

int Distance(QRgb a, QRgb b) {
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
}

template <class Visit>
void ForEachPixel(const QImage& image, const QRect& area, Visit visit) {
    const QRect r = area & image.rect();
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x) visit(image.pixel(x, y));
}

// The colour that most pixels of the area have: the cell's background, since glyphs cover
// far less than half of their cells.
QRgb Background(const QImage& image, const QRect& area) {
    std::map<QRgb, int> counts;
    ForEachPixel(image, area, [&](QRgb px) { ++counts[px]; });
    if (counts.empty()) return 0;
    return std::max_element(counts.begin(), counts.end(), [](auto& a, auto& b) { return a.second < b.second; })->first;
}

int CountOf(const QImage& image, const QRect& area, QRgb color) {
    int n = 0;
    ForEachPixel(image, area, [&](QRgb px) { n += px == color; });
    return n;
}

// The pixel of the area that stands out most from `back`: the core of the ink, if any.
QRgb StrongestInk(const QImage& image, const QRect& area, QRgb back) {
    QRgb best = back;
    ForEachPixel(image, area, [&](QRgb px) {
        if (Distance(px, back) > Distance(best, back)) best = px;
    });
    return best;
}

bool HasInk(const QImage& image, const QRect& area, QRgb back) { return Distance(StrongestInk(image, area, back), back) > 64; }

// Whether the area's ink is of the text colour: its strongest pixel lies on the way from the
// background to the text colour, and most of that way along. A glyph's edges blend the two
// colours, so only the direction of the blend and its depth say which colour the ink is.
::testing::AssertionResult InkOfColour(const QImage& image, const QRect& area, COLORREF back, COLORREF text) {
    const QRgb b = ToQRgb(back), t = ToQRgb(text), p = StrongestInk(image, area, b);
    const double dr = qRed(t) - qRed(b), dg = qGreen(t) - qGreen(b), db = qBlue(t) - qBlue(b);
    const double along = ((qRed(p) - qRed(b)) * dr + (qGreen(p) - qGreen(b)) * dg + (qBlue(p) - qBlue(b)) * db) /
                         (dr * dr + dg * dg + db * db);
    const QRgb expected = qRgb(qRed(b) + int(along * dr), qGreen(b) + int(along * dg), qBlue(b) + int(along * db));
    if (along >= 0.5 && along <= 1.1 && Distance(p, expected) <= 24) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "ink " << std::hex << (p & 0xFFFFFF) << " is not of colour " << (ToQRgb(text) & 0xFFFFFF)
                                         << " on " << (b & 0xFFFFFF) << std::dec << " (depth " << along << ")";
}

class ViewPixels : public QtViewFixture {
protected:
    ~ViewPixels() override { CloseView(); }

    // The control in a shown top-level window, over a reference document with `text` and its
    // own classification, or over a scripted one whose classes the test sets.
    void OpenPage(const std::string& text) {
        doc = CreateHtmlDocument();
        doc->SetText(text);
        Open(doc.Get());
    }
    CScriptedSyntax& OpenScripted(const std::string& text) {
        doc = CreateHtmlDocument();
        doc->SetText(text);
        syntax = std::make_unique<CScriptedSyntax>(doc.Get());
        Open(syntax.get());
        return *syntax;
    }
    void Open(IDispatch* document) { OpenView(document, kWidth, kHeight); }

    // The window's pixels as its viewport shows them, once what is invalid is painted.
    QImage Shot() {
        UpdateWindow(hwnd);
        auto* area = qobject_cast<QAbstractScrollArea*>(QtWidgetFromHwnd(hwnd));
        return area->viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    }
    // The same after a repaint of everything.
    QImage Repaint() {
        InvalidateRect(hwnd, nullptr, FALSE);
        return Shot();
    }

    // Where the mapping puts a position, in client pixels.
    QPoint PointOf(long pos) {
        long x = 0, y = 0;
        EXPECT_TRUE(ctrl->FindPointFromPosition(pos, &x, &y));
        return QPoint(static_cast<int>(x), static_cast<int>(y));
    }
    // The cell of the character at `pos`: from its point to the next character's, a line high.
    QRect Cell(long pos) {
        const QPoint from = PointOf(pos), to = PointOf(pos + 1);
        return QRect(from.x(), from.y(), to.x() - from.x(), static_cast<int>(ctrl->m_nLineHeight));
    }
    // One pixel column of a row, a line high.
    QRect Column(int x, long row) const {
        return QRect(x, static_cast<int>((row - ctrl->m_nTopLine) * ctrl->m_nLineHeight), 1, static_cast<int>(ctrl->m_nLineHeight));
    }
    int GutterRight() const { return static_cast<int>(ctrl->GetIndentSize()); }

    // Checks the background and the ink of every character of the document against `look`.
    template <class LookAt>
    void ExpectCellsLook(const QImage& image, const std::string& text, LookAt look) {
        for (long pos = 0; pos < static_cast<long>(text.size()); ++pos) {
            const char c = text[static_cast<size_t>(pos)];
            if (c == '\n' || c == '\r') continue;
            const Look want = look(pos, c);
            const QRect cell = Cell(pos);
            SCOPED_TRACE(testing::Message() << "character " << pos << " '" << c << "'");
            EXPECT_EQ(Background(image, cell), ToQRgb(want.back));
            if (std::isgraph(static_cast<unsigned char>(c))) {
                EXPECT_TRUE(InkOfColour(image, cell, want.back, want.text));
            }
        }
    }

    ComPtr<CHtmlDocument> doc;
    std::unique_ptr<CScriptedSyntax> syntax;
};

TEST_F(ViewPixels, ARealPageIsColouredAsItsClassesSay) {
    const std::string page =
        "<p align=\"center\">Caf&eacute; &amp; more</p>\n"
        "<!-- a note -->\n"
        "<blinky>odd</blinky> a < b\n"
        "<td width=120 bgcolor=red>\n"
        "<a href=\"x.html\" title=\"Go\">\n";
    OpenPage(page);
    const QImage image = Repaint();
    std::set<long> seen;
    ExpectCellsLook(image, page, [&](long pos, char c) {
        const long k = doc->GetClassAt(pos);
        seen.insert(k);
        return LookOf(k, c);
    });
    // The page has every class, so that each colour was checked somewhere.
    EXPECT_EQ(seen.size(), std::size(kClassLook));
}

TEST_F(ViewPixels, ExactClassesFillExactCellsWhoseEdgesTheMappingFinds) {
    // Tag, text, one error byte, attribute, comment, text; a second line for scrolling.
    const std::string line = "Hello World and more to come\n";
    CScriptedSyntax& script = OpenScripted(line + line + line);
    script.SetClass(0, 5, SC_TAG);
    script.SetClass(6, 1, SC_ERROR);
    script.SetClass(7, 4, SC_ATTRIBUTE);
    script.SetClass(11, 4, SC_COMMENT);
    script.SetClass(29 + 11, 4, SC_COMMENT);
    QImage image = Repaint();
    ExpectCellsLook(image, line, [&](long pos, char c) { return LookOf(script.GetClassAt(pos), c); });

    // Where the background changes, the mapping's point is the first column of the new colour.
    auto expectEdges = [&](const QImage& shot, long pos, COLORREF left, COLORREF right) {
        const long row = ctrl->Lines().FindLine(pos);
        const int x = PointOf(pos).x();
        SCOPED_TRACE(testing::Message() << "edge at " << pos);
        EXPECT_EQ(CountOf(shot, Column(x - 1, row), ToQRgb(right)), 0);
        EXPECT_GT(CountOf(shot, Column(x, row), ToQRgb(right)), ctrl->m_nLineHeight / 2);
        EXPECT_EQ(CountOf(shot, Column(x, row), ToQRgb(left)), 0);
        EXPECT_GT(CountOf(shot, Column(x - 1, row), ToQRgb(left)), ctrl->m_nLineHeight / 2);
    };
    expectEdges(image, 6, kWhite, kRed);
    expectEdges(image, 7, kRed, kWhite);
    expectEdges(image, 11, kWhite, kGrey);
    expectEdges(image, 15, kGrey, kWhite);

    // Scrolled a line down, the window moves what it has and paints the rest: the picture of a
    // full repaint, with the cells where the mapping now puts them.
    ctrl->ScrollTo(1, 0);
    image = Shot();
    EXPECT_EQ(image, Repaint());
    expectEdges(image, 29 + 11, kWhite, kGrey);
    expectEdges(image, 29 + 15, kGrey, kWhite);
}

// A line's opaque text cell scrolled sideways must not cover the gutter's line numbers: the
// clip that keeps it out holds also when the context had drawn without a clip just before.
TEST_F(ViewPixels, TextScrolledSidewaysStaysOutOfTheGutter) {
    OpenPage("Hello World and more to come\nHello World and more to come\nHello\n");
    ctrl->SetOption(OPT_GUTTERBITMAPVISIBLE, FALSE);  // a flat column, where white can only be text
    ctrl->ScrollTo(0, 23);
    const QImage moved = Shot();
    const QImage image = Repaint();
    EXPECT_EQ(moved, image);
    const int h = static_cast<int>(ctrl->m_nLineHeight);
    const int painted = GutterRight() - static_cast<int>(ctrl->m_nCharWidth);
    for (int row = 0; row < 3; ++row) {
        const QRect face(0, row * h, painted - 1, h);
        EXPECT_EQ(CountOf(image, face, ToQRgb(kWhite)), 0) << "text over the gutter on row " << row;
        EXPECT_TRUE(InkOfColour(image, face, kFace, kBlack)) << "no number on row " << row;
    }
}

TEST_F(ViewPixels, SelectionIsWhiteOnBlackOverExactlyTheSelectedCells) {
    // Selected from "line" in the first line to the space after "second": the selected CR LF
    // shows as one blank cell behind the first line.
    const std::string text = "first line\r\nsecond line\nthird\n";
    OpenPage(text);
    ctrl->SetOption(OPT_HIDESELECTION, FALSE);
    const long from = 6, to = 18;
    ctrl->SetSelection(from, to);
    const QImage image = Repaint();
    ExpectCellsLook(image, text, [&](long pos, char c) {
        return pos >= from && pos < to ? Look{kWhite, kBlack} : Look{kBlack, kWhite};
    });

    // The black band on the top pixel row of each line (above the glyphs) runs from the
    // selection's start to its end, and no further.
    auto band = [&](const QImage& shot, long row) {
        const int y = static_cast<int>(row * ctrl->m_nLineHeight);
        int left = -1, right = -1;
        for (int x = GutterRight(); x < shot.width(); ++x)
            if (shot.pixel(x, y) == ToQRgb(kBlack)) {
                if (left < 0) left = x;
                right = x + 1;
            }
        return std::make_pair(left, right);
    };
    const int crCell = static_cast<int>(ctrl->GetFontMetrics(0)->m_aWidth[' ']);
    EXPECT_EQ(band(image, 0), std::make_pair(PointOf(from).x(), PointOf(10).x() + crCell));
    EXPECT_EQ(band(image, 1), std::make_pair(PointOf(12).x(), PointOf(to).x()));
    EXPECT_EQ(band(image, 2), std::make_pair(-1, -1));

    ctrl->SetSelection(to, to);  // an empty selection shows nothing
    const QImage cleared = Repaint();
    for (long row = 0; row < 3; ++row) EXPECT_EQ(band(cleared, row), std::make_pair(-1, -1));
}

TEST_F(ViewPixels, RightMarginLineStandsAtItsColumnInTheInvisibleCharactersColour) {
    OpenPage(std::string(150, 'x') + "\nshort\n");
    ctrl->SetRightMargin(12);
    // The line is one column of the viewport's full height, over the text and below it.
    auto expectLine = [&](const QImage& shot, COLORREF color) {
        const int x = GutterRight() + static_cast<int>(12 * ctrl->m_nCharWidth - ctrl->m_nLeftPixel);
        const QRect column(x, 0, 1, shot.height());
        SCOPED_TRACE(testing::Message() << "margin at " << x);
        EXPECT_EQ(CountOf(shot, column, ToQRgb(color)), shot.height());
        EXPECT_LT(CountOf(shot, column.translated(-1, 0), ToQRgb(color)), shot.height() / 4);
        EXPECT_LT(CountOf(shot, column.translated(1, 0), ToQRgb(color)), shot.height() / 4);
    };
    expectLine(Repaint(), kHidden);
    ctrl->ScrollTo(0, 5 * ctrl->m_nCharWidth);  // it moves with the text
    ASSERT_GT(ctrl->m_nLeftPixel, 0);
    expectLine(Repaint(), kHidden);
    ctrl->SetFormatTextColor(STYLE_INVISIBLE, kRed);
    expectLine(Repaint(), kRed);

    ctrl->SetOption(OPT_RIGHTMARGINVISIBLE, FALSE);
    const QImage hidden = Repaint();
    for (int x = GutterRight(); x < hidden.width(); ++x)
        ASSERT_LT(CountOf(hidden, QRect(x, 0, 1, hidden.height()), ToQRgb(kRed)), hidden.height()) << "a line at " << x;
}

// Rows paint the background right of their text, on an empty line and below the last line,
// over whatever the window showed there before: nothing of longer lines that stood there stays.
TEST_F(ViewPixels, ARepaintLeavesNothingOfTheLongerLinesThatStoodThere) {
    const std::string wide(45, 'W');
    OpenPage(wide + "\n" + wide + "\n" + wide + "\n" + wide + "\n" + wide + "\n");
    ctrl->SetOption(OPT_RIGHTMARGINVISIBLE, FALSE);
    Repaint();
    doc->SetText("ab\n\n<!-- c -->\n");
    const QImage image = Repaint();
    const int h = static_cast<int>(ctrl->m_nLineHeight);
    const QRgb white = ToQRgb(kWhite);
    auto expectBlankFrom = [&](int x, int row) {
        const QRect rest(x, row * h, image.width() - x, h);
        EXPECT_EQ(CountOf(image, rest, white), rest.width() * rest.height()) << "row " << row << " from " << x;
    };
    EXPECT_TRUE(InkOfColour(image, Cell(1), kWhite, kBlack));
    expectBlankFrom(PointOf(2).x(), 0);
    expectBlankFrom(GutterRight(), 1);
    EXPECT_EQ(Background(image, Cell(5)), ToQRgb(kGrey));  // the comment keeps its cells
    expectBlankFrom(PointOf(14).x(), 2);
    for (int row = 3; row < 5; ++row) expectBlankFrom(GutterRight(), row);
}

TEST_F(ViewPixels, AHiddenTabShowsItsArrowOnlyUnderDisplayAll) {
    OpenPage("a\tb\r\nc\n");
    const QRect tab = Cell(1);
    ASSERT_GT(tab.width(), 2 * ctrl->m_nCharWidth);
    // Behind the CR: as wide as two characters, where its arrow shows under DisplayAll.
    const QRect behind(PointOf(3).x(), 0, static_cast<int>(2 * ctrl->m_nCharWidth), static_cast<int>(ctrl->m_nLineHeight));
    const QImage plain = Repaint();
    EXPECT_EQ(CountOf(plain, tab, ToQRgb(kWhite)), tab.width() * tab.height());
    EXPECT_EQ(CountOf(plain, behind, ToQRgb(kWhite)), behind.width() * behind.height());

    ctrl->SetOption(OPT_DISPLAYALL, TRUE);
    const QImage shown = Repaint();
    EXPECT_EQ(Background(shown, tab), ToQRgb(kWhite));
    EXPECT_TRUE(InkOfColour(shown, tab, kWhite, kHidden));
    EXPECT_TRUE(InkOfColour(shown, behind, kWhite, kHidden));
    // The characters around keep their cells.
    EXPECT_TRUE(InkOfColour(shown, Cell(0), kWhite, kBlack));
    EXPECT_TRUE(InkOfColour(shown, Cell(2), kWhite, kBlack));
}

TEST_F(ViewPixels, GutterIsButtonFaceWithANumberOnTheFirstRowOfEachTextLine) {
    std::string words;
    for (int i = 0; i < 40; ++i) words += "word" + std::to_string(i) + " ";
    OpenPage("one\n" + words + "\nthree\n");
    ctrl->SetOption(OPT_GUTTERBITMAPVISIBLE, FALSE);  // a plain column, without the background tile
    ctrl->SetOption(OPT_WORDWRAP, TRUE);
    const long rows = ctrl->GetLineCount();
    ASSERT_GE(rows, 5);  // the long line wraps
    const QImage image = Repaint();

    // The painted column ends with the left margin line; the last character width of the
    // gutter is the text's blank strip. Numbers stand right-aligned a character and a half
    // from the gutter's right edge, on the first row of each text line (the empty last line
    // included), never on wrapped rows or below the text.
    const int h = static_cast<int>(ctrl->m_nLineHeight), charWidth = static_cast<int>(ctrl->m_nCharWidth);
    const int painted = GutterRight() - charWidth;
    const int numberRight = GutterRight() - charWidth / 2 - charWidth;
    for (int row = 0; (row + 1) * h <= image.height(); ++row) {
        SCOPED_TRACE(testing::Message() << "row " << row);
        const QRect face(0, row * h, painted - 1, h);
        EXPECT_EQ(Background(image, face), ToQRgb(kFace));
        EXPECT_EQ(CountOf(image, QRect(painted - 1, row * h, 1, h), ToQRgb(kShadow)), h);
        EXPECT_EQ(CountOf(image, QRect(painted, row * h, charWidth, h), ToQRgb(kWhite)), charWidth * h);
        const bool numbered = row <= 1 || row == rows - 2 || row == rows - 1;
        EXPECT_EQ(HasInk(image, face, ToQRgb(kFace)), numbered);
        if (!numbered) continue;
        EXPECT_TRUE(InkOfColour(image, face, kFace, kBlack));
        int right = 0;
        for (int x = 0; x < face.width(); ++x)
            if (HasInk(image, QRect(x, row * h, 1, h), ToQRgb(kFace))) right = x + 1;
        EXPECT_LE(right, numberRight);
        EXPECT_GT(right, numberRight - charWidth);
    }
}

// The gutter with its pictures: the tile's two shades, a number on every row, a flag on the
// bookmarked line, the plus box on the folded one, the bracket along a selection of three
// rows, and nothing of it in the blank strip in front of the text.
TEST_F(ViewPixels, GutterShowsTheTileNumbersAFlagAPlusBoxAndTheBracket) {
    std::string text;
    for (int i = 0; i < 14; ++i) text += "line " + std::to_string(i) + "\n";
    OpenPage(text);
    ctrl->SetOption(OPT_COLLAPSEBLOCKENABLE, TRUE);
    ctrl->SetOption(OPT_LEFTMARGINVISIBLE, FALSE);
    const auto rowStart = [&](long row) { return ctrl->Lines().GetLineStart(row); };
    ctrl->SetSelection(rowStart(1), rowStart(1));
    ctrl->ToggleNumberedBookmark(2);
    ASSERT_TRUE(ctrl->CollapseRange(rowStart(3), rowStart(5)));  // text lines 3 and 4 on row 3
    ctrl->SetSelection(rowStart(5) + 1, rowStart(7) + 1);
    const QImage image = Shot();

    const int h = static_cast<int>(ctrl->m_nLineHeight), charWidth = static_cast<int>(ctrl->m_nCharWidth);
    const int painted = GutterRight() - charWidth, rows = image.height() / h;
    const QRgb face = ToQRgb(kFace), lighter = ToQRgb(0xFFFFFF);  // 0xF0F0F0 with 15 more in each channel
    const QRect column(0, 0, painted, rows * h);
    EXPECT_GT(CountOf(image, column, face), CountOf(image, column, lighter));  // blobs on a flat ground
    EXPECT_GT(CountOf(image, column, lighter), 100);
    EXPECT_EQ(CountOf(image, QRect(painted, 0, charWidth, rows * h), ToQRgb(kWhite)), charWidth * rows * h);

    const auto pictureAt = [&](UINT id, int x, int y) {
        const PixelPicture& p = *FindGutterPicture(id);
        for (int py = 0; py < p.cy; ++py)
            for (int px = 0; px < p.cx; ++px)
                if (image.pixel(x + px, y + py) != ToQRgb(p.pixels[static_cast<size_t>(py * p.cx + px)])) return false;
        return true;
    };
    const auto boxAt = [&](UINT id, long row) {
        const RECT box = ctrl->GetFoldBoxRect(row);
        return pictureAt(id, box.left, box.top);
    };
    const int numberRight = GutterRight() - charWidth / 2 - charWidth;
    for (int row = 0; row < rows && row < 13; ++row) {
        SCOPED_TRACE(testing::Message() << "row " << row);
        EXPECT_TRUE(InkOfColour(image, QRect(numberRight - charWidth, row * h, charWidth, h), kFace, kBlack));
        EXPECT_EQ(pictureAt(IDB_FLAG_DIGIT0 + 2, charWidth / 4, row * h + (h - kFlagHeight) / 2), row == 1);
        EXPECT_EQ(boxAt(IDB_MARK, row), row == 3);
        EXPECT_EQ(boxAt(IDB_FOLD, row), row == 5 || row == 7);
        const RECT box = ctrl->GetFoldBoxRect(row);
        const int midX = box.left + (box.right - box.left) / 2;
        EXPECT_EQ(CountOf(image, QRect(midX, row * h, 1, h), qRgb(0, 0, 0)) == h, row == 6);
        if (row != 3 && (row < 5 || row > 7)) {
            EXPECT_EQ(CountOf(image, QRect(midX, row * h, 1, h), qRgb(0, 0, 0)), 0);
        }
    }
}

}  // namespace
