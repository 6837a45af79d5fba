// Painting services of the window layer: they hand the work to the window's backend, and keep
// the screen contexts that GetDC(nullptr) gives out.
#include "platform/window/paint.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "platform/window/registry.h"

namespace {

// Screen contexts handed out by GetDC(nullptr) and not yet released.
std::vector<std::unique_ptr<CDC>>& ScreenContexts() {
    static auto* contexts = new std::vector<std::unique_ptr<CDC>>;
    return *contexts;
}

RECT ClientOf(const RecordPtr& rec) { return rec->pBackend->ClientRect(); }

}  // namespace

CDC* BeginPaint(HWND hwnd, PAINTSTRUCT* ps) {
    RecordPtr rec = FindLiveRecord(hwnd);
    if (!rec || !ps) return nullptr;
    *ps = PAINTSTRUCT{};
    ps->pDC = rec->pBackend->BeginPaint(&ps->rcPaint);
    return ps->pDC;
}

void EndPaint(HWND hwnd, const PAINTSTRUCT* ps) {
    RecordPtr rec = FindRecord(hwnd);
    if (rec && rec->pBackend && ps && ps->pDC) rec->pBackend->EndPaint(ps->pDC);
}

CDC* GetDC(HWND hwnd) {
    if (!hwnd) {
        IGdiBackend* gdi = GetGdiBackend();
        std::unique_ptr<CDC> dc = gdi ? gdi->CreateScreenDC() : nullptr;
        if (!dc) return nullptr;
        ScreenContexts().push_back(std::move(dc));
        return ScreenContexts().back().get();
    }
    RecordPtr rec = FindLiveRecord(hwnd);
    return rec ? rec->pBackend->GetDC() : nullptr;
}

int ReleaseDC(HWND hwnd, CDC* dc) {
    if (!dc) return 0;
    auto& screens = ScreenContexts();
    auto it = std::find_if(screens.begin(), screens.end(), [dc](const auto& p) { return p.get() == dc; });
    if (it != screens.end()) {
        screens.erase(it);
        return 1;
    }
    // A context of a window that has gone went with the window's backend.
    RecordPtr rec = FindRecord(hwnd);
    if (!rec || !rec->pBackend) return 0;
    rec->pBackend->ReleaseDC(dc);
    return 1;
}

BOOL GetUpdateRect(HWND hwnd, RECT* rc, BOOL) {
    RecordPtr rec = FindLiveRecord(hwnd);
    RECT bounds{};
    const bool any = rec && rec->pBackend->GetUpdateRect(&bounds) && !bounds.IsEmpty();
    if (rc) *rc = any ? bounds : RECT{};
    return any ? TRUE : FALSE;
}

BOOL ValidateRect(HWND hwnd, const RECT* rc) {
    RecordPtr rec = FindLiveRecord(hwnd);
    if (!rec) return FALSE;
    rec->pBackend->Validate(rc);
    return TRUE;
}

BOOL RedrawWindow(HWND hwnd, const RECT* rc, UINT flags) {
    RecordPtr rec = FindLiveRecord(hwnd);
    if (!rec) return FALSE;
    if (flags & RDW_INVALIDATE) {
        if (!rc || !rc->IsEmpty()) rec->pBackend->Invalidate(rc);
    } else if (flags & RDW_VALIDATE) {
        rec->pBackend->Validate(rc);
    }
    // The handler may destroy the window while it paints; the record stays pinned till here.
    if (flags & RDW_UPDATENOW) rec->pBackend->Update();
    return TRUE;
}

BOOL ScrollWindow(HWND hwnd, int dx, int dy, const RECT* scroll, const RECT* clip) {
    RecordPtr rec = FindLiveRecord(hwnd);
    if (!rec) return FALSE;
    const RECT client = ClientOf(rec);
    const RECT scrollRect = scroll ? IntersectRects(*scroll, client) : client;
    const RECT clipRect = clip ? IntersectRects(*clip, client) : client;
    if ((dx != 0 || dy != 0) && !IntersectRects(scrollRect, clipRect).IsEmpty())
        rec->pBackend->Scroll(dx, dy, scrollRect, clipRect);
    return TRUE;
}

ScrollPlan PlanScroll(int dx, int dy, const RECT& scroll, const RECT& clip) {
    ScrollPlan plan;
    plan.area = IntersectRects(scroll, clip);
    plan.to = IntersectRects(OffsetRect(plan.area, dx, dy), plan.area);
    plan.from = plan.to.IsEmpty() ? RECT{} : OffsetRect(plan.to, -dx, -dy);
    plan.uncovered = CRgn(plan.area);
    plan.uncovered.Subtract(plan.to);
    return plan;
}

void ScrollInvalidRegion(CRgn* invalid, int dx, int dy, const ScrollPlan& plan) {
    CRgn moved = *invalid;
    moved.Intersect(plan.area);
    moved.Offset(dx, dy);
    moved.Intersect(plan.area);
    invalid->Subtract(plan.area);
    for (const RECT& r : moved.Rects()) invalid->Unite(r);
    for (const RECT& r : plan.uncovered.Rects()) invalid->Unite(r);
}
