// Painting a window: the paint context that WM_PAINT hands out, contexts for drawing at other
// times, the invalid area, and moving a window's pixels when it scrolls.
#pragma once
#include "platform/gdi/dc.h"
#include "platform/window/window.h"

struct PAINTSTRUCT {
    CDC* pDC = nullptr;
    RECT rcPaint{};  // bounds of what is to be painted, in client pixels
};

// Inside WM_PAINT: a context whose system region is what was invalid, which becomes valid.
// Null if the window has none to give. Every BeginPaint is paired with EndPaint.
CDC* BeginPaint(HWND hwnd, PAINTSTRUCT* ps);
void EndPaint(HWND hwnd, const PAINTSTRUCT* ps);

// A context for drawing on the window outside WM_PAINT (what is drawn shows at once), or, with a
// null window, a context of the screen for measuring. Null on failure. Hand it back with ReleaseDC.
CDC* GetDC(HWND hwnd);
int ReleaseDC(HWND hwnd, CDC* dc);

// Bounds of what is invalid and not yet painted; FALSE (and an empty rectangle) when nothing is.
BOOL GetUpdateRect(HWND hwnd, RECT* rc, BOOL erase);
// Marks the rectangle (null: the whole client area) as painted.
BOOL ValidateRect(HWND hwnd, const RECT* rc);

constexpr UINT RDW_INVALIDATE = 0x0001;
constexpr UINT RDW_ERASE = 0x0004;
constexpr UINT RDW_VALIDATE = 0x0008;
constexpr UINT RDW_UPDATENOW = 0x0100;
// Invalidates or validates the rectangle (null: the client area) and, with RDW_UPDATENOW,
// paints what is invalid before it returns.
BOOL RedrawWindow(HWND hwnd, const RECT* rc, UINT flags);

// Moves the pixels inside `scroll` (null: the client area) by (dx, dy), drawing only inside
// `clip` (null: the client area). What the move uncovers becomes invalid; what was invalid
// moves along. No WM_PAINT is sent from here.
BOOL ScrollWindow(HWND hwnd, int dx, int dy, const RECT* scroll, const RECT* clip);

// For backends: what ScrollWindow does to a window. The pixels of `from` move to `to`; both lie
// inside `area`, the part of the scroll rectangle within the clip rectangle, which is all that
// changes. What the move leaves behind inside `area` is `uncovered`, and becomes invalid.
struct ScrollPlan {
    RECT area{};
    RECT from{};
    RECT to{};
    CRgn uncovered;
};
ScrollPlan PlanScroll(int dx, int dy, const RECT& scroll, const RECT& clip);
// An invalid region after the scroll: its part inside the area moves along (and what leaves the
// area is dropped), the rest stays, and what was uncovered is added.
void ScrollInvalidRegion(CRgn* invalid, int dx, int dy, const ScrollPlan& plan);
