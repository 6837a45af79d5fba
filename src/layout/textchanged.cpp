// Keeping the line table in step with the document's changes. In a window the table after each
// change is what a whole layout of the new text gives; without one only its total is kept equal
// to the document's length, and the first layout in a window breaks the lines.
#include <algorithm>
#include <cstdlib>

#include "src/view/zentrelctrl.h"

namespace {

// A change that moves more bytes than this and most of the text (a loaded file arrives as one
// insertion) is laid out anew in one pass over the whole text, as a Reformat does. A smaller
// share of a large text, a paste of megabytes, is laid out around the change: the rows it gives
// are spliced into the table in one rebuild, which costs a copy of the table, not a scan of all
// the text.
constexpr long kWholeLayoutBytes = 1 << 20;

bool LaysOutWhole(long nRemoved, long nInserted, long docLen) {
    const long moved = std::max(nRemoved, nInserted);
    return moved > kWholeLayoutBytes && moved > docLen / 2;
}

// The line that receives bytes inserted at `pos`: the last line for an insert at the very end.
long ReceivingLine(const CLineIndex& lines, long pos) {
    return pos == lines.m_nTotal ? lines.m_nCount - 1 : lines.FindLine(pos);
}

// Takes `count` bytes out of the table from the line that holds `pos` on, whole lines where
// they are covered, and drops emptied lines behind. Widens `range` to what moved.
void TakeBytes(CLineIndex& lines, long pos, long count, long end, LayoutRange* range) {
    long idx = lines.FindLine(pos);
    long left = count;
    while (left > 0) {
        long len = lines.GetAt(idx);
        if (left >= len && idx != lines.m_nCount - 1) {
            lines.RemoveAt(idx);
            range->nEnd = POS_TO_END;
            left -= len;
        } else {
            long w = std::min(left, len);
            lines.AddAt(idx, -w);
            range->nEnd = std::max(range->nEnd, end);
            ++idx;
            left -= w;
        }
    }
    while (idx < lines.m_nCount && lines.m_nCount > 1 && lines.GetAt(idx) == 0) lines.RemoveAt(idx);
}

// Where a change may have emptied ranges or set them onto one another: the text it left, in
// positions after it. A style change moves nothing; a reset or another kind of change anywhere.
LayoutRange RangesTouched(long action, long first, long second) {
    const long lo = std::min(first, second), hi = std::max(first, second);
    switch (action) {
        case SA_STYLE: return {-1, -2};
        case SA_INSERT:
        case SA_REPLACE: return {lo, hi};
        case SA_DELETE: return {lo, lo};
        default: return {0, POS_TO_END};
    }
}

}  // namespace

void CZentrelCtrl::OnTextChanged(long nAction, long nFirst, long nSecond) {
    LayoutRange range{std::min(nFirst, nSecond), std::max(nFirst, nSecond)};
    const LayoutRange touched = RangesTouched(nAction, nFirst, nSecond);
    m_RowCheckpoints.DropFrom(nAction == SA_RESET ? 0 : range.nStart);
    m_CollapseRoot.RemoveEmptyIn(touched.nStart, touched.nEnd);
    m_Bookmarks.OnTextChanged(touched.nStart, touched.nEnd);
    switch (nAction) {
        case SA_INSERT:
            range.nEnd = nSecond;
            ApplyTextChange(nFirst, 0, nSecond - nFirst, &range);
            break;
        case SA_DELETE:
            range.nEnd = nFirst;
            ApplyTextChange(nFirst, nSecond - nFirst, 0, &range);
            break;
        case SA_RESET:
            range.nEnd = POS_TO_END;
            m_Lines.RemoveAll();
            m_Lines.InsertAt(0, 0);
            break;
        case SA_REPLACE:
            range.nEnd = nSecond;
            ApplyTextChange(nFirst, std::max(0L, ReplacedBytes(nFirst, nSecond)), nSecond - nFirst, &range);
            break;
        default:
            break;  // style-only and unknown changes leave the layout alone
    }
    if (HasWindow()) {
        InvalidateRange(range.nStart, range.nEnd);
        UpdateScrollBars(-1, -1);
    }
    FireEvent(EVENT_DOCUMENTCHANGED, {Variant::Short(static_cast<SHORT>(nAction)), Variant::Long(nFirst),
                                      Variant::Long(std::abs(nSecond - nFirst))});
}

// In a window the rows are laid out anew: a change of most of a large text in one pass over the
// whole text, any other around the change. Without a window only the table's total is kept
// right; the layout that follows the window's creation breaks the lines.
void CZentrelCtrl::ApplyTextChange(long nPos, long nRemoved, long nInserted, LayoutRange* pRange) {
    if (!HasWindow()) {
        if (nRemoved > 0) TakeBytes(m_Lines, nPos, nRemoved, nPos + nRemoved, pRange);
        if (nInserted > 0) m_Lines.AddAt(ReceivingLine(m_Lines, nPos), nInserted);
    } else if (LaysOutWhole(nRemoved, nInserted, m_pDoc ? m_pDoc->GetLength() : 0)) {
        RelayoutAll(nPos, pRange);
    } else {
        RelayoutChange(nPos, nRemoved, nInserted, pRange);
    }
    TellAccessibleTextChange(nPos, nRemoved, nInserted);
}

long CZentrelCtrl::ReplacedBytes(long nFirst, long nSecond) const {
    return m_Lines.m_nTotal + (nSecond - nFirst) - (m_pDoc ? m_pDoc->GetLength() : 0);
}

void CZentrelCtrl::RelayoutAll(long nFrom, LayoutRange* pRange) {
    WrapAll(m_Options, BreakWidth(), &m_Lines);
    // The lines above the change came out as they were; everything from the line above it on
    // counts as changed, down to the bottom of the window.
    const long first = std::max(0L, static_cast<long>(m_Lines.FindLine(std::min<long>(nFrom, m_Lines.m_nTotal))) - 1);
    pRange->nStart = std::min(pRange->nStart, m_Lines.GetLineStart(first));
    pRange->nEnd = POS_TO_END;
}
