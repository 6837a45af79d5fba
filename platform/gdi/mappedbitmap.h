// Bitmaps made from pixels held in memory, with some of their colours replaced on the way:
// how pictures that are compiled into a program become bitmaps in the colours of the desktop.
#pragma once
#include <vector>

#include "platform/gdi/dc.h"

// A picture as plain pixels, row by row from the top.
struct PixelPicture {
    int cx = 0;
    int cy = 0;
    std::vector<COLORREF> pixels;
    bool operator==(const PixelPicture&) const = default;
};

// One colour of a picture and what it becomes.
struct COLORMAP {
    COLORREF from;
    COLORREF to;
};

// A bitmap of `dc`'s kind holding `picture`, each pixel whose colour is the `from` of one of the
// `count` entries of `map` given that entry's `to`. FALSE, with `bitmap` untouched, when the
// picture is empty or malformed or the device can't make the bitmap.
BOOL CreateMappedBitmap(CDC& dc, const PixelPicture& picture, const COLORMAP* map, int count, CBitmap* bitmap);
