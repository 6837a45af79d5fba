// What an input method needs beyond typed characters: text that the code page cannot hold, which
// the document takes as Unicode and keeps as references, and the text around the caret, which
// lets the input method offer candidates that fit.
#include <algorithm>

#include "platform/com/textdataobject.h"
#include "platform/window/keys.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr UINT kBeep = static_cast<UINT>(-1);
// How much text on each side of the caret an input method is told of.
constexpr long kSurroundingBytes = 256;

// A code point as UTF-16 little-endian bytes with the terminating NUL, as CF_UNICODETEXT holds it.
std::string Utf16Bytes(char32_t cp) {
    std::u16string units;
    if (cp >= 0x10000) {
        cp -= 0x10000;
        units += static_cast<char16_t>(0xD800 + (cp >> 10));
        units += static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
    } else {
        units += static_cast<char16_t>(cp);
    }
    units += u'\0';
    std::string bytes;
    for (char16_t u : units) {
        bytes += static_cast<char>(u & 0xFF);
        bytes += static_cast<char>(u >> 8);
    }
    return bytes;
}

}  // namespace

// A character outside the code page replaces the selection through the document's data path.
void CZentrelCtrl::OnUniChar(char32_t cp) {
    if (!m_pDoc || GetOption(OPT_READONLY) || cp == 0 || cp > 0x10FFFF) {
        MessageBeep(kBeep);
        return;
    }
    m_nGoalX = -1;
    ComPtr<CDataObject> data(new CDataObject);
    data->SetData(CF_UNICODETEXT, Utf16Bytes(cp));
    const long start = std::min(m_nSelActive, m_nSelAnchor);
    long inserted = 0;
    if (FAILED(m_pDoc->InsertData(start, std::abs(m_nSelActive - m_nSelAnchor), &inserted, data.Get(), &m_xTextSink)))
        MessageBeep(kBeep);
}

LRESULT CZentrelCtrl::OnGetSurroundingText(SurroundingText* pText) {
    if (!m_pDoc || !pText) return 0;
    const long length = m_pDoc->GetLength(), caret = std::min(m_nSelActive, length);
    // A window around the caret that cuts no character in half: the start of the character that
    // holds a byte is the last boundary in front of the byte behind it.
    long first = std::max(0L, caret - kSurroundingBytes), last = std::min(length, caret + kSurroundingBytes);
    if (first > 0 && PrevCharPos(first + 1) < first) first = NextCharPos(PrevCharPos(first + 1));
    if (last < length) last = PrevCharPos(last + 1);
    std::string around(static_cast<size_t>(last - first), '\0');
    m_pDoc->CopyText(around.data(), first, last - first);
    // Of that, the caret's line.
    const size_t before = static_cast<size_t>(caret - first);
    const size_t lineStart = before == 0 ? std::string::npos : around.find_last_of("\r\n", before - 1);
    const size_t from = lineStart == std::string::npos ? 0 : lineStart + 1;
    const size_t lineEnd = std::min(around.find_first_of("\r\n", before), around.size());
    pText->text = around.substr(from, lineEnd - from);
    pText->caret = static_cast<long>(before - from);
    return 1;
}
