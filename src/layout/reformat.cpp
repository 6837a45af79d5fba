// Rebuilding the whole layout: after a change of width, font or a layout setting.
#include "platform/window/caret.h"
#include "platform/window/controls.h"
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
    // The client rectangle is in the layout's units already: contexts map one unit to a pixel.
    RECT rc;
    if (!HasWindow() || !GetClientRect(m_hWnd, &rc)) return floor;
    return std::max(static_cast<long>(rc.Width()) - m_nIndentSize, floor);
}

BOOL CZentrelCtrl::Reformat(BOOL bOnlyIfWidthChanged) {
    if (!m_pDoc || !GetEnabled()) return FALSE;
    long width = GetWrapWidth();
    if (bOnlyIfWidthChanged && width == m_nWrapWidth) return FALSE;
    if (HasWindow()) HideCaret(m_hWnd);
    m_nWrapWidth = width;
    long length = m_pDoc->GetLength();
    if (length > 0) {
        BeginWaitCursor();
        long topPos = m_nTopLine < m_Lines.m_nCount ? m_Lines.GetLineStart(m_nTopLine) : length;
        bool busy = length > kBusyPanelThreshold;
        if (busy) {
            SetBusyText("Reformatting doumcument...");
            ShowBusyPanel(TRUE);
        }
        WrapAll(m_Options, GetOption(OPT_WORDWRAP) ? width : WIDTH_UNLIMITED, &m_Lines);
        if (busy) ShowBusyPanel(FALSE);
        m_nTopLine = topPos < length ? m_Lines.FindLine(topPos) : std::max(0L, static_cast<long>(m_Lines.m_nCount) - 1);
        EndWaitCursor();
    }
    if (HasWindow()) {
        PlaceCaret();
        ShowCaret(m_hWnd);
        ClampScrollPosition();
        UpdateScrollBars(-1, -1);
    }
    Refresh();
    return TRUE;
}
