// The records and constants of the drawing layer, with their classic names and numbers, so that
// drawing code reads the same on every backend.
#pragma once
#include "platform/com/types.h"

// Map modes. MM_TEXT: one logical unit is one device pixel, y grows downwards. MM_ISOTROPIC:
// the window and viewport extents scale logical units to device pixels, equally both ways.
constexpr int MM_TEXT = 1;
constexpr int MM_ISOTROPIC = 7;

// What GetDeviceCaps reads, in device pixels and pixels per inch.
constexpr int HORZRES = 8;
constexpr int VERTRES = 10;
constexpr int LOGPIXELSX = 88;
constexpr int LOGPIXELSY = 90;
constexpr int PHYSICALWIDTH = 110;
constexpr int PHYSICALHEIGHT = 111;
constexpr int PHYSICALOFFSETX = 112;
constexpr int PHYSICALOFFSETY = 113;

// DrawText flags.
constexpr UINT DT_CENTER = 0x1;
constexpr UINT DT_WORDBREAK = 0x10;
constexpr UINT DT_EXPANDTABS = 0x40;
constexpr UINT DT_NOCLIP = 0x100;
constexpr UINT DT_CALCRECT = 0x400;

// A print job as StartDoc opens it: its name in the spooler, and an output file or null.
struct DOCINFO {
    int cbSize = 20;
    const char* lpszDocName = nullptr;
    const char* lpszOutput = nullptr;
    const char* lpszDatatype = nullptr;
    DWORD fwType = 0;
};
// The failure result of the printing calls.
constexpr int SP_ERROR = -1;

// Text alignment: where the reference point of ExtTextOut stands on the text.
constexpr UINT TA_LEFT = 0;
constexpr UINT TA_RIGHT = 2;
constexpr UINT TA_CENTER = 6;
constexpr UINT TA_TOP = 0;
constexpr UINT TA_BOTTOM = 8;
constexpr UINT TA_BASELINE = 24;
constexpr UINT TA_HORIZONTAL_MASK = TA_RIGHT | TA_CENTER;
constexpr UINT TA_VERTICAL_MASK = TA_BOTTOM | TA_BASELINE;

// Background modes: whether text fills its character cells with the background colour.
constexpr int TRANSPARENT = 1;
constexpr int OPAQUE = 2;

// ExtTextOut options.
constexpr UINT ETO_OPAQUE = 0x2;   // fill the given rectangle with the background colour first
constexpr UINT ETO_CLIPPED = 0x4;  // clip the text to the given rectangle

// Pen styles.
constexpr int PS_SOLID = 0;
constexpr int PS_NULL = 5;

// Raster operations of BitBlt and StretchBlt.
constexpr DWORD SRCCOPY = 0x00CC0020;

// Results of the clip functions.
constexpr int RGN_ERROR = 0;
constexpr int NULLREGION = 1;
constexpr int SIMPLEREGION = 2;
constexpr int COMPLEXREGION = 3;

// Character sets.
constexpr BYTE ANSI_CHARSET = 0;
constexpr BYTE DEFAULT_CHARSET = 1;
constexpr BYTE SYMBOL_CHARSET = 2;
constexpr BYTE SHIFTJIS_CHARSET = 128;
constexpr BYTE HANGUL_CHARSET = 129;
constexpr BYTE GB2312_CHARSET = 134;
constexpr BYTE CHINESEBIG5_CHARSET = 136;

// Font creation fields.
constexpr LONG FW_NORMAL = 400;
constexpr LONG FW_BOLD = 700;
constexpr BYTE OUT_DEFAULT_PRECIS = 0;
constexpr BYTE OUT_OUTLINE_PRECIS = 8;
constexpr BYTE CLIP_CHARACTER_PRECIS = 1;
constexpr BYTE PROOF_QUALITY = 2;
constexpr BYTE DEFAULT_PITCH = 0;
constexpr BYTE FIXED_PITCH = 1;
constexpr BYTE VARIABLE_PITCH = 2;

// tmPitchAndFamily bits. Note the classic inversion: TMPF_FIXED_PITCH set means variable pitch.
constexpr BYTE TMPF_FIXED_PITCH = 0x1;
constexpr BYTE TMPF_VECTOR = 0x2;
constexpr BYTE TMPF_TRUETYPE = 0x4;

constexpr int LF_FACESIZE = 32;

// What a font is asked to be. A positive lfHeight is the cell height (ascent plus descent) in
// device pixels; a negative one is the character height (the em size) in device pixels.
struct LOGFONTA {
    LONG lfHeight = 0;
    LONG lfWidth = 0;
    LONG lfEscapement = 0;
    LONG lfOrientation = 0;
    LONG lfWeight = 0;
    BYTE lfItalic = 0;
    BYTE lfUnderline = 0;
    BYTE lfStrikeOut = 0;
    BYTE lfCharSet = 0;
    BYTE lfOutPrecision = 0;
    BYTE lfClipPrecision = 0;
    BYTE lfQuality = 0;
    BYTE lfPitchAndFamily = 0;
    char lfFaceName[LF_FACESIZE] = {};
};

// What a font turned out to be, in device pixels.
struct TEXTMETRICA {
    LONG tmHeight = 0;  // ascent plus descent
    LONG tmAscent = 0;
    LONG tmDescent = 0;
    LONG tmInternalLeading = 0;
    LONG tmExternalLeading = 0;
    LONG tmAveCharWidth = 0;
    LONG tmMaxCharWidth = 0;
    LONG tmWeight = 0;
    LONG tmOverhang = 0;  // extra width of synthesised bold or italic
    LONG tmDigitizedAspectX = 96;
    LONG tmDigitizedAspectY = 96;
    BYTE tmFirstChar = 0;
    BYTE tmLastChar = 255;
    BYTE tmDefaultChar = '?';
    BYTE tmBreakChar = ' ';
    BYTE tmItalic = 0;
    BYTE tmUnderlined = 0;
    BYTE tmStruckOut = 0;
    BYTE tmPitchAndFamily = 0;
    BYTE tmCharSet = 0;
};

// The horizontal extent of one character: a space in front of the glyph's ink (may be negative),
// the ink's width, and a space behind it (may be negative). The advance is the sum of the three.
struct ABC {
    int abcA = 0;
    UINT abcB = 0;
    int abcC = 0;
};
