// UTF-8 and UTF-16 coding of code points, with the offsets of each character in its input.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

constexpr char32_t kReplacementChar = 0xFFFD;

struct CodePointAt {
    char32_t ch;
    size_t offset;  // in bytes (UTF-8) or code units (UTF-16) of the input
    bool bValid;    // false: a malformed sequence, given as U+FFFD
};

// Each malformed unit (an invalid byte, a truncated sequence, an overlong form, an encoded
// surrogate, a lone surrogate) becomes one invalid U+FFFD.
std::vector<CodePointAt> DecodeUtf8(std::string_view in);
std::vector<CodePointAt> DecodeUtf16(std::u16string_view in);

void AppendUtf8(std::string& out, char32_t ch);
void AppendUtf16(std::u16string& out, char32_t ch);
