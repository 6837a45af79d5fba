#include "platform/window/dragdrop.h"

#include <map>

namespace {

IDragDropBackend* g_backend = nullptr;
std::map<HWND, IDropTarget*> g_targets;

}  // namespace

BOOL RegisterDropTarget(HWND hwnd, IDropTarget* target) {
    if (!IsWindow(hwnd) || !target) return FALSE;
    g_targets[hwnd] = target;
    return TRUE;
}

void RevokeDropTarget(HWND hwnd) { g_targets.erase(hwnd); }

IDropTarget* GetDropTarget(HWND hwnd) {
    auto it = g_targets.find(hwnd);
    if (it == g_targets.end()) return nullptr;
    if (!IsWindow(hwnd)) {
        g_targets.erase(it);
        return nullptr;
    }
    return it->second;
}

DROPEFFECT DragOverTick(IDropTarget* target, IDataObject* data, DWORD keyState, POINT pt, DROPEFFECT allowed) {
    const DROPEFFECT scroll = target->OnDragScroll(keyState, pt);
    if (scroll & DROPEFFECT_SCROLL) return scroll & (allowed | DROPEFFECT_SCROLL);
    return target->OnDragOver(data, keyState, pt) & allowed;
}

IDragDropBackend* SetDragDropBackend(IDragDropBackend* backend) {
    IDragDropBackend* previous = g_backend;
    g_backend = backend;
    return previous;
}

IDragDropBackend* GetDragDropBackend() { return g_backend; }

DROPEFFECT DoDragDrop(HWND source, IDataObject* data, DROPEFFECT allowed) {
    if (!g_backend || !data) return DROPEFFECT_NONE;
    return g_backend->DoDragDrop(source, data, allowed);
}
