// The handle registry and the window functions on top of it. Everything runs on the one thread
// that owns the windows; nothing here takes a lock.
//
// A handle is a number that is never reused, so a handle of a destroyed window stays invalid and
// every call on it fails harmlessly. A window's record (handler, backend, queue, timers) is held
// by a shared pointer: a call that reaches the handler pins the record, so a window destroyed
// from inside its own handler keeps its backend until that call has returned.
//
// Owners of windows that receive messages carrying references should call
// DiscardPostedMessages from their WM_DESTROY handler: whatever is still queued after WM_DESTROY
// is dropped without being looked at.
#include <algorithm>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/window/backend.h"
#include "platform/window/popup.h"
#include "platform/window/registry.h"
#include "platform/window/window.h"

namespace {

struct CRegistry {
    std::unordered_map<HWND, RecordPtr> windows;
    uintptr_t nNextHandle = 0x1000;
    IPlatformBackend* pPlatform = nullptr;
};

// Never destroyed: windows that a process leaves open at exit must not be torn down after the
// toolkit that their backends belong to.
CRegistry& Registry() {
    static CRegistry* registry = new CRegistry;
    return *registry;
}

RecordPtr Find(HWND hwnd) { return FindRecord(hwnd); }

// The record of a window whose backend exists, or null.
RecordPtr FindWithBackend(HWND hwnd) {
    RecordPtr rec = Find(hwnd);
    return rec && rec->pBackend ? rec : nullptr;
}

void Unregister(HWND hwnd) { UnregisterRecord(hwnd); }

// A child control has no handler: messages to it are answered with 0.
LRESULT Deliver(const RecordPtr& rec, UINT message, WPARAM wParam, LPARAM lParam) {
    return rec->pHandler ? rec->pHandler->WindowProc(rec->hwnd, message, wParam, lParam) : 0;
}

LPARAM SizeParam(const RECT& rc) {
    auto clamp = [](LONG v) { return static_cast<int>(std::clamp<LONG>(v, 0, 0xFFFF)); };
    return MAKELPARAM(clamp(rc.Width()), clamp(rc.Height()));
}

void SendSize(const RecordPtr& rec) {
    Deliver(rec, WM_SIZE, 0, SizeParam(rec->pBackend->ClientRect()));
}

std::vector<HWND> ChildrenOf(HWND hwnd) {
    std::vector<HWND> children;
    for (const auto& [child, rec] : Registry().windows)
        if (rec->parent == hwnd) children.push_back(child);
    return children;
}

}  // namespace

RecordPtr FindRecord(HWND hwnd) {
    if (!hwnd) return nullptr;
    auto& windows = Registry().windows;
    auto it = windows.find(hwnd);
    return it == windows.end() ? nullptr : it->second;
}

RecordPtr FindLiveRecord(HWND hwnd) {
    RecordPtr rec = FindRecord(hwnd);
    return rec && rec->pBackend && !rec->bDestroying ? rec : nullptr;
}

RecordPtr RegisterRecord(HWND parent, IMessageHandler* handler) {
    auto rec = std::make_shared<CWindowRecord>();
    rec->hwnd = reinterpret_cast<HWND>(Registry().nNextHandle++);
    rec->parent = parent;
    rec->pHandler = handler;
    Registry().windows.emplace(rec->hwnd, rec);
    return rec;
}

// The record itself (and its backend) goes when the last pin is released, which is never inside
// the map's own erase.
void UnregisterRecord(HWND hwnd) {
    auto& windows = Registry().windows;
    auto it = windows.find(hwnd);
    if (it == windows.end()) return;
    RecordPtr rec = std::move(it->second);
    windows.erase(it);
    rec->bGone = true;
    rec->queue.TakeAll();
    rec->timers.clear();
    CaretOwnerGone(hwnd);
}

IPlatformBackend* SetPlatformBackend(IPlatformBackend* backend) {
    return std::exchange(Registry().pPlatform, backend);
}

IPlatformBackend* GetPlatformBackend() {
    return Registry().pPlatform;
}

namespace {

// Registers a window, gives it the backend that `make` builds, and sends WM_CREATE and WM_SIZE.
template <class Make>
HWND CreateRegisteredWindow(IMessageHandler* handler, HWND parent, bool visible, Make make) {
    RecordPtr rec = RegisterRecord(parent, handler);
    rec->bVisible = visible;
    rec->pBackend = make(rec->hwnd);
    if (!rec->pBackend) {
        Unregister(rec->hwnd);
        return nullptr;
    }
    // A refused creation is a destruction like any other: the handler hears WM_DESTROY.
    if (Deliver(rec, WM_CREATE, 0, 0) == -1) {
        DestroyWindow(rec->hwnd);
        return nullptr;
    }
    if (rec->bDestroying) return nullptr;  // the handler destroyed it during WM_CREATE
    SendSize(rec);
    return rec->bDestroying ? nullptr : rec->hwnd;
}

}  // namespace

HWND CreateWindowFor(IMessageHandler* handler, HWND parent, const RECT& rc) {
    IPlatformBackend* platform = Registry().pPlatform;
    if (!handler || !platform) return nullptr;
    if (parent) {
        RecordPtr parentRec = Find(parent);
        if (!parentRec || parentRec->bDestroying) return nullptr;
    }
    return CreateRegisteredWindow(handler, parent, true,
                                  [&](HWND hwnd) { return platform->CreateWindowBackend(hwnd, parent, rc); });
}

HWND CreatePopupWindow(IMessageHandler* handler, HWND owner, const RECT& rc) {
    IPlatformBackend* platform = Registry().pPlatform;
    if (!handler || !platform || !IsWindow(owner)) return nullptr;
    return CreateRegisteredWindow(handler, nullptr, false,
                                  [&](HWND hwnd) { return platform->CreatePopupBackend(hwnd, owner, rc); });
}

