#include "platform/codepage/iso2022jp.h"

#include <algorithm>

#include "platform/codepage/iconvcodec.h"

namespace {

struct CShift {
    std::string_view bytes;
    JisSet set;
};

// The sequences a reader takes; the writer uses the first of each set.
constexpr CShift kShifts[] = {
    {"\x1B(B", JisSet::Ascii},   {"\x1B(J", JisSet::Roman},    {"\x1B$B", JisSet::Jis0208},
    {"\x1B$@", JisSet::Jis0208}, {"\x1B(I", JisSet::Katakana},
};

bool IsAsciiText(char32_t ch) { return ch < 0x80 && ch != 0x0E && ch != 0x0F && ch != 0x1B; }

}  // namespace

bool JisSetOfShift(std::string_view bytes, JisSet* set) {
    for (const CShift& shift : kShifts) {
        if (bytes.substr(0, 3) == shift.bytes) {
            *set = shift.set;
            return true;
        }
    }
    return false;
}

void SplitIso2022Jp(std::string_view in, const std::function<void(const CJisPiece&)>& piece) {
    JisSet set = JisSet::Ascii;
    size_t stretch = 0;
    for (size_t pos = in.find('\x1B'); pos != std::string_view::npos; pos = in.find('\x1B', pos + 1)) {
        JisSet next;
        if (!JisSetOfShift(in.substr(pos, 3), &next)) continue;
        if (pos > stretch) piece({stretch, pos - stretch, set, false});
        piece({pos, 3, next, true});
        set = next;
        stretch = pos + 3;
        pos += 2;
    }
    if (stretch < in.size()) piece({stretch, in.size() - stretch, set, false});
}

namespace {

// The pairs of JIS X 0208 for all the characters, each read back as itself, or false.
bool Jis0208Pairs(std::u32string_view chars, std::string* pairs) {
    std::string euc;
    bool refused = false;
    IconvEncode("EUC-JP", chars, &euc, [&](size_t) { refused = true; });
    if (refused || euc.size() != 2 * chars.size()) return false;
    for (char& c : euc) {
        const auto b = static_cast<unsigned char>(c);
        if (b < 0xA1 || b > 0xFE) return false;
        c = static_cast<char>(b & 0x7F);
    }
    std::string high = euc;
    for (char& c : high) c = static_cast<char>(c | 0x80);
    std::u32string back;
    IconvDecode("EUC-JP", high, &back, [&](size_t, size_t, bool) { refused = true; });
    if (refused || back != chars) return false;
    *pairs = std::move(euc);
    return true;
}

bool IsJis0208Candidate(char32_t ch) { return !IsAsciiText(ch) && ch != 0xA5 && ch != 0x203E; }

}  // namespace

bool CIso2022JpWriter::Jis0208Of(char32_t ch, char bytes[2]) {
    std::string pair;
    if (!Jis0208Pairs(std::u32string_view(&ch, 1), &pair)) return false;
    bytes[0] = pair[0];
    bytes[1] = pair[1];
    return true;
}

void CIso2022JpWriter::Shift(JisSet set, std::string& out) {
    if (set == m_set) return;
    for (const CShift& shift : kShifts) {
        if (shift.set == set) {
            out += shift.bytes;
            break;
        }
    }
    m_set = set;
    m_bShiftedHere = true;
}

void CIso2022JpWriter::Write(std::u32string_view chars, std::string& out, const UnmappableHandler& onUnmappable,
                             size_t* unmappable) {
    // A run of characters that JIS X 0208 may hold goes to the converter in one piece; where one
    // of them is not there, each of them on its own.
    size_t run = 0;
    while (run < chars.size()) {
        size_t end = run;
        while (end < chars.size() && IsJis0208Candidate(chars[end])) ++end;
        std::string pairs;
        if (end - run > 1 && Jis0208Pairs(chars.substr(run, end - run), &pairs)) {
            Shift(JisSet::Jis0208, out);
            out += pairs;
        } else {
            WriteEach(chars.substr(run, std::max<size_t>(end - run, 1)), out, onUnmappable, unmappable);
        }
        run = std::max(end, run + 1);
    }
}

void CIso2022JpWriter::WriteEach(std::u32string_view chars, std::string& out, const UnmappableHandler& onUnmappable,
                                 size_t* unmappable) {
    for (char32_t ch : chars) {
        char pair[2];
        if (IsAsciiText(ch)) {
            // Roman holds ASCII but for the backslash and the tilde.
            if (m_set != JisSet::Roman || ch == 0x5C || ch == 0x7E) Shift(JisSet::Ascii, out);
            out += static_cast<char>(ch);
        } else if (ch == 0xA5 || ch == 0x203E) {
            Shift(JisSet::Roman, out);
            out += ch == 0xA5 ? '\x5C' : '\x7E';
        } else if (Jis0208Of(ch, pair)) {
            Shift(JisSet::Jis0208, out);
            out.append(pair, 2);
        } else {
            Shift(JisSet::Ascii, out);
            if (unmappable) ++*unmappable;
            if (onUnmappable) onUnmappable(ch, out);
            else out += '?';
        }
    }
}

void CIso2022JpWriter::WriteRaw(std::string_view bytes, std::string& out) {
    out += bytes;
    SplitIso2022Jp(bytes, [&](const CJisPiece& piece) {
        if (!piece.bShift) return;
        m_set = piece.set;
        m_bShiftedHere = false;
    });
}

void CIso2022JpWriter::Finish(std::string& out) {
    if (m_set != JisSet::Ascii && m_bShiftedHere) Shift(JisSet::Ascii, out);
}
