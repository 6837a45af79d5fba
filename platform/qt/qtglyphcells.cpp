#include "platform/qt/qtglyphcells.h"

#include <QGlyphRun>
#include <QPainter>

namespace {

// Draws one glyph in `fore` on `image`, the pen at `pen`.
void DrawGlyph(QImage& image, const CQtFont& font, CQtFont::Face face, quint32 glyph, QPoint pen, QRgb fore) {
    QPainter painter(&image);
    painter.setPen(QColor::fromRgb(fore));
    QGlyphRun run;
    run.setRawFont(font.RawFont(face));
    run.setGlyphIndexes({glyph});
    run.setPositions({QPointF(pen)});
    painter.drawGlyphRun(QPointF(0, 0), run);
}

// Draws one glyph in `fore` on an image filled with `back`.
QImage Drawn(const CQtFont& font, CQtFont::Face face, quint32 glyph, int width, int height, int baseline, QRgb fore,
             QRgb back) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(back);
    DrawGlyph(image, font, face, glyph, QPoint(0, baseline), fore);
    return image;
}

// A channel times a coverage over 255, rounded, for two channels at once: how the raster
// engine scales a colour.
inline quint32 ByteMul(quint32 x, quint32 a) {
    quint32 t = (x & 0xFF00FF) * a;
    t = ((t + ((t >> 8) & 0xFF00FF) + 0x800080) >> 8) & 0xFF00FF;
    x = ((x >> 8) & 0xFF00FF) * a;
    x = (x + ((x >> 8) & 0xFF00FF) + 0x800080) & 0xFF00FF00;
    return x | t;
}

// The same for one channel.
inline int ChannelMul(int x, int a) {
    const int t = x * a;
    return (t + (t >> 8) + 0x80) >> 8;
}

// Pixels that differ from their neighbours in every channel, for probing a blend.
void FillWithProbePattern(QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) row[x] = qRgb((x * 37 + y * 11) & 255, (x * 13 + y * 71) & 255, (x * 101 + y * 29) & 255);
    }
}

}  // namespace

size_t CQtGlyphCells::Hash::operator()(const Key& k) const {
    uint64_t h = k.font * 0x9E3779B97F4A7C15ull;
    for (uint64_t part : {uint64_t(k.glyph), uint64_t(k.width) << 16 | k.height, uint64_t(uint16_t(k.baseline)),
                          uint64_t(k.fore) << 32 | k.back})
        h = (h ^ part) * 0x100000001B3ull;
    return static_cast<size_t>(h ^ (h >> 29));
}

void CQtGlyphCells::Trim() {
    if (m_cells.size() + m_inks.size() < kLimit) return;
    m_palettes.clear();
    m_cells.clear();
    m_inkPalettes.clear();
    m_inks.clear();
}

CQtGlyphCells::Palette& CQtGlyphCells::PaletteFor(const Key& key) {
    Key common = key;
    common.glyph = 0;
    common.width = 0;
    std::unique_ptr<Palette>& palette = m_palettes[common];
    if (!palette) palette = std::make_unique<Palette>();
    return *palette;
}

const CQtGlyphCells::Cell& CQtGlyphCells::Get(const CQtFont& font, CQtFont::Face face, const Key& key, int overhang) {
    auto it = m_cells.find(key);
    if (it != m_cells.end()) return it->second;
    Cell cell;
    cell.block = Drawn(font, face, key.glyph, key.width, key.height, key.baseline, key.fore, key.back);
    if (overhang > 0) {
        // The coverage of the ink beyond the block: the glyph in white on black, read per channel.
        const QImage mask = Drawn(font, face, key.glyph, key.width + overhang, key.height, key.baseline, 0xFFFFFFFF,
                                  0xFF000000);
        cell.overhang = overhang;
        cell.coverage.reserve(static_cast<size_t>(overhang * key.height * 3));
        for (int y = 0; y < key.height; ++y) {
            const auto* row = reinterpret_cast<const QRgb*>(mask.constScanLine(y));
            for (int x = key.width; x < key.width + overhang; ++x)
                for (int channel : {qRed(row[x]), qGreen(row[x]), qBlue(row[x])}) cell.coverage.push_back(static_cast<uint8_t>(channel));
        }
    }
    Cell& kept = m_cells.emplace(key, std::move(cell)).first->second;
    kept.pixels = reinterpret_cast<const QRgb*>(kept.block.constBits());
    kept.stride = kept.block.bytesPerLine() / static_cast<qsizetype>(sizeof(QRgb));
    kept.width = kept.block.width();
    return kept;
}

