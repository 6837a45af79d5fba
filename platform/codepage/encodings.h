// The character encodings that files come in, found by the labels that web pages use for them
// ("utf-8", "latin1", "sjis", ...), and which of them is the process code page's own.
#pragma once
#include <string_view>

#include "platform/com/types.h"

// How ASCII bytes sit in an encoding's text, which decides how a converter may skip over them.
enum class EncodingForm {
    AsciiSafe,   // every byte below 0x80 is that ASCII character, never part of another one
    DoubleByte,  // as AsciiSafe, except the byte after a lead byte (IsDBCSLeadByteEx of nCodePage)
    Opaque,      // anything else (UTF-16, shift sequences, four-byte forms): only a converter reads it
};

struct CEncodingInfo {
    const char* pszName;   // the canonical name, as pages declare it and hosts see it
    const char* pszIconv;  // the C library's converter; nullptr for the built-in windows-1252
    UINT nCodePage;        // the process code page whose text is exactly this encoding's, or 0
    EncodingForm form;
    bool IsUnicode() const;  // UTF-8 or UTF-16: a byte order mark may introduce it
    // ASCII text is the same bytes in this encoding (not so in UTF-16).
    bool IsAsciiCompatible() const;
};

// The encoding a label names: surrounding ASCII white space is ignored and case does not matter.
// nullptr for a label that names no encoding this system reads.
const CEncodingInfo* FindEncoding(std::string_view label);

// The encoding whose text is the text of `codePage` (CP_ACP: the process code page).
const CEncodingInfo* EncodingOfCodePage(UINT codePage);

// The three encodings that detection names directly.
const CEncodingInfo& Utf8Encoding();
const CEncodingInfo& Utf16LeEncoding();
const CEncodingInfo& Utf16BeEncoding();
