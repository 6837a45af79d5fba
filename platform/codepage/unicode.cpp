#include "platform/codepage/unicode.h"

namespace {

bool IsSurrogate(char32_t ch) { return ch >= 0xD800 && ch <= 0xDFFF; }
bool IsContinuation(unsigned char b) { return (b & 0xC0) == 0x80; }

// Length of the sequence a lead byte announces and the smallest code point it may encode;
// 0 for a byte that cannot start one.
int SequenceLength(unsigned char lead, char32_t* minimum) {
    if (lead < 0x80) { *minimum = 0; return 1; }
    if ((lead & 0xE0) == 0xC0) { *minimum = 0x80; return 2; }
    if ((lead & 0xF0) == 0xE0) { *minimum = 0x800; return 3; }
    if ((lead & 0xF8) == 0xF0) { *minimum = 0x10000; return 4; }
    return 0;
}

}  // namespace

std::vector<CodePointAt> DecodeUtf8(std::string_view in) {
    std::vector<CodePointAt> out;
    out.reserve(in.size());
    size_t i = 0;
    while (i < in.size()) {
        const auto lead = static_cast<unsigned char>(in[i]);
        char32_t minimum = 0;
        const int len = SequenceLength(lead, &minimum);
        bool ok = len > 0 && i + len <= in.size();
        char32_t ch = len == 1 ? lead : lead & (0x7F >> len);
        for (int k = 1; ok && k < len; ++k) {
            const auto b = static_cast<unsigned char>(in[i + k]);
            ok = IsContinuation(b);
            ch = (ch << 6) | (b & 0x3F);
        }
        ok = ok && ch >= minimum && ch <= 0x10FFFF && !IsSurrogate(ch);
        out.push_back(ok ? CodePointAt{ch, i, true} : CodePointAt{kReplacementChar, i, false});
        i += ok ? len : 1;
    }
    return out;
}

std::vector<CodePointAt> DecodeUtf16(std::u16string_view in) {
    std::vector<CodePointAt> out;
    out.reserve(in.size());
    size_t i = 0;
    while (i < in.size()) {
        const char32_t unit = in[i];
        if (!IsSurrogate(unit)) {
            out.push_back({unit, i, true});
            ++i;
            continue;
        }
        const bool pair = unit <= 0xDBFF && i + 1 < in.size() && in[i + 1] >= 0xDC00 && in[i + 1] <= 0xDFFF;
        if (!pair) {
            out.push_back({kReplacementChar, i, false});
            ++i;
            continue;
        }
        const char32_t ch = 0x10000 + ((unit - 0xD800) << 10) + (in[i + 1] - 0xDC00);
        out.push_back({ch, i, true});
        i += 2;
    }
    return out;
}

void AppendUtf8(std::string& out, char32_t ch) {
    if (ch > 0x10FFFF || IsSurrogate(ch)) ch = kReplacementChar;
    if (ch < 0x80) {
        out += static_cast<char>(ch);
    } else if (ch < 0x800) {
        out += static_cast<char>(0xC0 | (ch >> 6));
        out += static_cast<char>(0x80 | (ch & 0x3F));
    } else if (ch < 0x10000) {
        out += static_cast<char>(0xE0 | (ch >> 12));
        out += static_cast<char>(0x80 | ((ch >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (ch & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (ch >> 18));
        out += static_cast<char>(0x80 | ((ch >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((ch >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (ch & 0x3F));
    }
}

void AppendUtf16(std::u16string& out, char32_t ch) {
    if (ch > 0x10FFFF || IsSurrogate(ch)) ch = kReplacementChar;
    if (ch < 0x10000) {
        out += static_cast<char16_t>(ch);
    } else {
        ch -= 0x10000;
        out += static_cast<char16_t>(0xD800 + (ch >> 10));
        out += static_cast<char16_t>(0xDC00 + (ch & 0x3FF));
    }
}
