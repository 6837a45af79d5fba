// The picker's small pictures: 12 by 12 icons of data types, values and pages, drawn by us from
// a few shapes each, at the size asked for (twice as fine on dense screens). White in a picture
// is the list's window colour.
#pragma once
#include <string>

#include "platform/gdi/mappedbitmap.h"

constexpr UINT IDB_PICK_DEFAULT = 250;  // a value with no picture of its own
constexpr UINT IDB_PICK_TAG = 355;
constexpr UINT IDB_PICK_MORE = 357;
constexpr int kPickIconSize = 12;

// The picture of an icon id at `scale` times its size; empty for an unknown id.
PixelPicture PickerIconPicture(UINT id, int scale);
// Draws the icon into rc, at twice the detail when rc is at least twice the icon's size or the
// screen is of high density.
void DrawPickerIcon(CDC& dc, UINT id, const RECT& rc);
// The icons of the attribute page by data type, and of the file pages by kind; 0 for none.
UINT AttrTypeIcon(long type);
UINT FileKindIcon(int kind);
// The icon of an enumerated value's row text; IDB_PICK_DEFAULT for a value without one.
UINT EnumValueIcon(const std::string& rowText);
