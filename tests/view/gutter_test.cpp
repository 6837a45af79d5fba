// The gutter on the test backend's pixels: the background tile and where it starts, bookmark
// flags, and the bracket along the selection, also after the selection changed and only what
// it invalidated was painted. Lines are 19 pixels high, a character is 9 wide; the gutter is 60
// wide, of which 51 are painted.
#include "src/resources/gutterpictures.h"
#include "tests/view/viewfixture.h"

namespace {

constexpr LONG kLine = 19, kPainted = 51, kRows = 15;
constexpr LONG kBoxLeft = 14, kBoxTop = 5, kBracketX = 18;  // the box's place in a row, its middle column
constexpr LONG kFlagLeft = 2, kFlagTop = 3;
const COLORREF kFace = GetSysColor(COLOR_BTNFACE);

COLORREF PixelOf(const PixelPicture& p, int x, int y) { return p.pixels[static_cast<size_t>(y) * p.cx + x]; }

class Gutter : public ViewFixture {
protected:
    // Forty numbered lines in a window of fifteen rows; a flat gutter unless a test wants the tile.
    void SetUp() override {
        std::string text;
        for (int i = 0; i < 40; ++i) text += "line " + std::to_string(i) + "\n";
        Open(text, 400, kRows * kLine);
        ctrl->SetOption(OPT_LEFTMARGINVISIBLE, FALSE);
        ctrl->SetOption(OPT_GUTTERBITMAPVISIBLE, FALSE);
    }
    long LineStart(long line) { return ctrl->Lines().GetLineStart(line); }
    void Repaint() {
        ctrl->InvalidateControl();
        PaintNow();
    }
    // Whether the picture stands with its top left corner at (x, y) of the window.
    ::testing::AssertionResult PictureAt(const PixelPicture& p, LONG x, LONG y, int width = -1) {
        for (int py = 0; py < p.cy; ++py)
            for (int px = 0; px < (width < 0 ? p.cx : width); ++px)
                if (Window().Pixel(x + px, y + py) != PixelOf(p, px, py))
                    return ::testing::AssertionFailure() << "differs at " << x + px << "," << y + py;
        return ::testing::AssertionSuccess();
    }
    bool BoxOnRow(LONG row, UINT id) { return PictureAt(*FindGutterPicture(id), kBoxLeft, row * kLine + kBoxTop); }
    // The rows whose bracket column is black from the row's top down to `from` and below.
    int BlackInColumn(LONG row, LONG from, LONG to) {
        int n = 0;
        for (LONG y = row * kLine + from; y < row * kLine + to; ++y) n += Window().Pixel(kBracketX, y) == 0x000000;
        return n;
    }
    std::vector<COLORREF> GutterPixels() {
        std::vector<COLORREF> out;
        for (LONG y = 0; y < kRows * kLine; ++y)
            for (LONG x = 0; x < kPainted; ++x) out.push_back(Window().Pixel(x, y));
        return out;
    }
};

TEST_F(Gutter, TheTileIsFixedToTheDocumentInTwoShadesOfTheButtonColour) {
    ctrl->SetOption(OPT_GUTTERBITMAPVISIBLE, TRUE);
    ctrl->SetGutterSize(150);  // wider than the tile: the rest of the column is flat
    ctrl->ScrollTo(3, 0);
    Repaint();
    const PixelPicture& tile = *FindGutterPicture(IDB_GUTTER);
    const COLORREF lighter = 0xFFFFFF;  // each channel of 0xF0F0F0 plus 15
    int ground = 0, pattern = 0;
    for (LONG y = 0; y < kRows * kLine; ++y) {
        const int ty = (y + 3 * kLine) % kGutterTileHeight;
        for (LONG x = 0; x < kGutterTileWidth; ++x) {
            const bool blob = PixelOf(tile, x, ty) == kTilePattern;
            ASSERT_EQ(Window().Pixel(x, y), blob ? lighter : kFace) << x << "," << y;
            (blob ? pattern : ground)++;
        }
        ASSERT_EQ(Window().Pixel(kGutterTileWidth, y), kFace);
        ASSERT_EQ(Window().Pixel(150 - 9 - 1, y), kFace);
        ASSERT_EQ(Window().Pixel(150 - 9, y), 0xFFFFFFu);  // the blank strip in front of the text
    }
    EXPECT_GT(pattern, 200);
    EXPECT_GT(ground, pattern);
}

TEST_F(Gutter, FlagsMarkBookmarkedLinesAndANarrowGutterOrTheOptionHidesThem) {
    ctrl->SetSelection(LineStart(2) + 2, LineStart(2) + 2);
    ctrl->ToggleNumberedBookmark(3);
    ctrl->SetSelection(LineStart(4), LineStart(4));
    ctrl->ToggleBookmark("here");
    Repaint();
    EXPECT_TRUE(PictureAt(*FindGutterPicture(IDB_FLAG_DIGIT0 + 3), kFlagLeft, 2 * kLine + kFlagTop));
    EXPECT_TRUE(PictureAt(*FindGutterPicture(IDB_FLAG_NAMED), kFlagLeft, 4 * kLine + kFlagTop));
    EXPECT_NE(*FindGutterPicture(IDB_FLAG_NAMED), *FindGutterPicture(IDB_FLAG_DIGIT0 + 3));
    EXPECT_NE(*FindGutterPicture(IDB_FLAG_DIGIT0 + 1), *FindGutterPicture(IDB_FLAG_DIGIT0 + 3));
    for (LONG row : {0, 1, 3, 5})
        for (LONG y = 0; y < kLine; ++y) ASSERT_EQ(Window().Pixel(kFlagLeft + 5, row * kLine + y), kFace);

    ctrl->SetOption(OPT_BOOKMARKVISIBLE, FALSE);
    Repaint();
    EXPECT_EQ(ctrl->GetBookmarkCount(), 2);
    EXPECT_EQ(Window().Pixel(kFlagLeft + 5, 2 * kLine + kFlagTop + 3), kFace);

    // A gutter of 20 leaves 8 pixels of the flag; one of 10 none.
    ctrl->SetOption(OPT_BOOKMARKVISIBLE, TRUE);
    ctrl->SetGutterSize(20);
    Repaint();
    EXPECT_TRUE(PictureAt(*FindGutterPicture(IDB_FLAG_NAMED), kFlagLeft, 4 * kLine + kFlagTop, 8));
    ctrl->SetGutterSize(10);
    Repaint();
    for (const DrawRecord& r : Window().Drawn()) EXPECT_FALSE(r.kind == DrawKind::Blit && r.rc.left == kFlagLeft);
}

TEST_F(Gutter, TheBracketRunsAlongASelectionOfSeveralLines) {
    ctrl->SetOption(OPT_COLLAPSEBLOCKENABLE, TRUE);
    ctrl->SetSelection(LineStart(1) + 2, LineStart(4) + 2);
    Repaint();
    // Boxes on the first and the last line, the line from one box to the other.
    EXPECT_TRUE(BoxOnRow(1, IDB_FOLD));
    EXPECT_TRUE(BoxOnRow(4, IDB_FOLD));
    EXPECT_EQ(BlackInColumn(1, kBoxTop + 9, kLine), kLine - kBoxTop - 9);
    EXPECT_EQ(BlackInColumn(2, 0, kLine), kLine);
    EXPECT_EQ(BlackInColumn(3, 0, kLine), kLine);
    EXPECT_EQ(BlackInColumn(4, 0, kBoxTop), kBoxTop);
    EXPECT_EQ(BlackInColumn(0, 0, kLine), 0);
    EXPECT_EQ(BlackInColumn(5, 0, kLine), 0);
    EXPECT_EQ(Window().Pixel(kBracketX - 1, 2 * kLine + 3), kFace);

    // A selection that ends at a line's end has its lower box on that line.
    ctrl->SetSelection(LineStart(1) + 2, LineStart(3));
    Repaint();
    EXPECT_TRUE(BoxOnRow(2, IDB_FOLD));
    EXPECT_EQ(BlackInColumn(3, 0, kLine), 0);

    // No bracket within one line, with the selection hidden, or without blocks.
    const auto noBracket = [&] {
        Repaint();
        int black = 0;
        for (LONG row = 0; row < kRows; ++row) black += BlackInColumn(row, 0, kLine);
        return black == 0;
    };
    ctrl->SetSelection(LineStart(1), LineStart(1) + 4);
    EXPECT_TRUE(noBracket());
    ctrl->SetSelection(LineStart(1), LineStart(3) + 1);
    ctrl->SetOption(OPT_HIDESELECTION, TRUE);
    EXPECT_TRUE(noBracket());
    ctrl->SetOption(OPT_HIDESELECTION, FALSE);
    ctrl->SetOption(OPT_COLLAPSEBLOCKENABLE, FALSE);
    EXPECT_TRUE(noBracket());
}

TEST_F(Gutter, ASelectionChangeRepaintsTheBracketWhereverItChanged) {
    ctrl->SetOption(OPT_COLLAPSEBLOCKENABLE, TRUE);
    ctrl->SetSelection(LineStart(2) + 1, LineStart(5) + 1);
    Repaint();
    const struct {
        long from, to;
    } steps[] = {{LineStart(1) + 2, LineStart(3)},         {LineStart(1) + 2, LineStart(5) + 1},
                 {LineStart(1) + 2, LineStart(3)},         {LineStart(2) + 1, LineStart(8) + 1}, {LineStart(4) + 1, LineStart(8) + 1}, {LineStart(6), LineStart(7)},
                 {LineStart(6) + 1, LineStart(6) + 2}, {LineStart(1), LineStart(9) + 3}, {LineStart(3), LineStart(3)}};
    for (const auto& step : steps) {
        SCOPED_TRACE(testing::Message() << "selection " << step.from << " to " << step.to);
        ctrl->SetSelection(step.from, step.to);
        PaintNow();
        const std::vector<COLORREF> painted = GutterPixels();
        Repaint();
        EXPECT_EQ(painted, GutterPixels());
    }
}

TEST_F(Gutter, AChangeOfTheDesktopColoursRepaintsTheGutterWithNewPictures) {
    ctrl->SetOption(OPT_GUTTERBITMAPVISIBLE, TRUE);
    Repaint();
    SendMessage(ctrl->GetSafeHwnd(), WM_SYSCOLORCHANGE, 0, 0);
    bool tile = false;
    for (const DrawRecord& r : PaintNow()) tile |= r.kind == DrawKind::Blit && r.rc.left == 0 && r.rc.Width() == kPainted;
    EXPECT_TRUE(tile);
}

}  // namespace