void CQtGlyphCells::BlendOverhang(const Cell& cell, QRgb fore, uchar* to, qsizetype stride, int count, int firstRow,
                                  int rows) {
    const int columns = std::min(count, cell.overhang);
    const int ink[3] = {qRed(fore), qGreen(fore), qBlue(fore)};
    for (int y = firstRow; y < firstRow + rows; ++y, to += stride) {
        auto* row = reinterpret_cast<QRgb*>(to);
        const uint8_t* a = &cell.coverage[static_cast<size_t>(y * cell.overhang * 3)];
        for (int x = 0; x < columns; ++x, a += 3) {
            const QRgb p = row[x];
            const int channels[3] = {qRed(p), qGreen(p), qBlue(p)};
            int out[3];
            for (int c = 0; c < 3; ++c) out[c] = ChannelMul(ink[c], a[c]) + ChannelMul(channels[c], 255 - a[c]);
            row[x] = qRgb(out[0], out[1], out[2]);
        }
    }
}

CQtGlyphCells::InkPalette& CQtGlyphCells::InkPaletteFor(const CQtFont& font, QRgb fore) {
    std::unique_ptr<InkPalette>& palette = m_inkPalettes[Key{font.Serial(), 0, 0, 0, 0, fore, 0}];
    if (!palette) palette = std::make_unique<InkPalette>();
    return *palette;
}

const CQtGlyphCells::Ink& CQtGlyphCells::InkOf(const CQtFont& font, quint32 glyph, QRgb fore) {
    const Key key{font.Serial(), glyph, 0, 0, 0, fore, 0};
    auto it = m_inks.find(key);
    if (it != m_inks.end()) return it->second;
    // Room for any ink a glyph of the font can have around its pen.
    const int h = std::max<int>(1, font.Metrics().tmHeight);
    const QPoint pen(2 * h, 2 * h);
    QImage mask(5 * h, 4 * h, QImage::Format_RGB32);
    mask.fill(0xFF000000);
    DrawGlyph(mask, font, CQtFont::kPrimary, glyph, pen, 0xFFFFFFFF);
    Ink ink;
    bool blendable = true;
    QRect box;
    for (int y = 0; y < mask.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(mask.constScanLine(y));
        for (int x = 0; x < mask.width(); ++x) {
            if (qRed(row[x]) != qGreen(row[x]) || qRed(row[x]) != qBlue(row[x])) blendable = false;
            if (qRed(row[x]) != 0) box |= QRect(x, y, 1, 1);
        }
    }
    // Ink that reaches the mask's edge may go on beyond it: such a glyph goes to the painter.
    if (!box.isEmpty() && !mask.rect().adjusted(1, 1, -1, -1).contains(box)) blendable = false;
    ink.box = box.translated(-pen);
    ink.coverage.reserve(static_cast<size_t>(box.width()) * static_cast<size_t>(box.height()));
    for (int y = box.top(); y <= box.bottom(); ++y)
        for (int x = box.left(); x <= box.right(); ++x) ink.coverage.push_back(static_cast<uint8_t>(qRed(mask.pixel(x, y))));
    ink.source.reserve(ink.coverage.size());
    for (uint8_t a : ink.coverage) ink.source.push_back(ByteMul(fore, a));
    ink.exact = blendable && BlendsAsTheEngineDraws(ink, font, glyph, fore, pen, mask.size());
    return m_inks.emplace(key, std::move(ink)).first->second;
}

bool CQtGlyphCells::BlendsAsTheEngineDraws(const Ink& ink, const CQtFont& font, quint32 glyph, QRgb fore, QPoint pen,
                                           QSize size) {
    QImage byEngine(size, QImage::Format_RGB32);
    FillWithProbePattern(byEngine);
    QImage blended = byEngine.copy();
    DrawGlyph(byEngine, font, CQtFont::kPrimary, glyph, pen, fore);
    BlendInk(ink, blended.bits(), blended.bytesPerLine(), pen, blended.rect());
    return blended == byEngine;
}

void CQtGlyphCells::BlendInk(const Ink& ink, uchar* bits, qsizetype stride, QPoint pen, const QRect& limit) {
    const QRect area = ink.box.translated(pen) & limit;
    if (area.isEmpty()) return;
    const int width = ink.box.width();
    for (int y = area.top(); y <= area.bottom(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(bits + y * stride);
        const size_t first = static_cast<size_t>((y - pen.y() - ink.box.top()) * width + (area.left() - pen.x() - ink.box.left()));
        const uint8_t* a = &ink.coverage[first];
        const QRgb* source = &ink.source[first];
        // The glyph's colour at its coverage over what is there at the rest.
        for (int x = area.left(); x <= area.right(); ++x, ++a, ++source)
            if (*a != 0) row[x] = *source + ByteMul(row[x], 255 - *a);
    }
}

CQtGlyphCells& GlyphCells() {
    static auto* cells = new CQtGlyphCells;  // never destroyed: fonts may be drawn until the end
    return *cells;
}
