// The mouse cursor tells what a click would do: the I-beam over text, the arrow over a selection
// (a drag starts there), the gutter's mirrored arrow with a mark where a fold box would fold or
// open a block, and while a tip shows an arrow that says which kind of tip it is.
#include <algorithm>

#include "platform/window/input.h"
#include "src/resources/cursors.h"
#include "src/view/zentrelctrl.h"

BOOL CZentrelCtrl::OnSetCursor(HWND, UINT nHitTest, UINT) {
    if (nHitTest != static_cast<UINT>(HTCLIENT) || !m_pDoc) {
        SetCursor(LoadCursor(IDC_ARROW));
        return FALSE;
    }
    SetCursor(LoadCursor(ChooseCursor()));
    return TRUE;
}

UINT CZentrelCtrl::ChooseCursor() {
    if (m_bTipShown) return m_bDocTip ? IDC_DOC_ARROW : IDC_HINT_ARROW;
    POINT pt{};
    if (!GetCursorPos(&pt) || !ScreenToClient(m_hWnd, &pt)) return IDC_ARROW;
    if (pt.x <= m_nIndentSize) return GutterCursor(pt.x, pt.y);
    const long pos = PositionFromClientPoint(pt.x, pt.y);
    const long lo = std::min(m_nSelActive, m_nSelAnchor), hi = std::max(m_nSelActive, m_nSelAnchor);
    return pos >= lo && pos < hi ? IDC_ARROW : IDC_IBEAM;
}

// On a fold box: the collapse mark where the box would fold the selection, the expand mark where
// the line holds a folded block; elsewhere in the gutter the plain mirrored arrow.
UINT CZentrelCtrl::GutterCursor(int x, int y) {
    const long line = y / m_nLineHeight + m_nTopLine;
    if (line < 0 || line >= m_Lines.m_nCount) return IDC_GUTTER_ARROW;
    const RECT box = GetFoldBoxRect(line);
    if (x < box.left || x >= box.right || y < box.top || y >= box.bottom) return IDC_GUTTER_ARROW;
    const long lo = std::min(m_nSelActive, m_nSelAnchor), hi = std::max(m_nSelActive, m_nSelAnchor);
    if (lo != hi && m_CollapseRoot.CanCollapse(lo, hi) && SelectionBoxOnLine(line)) return IDC_GUTTER_COLLAPSE;
    long blockStart, blockEnd;
    if (FindCollapse(m_Lines.GetLineStart(line), &blockStart, &blockEnd)) return IDC_GUTTER_EXPAND;
    return IDC_GUTTER_ARROW;
}
