#include "platform/codepage/iso2022jp.h"

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

bool CIso2022JpWriter::Jis0208Of(char32_t ch, char bytes[2]) {
    std::string euc;
    bool refused = false;
    const char32_t one[1] = {ch};
    IconvEncode("EUC-JP", std::u32string_view(one, 1), &euc, [&](size_t) { refused = true; });
    if (refused || euc.size() != 2) return false;
    for (int i = 0; i < 2; ++i) {
        const auto b = static_cast<unsigned char>(euc[i]);
        if (b < 0xA1 || b > 0xFE) return false;
        bytes[i] = static_cast<char>(b & 0x7F);
    }
    std::u32string back;
    IconvDecode("EUC-JP", euc, &back, [&](size_t, size_t, bool) { refused = true; });
    return !refused && back.size() == 1 && back[0] == ch;
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
