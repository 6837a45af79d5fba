#include "platform/gdi/mappedbitmap.h"

#include <algorithm>

BOOL CreateMappedBitmap(CDC& dc, const PixelPicture& picture, const COLORMAP* map, int count, CBitmap* bitmap) {
    if (!bitmap || picture.cx <= 0 || picture.cy <= 0 ||
        picture.pixels.size() != static_cast<size_t>(picture.cx) * static_cast<size_t>(picture.cy))
        return FALSE;
    std::vector<COLORREF> pixels = picture.pixels;
    if (map && count > 0) {
        const COLORMAP* end = map + count;
        for (COLORREF& px : pixels) {
            const COLORMAP* hit = std::find_if(map, end, [px](const COLORMAP& m) { return m.from == px; });
            if (hit != end) px = hit->to;
        }
    }
    return dc.CreatePixelBitmap(bitmap, picture.cx, picture.cy, pixels.data());
}
