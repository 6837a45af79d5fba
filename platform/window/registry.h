// The handle registry of the window layer: one record per window, shared by the files of this
// folder. Not for code outside platform/window.
#pragma once
#include <memory>
#include <set>
#include <string>

#include "platform/window/accessible.h"
#include "platform/window/controls.h"
#include "platform/window/messagequeue.h"
#include "platform/window/scrollbar.h"
#include "platform/window/window.h"

struct CWindowRecord {
    HWND hwnd = nullptr;
    HWND parent = nullptr;
    IMessageHandler* pHandler = nullptr;  // null for a child control: it handles nothing itself
    std::unique_ptr<IWindowBackend> pBackend;
    CMessageQueue queue;
    std::set<UINT> timers;
    bool bDestroying = false;  // WM_DESTROY has been sent or is on its way
    bool bGone = false;        // no longer in the registry

    // Child controls: what they are and what they show.
    bool bControl = false;
    ChildControlKind kind = ChildControlKind::Static;
    int nId = 0;
    UINT nAnimation = 0;  // the resource opened in an animation, 0 before AnimateOpen
    std::string text;
    bool bVisible = true;  // child controls start hidden
    RECT rcControl{};      // a child control's place in its parent's client area
    ScrollBarState bars[2];  // SB_HORZ, SB_VERT
    IAccessibleText* pAccessible = nullptr;  // what the window tells assistive technology
};
using RecordPtr = std::shared_ptr<CWindowRecord>;

// A shown child control that hides or goes leaves the parent's pixels under it to be painted
// again, as a window manager does when it uncovers a window.
void UncoverParent(const CWindowRecord& rec);

RecordPtr FindRecord(HWND hwnd);
// The record of a window whose backend exists and that is not on its way out, or null.
RecordPtr FindLiveRecord(HWND hwnd);
// Enters a new record under a fresh handle; the caller gives it a backend.
RecordPtr RegisterRecord(HWND parent, IMessageHandler* handler);
// Takes the record out of the registry (see window.cpp).
void UnregisterRecord(HWND hwnd);

// Called as a window leaves the registry, so that the caret it owns goes with it.
void CaretOwnerGone(HWND hwnd);
