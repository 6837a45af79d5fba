// The system caret: made when the control gets the focus, placed at the selection's active end
// after every scroll and every change that moves it, destroyed when the focus goes.
#include <algorithm>

#include "platform/window/caret.h"
#include "src/view/zentrelctrl.h"

namespace {

// How far off the client area a caret may be placed; further is pointless.
constexpr long kCaretFarOut = -2880;
// Where a caret scrolled sideways behind the gutter goes: shown, but out of sight.
constexpr long kCaretHidden = -4096;

}  // namespace

void CZentrelCtrl::CreateViewCaret() {
    const long width = GetOption(OPT_OVERWRITE) ? m_nCharWidth : 1;
    CreateCaret(m_hWnd, nullptr, static_cast<int>(width), static_cast<int>(m_nLineHeight));
}

void CZentrelCtrl::PlaceCaret() {
    if (!m_bFocused || !m_pDoc || !HasWindow()) return;
    // The mirror may lag behind a change of the text.
    const long pos = std::min<long>(m_nSelActive, m_Lines.m_nTotal);
    POINT pt;
    ClientPointFromPosition(pos, &pt);
    long x = std::clamp<long>(pt.x, kCaretFarOut, m_rcClient.Width());
    long y = std::clamp<long>(pt.y, kCaretFarOut, m_rcClient.Height());
    if (x < m_nIndentSize) x = kCaretHidden;
    SetCaretPos(static_cast<int>(x), static_cast<int>(y));
}

// Shows or hides the selection where only the focus decides whether it shows.
void CZentrelCtrl::InvalidateHiddenSelection() {
    if (GetOption(OPT_HIDESELECTION) && m_nSelActive != m_nSelAnchor) InvalidateRange(m_nSelActive, m_nSelAnchor);
}

void CZentrelCtrl::OnSetFocus() {
    if (m_bFocused) return;
    if (m_pDoc && HasWindow()) {
        m_bFocused = TRUE;  // the repaint and the caret below already belong to a focused view
        InvalidateHiddenSelection();
        CreateViewCaret();
        PlaceCaret();
        ShowCaret(m_hWnd);
    }
    m_bFocused = TRUE;
    CreatePickerWindow();
}

void CZentrelCtrl::OnKillFocus() {
    if (!m_bFocused) return;
    DestroyPickerWindow();
    if (m_pDoc && HasWindow()) {
        m_bFocused = FALSE;
        InvalidateHiddenSelection();
    }
    HideCaret(m_hWnd);
    DestroyCaret();
    m_bFocused = FALSE;
}
