// Rebuilding the whole layout: after a change of width, font or a layout setting.
#include "src/view/zentrelctrl.h"

namespace {

// Above this size a full relayout shows the busy panel: below it the pass is too short to notice.
constexpr long kBusyPanelThreshold = 307200;
// The narrowest wrap width, in average characters, so that a narrow window still shows words.
constexpr long kMinWrapColumns = 5;
// GetWrapWidth's answer without word wrap: a value that only serves to compare widths.
constexpr long kNoWrapWidth = 0x3FFFFFFF;

}  // namespace

long CZentrelCtrl::GetWrapWidth() {
    if (!GetOption(OPT_WORDWRAP)) return kNoWrapWidth;
    long floor = kMinWrapColumns * m_nCharWidth + m_nIndentSize;
    RECT rc;
    if (!HasWindow() || !GetClientRect(m_hWnd, &rc)) return floor;
    return std::max(static_cast<long>(rc.Width()) - m_nIndentSize, floor);
}

BOOL CZentrelCtrl::Reformat(BOOL bOnlyIfWidthChanged) {
    if (!m_pDoc || !GetEnabled()) return FALSE;
    long width = GetWrapWidth();
    if (bOnlyIfWidthChanged && width == m_nWrapWidth) return FALSE;
    m_nWrapWidth = width;
    long length = m_pDoc->GetLength();
    if (length > 0) {
        long topPos = m_nTopLine < m_Lines.m_nCount ? m_Lines.GetLineStart(m_nTopLine) : length;
        bool busy = length > kBusyPanelThreshold;
        if (busy) {
            SetBusyText("Reformatting doumcument...");
            ShowBusyPanel(TRUE);
        }
        WrapAll(m_Options, GetOption(OPT_WORDWRAP) ? width : WIDTH_UNLIMITED, &m_Lines);
        if (busy) ShowBusyPanel(FALSE);
        m_nTopLine = topPos < length ? m_Lines.FindLine(topPos) : std::max(0L, static_cast<long>(m_Lines.m_nCount) - 1);
    }
    if (HasWindow()) {
        PlaceCaret();
        ClampScrollPosition();
        UpdateScrollBars(-1, -1);
    }
    Refresh();
    return TRUE;
}

void CZentrelCtrl::ShowBusyPanel(BOOL bShow) {
    // The panel itself, a child window with an animation, comes with the painting code; the
    // nesting is kept here so that painting knows to show only a flat fill meanwhile.
    if (bShow) {
        ++m_nBusyCount;
    } else if (m_nBusyCount > 0) {
        --m_nBusyCount;
    }
}

void CZentrelCtrl::SetBusyText(const char* lpszText) { m_strBusyText = lpszText ? lpszText : ""; }
