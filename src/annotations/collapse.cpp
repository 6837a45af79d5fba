// Collapsing and expanding blocks: the view's side of the collapse tree. The tree decides what
// may fold; here the line table is brought in step, the block is selected and shown.
#include <algorithm>

#include "platform/com/automation.h"
#include "platform/window/caret.h"
#include "src/view/zentrelctrl.h"

namespace {

// The plus and minus boxes of the gutter: 9 pixels square, from x 14 to 23, centred on a row.
constexpr LONG kBoxLeft = 14, kBoxRight = 23, kBoxSize = 9;

}  // namespace

BOOL CZentrelCtrl::CollapseBlock(long nStart, long nEnd, BOOL bUpdate) {
    if (!m_CollapseRoot.Collapse(nStart, nEnd)) return FALSE;
    if (!bUpdate || !HasWindow()) return TRUE;
    const long lo = std::min(nStart, nEnd), hi = std::max(nStart, nEnd);
    LayoutRange range{lo, hi};
    RelayoutSpan(lo, hi, &range);
    HideCaret(m_hWnd);
    ScrollRangeIntoView(lo, hi);
    m_pSelection->SetRange(lo, hi);
    InvalidateRange(range.nStart, range.nEnd);
    PlaceCaret();
    ShowCaret(m_hWnd);
    UpdateScrollBars(-1, -1);
    return TRUE;
}

BOOL CZentrelCtrl::ExpandBlocks(long nStart, long nEnd, BOOL bOneLevel) {
    const CCollapseNode::Expansion done = m_CollapseRoot.Expand(nStart, nEnd, bOneLevel != FALSE);
    if (done.count == 0) return FALSE;
    if (!HasWindow()) return TRUE;
    if (done.count == 1) {
        LayoutRange range{done.firstBlock, done.last};
        RelayoutSpan(done.firstBlock, done.last, &range);
    } else {
        Reformat(FALSE);
    }
    HideCaret(m_hWnd);
    m_pSelection->SetRange(done.first, done.last);
    ScrollRangeIntoView(done.first, done.last);
    InvalidateControl();
    PlaceCaret();
    ShowCaret(m_hWnd);
    UpdateScrollBars(-1, -1);
    return TRUE;
}

BOOL CZentrelCtrl::Collapse() {
    if (!m_pDoc || !HasWindow() || m_nSelActive == m_nSelAnchor) return FALSE;
    return CollapseBlock(m_nSelActive, m_nSelAnchor, TRUE);
}

BOOL CZentrelCtrl::Expand(BOOL bOneLevel) {
    if (!m_pDoc) return FALSE;
    return ExpandBlocks(m_nSelActive, m_nSelAnchor, bOneLevel);
}

void CZentrelCtrl::CheckBlockRange(long nStart, long nEnd) const {
    const long length = m_pDoc ? m_pDoc->GetLength() : 0;
    const auto inside = [length](long pos) { return pos >= 0 && pos < length; };
    if (!m_pDoc || !inside(nStart) || !inside(nEnd)) ThrowError(CTL_E_INVALIDPROPERTYVALUE);
}

BOOL CZentrelCtrl::CollapseRange(long nStart, long nEnd) {
    CheckBlockRange(nStart, nEnd);
    if (!HasWindow()) return FALSE;
    return CollapseBlock(nStart, nEnd, TRUE);
}

BOOL CZentrelCtrl::ExpandRange(long nStart, long nEnd, BOOL bOneLevel) {
    CheckBlockRange(nStart, nEnd);
    return ExpandBlocks(nStart, nEnd, bOneLevel);
}

RECT CZentrelCtrl::GetFoldBoxRect(long nLine) const { return FoldBoxRectAt((nLine - m_nTopLine) * m_nLineHeight); }

RECT CZentrelCtrl::FoldBoxRectAt(long yTop) const {
    const auto top = static_cast<LONG>(yTop + (m_nLineHeight - kBoxSize) / 2);
    return RECT{kBoxLeft, top, kBoxRight, top + kBoxSize};
}

BOOL CZentrelCtrl::SelectionBoxOnLine(long nLine) const {
    const long lo = std::min(m_nSelActive, m_nSelAnchor), hi = std::max(m_nSelActive, m_nSelAnchor);
    if (lo == hi || nLine < 0 || nLine >= m_Lines.m_nCount) return FALSE;
    const long lineStart = m_Lines.GetLineStart(nLine), lineEnd = lineStart + m_Lines.GetAt(nLine);
    const bool shares = std::min(hi, lineEnd) - std::max(lo, lineStart) > 0;
    const auto inLine = [&](long pos) { return pos >= lineStart && pos < lineEnd; };
    return shares && (inLine(lo) || inLine(hi) || hi == lineEnd);
}

BOOL CZentrelCtrl::OnGutterBox(long nLine, int x, int y) {
    if (!m_pDoc || nLine < 0 || nLine >= m_Lines.m_nCount) return FALSE;
    const RECT box = GetFoldBoxRect(nLine);
    if (x < box.left || x >= box.right || y < box.top || y >= box.bottom) return FALSE;
    if (SelectionBoxOnLine(nLine) && Collapse()) return TRUE;
    const long lineStart = m_Lines.GetLineStart(nLine);
    long blockStart, blockEnd;
    if (!FindCollapse(lineStart, &blockStart, &blockEnd)) return FALSE;
    ExpandBlocks(lineStart, lineStart + m_Lines.GetAt(nLine), TRUE);
    return TRUE;
}