RECT GetDesktopRect() {
    IPlatformBackend* platform = Registry().pPlatform;
    return platform ? platform->DesktopRect() : RECT{};
}

BOOL DestroyWindow(HWND hwnd) {
    RecordPtr rec = Find(hwnd);
    if (!rec || rec->bDestroying) return FALSE;
    rec->bDestroying = true;
    UncoverParent(*rec);
    Deliver(rec, WM_DESTROY, 0, 0);
    // Children go after their parent has heard of it, and before the parent's backend, whose
    // toolkit window may own theirs.
    for (HWND child : ChildrenOf(hwnd)) DestroyWindow(child);
    Unregister(hwnd);
    return TRUE;
}

void AbandonWindow(HWND hwnd) {
    RecordPtr rec = Find(hwnd);
    if (!rec) return;
    rec->bDestroying = true;
    for (HWND child : ChildrenOf(hwnd)) AbandonWindow(child);
    Unregister(hwnd);
}

BOOL IsWindow(HWND hwnd) {
    return Find(hwnd) ? TRUE : FALSE;
}

IWindowBackend* GetWindowBackend(HWND hwnd) {
    RecordPtr rec = Find(hwnd);
    return rec ? rec->pBackend.get() : nullptr;
}

void NotifyWindowResized(HWND hwnd) {
    RecordPtr rec = FindWithBackend(hwnd);
    if (rec && !rec->bDestroying) SendSize(rec);
}

LRESULT SendMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    RecordPtr rec = Find(hwnd);
    return rec ? Deliver(rec, message, wParam, lParam) : 0;
}

BOOL PostMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    // A window on its way out takes nothing more: the poster keeps what the message carries.
    RecordPtr rec = FindWithBackend(hwnd);
    if (!rec || rec->bDestroying) return FALSE;
    rec->queue.Post(MSG{hwnd, message, wParam, lParam});
    rec->pBackend->PostedMessageWaiting();
    return TRUE;
}

BOOL PeekMessage(MSG* msg, HWND hwnd, UINT first, UINT last, UINT flags) {
    RecordPtr rec = Find(hwnd);
    if (!rec || !msg) return FALSE;
    return rec->queue.Peek(msg, first, last, (flags & PM_REMOVE) != 0) ? TRUE : FALSE;
}

int DispatchPostedMessages(HWND hwnd) {
    RecordPtr rec = Find(hwnd);
    if (!rec) return 0;
    const uint64_t lastQueued = rec->queue.LastSequence();
    int delivered = 0;
    MSG msg;
    while (!rec->bGone && rec->queue.PopIfPostedBy(lastQueued, &msg)) {
        Deliver(rec, msg.message, msg.wParam, msg.lParam);
        ++delivered;
    }
    return delivered;
}

void DiscardPostedMessages(HWND hwnd, void (*drop)(const MSG&)) {
    RecordPtr rec = Find(hwnd);
    if (!rec) return;
    // Taken out first, so that a drop function that posts again cannot make this loop endless.
    for (const MSG& msg : rec->queue.TakeAll())
        if (drop) drop(msg);
}

BOOL GetClientRect(HWND hwnd, RECT* rc) {
    RecordPtr rec = FindWithBackend(hwnd);
    if (!rec || !rc) return FALSE;
    *rc = rec->pBackend->ClientRect();
    return TRUE;
}

BOOL InvalidateRect(HWND hwnd, const RECT* rc, BOOL erase) {
    RecordPtr rec = FindWithBackend(hwnd);
    if (!rec) return FALSE;
    if (!rc || !rc->IsEmpty()) rec->pBackend->Invalidate(rc);
    return TRUE;
}

BOOL UpdateWindow(HWND hwnd) {
    RecordPtr rec = FindWithBackend(hwnd);
    if (!rec) return FALSE;
    rec->pBackend->Update();
    return TRUE;
}

UINT SetTimer(HWND hwnd, UINT id, UINT ms) {
    RecordPtr rec = FindWithBackend(hwnd);
    if (!rec || id == 0) return 0;
    // A period of 0 would fire on every turn of the event loop.
    rec->pBackend->SetTimer(id, std::max<UINT>(ms, 1));
    rec->timers.insert(id);
    return id;
}

BOOL KillTimer(HWND hwnd, UINT id) {
    RecordPtr rec = FindWithBackend(hwnd);
    if (!rec || rec->timers.erase(id) == 0) return FALSE;
    rec->pBackend->KillTimer(id);
    return TRUE;
}

HWND SetFocus(HWND hwnd) {
    HWND previous = GetFocus();
    if (!hwnd) return previous;  // taking the focus away from every window is the toolkit's matter
    RecordPtr rec = FindWithBackend(hwnd);
    if (!rec || rec->bDestroying) return nullptr;
    rec->pBackend->SetFocus();
    return previous;
}

HWND GetFocus() {
    for (const auto& [hwnd, rec] : Registry().windows)
        if (rec->pBackend && !rec->bDestroying && rec->pBackend->HasFocus()) return hwnd;
    return nullptr;
}

DWORD GetTickCount() {
    IPlatformBackend* platform = Registry().pPlatform;
    return platform ? platform->TickCount() : 0;
}

short GetKeyState(int vk) {
    IPlatformBackend* platform = Registry().pPlatform;
    return platform ? platform->KeyState(vk) : 0;
}

BOOL MessageBeep(UINT type) {
    IPlatformBackend* platform = Registry().pPlatform;
    if (!platform) return FALSE;
    platform->Beep(type);
    return TRUE;
}
