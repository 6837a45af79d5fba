#include "platform/testing/testsurface.h"

#include <algorithm>

CTestSurface::CTestSurface(LONG cx, LONG cy)
    : m_cx(std::max<LONG>(cx, 0)), m_cy(std::max<LONG>(cy, 0)), m_pixels(static_cast<size_t>(m_cx) * m_cy, kUnpainted) {}

COLORREF CTestSurface::Pixel(LONG x, LONG y) const {
    if (x < 0 || y < 0 || x >= m_cx || y >= m_cy) return kOutside;
    return m_pixels[static_cast<size_t>(y) * m_cx + x];
}

void CTestSurface::Resize(LONG cx, LONG cy) {
    CTestSurface resized(cx, cy);
    const RECT common = IntersectRects(Bounds(), resized.Bounds());
    for (LONG y = common.top; y < common.bottom; ++y)
        for (LONG x = common.left; x < common.right; ++x) resized.At(x, y) = Pixel(x, y);
    *this = std::move(resized);
}

void CTestSurface::Fill(const RECT& rc, COLORREF color) {
    const RECT r = IntersectRects(rc, Bounds());
    for (LONG y = r.top; y < r.bottom; ++y) std::fill_n(&At(r.left, y), r.Width(), color);
}

void CTestSurface::Invert(const RECT& rc) {
    const RECT r = IntersectRects(rc, Bounds());
    for (LONG y = r.top; y < r.bottom; ++y)
        for (LONG x = r.left; x < r.right; ++x) At(x, y) = ~At(x, y) & 0xFFFFFF;
}

void CTestSurface::CopyFrom(const CTestSurface& src, const RECT& srcRect, const RECT& dst, const RECT& within) {
    if (dst.IsEmpty() || srcRect.IsEmpty()) return;
    // Read everything first: source and destination may be the same surface.
    const RECT r = IntersectRects(IntersectRects(dst, within), Bounds());
    std::vector<COLORREF> copied(static_cast<size_t>(r.Width()) * std::max<LONG>(r.Height(), 0));
    auto sourceOf = [&](LONG v, LONG dstStart, LONG dstLen, LONG srcStart, LONG srcLen) {
        return srcStart + static_cast<LONG>(static_cast<long long>(v - dstStart) * srcLen / dstLen);
    };
    size_t i = 0;
    for (LONG y = r.top; y < r.bottom; ++y)
        for (LONG x = r.left; x < r.right; ++x)
            copied[i++] = src.Pixel(sourceOf(x, dst.left, dst.Width(), srcRect.left, srcRect.Width()),
                                    sourceOf(y, dst.top, dst.Height(), srcRect.top, srcRect.Height()));
    i = 0;
    for (LONG y = r.top; y < r.bottom; ++y)
        for (LONG x = r.left; x < r.right; ++x, ++i)
            if (copied[i] != kOutside) At(x, y) = copied[i];
}

void CTestSurface::Move(const RECT& from, int dx, int dy) {
    const RECT to = OffsetRect(from, dx, dy);
    CopyFrom(*this, from, to, to);
}
