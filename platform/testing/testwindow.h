// The window of the deterministic backend: it records what the control asks of its window
// (invalidations, updates, timers, wake-ups) and lets a test play the event loop's part
// (resize, paint, timer ticks, pumping posted messages) one step at a time.
#pragma once
#include <cstdint>
#include <map>
#include <vector>

#include "platform/window/window.h"

class CTestPlatform;

class CTestWindowBackend : public IWindowBackend {
public:
    CTestWindowBackend(CTestPlatform* platform, HWND hwnd, HWND parent, const RECT& rc);
    ~CTestWindowBackend() override;
    CTestWindowBackend(const CTestWindowBackend&) = delete;
    CTestWindowBackend& operator=(const CTestWindowBackend&) = delete;

    RECT ClientRect() const override;
    void Invalidate(const RECT* rc) override;
    void Update() override;
    void SetTimer(UINT id, UINT ms) override;
    void KillTimer(UINT id) override;
    void PostedMessageWaiting() override;
    void SetFocus() override;
    bool HasFocus() const override;

    HWND Handle() const { return m_hwnd; }
    HWND Parent() const { return m_hwndParent; }

    // Changes the client size as a user's resize would: WM_SIZE follows if the size changed.
    // Negative sizes count as 0.
    void SetClientSize(LONG cx, LONG cy);

    // Every invalidation in order, as asked (null: the whole client area), until cleared.
    const std::vector<RECT>& Invalidated() const { return m_invalidated; }
    void ClearInvalidated() { m_invalidated.clear(); }
    // The bounds of what is invalid and not yet painted, within the client area.
    RECT PendingUpdate() const { return m_rcPending; }
    int UpdateCount() const { return m_nUpdates; }
    int PaintCount() const { return m_nPaints; }
    // Delivers the pending paint as the event loop would; false if nothing was invalid.
    bool Paint();

    // Running timers, id to period in milliseconds.
    std::map<UINT, UINT> Timers() const;
    bool HasTimer(UINT id) const { return m_timers.count(id) != 0; }
    // Sends WM_TIMER for a running timer; false if it is not running.
    bool FireTimer(UINT id);

    // Set when a message is posted, cleared by PumpPostedMessages.
    bool IsPostWaiting() const { return m_bPostWaiting; }
    int WakeCount() const { return m_nWakes; }
    // What the event loop does on a wake-up: clears the flag, then delivers what is queued.
    int PumpPostedMessages();

private:
    friend class CTestPlatform;
    struct CTimer {
        UINT nPeriod;
        uint64_t nDue;  // on the platform's clock
    };

    CTestPlatform* m_pPlatform;  // null once the platform has gone
    HWND m_hwnd;
    HWND m_hwndParent;
    LONG m_cx, m_cy;
    std::vector<RECT> m_invalidated;
    RECT m_rcPending;
    int m_nUpdates = 0;
    int m_nPaints = 0;
    std::map<UINT, CTimer> m_timers;
    bool m_bPostWaiting = false;
    int m_nWakes = 0;
};

// The test window behind a handle, or null if the handle is invalid or belongs to another backend.
CTestWindowBackend* TestWindow(HWND hwnd);
