// Invalidating the lines of a position range, the full width of the client area.
#include "src/view/zentrelctrl.h"

void CZentrelCtrl::InvalidateRange(long nStart, long nEnd) {
    if (nStart == nEnd || !HasWindow()) return;
    if (nStart > nEnd) std::swap(nStart, nEnd);
    RECT rc = m_rcClient;
    long firstLine = nStart < m_Lines.m_nTotal ? m_Lines.FindLine(nStart) : m_Lines.m_nCount - 1;
    rc.top = (firstLine - m_nTopLine) * m_nLineHeight;
    if (nEnd < m_Lines.m_nTotal) {
        rc.bottom = (m_Lines.FindLine(nEnd) + 1 - m_nTopLine) * m_nLineHeight;
    } else if (nEnd != POS_TO_END) {
        rc.bottom = (m_Lines.m_nCount - m_nTopLine) * m_nLineHeight;
    }
    rc.top = std::max(rc.top, m_rcClient.top);
    rc.bottom = std::min(rc.bottom, m_rcClient.bottom);
    if (rc.top < rc.bottom) InvalidateControl(&rc);
}

void CZentrelCtrl::InvalidateGutter() {
    if (!HasWindow()) return;
    RECT rc = m_rcClient;
    rc.right = std::min<LONG>(rc.right, m_nIndentSize);
    if (!rc.IsEmpty()) InvalidateControl(&rc);
}

// The gutter cell of the row that holds a position: where the selection's bracket has its box.
void CZentrelCtrl::InvalidateGutterAt(long nPos) {
    if (!HasWindow()) return;
    const long line = nPos < m_Lines.m_nTotal ? m_Lines.FindLine(nPos) : m_Lines.m_nCount - 1;
    RECT rc = m_rcClient;
    rc.right = std::min<LONG>(rc.right, m_nIndentSize);
    rc.top = std::max<LONG>(rc.top, (line - m_nTopLine) * m_nLineHeight);
    rc.bottom = std::min<LONG>(rc.bottom, rc.top + m_nLineHeight);
    if (!rc.IsEmpty()) InvalidateControl(&rc);
}
