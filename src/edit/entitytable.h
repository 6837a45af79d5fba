// Characters typed with AutoConvert on that become entity references: the four markup
// characters and the Latin-1 range 0xA0..0xFF, by their bytes taken as ISO 8859-1.
#pragma once

struct EntityRow {
    unsigned char ch;
    const char* pszEntity;
};

// In ascending order of ch, ended by a row whose character is 0.
extern const EntityRow g_EntityTable[];

// The reference for the low byte of ch, or null; the character 0 has none.
const char* LookupEntity(unsigned int ch);
