// Drag and drop between windows and programs. A window registers a drop target to hear drags
// that pass over it; a drag source hands a data object to DoDragDrop, which runs the drag to
// its end (the drop handlers of a window of this process run nested inside the call) and gives
// the effect the target chose. A backend (Qt's, or the test backend's scripted drags) runs the
// drag itself; without one nothing can be dragged.
#pragma once
#include "platform/com/dataobject.h"
#include "platform/window/window.h"

using DROPEFFECT = DWORD;
constexpr DROPEFFECT DROPEFFECT_NONE = 0;
constexpr DROPEFFECT DROPEFFECT_COPY = 1;
constexpr DROPEFFECT DROPEFFECT_MOVE = 2;
constexpr DROPEFFECT DROPEFFECT_LINK = 4;
// Set with the effect while the target scrolls under a resting drag.
constexpr DROPEFFECT DROPEFFECT_SCROLL = 0x80000000u;

// The drop side of one window. Points are client coordinates of that window; key states are
// MK_ flags (keys.h).
class IDropTarget {
public:
    virtual DROPEFFECT OnDragEnter(IDataObject* data, DWORD keyState, POINT pt) = 0;
    virtual DROPEFFECT OnDragOver(IDataObject* data, DWORD keyState, POINT pt) = 0;
    virtual void OnDragLeave() = 0;
    // TRUE if the data was taken.
    virtual BOOL OnDrop(IDataObject* data, DROPEFFECT effect, POINT pt) = 0;
    // Asked on each tick of a drag over the window, before OnDragOver; an effect with
    // DROPEFFECT_SCROLL stands for the tick's answer.
    virtual DROPEFFECT OnDragScroll(DWORD keyState, POINT pt) = 0;

protected:
    ~IDropTarget() = default;
};

// The target stays the caller's; it is forgotten when revoked or when its window goes.
BOOL RegisterDropTarget(HWND hwnd, IDropTarget* target);
void RevokeDropTarget(HWND hwnd);
// Null for a window without one, or a handle no longer valid.
IDropTarget* GetDropTarget(HWND hwnd);

// One tick of a drag resting or moving over a target: the scroll first, and if the target did
// not scroll, its drag-over answer. The effect is limited to `allowed` (the scroll flag kept).
DROPEFFECT DragOverTick(IDropTarget* target, IDataObject* data, DWORD keyState, POINT pt, DROPEFFECT allowed);

class IDragDropBackend {
public:
    virtual ~IDragDropBackend() = default;
    // Runs a drag of `data` begun in `source`; gives the effect of the drop, or
    // DROPEFFECT_NONE when it was cancelled or refused.
    virtual DROPEFFECT DoDragDrop(HWND source, IDataObject* data, DROPEFFECT allowed) = 0;
};

// Installs the backend; returns the previous one. The caller keeps ownership.
IDragDropBackend* SetDragDropBackend(IDragDropBackend* backend);
IDragDropBackend* GetDragDropBackend();

// DROPEFFECT_NONE without a backend or data.
DROPEFFECT DoDragDrop(HWND source, IDataObject* data, DROPEFFECT allowed);
