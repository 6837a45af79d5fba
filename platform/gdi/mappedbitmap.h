// Bitmaps made from pixels held in memory, with some of their colours replaced on the way:
// how pictures that are compiled into a program become bitmaps in the colours of the desktop.
#pragma once
#include <vector>

#include "platform/gdi/dc.h"

// A picture as plain pixels, row by row from the top, and optionally the same picture drawn at
// twice the resolution (2cx by 2cy pixels) for screens of high density.
struct PixelPicture {
    int cx = 0;
    int cy = 0;
    std::vector<COLORREF> pixels;
    std::vector<COLORREF> doubled;  // empty when the picture has no such variant
    bool operator==(const PixelPicture&) const = default;
};

// One colour of a picture and what it becomes.
struct COLORMAP {
    COLORREF from;
    COLORREF to;
};

// A bitmap of `dc`'s kind holding `picture`, each pixel whose colour is the `from` of one of the
// `count` entries of `map` given that entry's `to`; the double-resolution variant, when there is
// one, is mapped alike and left to the device to use. FALSE, with `bitmap` untouched, when the
// picture is empty or malformed or the device can't make the bitmap.
BOOL CreateMappedBitmap(CDC& dc, const PixelPicture& picture, const COLORMAP* map, int count, CBitmap* bitmap);
