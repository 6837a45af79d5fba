// The deterministic backend for unit tests: a manual clock that drives timers, settable key
// states, a beep counter, focus moved between its windows on request, the wait cursor's depth,
// and the drawing layer's fonts (testfont.h) and recording contexts (testdc.h).
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/gdi/gdiobjects.h"
#include "platform/testing/testclipboard.h"
#include "platform/testing/testdialogs.h"
#include "platform/testing/testdragdrop.h"
#include "platform/testing/testwindow.h"
#include "platform/window/window.h"

class CTestPlatform : public IPlatformBackend, public IGdiBackend {
public:
    CTestPlatform() = default;
    // Windows of this platform still open are abandoned (see AbandonAllWindows).
    ~CTestPlatform() override;
    CTestPlatform(const CTestPlatform&) = delete;
    CTestPlatform& operator=(const CTestPlatform&) = delete;

    std::unique_ptr<IWindowBackend> CreateWindowBackend(HWND hwnd, HWND parent, const RECT& rc) override;
    DWORD TickCount() override { return static_cast<DWORD>(m_nNow); }
    short KeyState(int vk) override;
    void Beep(UINT type) override;
    std::unique_ptr<IWindowBackend> CreateChildControl(HWND hwnd, ChildControlKind kind, HWND parent,
                                                       const RECT& rc) override;
    void SetWaitCursor(bool on) override { m_nWaitCursor += on ? 1 : -1; }
    POINT CursorPos() override { return m_ptCursor; }
    UINT DoubleClickTime() override { return m_nDoubleClickTime; }
    bool ButtonsSwapped() override { return m_bSwapped; }
    RECT DesktopRect() override { return m_rcDesktop; }
    void SetDesktopRect(const RECT& rc) { m_rcDesktop = rc; }
    void SetCursor(UINT id) override { m_nCursor = id; }
    // The id of the cursor last set (platform/window/cursor.h), 0 before any.
    UINT CurrentCursor() const { return m_nCursor; }

    // The drawing layer: fonts by the formulas of testfont.h; a screen of kScreenSize.
    static constexpr SIZE kScreenSize{1280, 1024};
    std::shared_ptr<CFontImpl> CreateFont(const LOGFONTA& lf) override;
    std::unique_ptr<CDC> CreateScreenDC() override;

    // How many BeginWaitCursor calls are not yet ended.
    int WaitCursorDepth() const { return m_nWaitCursor; }
    // The child controls inside a window, in order of creation; a tip's popup, which the window
    // owns but which stands on the screen of its own, is not one of them.
    std::vector<HWND> ChildControlsOf(HWND parent) const;

    // Sets the clock; no timer fires, and running timers keep the time they have left.
    void SetTickCount(DWORD ticks);
    // Moves the clock on. Each timer that falls due on the way fires at its due time, as often
    // as its period fits, in the order of due times.
    void AdvanceClock(DWORD ms);

    // Out-of-range key codes are ignored and read as 0.
    void SetKeyState(int vk, short state);
    void SetKeyDown(int vk, bool down);

    // The mouse: its place on the screen (a top-level window's client area starts at the
    // rectangle it was made with), the double-click time, swapped buttons.
    void SetCursorPos(POINT pt) { m_ptCursor = pt; }
    void SetDoubleClickTime(UINT ms) { m_nDoubleClickTime = ms; }
    void SetButtonsSwapped(bool swapped) { m_bSwapped = swapped; }

    int BeepCount() const { return m_nBeeps; }
    UINT LastBeepType() const { return m_nLastBeep; }
    void ResetBeeps() { m_nBeeps = 0; m_nLastBeep = 0; }

    // The window of this platform with the focus, or null.
    HWND FocusWindow() const { return m_hwndFocus; }
    // WM_KILLFOCUS to the window that had the focus, then WM_SETFOCUS to `hwnd`; each names the
    // other in wParam. Null: the focus leaves every window.
    void MoveFocus(HWND hwnd);

    std::vector<HWND> Windows() const;
    // DestroyWindow on every window of this platform: each handler hears WM_DESTROY.
    void DestroyAllWindows();
    // Invalidates every window of this platform without a message: their handlers, often locals
    // of a test that has ended, may be gone.
    void AbandonAllWindows();

private:
    friend class CTestWindowBackend;
    void Forget(CTestWindowBackend* window);
    uint64_t Now() const { return m_nNow; }
    // The running timer due first, no later than `limit`; false if none.
    bool NextDueTimer(uint64_t limit, HWND* hwnd, UINT* id, uint64_t* due) const;

    uint64_t m_nNow = 0;
    short m_keys[256] = {};
    int m_nBeeps = 0;
    UINT m_nLastBeep = 0;
    HWND m_hwndFocus = nullptr;
    std::vector<CTestWindowBackend*> m_windows;  // in order of creation
    int m_nWaitCursor = 0;
    POINT m_ptCursor{};
    UINT m_nDoubleClickTime = 500;
    bool m_bSwapped = false;
    RECT m_rcDesktop{0, 0, kScreenSize.cx, kScreenSize.cy};
    UINT m_nCursor = 0;
};

// Installs a fresh test platform, as the window and the drawing backend, an empty clipboard and scripted drags, for its lifetime; on the
// way out it abandons the windows still open (no WM_DESTROY) and puts the previous backends back.
class CTestPlatformScope {
public:
    CTestPlatformScope();
    ~CTestPlatformScope();
    CTestPlatformScope(const CTestPlatformScope&) = delete;
    CTestPlatformScope& operator=(const CTestPlatformScope&) = delete;

    CTestPlatform& Platform() { return m_platform; }
    CTestPlatform* operator->() { return &m_platform; }
    CTestClipboard& Clipboard() { return m_clipboard; }
    CTestDragDrop& DragDrop() { return m_dragDrop; }
    CTestDialogs& Dialogs() { return m_dialogs; }

private:
    CTestPlatform m_platform;
    CTestClipboard m_clipboard;
    CTestDragDrop m_dragDrop;
    CTestDialogs m_dialogs;
    IPlatformBackend* m_pPrevious;
    IGdiBackend* m_pPreviousGdi;
    IClipboardBackend* m_pPreviousClipboard;
    IDragDropBackend* m_pPreviousDragDrop;
    IDialogBackend* m_pPreviousDialogs;
};
