#include "platform/window/input.h"

#include "platform/window/registry.h"

namespace {

HWND g_hwndCapture = nullptr;

// The backend of a live window, or null.
IWindowBackend* LiveBackend(HWND hwnd) {
    RecordPtr rec = FindLiveRecord(hwnd);
    return rec ? rec->pBackend.get() : nullptr;
}

}  // namespace

HWND SetCapture(HWND hwnd) {
    const HWND previous = GetCapture();
    IWindowBackend* backend = LiveBackend(hwnd);
    if (!backend) return previous;
    if (previous && previous != hwnd) ReleaseCapture();
    g_hwndCapture = hwnd;
    backend->Capture(true);
    return previous;
}

BOOL ReleaseCapture() {
    const HWND hwnd = GetCapture();
    g_hwndCapture = nullptr;
    if (!hwnd) return TRUE;
    if (IWindowBackend* backend = LiveBackend(hwnd)) backend->Capture(false);
    return TRUE;
}

// A window that has gone holds no capture.
HWND GetCapture() {
    if (g_hwndCapture && !LiveBackend(g_hwndCapture)) g_hwndCapture = nullptr;
    return g_hwndCapture;
}

BOOL GetCursorPos(POINT* pt) {
    IPlatformBackend* platform = GetPlatformBackend();
    if (!pt || !platform) return FALSE;
    *pt = platform->CursorPos();
    return TRUE;
}

BOOL ScreenToClient(HWND hwnd, POINT* pt) {
    IWindowBackend* backend = LiveBackend(hwnd);
    if (!pt || !backend) return FALSE;
    const POINT origin = backend->ClientOrigin();
    pt->x -= origin.x;
    pt->y -= origin.y;
    return TRUE;
}

BOOL ClientToScreen(HWND hwnd, POINT* pt) {
    IWindowBackend* backend = LiveBackend(hwnd);
    if (!pt || !backend) return FALSE;
    const POINT origin = backend->ClientOrigin();
    pt->x += origin.x;
    pt->y += origin.y;
    return TRUE;
}

UINT GetDoubleClickTime() {
    IPlatformBackend* platform = GetPlatformBackend();
    return platform ? platform->DoubleClickTime() : 500;
}

int GetSystemMetrics(int index) {
    IPlatformBackend* platform = GetPlatformBackend();
    if (index == SM_SWAPBUTTON) return platform && platform->ButtonsSwapped() ? 1 : 0;
    return 0;
}

short GetAsyncKeyState(int vk) { return GetKeyState(vk); }
