// Format styles: how each kind of text looks. There are exactly 16 of them; the default table
// is built once for the process and copied into every new control.
#pragma once
#include <array>

#include "platform/com/types.h"

// Font word bits.
constexpr DWORD FONT_BOLD = 0x1;
constexpr DWORD FONT_ITALIC = 0x2;
constexpr DWORD FONT_UNDERLINE = 0x4;
constexpr DWORD FONT_STRIKEOUT = 0x8;
constexpr DWORD FONT_ROLE_MASK = 0xF0000;
constexpr DWORD FONT_ROLE_SYMBOL = 0x10000;
constexpr DWORD FONT_ROLE_GUTTER = 0x20000;

struct FormatStyle {
    COLORREF crText;
    COLORREF crBack;
    DWORD dwFont;
};
using CharFormat = FormatStyle;

constexpr int FORMAT_COUNT = 16;
// Style indices with a fixed role.
constexpr int STYLE_NONE = 0;
constexpr int STYLE_INVISIBLE = 12;
constexpr int STYLE_SELECTION = 13;
constexpr int STYLE_LINE_NUMBER = 14;
constexpr int STYLE_COLLAPSED = 15;

using FormatStyleTable = std::array<FormatStyle, FORMAT_COUNT>;

const FormatStyleTable& DefaultFormatStyles();
// The string id of each style's name.
UINT FormatStyleNameId(int index);
