// The Symbol encoding: what a byte of a font with SYMBOL_CHARSET shows, as a Unicode character.
#pragma once
#include "platform/com/types.h"

// The character of byte `b` in the Symbol encoding, or 0 for a byte without one (below 0x20,
// 0x7F to 0x9F, 0xF0 and 0xFF). Glyphs that the encoding keeps in pieces for building large
// brackets map to the Unicode bracket pieces; the serif and sans-serif copies of (R), (C) and
// TM map to the plain characters.
char32_t UnicodeFromSymbolByte(BYTE b);
