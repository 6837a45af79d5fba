// Text over an opaque cell is copied from ready-made glyph cells; the copy must give the pixels
// that drawing the glyphs gives.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <cstdlib>
#include <memory>
#include <string>

#include "platform/qt/qtdc.h"
#include "platform/qt/qtplatform.h"
#include "tests/platform/fontrequest.h"

namespace {

class GlyphCells : public ::testing::Test {
protected:
    GlyphCells() : m_pPrevious(SetPlatformBackend(&platform)) {}
    ~GlyphCells() override {
        SetPlatformBackend(m_pPrevious);
        QCoreApplication::processEvents();
    }
    // Draws `text` as the painter draws a run: an opaque cell in `back`, the text in `fore`. With
    // `clipped` the run is clipped to its cell, which lets the cells be copied; without, the
    // glyphs are drawn one by one.
    QImage Draw(const LOGFONTA& lf, const std::string& text, COLORREF fore, COLORREF back, bool clipped) {
        std::unique_ptr<CDC> screen = GetGdiBackend()->CreateScreenDC();
        std::unique_ptr<CDC> mem = screen->CreateCompatibleDC();
        CBitmap bitmap;
        EXPECT_TRUE(mem->CreateCompatibleBitmap(&bitmap, 400, 40));
        mem->SelectObject(&bitmap);
        mem->FillSolidRect({0, 0, 400, 40}, 0x00FF00);
        CFont font;
        EXPECT_TRUE(font.CreateFontIndirect(&lf));
        mem->SelectObject(&font);
        mem->SetTextAlign(TA_BASELINE);
        mem->SetTextColor(fore);
        mem->SetBkColor(back);
        const SIZE extent = mem->GetTextExtent(text.data(), static_cast<int>(text.size()));
        const RECT cell{10, 5, 10 + extent.cx, 5 + 25};
        m_rcCell = cell;
        mem->ExtTextOut(10, 25, ETO_OPAQUE | (clipped ? ETO_CLIPPED : 0), &cell, text.data(), static_cast<UINT>(text.size()));
        mem->SelectObject(static_cast<CFont*>(nullptr));
        QImage image = static_cast<CQtBitmap*>(bitmap.Impl())->Image().copy();
        mem->SelectObject(static_cast<CBitmap*>(nullptr));
        return image;
    }
    // The largest difference of any colour channel between two images, inside the run's cell
    // (unclipped text may throw ink past it).
    int MaxDifference(const QImage& a, const QImage& b) const {
        int worst = 0;
        for (int y = m_rcCell.top; y < m_rcCell.bottom; ++y)
            for (int x = m_rcCell.left; x < m_rcCell.right; ++x) {
                const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
                worst = std::max({worst, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                                  std::abs(qBlue(p) - qBlue(q))});
            }
        return worst;
    }

    CQtPlatform platform;
    IPlatformBackend* m_pPrevious;
    RECT m_rcCell{};
};

TEST_F(GlyphCells, CopiedCellsGiveThePixelsOfDrawnGlyphs) {
    // Letters whose ink reaches into the next cell (r, t, f) among plain ones, in two weights.
    const std::string text = "afterwards: the first shift rt";
    for (LONG weight : {FW_NORMAL, FW_BOLD}) {
        const LOGFONTA lf = FontRequest("Times New Roman", 18, weight);
        const QImage copied = Draw(lf, text, 0x800000, 0xFFFFFF, true);
        const QImage drawn = Draw(lf, text, 0x800000, 0xFFFFFF, false);
        // Where two glyphs' ink meets, the order of blending may differ by a step or two.
        EXPECT_LE(MaxDifference(copied, drawn), 8) << weight;
        EXPECT_NE(copied, Draw(lf, "afterwardz: the first shift rt", 0x800000, 0xFFFFFF, true));
    }
}

TEST_F(GlyphCells, EachColourPairHasItsOwnCells) {
    const LOGFONTA lf = FontRequest("Times New Roman", 18);
    const QImage dark = Draw(lf, "same text", 0x000000, 0xFFFFFF, true);
    const QImage light = Draw(lf, "same text", 0xFFFFFF, 0x000000, true);
    EXPECT_EQ(dark.pixel(12, 10), qRgb(255, 255, 255));
    EXPECT_EQ(light.pixel(12, 10), qRgb(0, 0, 0));
    EXPECT_LE(MaxDifference(light, Draw(lf, "same text", 0xFFFFFF, 0x000000, false)), 8);
}

}  // namespace
