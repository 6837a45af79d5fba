// Rebuilding the whole layout: after a change of width, font or a layout setting.
#include "platform/window/caret.h"
#include "platform/window/controls.h"
#include "platform/window/scrollbar.h"
#include "src/layout/linelengthlist.h"
#include "src/layout/rowwrapper.h"
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

// A large wrapped text laid out while the vertical bar is hidden would be laid out twice: the
// bar that its rows call for narrows the window, and the resize lays the text out again. When
// the first rows already fill the window twice over, the bar is shown before the layout, and the
// resize that it causes lays the text out once at the narrower width. Gives whether that layout
// took place.
bool CZentrelCtrl::LaidOutBehindVerticalBar(long nWidth) {
    ScrollBarState bar;
    if (!HasWindow() || !GetOption(OPT_WORDWRAP) || m_pDoc->GetLength() <= kBusyPanelThreshold ||
        !GetScrollBarState(m_hWnd, SB_VERT, &bar) || bar.visible)
        return false;
    const long rows = 2 * GetVisibleLines() + 2;
    CLineLengthList first;
    if (CRowWrapper(*this, m_pDoc, m_Options, nWidth).WrapRows(rows, &first) < rows) return false;
    // No layout stands at any width until one is made: a resize delivered at once lays out.
    m_nWrapWidth = -1;
    ShowScrollBar(m_hWnd, SB_VERT, TRUE);
    return m_nWrapWidth != -1;
}

BOOL CZentrelCtrl::Reformat(BOOL bOnlyIfWidthChanged) {
    if (!m_pDoc || !GetEnabled()) return FALSE;
    long width = GetWrapWidth();
    if (bOnlyIfWidthChanged && width == m_nWrapWidth) return FALSE;
    if (LaidOutBehindVerticalBar(width)) return TRUE;
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
