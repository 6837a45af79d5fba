#include "platform/codepage/convert.h"

#include <algorithm>
#include <vector>

#include "platform/codepage/cp1252.h"
#include "platform/codepage/iconvcodec.h"
#include "platform/codepage/unicode.h"

namespace {

// The code page a call means, or 0 for one that is not supported.
UINT Resolve(UINT codePage) {
    CPINFO info;
    if (!GetCPInfo(codePage, &info)) return 0;
    return codePage == CP_ACP ? GetProcessCodePage() : codePage;
}

void CountUnmappable(ConvertResult& result, size_t offset) {
    if (result.nUnmappable++ == 0) result.nFirstUnmappable = offset;
}

bool DecodeToUtf32(UINT codePage, std::string_view in, std::u32string* out, ConvertResult& result) {
    if (codePage == 1252) {
        out->reserve(in.size());
        for (char c : in) *out += Cp1252ToUnicode(static_cast<uint8_t>(c));
        return true;
    }
    return IconvDecode(IconvNameOfCodePage(codePage), in, out,
                       [&](size_t offset, size_t, bool) { CountUnmappable(result, offset); });
}

class CEncoder {
public:
    CEncoder(UINT codePage, const std::vector<CodePointAt>& in, std::string* out,
             const UnmappableHandler& handler, ConvertResult& result)
        : m_nCodePage(codePage), m_in(in), m_out(*out), m_handler(handler), m_result(result) {}

    bool Run() { return m_nCodePage == 1252 ? RunCp1252() : RunIconv(); }

private:
    void Unmappable(size_t index) {
        CountUnmappable(m_result, m_in[index].offset);
        if (m_handler)
            m_handler(m_in[index].ch, m_out);
        else
            m_out += '?';
    }

    bool RunCp1252() {
        for (size_t i = 0; i < m_in.size(); ++i) {
            const int b = m_in[i].bValid ? UnicodeToCp1252(m_in[i].ch) : -1;
            if (b < 0)
                Unmappable(i);
            else
                m_out += static_cast<char>(b);
        }
        return true;
    }

    // Valid characters go to the converter in runs; malformed input never reaches it.
    bool RunIconv() {
        size_t runStart = 0;
        std::u32string run;
        for (size_t i = 0; i <= m_in.size(); ++i) {
            if (i < m_in.size() && m_in[i].bValid) {
                if (run.empty()) runStart = i;
                run += m_in[i].ch;
                continue;
            }
            if (!run.empty() && !FlushRun(run, runStart)) return false;
            run.clear();
            if (i < m_in.size()) Unmappable(i);
        }
        return true;
    }

    bool FlushRun(std::u32string_view run, size_t runStart) {
        return IconvEncode(IconvNameOfCodePage(m_nCodePage), run, &m_out, [&](size_t index) { Unmappable(runStart + index); });
    }

    UINT m_nCodePage;
    const std::vector<CodePointAt>& m_in;
    std::string& m_out;
    const UnmappableHandler& m_handler;
    ConvertResult& m_result;
};

template <class Unicode, class Append>
ConvertResult FromMultiByte(UINT codePage, std::string_view in, Unicode* out, Append append) {
    ConvertResult result;
    const UINT cp = Resolve(codePage);
    std::u32string chars;
    if (!cp || !out || !DecodeToUtf32(cp, in, &chars, result)) return ConvertResult{};
    Unicode text;
    text.reserve(chars.size());
    for (char32_t ch : chars) append(text, ch);
    *out = std::move(text);
    result.bOk = true;
    return result;
}

ConvertResult ToMultiByte(UINT codePage, const std::vector<CodePointAt>& in, std::string* out,
                          const UnmappableHandler& handler) {
    ConvertResult result;
    const UINT cp = Resolve(codePage);
    if (!cp || !out) return ConvertResult{};
    std::string text;
    text.reserve(in.size());
    if (!CEncoder(cp, in, &text, handler, result).Run()) return ConvertResult{};
    *out = std::move(text);
    result.bOk = true;
    return result;
}

}  // namespace

ConvertResult MultiByteToUtf16(UINT codePage, std::string_view in, std::u16string* out) {
    return FromMultiByte(codePage, in, out, [](std::u16string& s, char32_t ch) { AppendUtf16(s, ch); });
}

ConvertResult MultiByteToUtf8(UINT codePage, std::string_view in, std::string* out) {
    return FromMultiByte(codePage, in, out, [](std::string& s, char32_t ch) { AppendUtf8(s, ch); });
}

ConvertResult Utf16ToMultiByte(UINT codePage, std::u16string_view in, std::string* out,
                               const UnmappableHandler& onUnmappable) {
    // ASCII is the same bytes in every supported code page: pasted source text, mostly ASCII and
    // often megabytes long, skips the decoding into code points.
    if (std::all_of(in.begin(), in.end(), [](char16_t unit) { return unit < 0x80; }) && Resolve(codePage) && out) {
        out->assign(in.begin(), in.end());
        ConvertResult result;
        result.bOk = true;
        return result;
    }
    return ToMultiByte(codePage, DecodeUtf16(in), out, onUnmappable);
}

ConvertResult Utf8ToMultiByte(UINT codePage, std::string_view in, std::string* out,
                              const UnmappableHandler& onUnmappable) {
    return ToMultiByte(codePage, DecodeUtf8(in), out, onUnmappable);
}
