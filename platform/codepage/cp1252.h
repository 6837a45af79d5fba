// The Western European code page 1252: Latin-1 with printable characters in 0x80..0x9F.
#pragma once
#include <cstdint>

// Every byte maps. The five bytes that the code page leaves undefined map to the C1 control of
// the same number, so that any byte string survives a round trip.
char32_t Cp1252ToUnicode(uint8_t b);
// The byte for a code point, or -1 if the code page has none.
int UnicodeToCp1252(char32_t ch);
