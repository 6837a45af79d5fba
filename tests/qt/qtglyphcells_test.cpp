// Text over an opaque cell is copied from ready-made glyph cells, and text over whatever lies
// beneath is blended from glyph inks; both must give the pixels that drawing the glyphs gives.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QGlyphRun>
#include <QPainter>
#include <cstdlib>
#include <memory>
#include <string>

#include "platform/qt/qtdc.h"
#include "platform/qt/qtplatform.h"
#include "tests/platform/fontrequest.h"

namespace {

// A memory context over a copy of `ground`, with a font selected and text aligned on its baseline.
class CCanvas {
public:
    CCanvas(const LOGFONTA& lf, const QImage& ground)
        : m_screen(GetGdiBackend()->CreateScreenDC()), m_mem(m_screen->CreateCompatibleDC()) {
        EXPECT_TRUE(m_mem->CreateCompatibleBitmap(&m_bitmap, ground.width(), ground.height()));
        static_cast<CQtBitmap*>(m_bitmap.Impl())->Image() = ground.copy();
        m_mem->SelectObject(&m_bitmap);
        EXPECT_TRUE(m_font.CreateFontIndirect(&lf));
        m_mem->SelectObject(&m_font);
        m_mem->SetTextAlign(TA_BASELINE);
    }
    CDC& Dc() { return *m_mem; }
    // What was drawn; the context lets go of the font and the bitmap.
    QImage Pixels() {
        m_mem->SelectObject(static_cast<CFont*>(nullptr));
        QImage image = static_cast<CQtBitmap*>(m_bitmap.Impl())->Image().copy();
        m_mem->SelectObject(static_cast<CBitmap*>(nullptr));
        return image;
    }

private:
    std::unique_ptr<CDC> m_screen, m_mem;
    CBitmap m_bitmap;
    CFont m_font;
};

class GlyphCells : public ::testing::Test {
protected:
    GlyphCells() : m_pPrevious(SetPlatformBackend(&platform)) {}
    ~GlyphCells() override {
        SetPlatformBackend(m_pPrevious);
        QCoreApplication::processEvents();
    }
    // Draws `text` as the painter draws a run: an opaque cell in `back`, the text in `fore`. With
    // `clipped` the run is clipped to its cell, which lets the cells be copied; without, the
    // glyphs are blended one by one over the cell.
    QImage Draw(const LOGFONTA& lf, const std::string& text, COLORREF fore, COLORREF back, bool clipped) {
        QImage ground(400, 40, QImage::Format_RGB32);
        ground.fill(qRgb(0, 255, 0));
        CCanvas canvas(lf, ground);
        CDC& dc = canvas.Dc();
        dc.SetTextColor(fore);
        dc.SetBkColor(back);
        const SIZE extent = dc.GetTextExtent(text.data(), static_cast<int>(text.size()));
        const RECT cell{10, 5, 10 + extent.cx, 5 + 25};
        m_rcCell = cell;
        dc.ExtTextOut(10, 25, ETO_OPAQUE | (clipped ? ETO_CLIPPED : 0), &cell, text.data(), static_cast<UINT>(text.size()));
        return canvas.Pixels();
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

// Pixels that differ from their neighbours, as a gutter's tile or a picture would lie under text.
QImage Pattern() {
    QImage image(400, 40, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) image.setPixel(x, y, qRgb((x * 7 + y * 3) & 255, (x * 5 + y * 9) & 255, (x + y * 13) & 255));
    return image;
}

// `text` in the transparent background mode over the pattern, through a context.
QImage DrawnTransparent(const LOGFONTA& lf, const std::string& text, COLORREF fore) {
    CCanvas canvas(lf, Pattern());
    CDC& dc = canvas.Dc();
    dc.SetBkMode(TRANSPARENT);
    dc.SetTextColor(fore);
    dc.ExtTextOut(10, 25, 0, nullptr, text.data(), static_cast<UINT>(text.size()));
    return canvas.Pixels();
}

// The same glyphs at the same places, drawn by the painter itself.
QImage DrawnByPainter(const CQtFont& font, const std::string& text, COLORREF fore) {
    QImage image = Pattern();
    QGlyphRun run;
    run.setRawFont(font.RawFont(CQtFont::kPrimary));
    QList<quint32> glyphs;
    QList<QPointF> positions;
    int x = 10;
    for (char c : text) {
        glyphs.push_back(font.GlyphOf(static_cast<BYTE>(c)).index);
        positions.push_back(QPointF(x, 25));
        x += font.Advance(static_cast<BYTE>(c));
    }
    run.setGlyphIndexes(glyphs);
    run.setPositions(positions);
    QPainter painter(&image);
    painter.setPen(QColorFromColorRef(fore));
    painter.drawGlyphRun(QPointF(0, 0), run);
    return image;
}

TEST_F(GlyphCells, BlendedInksGiveThePixelsOfTheDrawnGlyphs) {
    // Digits as line numbers have them, and letters whose ink reaches past their cells.
    const std::string text = "0123456789 fjy Wg/|";
    for (const char* face : {"Courier New", "Arial", "Times New Roman"})
        for (LONG height : {13, 16, 21})
            for (BYTE italic : {0, 1})
                for (COLORREF fore : {0x000000u, 0x808080u, 0x0000C0u, 0x3366FFu}) {
                    const LOGFONTA lf = FontRequest(face, height, italic ? FW_BOLD : FW_NORMAL, italic);
                    const std::shared_ptr<CQtFont> font = CQtFont::Create(lf);
                    ASSERT_TRUE(font);
                    const QImage blended = DrawnTransparent(lf, text, fore);
                    EXPECT_EQ(blended, DrawnByPainter(*font, text, fore)) << face << " " << height << " " << int(italic) << " " << fore;
                    EXPECT_NE(blended, Pattern());
                    // The blend, not the painter, drew it: the engine's grey glyphs blend exactly.
                    EXPECT_TRUE(::GlyphCells().InkOf(*font, font->GlyphOf('0').index, QColorFromColorRef(fore).rgb()).exact);
                }
}

}  // namespace
