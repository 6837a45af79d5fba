// The gutter's pictures, compiled into the library: the background tile, the two boxes and the
// bookmark flags. They hold only black, white, 0xC0C0C0 and one colour per flag, so that
// mapping those to the desktop's colours (see LoadGutterBitmaps) gives them the desktop's look.
#pragma once
#include "platform/gdi/mappedbitmap.h"

constexpr UINT IDB_FLAG_DIGIT0 = 212;  // 212 to 221: the flags of the numbered bookmarks 0 to 9
constexpr UINT IDB_FOLD = 228;         // the minus box: an end of the selection bracket
constexpr UINT IDB_MARK = 229;         // the plus box of a collapsed block
constexpr UINT IDB_FLAG_NAMED = 230;   // the flag of a named bookmark
constexpr UINT IDB_GUTTER = 232;       // the background tile

constexpr int kGutterTileWidth = 94, kGutterTileHeight = 150;
constexpr int kGutterBoxSize = 9;
constexpr int kFlagWidth = 10, kFlagHeight = 13;

// The two colours of the tile: its ground and its pattern.
constexpr COLORREF kTileGround = 0xFFFFFF, kTilePattern = 0xC0C0C0;

// The picture of a resource id; null for an id that is none of the above.
const PixelPicture* FindGutterPicture(UINT id);
