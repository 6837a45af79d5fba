// The window of the deterministic backend: it records what the control asks of its window
// (invalidations, updates, timers, wake-ups, paint and window contexts, scrolls, the caret, the
// scroll bars, child controls) and lets a test play the event loop's part (resize, paint, timer
// ticks, pumping posted messages) one step at a time. Its client pixels are kept between
// paints (see testsurface.h), so a test can read what any paint or scroll left on screen.
#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/testing/testdc.h"
#include "platform/window/controls.h"
#include "platform/window/scrollbar.h"
#include "platform/window/window.h"

class CTestPlatform;

// One ScrollWindow as the backend received it (rectangles within the client area).
struct ScrollCall {
    int dx = 0, dy = 0;
    RECT scroll{}, clip{};
};

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
    CDC* BeginPaint(RECT* rcPaint) override;
    void EndPaint(CDC* dc) override;
    CDC* GetDC() override;
    void ReleaseDC(CDC* dc) override;
    bool GetUpdateRect(RECT* rc) const override;
    void Validate(const RECT* rc) override;
    void Scroll(int dx, int dy, const RECT& scroll, const RECT& clip) override;
    void CaretChanged(bool shown, const RECT& rc) override;
    void ScrollBarChanged(int bar, const ScrollBarState& state) override;
    void SetText(const std::string& text) override { m_strText = text; }
    void Move(const RECT& rc) override;
    void Show(bool show) override { m_bShown = show; }
    void Animate(UINT resourceId, bool play) override;
    POINT ClientOrigin() const override;
    void Capture(bool on) override { m_bCaptured = on; }

    HWND Handle() const { return m_hwnd; }
    HWND Parent() const { return m_hwndParent; }
    // Whether the window holds the mouse capture, as its backend was told.
    bool Captured() const { return m_bCaptured; }

    // Changes the client size as a user's resize would: WM_SIZE follows if the size changed.
    // Negative sizes count as 0. Pixels inside both sizes stay.
    void SetClientSize(LONG cx, LONG cy);

    // Every invalidation in order, as asked (null: the whole client area), until cleared.
    const std::vector<RECT>& Invalidated() const { return m_invalidated; }
    void ClearInvalidated() { m_invalidated.clear(); }
    // What is invalid and not yet painted, within the client area, and its bounds.
    const CRgn& PendingRegion() const { return m_rgnPending; }
    RECT PendingUpdate() const { return m_rgnPending.Bounds(); }
    int UpdateCount() const { return m_nUpdates; }
    int PaintCount() const { return m_nPaints; }
    // Delivers WM_PAINT as the event loop would; false if nothing was invalid. A handler that
    // does not call BeginPaint has the area validated for it, as the default handling would.
    bool Paint();

    // The client pixels, and what every context of this window (and memory contexts made from
    // them) drew, in order, until cleared.
    const CTestSurface& Surface() const { return *m_pSurface; }
    COLORREF Pixel(LONG x, LONG y) const { return m_pSurface->Pixel(x, y); }
    const DrawLog& Drawn() const { return *m_pLog; }
    void ClearDrawn() { m_pLog->clear(); }
    // GetDC contexts handed out and not released.
    int OpenWindowDCs() const;
    const std::vector<ScrollCall>& Scrolls() const { return m_scrolls; }

    // The caret as this window shows it, and how often it was told of a change.
    bool CaretShown() const { return m_bCaretShown; }
    RECT CaretRect() const { return m_rcCaret; }
    int CaretChanges() const { return m_nCaretChanges; }
    // The scroll bar as last shown (SB_HORZ, SB_VERT), and how often either changed.
    const ScrollBarState& Bar(int bar) const { return m_bars[bar == SB_VERT ? 1 : 0]; }
    int ScrollBarChanges() const { return m_nBarChanges; }

    // Child controls: kind, rectangle in the parent's client area, text, shown, animation.
    bool IsChildControl() const { return m_bChildControl; }
    ChildControlKind Kind() const { return m_kind; }
    RECT WindowRect() const { return {m_ptOrigin.x, m_ptOrigin.y, m_ptOrigin.x + m_cx, m_ptOrigin.y + m_cy}; }
    const std::string& Text() const { return m_strText; }
    bool Shown() const { return m_bShown; }
    UINT AnimationResource() const { return m_nAnimation; }
    bool AnimationPlaying() const { return m_bPlaying; }

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
    struct CContext {
        std::unique_ptr<CTestDC> dc;
        bool bPaint;  // from BeginPaint, else from GetDC
    };
    CDC* Open(bool paint, const CRgn* system);
    void Close(CDC* dc);
    void MakeChildControl(ChildControlKind kind);

    CTestPlatform* m_pPlatform;  // null once the platform has gone
    HWND m_hwnd;
    HWND m_hwndParent;
    POINT m_ptOrigin;
    LONG m_cx, m_cy;
    std::vector<RECT> m_invalidated;
    CRgn m_rgnPending;
    int m_nUpdates = 0;
    int m_nPaints = 0;
    int m_nBeginPaints = 0;
    std::shared_ptr<CTestSurface> m_pSurface;
    std::shared_ptr<DrawLog> m_pLog;
    std::vector<CContext> m_contexts;
    std::vector<ScrollCall> m_scrolls;
    bool m_bCaretShown = false;
    RECT m_rcCaret{};
    int m_nCaretChanges = 0;
    ScrollBarState m_bars[2];
    int m_nBarChanges = 0;
    bool m_bChildControl = false;
    ChildControlKind m_kind = ChildControlKind::Static;
    std::string m_strText;
    bool m_bShown = true;
    UINT m_nAnimation = 0;
    bool m_bPlaying = false;
    std::map<UINT, CTimer> m_timers;
    bool m_bPostWaiting = false;
    int m_nWakes = 0;
    bool m_bCaptured = false;
};

// The test window behind a handle, or null if the handle is invalid or belongs to another backend.
CTestWindowBackend* TestWindow(HWND hwnd);
