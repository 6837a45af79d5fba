// The gutter on the test backend's pixels: the background tile and where it starts; the bookmark
// flags and the bracket along the selection are in tests/edit/cases/gutter.cases. Lines are 19
// pixels high, a character is 9 wide; the gutter is 60 wide, of which 51 are painted.
#include "src/resources/gutterpictures.h"
#include "tests/view/viewfixture.h"

namespace {

constexpr LONG kLine = 19, kPainted = 51, kRows = 15;
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
    void Repaint() {
        ctrl->InvalidateControl();
        PaintNow();
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

TEST_F(Gutter, AChangeOfTheDesktopColoursRepaintsTheGutterWithNewPictures) {
    ctrl->SetOption(OPT_GUTTERBITMAPVISIBLE, TRUE);
    Repaint();
    SendMessage(ctrl->GetSafeHwnd(), WM_SYSCOLORCHANGE, 0, 0);
    bool tile = false;
    for (const DrawRecord& r : PaintNow()) tile |= r.kind == DrawKind::Blit && r.rc.left == 0 && r.rc.Width() == kPainted;
    EXPECT_TRUE(tile);
}

TEST(GutterPictures, TheFlagsDifferFromEachOther) {
    EXPECT_NE(*FindGutterPicture(IDB_FLAG_NAMED), *FindGutterPicture(IDB_FLAG_DIGIT0 + 3));
    EXPECT_NE(*FindGutterPicture(IDB_FLAG_DIGIT0 + 1), *FindGutterPicture(IDB_FLAG_DIGIT0 + 3));
}

}  // namespace
