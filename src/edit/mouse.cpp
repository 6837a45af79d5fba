// The mouse: caret placement, drag selection that scrolls while the button is held outside the
// view, double and triple clicks, and the start of a text drag. The stock mouse events come
// first, from the default handling.
#include <algorithm>

#include "platform/window/input.h"
#include "platform/window/keys.h"
#include "src/view/zentrelctrl.h"

namespace {

// The drag selection runs on its timer this often while the button is held.
constexpr UINT kDragSelectTimerMs = 5;

LPARAM PointParam(int x, int y) { return MAKELPARAM(x, y); }

// The button that drags a selection, as the hardware has it.
bool SelectButtonDown() {
    const int vk = GetSystemMetrics(SM_SWAPBUTTON) ? VK_RBUTTON : VK_LBUTTON;
    return GetAsyncKeyState(vk) < 0;
}

}  // namespace

// Gives TRUE if a click at (x, y) in the gutter was taken by the box of its line.
BOOL CZentrelCtrl::GutterBoxTakesClick(int x, int y) {
    const long line = y / m_nLineHeight + m_nTopLine;
    return line >= 0 && line < m_Lines.m_nCount && OnGutterBox(line, x, y);
}

void CZentrelCtrl::OnLButtonDown(UINT nFlags, int x, int y) {
    HidePicker();
    m_bCompletionHeld = 1;
    DefWindowProc(WM_LBUTTONDOWN, nFlags, PointParam(x, y));
    if (!GetOption(OPT_MOUSESELECTIONENABLE)) return;
    const DWORD now = GetTickCount();
    if (m_nClickCount == 0) {
        m_dwLastClick = now;
        m_nClickCount = 1;
    } else if (now - m_dwLastClick <= GetDoubleClickTime()) {
        m_dwLastClick = now;
        ++m_nClickCount;
    } else {
        m_nClickCount = 0;  // too late: this click counts for nothing
    }
    if (m_nClickCount >= 3) {
        OnTripleClick(x, y);
        m_nClickCount = 0;
        return;
    }
    RelayToToolTip(WM_LBUTTONDOWN, nFlags, PointParam(x, y));
    if (!m_pDoc) return;
    const int mods = Mods();
    const long gutterEdge = m_nIndentSize - m_nCharWidth;
    if (x <= gutterEdge) {
        if (x >= gutterEdge - 2) return;  // the strip along the gutter's edge takes no clicks
        if (GutterBoxTakesClick(x, y)) return;
    }
    const long pos = PositionFromClientPoint(x, y);
    m_nGoalX = -1;
    const long selMin = std::min(m_nSelActive, m_nSelAnchor), selMax = std::max(m_nSelActive, m_nSelAnchor);
    if (selMin != selMax && pos >= selMin && pos < selMax && GetOption(OPT_DRAGDROPEDIT) && BeginTextDrag(pos)) return;
    MoveCaret(pos, mods);
    SetCapture(m_hWnd);
    m_bMouseDown = TRUE;
}

void CZentrelCtrl::OnLButtonUp(UINT nFlags, int x, int y) {
    DefWindowProc(WM_LBUTTONUP, nFlags, PointParam(x, y));
    RelayToToolTip(WM_LBUTTONUP, nFlags, PointParam(x, y));
    if (!m_bMouseDown) return;
    EndDragSelect();
}

// Ends a drag selection: the mouse goes free and the timer stops.
void CZentrelCtrl::EndDragSelect() {
    ReleaseCapture();
    m_bMouseDown = FALSE;
    if (m_bDragSelectTimer) {
        KillTimer(m_hWnd, kDragSelectTimer);
        m_bDragSelectTimer = FALSE;
    }
}

void CZentrelCtrl::OnMouseMove(UINT nFlags, int x, int y) {
    DefWindowProc(WM_MOUSEMOVE, nFlags, PointParam(x, y));
    // The tool follows the mouse before the tip hears of the move, so that a move inside the
    // box starts the rest anew.
    MoveToolRect(x, y);
    RelayToToolTip(WM_MOUSEMOVE, nFlags, PointParam(x, y));
    if (!m_bMouseDown || !SelectButtonDown()) return;
    // While the button is held the selection follows the mouse on a timer too, so that it goes
    // on scrolling while the mouse rests outside the view.
    if (!m_bDragSelectTimer) {
        SetTimer(m_hWnd, kDragSelectTimer, kDragSelectTimerMs);
        m_bDragSelectTimer = TRUE;
    }
    OnDragSelectTimer();
}

void CZentrelCtrl::OnDragSelectTimer() {
    if (!m_bMouseDown || !m_pDoc || !SelectButtonDown()) {
        if (m_bDragSelectTimer) KillTimer(m_hWnd, kDragSelectTimer);
        m_bDragSelectTimer = FALSE;
        return;
    }
    POINT pt;
    if (!GetCursorPos(&pt) || !ScreenToClient(m_hWnd, &pt)) return;
    DragSelectTo(pt.x, pt.y);
}

// One pass of a drag selection: the active end goes under the mouse, which scrolls the view when
// the mouse is outside it, and the window shows the result at once.
void CZentrelCtrl::DragSelectTo(int x, int y) {
    const long pos = PositionFromClientPoint(x, y);
    if (pos != m_nSelActive) MoveCaret(pos, 1);
    UpdateWindow(m_hWnd);
}

// A double click is not gated by MouseSelectionEnable. With Ctrl it selects the syntax token.
void CZentrelCtrl::OnLButtonDblClk(UINT nFlags, int x, int y) {
    DefWindowProc(WM_LBUTTONDBLCLK, nFlags, PointParam(x, y));
    if (m_pDoc) {
        const int mods = Mods();
        const long pos = PositionFromClientPoint(x, y);
        if (x <= m_nIndentSize && GutterBoxTakesClick(x, y)) return;
        m_nGoalX = -1;
        long active = m_nSelActive, anchor = m_nSelAnchor;
        if (mods == 2)
            GetTokenRange(pos, &active, &anchor);
        else
            GetWordRange(pos, &active, &anchor);
        SetSelectionEnds(active, anchor);
    }
    m_nClickCount = 2;
    m_dwLastClick = GetTickCount();
}

// The third click selects the logical line with its line break; the document moves the ends.
void CZentrelCtrl::OnTripleClick(int x, int y) {
    if (!m_pDoc) return;
    const long pos = PositionFromClientPoint(x, y);
    if (x <= m_nIndentSize && GutterBoxTakesClick(x, y)) return;
    m_nGoalX = -1;
    m_pSelection->SetActive(pos, FALSE);
    m_pSelection->MoveToLineStart(FALSE);
    m_pSelection->MoveLineDown(TRUE, 1);
}

void CZentrelCtrl::OnMButtonDown(UINT nFlags, int x, int y) {
    HidePicker();
    DefWindowProc(WM_MBUTTONDOWN, nFlags, PointParam(x, y));
    RelayToToolTip(WM_MBUTTONDOWN, nFlags, PointParam(x, y));
    if (m_bMouseDown) EndDragSelect();
}

// The right button neither moves the caret nor opens a menu: a host that wants one listens to
// the stock mouse events.
void CZentrelCtrl::OnRButtonDown(UINT nFlags, int x, int y) {
    HidePicker();
    DefWindowProc(WM_RBUTTONDOWN, nFlags, PointParam(x, y));
    RelayToToolTip(WM_RBUTTONDOWN, nFlags, PointParam(x, y));
}

void CZentrelCtrl::OnNcLButtonDown() { HidePicker(); }
