// Glyph cells: a glyph drawn once on a block of its background colour, then copied wherever the
// same glyph stands in the same colours. Text in an editor is mostly glyphs in a dozen colour
// pairs over opaque cells, and copying a block of pixels costs a fraction of blending a glyph.
// The block is drawn by the same raster engine as any other glyph, so it holds the very pixels
// that drawing the glyph there would give.
#pragma once
#include <QImage>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "platform/qt/qtfont.h"

class CQtGlyphCells {
public:
    struct Key {
        uint64_t font;  // the font's serial number
        quint32 glyph;
        quint16 width, height;
        qint16 baseline;  // from the block's top
        QRgb fore, back;
        friend bool operator==(const Key&, const Key&) = default;
    };

    // A glyph's block, and the ink that reaches past its right edge into the next cell, as the
    // coverage of each pixel there (0 to 255 per colour channel) to blend the ink colour with.
    struct Cell {
        QImage block;
        const QRgb* pixels = nullptr;  // the block's rows, `stride` pixels apart
        qsizetype stride = 0;
        int width = 0;
        int overhang = 0;              // columns of ink right of the block
        std::vector<uint8_t> coverage; // overhang * height * 3, row by row
    };

    // The cells of one font in one colour pair, height and baseline, by byte: a run finds its
    // palette once, and then each byte's cell by its value. Entries fill as bytes are asked for.
    struct Palette {
        const Cell* cells[256] = {};
    };

    // The block of `key.width` by `key.height` pixels in `key.back` with the glyph of `font` in
    // `key.fore` on the baseline, ink reaching `overhang` columns to the right; made the first
    // time it is asked for. It stays until the next call of Trim.
    const Cell& Get(const CQtFont& font, CQtFont::Face face, const Key& key, int overhang);
    // The palette of the font, colours, height and baseline of `key` (its glyph and width do not
    // count); it stays until the next call of Trim.
    Palette& PaletteFor(const Key& key);
    // Starts afresh, as a new colour scheme would, once the cells grow past their limit. Called
    // where no cell or palette is held.
    void Trim();

    // Blends the overhang of `cell` in colour `fore` onto `count` pixels of each row from `to`.
    static void BlendOverhang(const Cell& cell, QRgb fore, uchar* to, qsizetype stride, int count);

private:
    struct Hash {
        size_t operator()(const Key& k) const;
    };
    // Blocks kept at most before Trim starts afresh.
    static constexpr size_t kLimit = 16384;
    std::unordered_map<Key, Cell, Hash> m_cells;
    // Keyed as the cells are, with glyph and width 0.
    std::unordered_map<Key, std::unique_ptr<Palette>, Hash> m_palettes;
};

// The process's glyph cells; only the window thread draws.
CQtGlyphCells& GlyphCells();
