#include "platform/window/tooltip.h"

#include "platform/window/cursor.h"
#include "platform/window/input.h"
#include "platform/window/keys.h"
#include "platform/window/registry.h"

namespace {

bool Contains(const RECT& rc, POINT pt) { return pt.x >= rc.left && pt.x < rc.right && pt.y >= rc.top && pt.y < rc.bottom; }

// Where the mouse is, in the owner's client coordinates; false if that cannot be told.
bool MouseInClient(HWND owner, POINT* pt) { return GetCursorPos(pt) && ScreenToClient(owner, pt); }

}  // namespace

CToolTipCtrl::~CToolTipCtrl() {
    if (IsWindow(m_hWnd)) DestroyWindow(m_hWnd);
}

// The popup is a child control of the owner that hears its own timers.
BOOL CToolTipCtrl::Create(HWND owner) {
    IPlatformBackend* platform = GetPlatformBackend();
    if (!platform || !FindLiveRecord(owner)) return FALSE;
    RecordPtr rec = RegisterRecord(owner, this);
    rec->bControl = true;
    rec->kind = ChildControlKind::ToolTip;
    rec->bVisible = false;
    rec->pBackend = platform->CreateChildControl(rec->hwnd, ChildControlKind::ToolTip, owner, RECT{});
    if (!rec->pBackend) {
        UnregisterRecord(rec->hwnd);
        return FALSE;
    }
    m_hWnd = rec->hwnd;
    m_hwndOwner = owner;
    m_bShowing = false;
    return TRUE;
}

BOOL CToolTipCtrl::AddTool(UINT id, const RECT& rc) {
    if (!GetSafeHwnd()) return FALSE;
    m_nToolId = id;
    m_bHasTool = true;
    m_rcTool = rc;
    return TRUE;
}

void CToolTipCtrl::SetToolRect(UINT id, const RECT& rc) {
    if (m_bHasTool && id == m_nToolId) m_rcTool = rc;
}

void CToolTipCtrl::Activate(BOOL bActivate) {
    m_bActive = bActivate;
    if (bActivate || !GetSafeHwnd()) return;
    KillTimer(m_hWnd, kShowTimer);
    Pop();
}

// A move inside the tool starts the rest anew; a move out of it, or any button, ends the tip.
void CToolTipCtrl::RelayEvent(const MSG& msg) {
    if (!GetSafeHwnd() || !m_bActive || !m_bHasTool) return;
    const POINT pt{GET_X_LPARAM(msg.lParam), GET_Y_LPARAM(msg.lParam)};
    switch (msg.message) {
        case WM_MOUSEMOVE:
            if (m_bShowing) {
                if (!Contains(m_rcTool, pt)) Pop();
            } else if (Contains(m_rcTool, pt)) {
                SetTimer(m_hWnd, kShowTimer, kInitialDelay);
            } else {
                KillTimer(m_hWnd, kShowTimer);
            }
            break;
        case WM_LBUTTONDOWN: case WM_RBUTTONDOWN: case WM_MBUTTONDOWN: case WM_LBUTTONDBLCLK:
        case WM_MOUSELEAVE:
            KillTimer(m_hWnd, kShowTimer);
            Pop();
            break;
        default: break;
    }
}

LRESULT CToolTipCtrl::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_TIMER && wParam == kShowTimer) {
        KillTimer(hwnd, kShowTimer);
        Show();
    } else if (message == WM_TIMER && wParam == kPopTimer) {
        Pop();
    } else if (message == WM_DESTROY) {
        m_bShowing = false;
    }
    return 0;
}

// Asks the owner for the text of the tool under the mouse and shows it below the mouse.
void CToolTipCtrl::Show() {
    POINT pt;
    if (!MouseInClient(m_hwndOwner, &pt) || !Contains(m_rcTool, pt)) return;
    NMTTDISPINFO info;
    info.hdr = {m_hWnd, m_nToolId, TTN_NEEDTEXT};
    Notify(&info.hdr);
    info.szText[sizeof info.szText - 1] = 0;
    const std::string text = info.lpszText ? info.lpszText : info.szText;
    if (text.empty() || !GetSafeHwnd()) return;
    m_strShown = text;
    POINT screen{};
    GetCursorPos(&screen);
    SetWindowText(m_hWnd, text);
    MoveWindow(m_hWnd, screen.x, screen.y + kBelowCursor, 0, 0, FALSE);
    ShowWindow(m_hWnd, SW_SHOW);
    m_bShowing = true;
    SetTimer(m_hWnd, kPopTimer, kAutoPop);
    NMHDR hdr{m_hWnd, m_nToolId, TTN_SHOW};
    Notify(&hdr);
    RefreshOwnerCursor();
}

void CToolTipCtrl::Pop() {
    if (!m_bShowing) return;
    m_bShowing = false;
    KillTimer(m_hWnd, kPopTimer);
    ShowWindow(m_hWnd, SW_HIDE);
    NMHDR hdr{m_hWnd, m_nToolId, TTN_POP};
    Notify(&hdr);
    RefreshOwnerCursor();
}

void CToolTipCtrl::Notify(NMHDR* hdr) {
    SendMessage(m_hwndOwner, WM_NOTIFY, m_nToolId, reinterpret_cast<LPARAM>(hdr));
}

void CToolTipCtrl::RefreshOwnerCursor() {
    POINT pt;
    RECT client;
    if (MouseInClient(m_hwndOwner, &pt) && GetClientRect(m_hwndOwner, &client) && Contains(client, pt))
        SendMessage(m_hwndOwner, WM_SETCURSOR, reinterpret_cast<WPARAM>(m_hwndOwner), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
}
