// Code completion: when the picker comes up by itself, and what the text around the caret is.
// Each question is a fresh scan of the document's bytes; the schema root is fetched for every
// analysis only to know that there is a schema to offer from.
#include <algorithm>
#include <cstring>

#include "src/edit/completionscan.h"
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr UINT kBeep = static_cast<UINT>(-1);

}  // namespace

ComPtr<ISourceSchema> CZentrelCtrl::GetSchemaRoot() {
    if (!m_dispSchema) return nullptr;
    std::vector<Variant> args;
    Variant root;
    if (FAILED(m_dispSchema->Invoke(1, DISPATCH_PROPERTYGET, args, &root, nullptr))) return nullptr;
    IDispatch* disp = nullptr;  // the variant keeps its reference
    if (!root.ToDispatch(&disp) || !disp) return nullptr;
    return QueryAs<ISourceSchema>(disp, IID_ISourceSchema);
}

namespace {

// The stretch is read in pieces, so that the document keeps its text where it lies: asking for
// all of it as one block would move a large text around on every key.
constexpr long kPiece = 4096;

bool IsBracket(char c) { return c == '<' || c == '>'; }

// The lead-byte test of the process code page; none where every character is one byte, which
// spares the scans a call per byte.
BOOL (*LeadByteTest())(BYTE) { return ZentrelApp().m_bMultiByte ? &::IsLeadByte : nullptr; }

// The nearest bracket before pos, or 0.
long StretchStart(ISourceText* doc, long pos) {
    std::string piece;
    for (long to = pos; to > 0;) {
        const long from = std::max(0L, to - kPiece);
        piece.resize(static_cast<size_t>(to - from));
        if (FAILED(doc->CopyText(piece.data(), from, to - from))) return 0;
        long last = -1;
        for (const char c : {'<', '>'})
            if (const void* at = memrchr(piece.data(), c, piece.size()))
                last = std::max(last, static_cast<long>(static_cast<const char*>(at) - piece.data()));
        if (last >= 0) return from + last;
        to = from;
    }
    return 0;
}

// Behind the first bracket from pos on, or at the first CR; the text's end if neither comes.
long StretchEnd(ISourceText* doc, long pos, long length) {
    std::string piece;
    for (long from = pos; from < length; from += kPiece) {
        const long count = std::min(kPiece, length - from);
        piece.resize(static_cast<size_t>(count));
        if (FAILED(doc->CopyText(piece.data(), from, count))) return from;
        for (long i = 0; i < count; ++i) {
            const char c = piece[static_cast<size_t>(i)];
            if (IsBracket(c)) return from + i + 1;
            if (c == '\r') return from + i;
        }
    }
    return length;
}

}  // namespace

std::string CZentrelCtrl::ReadTagStretch(long pos, long* pStart) {
    const long length = m_pDoc->GetLength();
    pos = std::clamp(pos, 0L, std::max(length, 0L));
    const long start = StretchStart(m_pDoc, pos);
    // A few bytes more: the second byte of a double-byte character at the end, and the "!--"
    // that a comment's '<' is tested for.
    constexpr long kSlack = 3;
    const long end = std::min(StretchEnd(m_pDoc, pos, length) + kSlack, length);
    std::string bytes(static_cast<size_t>(std::max(end - start, 0L)), '\0');
    if (!bytes.empty() && FAILED(m_pDoc->CopyText(bytes.data(), start, end - start))) bytes.clear();
    *pStart = start;
    return bytes;
}

void CZentrelCtrl::FindTagBounds(long pos, long* pStart, long* pEnd) {
    long offset = 0;
    const std::string stretch = ReadTagStretch(pos, &offset);
    FindTagBoundsIn(stretch.data(), static_cast<long>(stretch.size()), pos - offset, LeadByteTest(), pStart, pEnd);
    *pStart += offset;
    *pEnd += offset;
}

TagContext CZentrelCtrl::AnalyzeTag(long pos) {
    TagContext none;
    none.rangeStart = none.rangeEnd = pos;
    if (!m_pDoc || !GetSchemaRoot()) return none;
    long offset = 0;
    const std::string stretch = ReadTagStretch(pos, &offset);
    TagContext ctx = AnalyzeTagIn(stretch.data(), static_cast<long>(stretch.size()), pos - offset, LeadByteTest());
    ctx.rangeStart += offset;
    ctx.rangeEnd += offset;
    return ctx;
}

void CZentrelCtrl::OnCompletionTimer() {
    if (!GetOption(OPT_CODECOMPLETION) || m_nCompletionMode != 1 || m_bCompletionHeld) return;
    if (!m_pDoc || GetFocus() != m_hWnd || IsPickerVisible()) return;
    if (GetTickCount() - m_dwLastKey < static_cast<DWORD>(m_nCompletionDelay)) return;
    long start = 0, end = 0;
    FindTagBounds(m_nSelActive, &start, &end);
    if (start < m_pDoc->GetLength() && m_pDoc->GetCharAt(start) == '<') ShowPicker();
}

void CZentrelCtrl::CompletionKey() {
    if (!GetOption(OPT_CODECOMPLETION)) {
        MessageBeep(kBeep);
    } else if (!IsPickerVisible()) {
        ShowPicker();
    } else if (PickerNextOption()) {
        ShowPicker();
    } else {
        MessageBeep(kBeep);
    }
}
