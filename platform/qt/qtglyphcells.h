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
        // What copying needs of a cell, kept in the palette, so that a glyph costs no look at the
        // cell itself: cells lie wherever they were made.
        struct Entry {
            const QRgb* pixels = nullptr;
            const Cell* cell = nullptr;  // null until the byte is asked for
            int width = 0;
            int stride = 0;
            int overhang = 0;
        };
        Entry cells[256] = {};
    };

    // The block of `key.width` by `key.height` pixels in `key.back` with the glyph of `font` in
    // `key.fore` on the baseline, ink reaching `overhang` columns to the right; made the first
    // time it is asked for. It stays until the next call of Trim.
    const Cell& Get(const CQtFont& font, CQtFont::Face face, const Key& key, int overhang);
    // The palette of the font, colours, height and baseline of `key` (its glyph and width do not
    // count); it stays until the next call of Trim.
    Palette& PaletteFor(const Key& key);
    // Starts afresh, as a new colour scheme would, once the cells and inks grow past their
    // limit. Called where no cell, ink or palette is held.
    void Trim();

    // Blends rows `firstRow` to `firstRow + rows` of the overhang of `cell` in colour `fore` onto
    // `count` pixels of each row from `to`.
    static void BlendOverhang(const Cell& cell, QRgb fore, uchar* to, qsizetype stride, int count, int firstRow, int rows);

    // A glyph's ink for text drawn over whatever lies beneath (the transparent background mode):
    // its coverage, taken once from the glyph drawn white on black, is blended in the text's
    // colour as the raster engine blends a glyph of grey coverage, at a fraction of the cost of
    // the painter's call. `exact` holds only where a probe, the glyph drawn by the engine in that
    // colour over a pattern, gave the very pixels the blend gives; where it did not (coloured
    // coverage, a gamma curve), text with the glyph goes to the painter.
    struct Ink {
        QRect box;                      // where the ink lies, relative to the pen on the baseline
        std::vector<uint8_t> coverage;  // box.width() * box.height(), row by row
        std::vector<QRgb> source;       // per pixel, the colour scaled by the coverage: what the blend adds
        bool exact = false;
    };
    // The inks of one font in one colour, by byte; entries fill as bytes are asked for.
    struct InkPalette {
        const Ink* inks[256] = {};
    };
    InkPalette& InkPaletteFor(const CQtFont& font, QRgb fore);
    const Ink& InkOf(const CQtFont& font, quint32 glyph, QRgb fore);
    // Blends `ink` with the pen at `pen` onto the pixels inside `limit` of an image of opaque
    // pixels whose rows start `stride` bytes apart from `bits`.
    static void BlendInk(const Ink& ink, uchar* bits, qsizetype stride, QPoint pen, const QRect& limit);

private:
    // The probe of an ink: the glyph drawn by the engine in `fore` over a pattern, against the
    // ink blended over the same pattern, the pen at `pen` of an image of `size`.
    static bool BlendsAsTheEngineDraws(const Ink& ink, const CQtFont& font, quint32 glyph, QRgb fore, QPoint pen, QSize size);
    struct Hash {
        size_t operator()(const Key& k) const;
    };
    // Blocks kept at most before Trim starts afresh.
    static constexpr size_t kLimit = 16384;
    std::unordered_map<Key, Cell, Hash> m_cells;
    // Keyed as the cells are, with glyph and width 0.
    std::unordered_map<Key, std::unique_ptr<Palette>, Hash> m_palettes;
    // Keyed by font, glyph and colour; their palettes with glyph 0.
    std::unordered_map<Key, Ink, Hash> m_inks;
    std::unordered_map<Key, std::unique_ptr<InkPalette>, Hash> m_inkPalettes;
};

// The process's glyph cells; only the window thread draws.
CQtGlyphCells& GlyphCells();
