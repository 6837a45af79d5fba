#include "htmldoc/textwalker.h"

#include <algorithm>

#include "platform/codepage/leadbyte.h"

namespace {

// The lead bytes of the process code page as a table, rebuilt when the code page changes.
// Documents live on one thread, like the view.
const bool* LeadTable() {
    static UINT cachedPage = ~0u;
    static bool table[256];
    UINT page = GetProcessCodePage();
    if (page != cachedPage) {
        for (int b = 0; b < 256; ++b) table[b] = IsDBCSLeadByteEx(page, static_cast<BYTE>(b)) != FALSE;
        cachedPage = page;
    }
    return table;
}

bool IsWordByte(unsigned char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c >= 0x80;
}

}  // namespace

CTextWalker::CTextWalker(const CGapBuffer& text) : m_text(text), m_lead(LeadTable()) {}

bool CTextWalker::IsBreak(long pos) const {
    char c = m_text.At(pos);
    return c == '\r' || c == '\n';
}

long CTextWalker::NextChar(long pos) const {
    long len = Length();
    if (pos >= len) return len;
    if (pos + 1 >= len) return len;
    unsigned char c = ByteAt(pos);
    if (c == '\r') return m_text.At(pos + 1) == '\n' ? pos + 2 : pos + 1;
    // A lead byte in front of a line break or the end is a broken character of one byte.
    if (IsLead(c) && !IsBreak(pos + 1)) return pos + 2;
    return pos + 1;
}

bool CTextWalker::OddLeadRunBefore(long pos) const {
    // Any byte that is not a lead byte ends a character, so characters start right behind it
    // and pair up from there.
    long r = pos - 1;
    while (r >= 0 && IsLead(ByteAt(r))) --r;
    return (pos - 1 - r) % 2 == 1;
}

long CTextWalker::PrevChar(long pos) const {
    if (pos <= 0) return 0;
    pos = std::min(pos, Length());
    if (pos >= 2 && m_text.At(pos - 1) == '\n' && m_text.At(pos - 2) == '\r') return pos - 2;
    if (IsBreak(pos - 1)) return pos - 1;
    return OddLeadRunBefore(pos - 1) ? pos - 2 : pos - 1;
}

long CTextWalker::CharStartAt(long pos) const {
    if (pos <= 0 || pos >= Length()) return pos;
    if (m_text.At(pos) == '\n' && m_text.At(pos - 1) == '\r') return pos - 1;
    if (IsBreak(pos)) return pos;
    return OddLeadRunBefore(pos) ? pos - 1 : pos;
}

CTextWalker::CharKind CTextWalker::KindAt(long pos) const {
    unsigned char c = ByteAt(pos);
    if (c == ' ' || c == '\t') return CharKind::Blank;
    if (c == '\r' || c == '\n') return CharKind::Break;
    return IsWordByte(c) ? CharKind::Word : CharKind::Punct;
}

long CTextWalker::NextWord(long pos) const {
    long len = Length();
    if (pos >= len) return len;
    CharKind kind = KindAt(pos);
    if (kind == CharKind::Break) return NextChar(pos);
    if (kind != CharKind::Blank)
        while (pos < len && KindAt(pos) == kind) pos = NextChar(pos);
    while (pos < len && KindAt(pos) == CharKind::Blank) pos = NextChar(pos);
    return pos;
}

long CTextWalker::PrevWord(long pos) const {
    pos = std::min(pos, Length());
    long from = pos;
    while (pos > 0 && KindAt(PrevChar(pos)) == CharKind::Blank) pos = PrevChar(pos);
    if (pos == 0) return 0;
    long prev = PrevChar(pos);
    CharKind kind = KindAt(prev);
    if (kind == CharKind::Break) return pos == from ? prev : pos;
    while (pos > 0 && KindAt(PrevChar(pos)) == kind) pos = PrevChar(pos);
    return pos;
}

long CTextWalker::LineBreakBefore(long lineEnd) const {
    if (lineEnd <= 0 || lineEnd > Length()) return lineEnd;
    if (m_text.At(lineEnd - 1) == '\n') return lineEnd >= 2 && m_text.At(lineEnd - 2) == '\r' ? lineEnd - 2 : lineEnd - 1;
    // The end of the text ends its last row. Any other place is a wrap point, where a view broke
    // a long line: the wrap point starts the next row, and the last character in front of it is
    // still on the row that ends there.
    return lineEnd == Length() ? lineEnd : PrevChar(lineEnd);
}
