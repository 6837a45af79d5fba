// The tooltip: a small popup with one line of text that comes up when the mouse comes to rest
// inside the tool rectangle of its owner window, and goes when the mouse leaves that rectangle,
// a button is pressed, the tip is switched off, or it has been up for a while. Its text is asked
// of the owner each time, by WM_NOTIFY with TTN_NEEDTEXT; TTN_SHOW and TTN_POP tell the owner
// when it comes and goes. The owner relays its mouse messages to it (RelayEvent): the tip sees
// the mouse only through them. Times run on the window timers, so the test backend's clock
// drives them as it drives every other timer.
#pragma once
#include <cstdint>
#include <string>

#include "platform/window/window.h"

constexpr UINT TTN_NEEDTEXT = static_cast<UINT>(-520);
constexpr UINT TTN_SHOW = static_cast<UINT>(-521);
constexpr UINT TTN_POP = static_cast<UINT>(-522);
constexpr UINT WM_MOUSELEAVE = 0x02A3;

struct NMHDR {
    HWND hwndFrom = nullptr;
    uintptr_t idFrom = 0;
    UINT code = 0;
};

// The text request: the owner points lpszText at a text that outlives the call, or copies at
// most 79 bytes into szText. An empty or missing text shows no tip.
struct NMTTDISPINFO {
    NMHDR hdr;
    const char* lpszText = nullptr;
    char szText[80] = {};
};

class CToolTipCtrl final : private IMessageHandler {
public:
    static constexpr UINT kInitialDelay = 500;  // the rest before the tip comes up, in ms
    static constexpr UINT kAutoPop = 5000;      // how long it stays up without a move
    static constexpr int kBelowCursor = 20;     // how far below the mouse the tip stands

    CToolTipCtrl() = default;
    ~CToolTipCtrl();
    CToolTipCtrl(const CToolTipCtrl&) = delete;
    CToolTipCtrl& operator=(const CToolTipCtrl&) = delete;

    // Makes the tip's popup for `owner`; FALSE if the window layer refuses. It goes with the owner.
    BOOL Create(HWND owner);
    HWND GetSafeHwnd() const { return IsWindow(m_hWnd) ? m_hWnd : nullptr; }
    // The one tool: its id and its rectangle in the owner's client pixels; the text by callback.
    BOOL AddTool(UINT id, const RECT& rc);
    void SetToolRect(UINT id, const RECT& rc);
    RECT GetToolRect() const { return m_rcTool; }
    // An inactive tip shows nothing and drops one that is up.
    void Activate(BOOL bActivate);
    BOOL IsActive() const { return m_bActive; }
    // A mouse message of the owner, in its client coordinates.
    void RelayEvent(const MSG& msg);
    // Whether the tip is up, and what it shows.
    bool IsShowing() const { return m_bShowing; }
    const std::string& ShownText() const { return m_strShown; }

private:
    static constexpr UINT kShowTimer = 1;
    static constexpr UINT kPopTimer = 2;
    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override;
    void Show();
    void Pop();
    void Notify(NMHDR* hdr);
    // The owner shows the cursor that fits the tip's state, where the mouse is over it.
    void RefreshOwnerCursor();

    HWND m_hWnd = nullptr;
    HWND m_hwndOwner = nullptr;
    UINT m_nToolId = 0;
    bool m_bHasTool = false;
    RECT m_rcTool{};
    BOOL m_bActive = TRUE;
    bool m_bShowing = false;
    std::string m_strShown;
};
