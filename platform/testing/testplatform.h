// The deterministic backend for unit tests: a manual clock that drives timers, settable key
// states, a beep counter, and focus moved between its windows on request.
#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "platform/testing/testwindow.h"
#include "platform/window/window.h"

class CTestPlatform : public IPlatformBackend {
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

    // Sets the clock; no timer fires, and running timers keep the time they have left.
    void SetTickCount(DWORD ticks);
    // Moves the clock on. Each timer that falls due on the way fires at its due time, as often
    // as its period fits, in the order of due times.
    void AdvanceClock(DWORD ms);

    // Out-of-range key codes are ignored and read as 0.
    void SetKeyState(int vk, short state);
    void SetKeyDown(int vk, bool down);

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

    // Paints go through the hook instead of a plain WM_PAINT (wParam 0) when one is set, so that
    // a drawing layer can hand the handler a device to paint on.
    using PaintHook = std::function<void(HWND hwnd, const RECT& rcUpdate)>;
    void SetPaintHook(PaintHook hook) { m_paintHook = std::move(hook); }

private:
    friend class CTestWindowBackend;
    void Forget(CTestWindowBackend* window);
    void DeliverPaint(HWND hwnd, const RECT& rcUpdate);
    uint64_t Now() const { return m_nNow; }
    // The running timer due first, no later than `limit`; false if none.
    bool NextDueTimer(uint64_t limit, HWND* hwnd, UINT* id, uint64_t* due) const;

    uint64_t m_nNow = 0;
    short m_keys[256] = {};
    int m_nBeeps = 0;
    UINT m_nLastBeep = 0;
    HWND m_hwndFocus = nullptr;
    std::vector<CTestWindowBackend*> m_windows;  // in order of creation
    PaintHook m_paintHook;
};

// Installs a fresh test platform for its lifetime; on the way out it abandons the windows still
// open (no WM_DESTROY) and puts the previous backend back.
class CTestPlatformScope {
public:
    CTestPlatformScope();
    ~CTestPlatformScope();
    CTestPlatformScope(const CTestPlatformScope&) = delete;
    CTestPlatformScope& operator=(const CTestPlatformScope&) = delete;

    CTestPlatform& Platform() { return m_platform; }
    CTestPlatform* operator->() { return &m_platform; }

private:
    CTestPlatform m_platform;
    IPlatformBackend* m_pPrevious;
};
