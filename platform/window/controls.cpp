// Child controls, window placement and visibility, and the wait cursor.
#include "platform/window/controls.h"

#include <algorithm>

#include "platform/window/registry.h"

namespace {

int& WaitCursorDepth() {
    static int depth = 0;
    return depth;
}

RecordPtr FindAnimation(HWND hwnd) {
    RecordPtr rec = FindLiveRecord(hwnd);
    return rec && rec->bControl && rec->kind == ChildControlKind::Animation ? rec : nullptr;
}

}  // namespace

void UncoverParent(const CWindowRecord& rec) {
    if (!rec.bControl || !rec.bVisible || rec.rcControl.IsEmpty()) return;
    RecordPtr parent = FindLiveRecord(rec.parent);
    if (parent && !parent->bDestroying) InvalidateRect(rec.parent, &rec.rcControl, TRUE);
}

HWND CreateChildControl(ChildControlKind kind, HWND parent, int id, const RECT& rc) {
    IPlatformBackend* platform = GetPlatformBackend();
    if (!platform || !FindLiveRecord(parent)) return nullptr;
    RecordPtr rec = RegisterRecord(parent, nullptr);
    rec->bControl = true;
    rec->kind = kind;
    rec->nId = id;
    rec->bVisible = false;
    rec->rcControl = rc;
    rec->pBackend = platform->CreateChildControl(rec->hwnd, kind, parent, rc);
    if (!rec->pBackend) {
        UnregisterRecord(rec->hwnd);
        return nullptr;
    }
    return rec->hwnd;
}

BOOL SetWindowText(HWND hwnd, const std::string& text) {
    RecordPtr rec = FindLiveRecord(hwnd);
    if (!rec) return FALSE;
    rec->text = text;
    rec->pBackend->SetText(text);
    return TRUE;
}

std::string GetWindowText(HWND hwnd) {
    RecordPtr rec = FindLiveRecord(hwnd);
    return rec ? rec->text : std::string();
}

BOOL MoveWindow(HWND hwnd, int x, int y, int cx, int cy, BOOL) {
    RecordPtr rec = FindLiveRecord(hwnd);
    if (!rec) return FALSE;
    const RECT rc{x, y, x + std::max(cx, 0), y + std::max(cy, 0)};
    if (rec->bControl) {
        UncoverParent(*rec);
        rec->rcControl = rc;
    }
    rec->pBackend->Move(rc);
    return TRUE;
}

BOOL ShowWindow(HWND hwnd, int cmd) {
    RecordPtr rec = FindLiveRecord(hwnd);
    if (!rec) return FALSE;
    const bool was = rec->bVisible;
    if (was && cmd == SW_HIDE) UncoverParent(*rec);
    rec->bVisible = cmd != SW_HIDE;
    if (was != rec->bVisible) rec->pBackend->Show(rec->bVisible);
    return was ? TRUE : FALSE;
}

// Visible when it and every window above it are shown.
BOOL IsWindowVisible(HWND hwnd) {
    for (RecordPtr rec = FindLiveRecord(hwnd); rec; rec = FindLiveRecord(rec->parent))
        if (!rec->bVisible) return FALSE;
    return FindLiveRecord(hwnd) ? TRUE : FALSE;
}

BOOL AnimateOpen(HWND hwnd, UINT resourceId) {
    RecordPtr rec = FindAnimation(hwnd);
    if (!rec || resourceId == 0) return FALSE;
    rec->nAnimation = resourceId;
    rec->pBackend->Animate(resourceId, false);
    return TRUE;
}

BOOL AnimatePlay(HWND hwnd) {
    RecordPtr rec = FindAnimation(hwnd);
    if (!rec || rec->nAnimation == 0) return FALSE;
    rec->pBackend->Animate(rec->nAnimation, true);
    return TRUE;
}

BOOL AnimateStop(HWND hwnd) {
    RecordPtr rec = FindAnimation(hwnd);
    if (!rec || rec->nAnimation == 0) return FALSE;
    rec->pBackend->Animate(rec->nAnimation, false);
    return TRUE;
}

// Every call reaches the backend, which nests them (Qt keeps a stack of override cursors); the
// depth here only keeps an unmatched EndWaitCursor from popping someone else's cursor.
void BeginWaitCursor() {
    IPlatformBackend* platform = GetPlatformBackend();
    if (!platform) return;
    ++WaitCursorDepth();
    platform->SetWaitCursor(true);
}

void EndWaitCursor() {
    IPlatformBackend* platform = GetPlatformBackend();
    if (!platform || WaitCursorDepth() == 0) return;
    --WaitCursorDepth();
    platform->SetWaitCursor(false);
}
