#include "platform/qt/qtglyphcells.h"

#include <QGlyphRun>
#include <QPainter>

namespace {

// Draws one glyph in `fore` on an image filled with `back`.
QImage Drawn(const CQtFont& font, CQtFont::Face face, quint32 glyph, int width, int height, int baseline, QRgb fore,
             QRgb back) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(back);
    QPainter painter(&image);
    painter.setPen(QColor::fromRgb(fore));
    QGlyphRun run;
    run.setRawFont(font.RawFont(face));
    run.setGlyphIndexes({glyph});
    run.setPositions({QPointF(0, baseline)});
    painter.drawGlyphRun(QPointF(0, 0), run);
    return image;
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
    if (m_cells.size() < kLimit) return;
    m_palettes.clear();
    m_cells.clear();
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

void CQtGlyphCells::BlendOverhang(const Cell& cell, QRgb fore, uchar* to, qsizetype stride, int count) {
    const int columns = std::min(count, cell.overhang);
    const int height = cell.block.height();
    const int ink[3] = {qRed(fore), qGreen(fore), qBlue(fore)};
    for (int y = 0; y < height; ++y, to += stride) {
        auto* row = reinterpret_cast<QRgb*>(to);
        const uint8_t* a = &cell.coverage[static_cast<size_t>(y * cell.overhang * 3)];
        for (int x = 0; x < columns; ++x, a += 3) {
            const QRgb p = row[x];
            const int channels[3] = {qRed(p), qGreen(p), qBlue(p)};
            int out[3];
            for (int c = 0; c < 3; ++c) out[c] = (channels[c] * (255 - a[c]) + ink[c] * a[c] + 127) / 255;
            row[x] = qRgb(out[0], out[1], out[2]);
        }
    }
}

CQtGlyphCells& GlyphCells() {
    static auto* cells = new CQtGlyphCells;  // never destroyed: fonts may be drawn until the end
    return *cells;
}
