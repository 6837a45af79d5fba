// Conversion between multi-byte text of a code page and Unicode, for the edges of the system:
// drawing, the clipboard, file names and the host's strings. Inside, text stays multi-byte.
#pragma once
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "platform/codepage/codepage.h"

struct ConvertResult {
    static constexpr size_t npos = static_cast<size_t>(-1);
    bool bOk = false;               // false: unknown code page or no converter; output untouched
    size_t nUnmappable = 0;         // characters that had to be replaced
    size_t nFirstUnmappable = npos; // offset in the input (bytes or code units) of the first one
    bool Exact() const { return bOk && nUnmappable == 0; }
};

// Appends the replacement for a character that the code page cannot hold to `out` (appending
// nothing drops it). Lone surrogates and malformed UTF-8 reach it as U+FFFD.
using UnmappableHandler = std::function<void(char32_t codePoint, std::string& out)>;

// Multi-byte text of `codePage` (CP_ACP: the process code page) to Unicode. A byte that begins no
// character of the code page, and a lead byte without a valid trail byte, become U+FFFD and count
// as unmappable. Every byte of 1252 maps, so 1252 text always round-trips.
ConvertResult MultiByteToUtf16(UINT codePage, std::string_view in, std::u16string* out);
ConvertResult MultiByteToUtf8(UINT codePage, std::string_view in, std::string* out);

// Unicode to multi-byte text of `codePage`. Without a handler, a character that the code page
// cannot hold becomes its default character ('?').
ConvertResult Utf16ToMultiByte(UINT codePage, std::u16string_view in, std::string* out,
                               const UnmappableHandler& onUnmappable = {});
ConvertResult Utf8ToMultiByte(UINT codePage, std::string_view in, std::string* out,
                              const UnmappableHandler& onUnmappable = {});
