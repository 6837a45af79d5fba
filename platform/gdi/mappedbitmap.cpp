#include "platform/gdi/mappedbitmap.h"

#include <algorithm>

namespace {

std::vector<COLORREF> Mapped(std::vector<COLORREF> pixels, const COLORMAP* map, int count) {
    if (!map || count <= 0) return pixels;
    const COLORMAP* end = map + count;
    for (COLORREF& px : pixels) {
        const COLORMAP* hit = std::find_if(map, end, [px](const COLORMAP& m) { return m.from == px; });
        if (hit != end) px = hit->to;
    }
    return pixels;
}

}  // namespace

BOOL CreateMappedBitmap(CDC& dc, const PixelPicture& picture, const COLORMAP* map, int count, CBitmap* bitmap) {
    const size_t area = static_cast<size_t>(picture.cx) * static_cast<size_t>(picture.cy);
    if (!bitmap || picture.cx <= 0 || picture.cy <= 0 || picture.pixels.size() != area ||
        !(picture.doubled.empty() || picture.doubled.size() == 4 * area))
        return FALSE;
    const std::vector<COLORREF> pixels = Mapped(picture.pixels, map, count);
    const std::vector<COLORREF> doubled = Mapped(picture.doubled, map, count);
    return dc.CreatePixelBitmap(bitmap, picture.cx, picture.cy, pixels.data(), doubled.empty() ? nullptr : doubled.data());
}
