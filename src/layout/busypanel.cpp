// The busy panel: a line of text and a small animation over the top of the control while a long
// operation blocks the thread. Calls nest; the panel is up while the count is above 0, and the
// control paints nothing but a flat fill meanwhile, and paints the window anew when it is over.
// An announcement made while the control paints (a document that classifies as the painter asks)
// only counts: showing the panel would paint inside the paint, and the work is over before
// anything could show it.
#include <utility>

#include "platform/window/caret.h"
#include "platform/window/controls.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr int kBusyTextId = 10;
constexpr int kBusyAnimationId = 11;
constexpr UINT kBusyAnimationResource = 242;
constexpr int kAnimationSize = 32;

}  // namespace

void CZentrelCtrl::ShowBusyPanel(BOOL bShow) {
    if (bShow) {
        if (++m_nBusyCount == 1 && HasWindow() && !m_bPainting) OpenBusyPanel();
        return;
    }
    if (m_nBusyCount > 0 && --m_nBusyCount == 0) {
        CloseBusyPanel();
        // What was painted meanwhile is a flat fill: it is painted again with the text.
        if (std::exchange(m_bBusyFilled, false)) InvalidateControl();
    }
    if (HasWindow()) ShowCaret(m_hWnd);
}

void CZentrelCtrl::OpenBusyPanel() {
    HideCaret(m_hWnd);
    m_hwndBusyText = CreateChildControl(ChildControlKind::Static, m_hWnd, kBusyTextId, RECT{});
    m_hwndBusyAnim = CreateChildControl(ChildControlKind::Animation, m_hWnd, kBusyAnimationId, RECT{});
    SetWindowText(m_hwndBusyText, m_strBusyText);
    AnimateOpen(m_hwndBusyAnim, kBusyAnimationResource);
    MoveWindow(m_hwndBusyAnim, 4, 4, kAnimationSize, kAnimationSize, FALSE);
    MoveWindow(m_hwndBusyText, 40, 10, m_rcClient.Width() - kAnimationSize, kAnimationSize, FALSE);
    AnimatePlay(m_hwndBusyAnim);
    ShowWindow(m_hwndBusyAnim, SW_SHOW);
    ShowWindow(m_hwndBusyText, SW_SHOW);
    // The thread blocks from here on: paint the panel now, once.
    InvalidateControl();
    UpdateWindow(m_hWnd);
    UpdateWindow(m_hwndBusyText);
}

void CZentrelCtrl::CloseBusyPanel() {
    if (m_hwndBusyAnim) {
        AnimateStop(m_hwndBusyAnim);
        ShowWindow(m_hwndBusyAnim, SW_HIDE);
        DestroyWindow(std::exchange(m_hwndBusyAnim, nullptr));
    }
    if (m_hwndBusyText) {
        ShowWindow(m_hwndBusyText, SW_HIDE);
        DestroyWindow(std::exchange(m_hwndBusyText, nullptr));
    }
}

void CZentrelCtrl::SetBusyText(const char* lpszText) {
    m_strBusyText = lpszText ? lpszText : "";
    if (m_hwndBusyText) SetWindowText(m_hwndBusyText, m_strBusyText);
}
