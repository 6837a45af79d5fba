// The gutter on the test backend's pixels: the background tile and where it starts, and bookmark
// flags; the bracket along the selection is in tests/edit/cases/gutter.cases. Lines are 19
// pixels high, a character is 9 wide; the gutter is 60 wide, of which 51 are painted.
#include "src/resources/gutterpictures.h"
#include "tests/view/viewfixture.h"

namespace {

constexpr LONG kLine = 19, kPainted = 51, kRows = 15;
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

TEST_F(Gutter, AChangeOfTheDesktopColoursRepaintsTheGutterWithNewPictures) {
    ctrl->SetOption(OPT_GUTTERBITMAPVISIBLE, TRUE);
    Repaint();
    SendMessage(ctrl->GetSafeHwnd(), WM_SYSCOLORCHANGE, 0, 0);
    bool tile = false;
    for (const DrawRecord& r : PaintNow()) tile |= r.kind == DrawKind::Blit && r.rc.left == 0 && r.rc.Width() == kPainted;
    EXPECT_TRUE(tile);
}

}  // namespace
