// The pixel model of the deterministic backend: one COLORREF per pixel. Window client areas and
// bitmaps are surfaces. Fills, blits, inverts, lines and scrolls change pixels; text ink is not
// modelled (the cells of opaque text are, since they are drawn as fills).
#pragma once
#include <memory>
#include <vector>

#include "platform/gdi/gdiobjects.h"

class CTestSurface : public CBitmapImpl, public std::enable_shared_from_this<CTestSurface> {
public:
    // The colour of a pixel that nothing has painted yet; no COLORREF has its top byte set.
    static constexpr COLORREF kUnpainted = 0xFF000000;
    // What Pixel gives outside the surface.
    static constexpr COLORREF kOutside = 0xFE000000;

    CTestSurface(LONG cx, LONG cy);
    SIZE Size() const override { return {m_cx, m_cy}; }
    RECT Bounds() const { return {0, 0, m_cx, m_cy}; }

    COLORREF Pixel(LONG x, LONG y) const;
    // Changes the size; pixels inside both sizes keep their colour, new ones are unpainted.
    void Resize(LONG cx, LONG cy);
    void Fill(const RECT& rc, COLORREF color);
    // Every colour channel becomes 255 minus itself.
    void Invert(const RECT& rc);
    // Copies `srcRect` of `src` onto `dst` (nearest pixel when the sizes differ); only the
    // pixels of `dst` inside `within` change, and only from source pixels that exist.
    void CopyFrom(const CTestSurface& src, const RECT& srcRect, const RECT& dst, const RECT& within);
    // Moves the pixels of `from` by (dx, dy) within this surface.
    void Move(const RECT& from, int dx, int dy);

private:
    COLORREF& At(LONG x, LONG y) { return m_pixels[static_cast<size_t>(y) * m_cx + x]; }

    LONG m_cx, m_cy;
    std::vector<COLORREF> m_pixels;
};
