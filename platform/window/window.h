// Window services the control calls: windows that deliver messages to a handler, a posted
// message queue per window with peek, invalidation, timers, ticks, key state and beep.
// The functions keep the names and meanings of the classic window API, so that control code
// reads the same on any backend. A backend (Qt, or the deterministic test backend) supplies
// the real window behind each handle through IWindowBackend.
#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "platform/com/types.h"
#include "platform/gdi/geometry.h"

using WPARAM = uintptr_t;
using LPARAM = intptr_t;
using LRESULT = intptr_t;

class CDC;
struct AccessibleTextEvent;
struct ScrollBarState;
enum class ChildControlKind;

struct HWND__;
using HWND = HWND__*;  // an opaque handle; a handle whose window is gone is simply invalid

struct MSG {
    HWND hwnd = nullptr;
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
};

// Messages, with their classic numbers.
constexpr UINT WM_CREATE = 0x0001;
constexpr UINT WM_DESTROY = 0x0002;
constexpr UINT WM_SIZE = 0x0005;
constexpr UINT WM_SETFOCUS = 0x0007;
constexpr UINT WM_KILLFOCUS = 0x0008;
constexpr UINT WM_ENABLE = 0x000A;
constexpr UINT WM_GETTEXT = 0x000D;
constexpr UINT WM_GETTEXTLENGTH = 0x000E;
constexpr UINT WM_PAINT = 0x000F;
constexpr UINT WM_ERASEBKGND = 0x0014;
constexpr UINT WM_SYSCOLORCHANGE = 0x0015;
constexpr UINT WM_SETCURSOR = 0x0020;
constexpr UINT WM_NOTIFY = 0x004E;
constexpr UINT WM_NCLBUTTONDOWN = 0x00A1;
constexpr UINT WM_KEYDOWN = 0x0100;
constexpr UINT WM_KEYUP = 0x0101;
constexpr UINT WM_CHAR = 0x0102;
constexpr UINT WM_TIMER = 0x0113;
constexpr UINT WM_HSCROLL = 0x0114;
constexpr UINT WM_VSCROLL = 0x0115;
constexpr UINT WM_MOUSEMOVE = 0x0200;
constexpr UINT WM_LBUTTONDOWN = 0x0201;
constexpr UINT WM_LBUTTONUP = 0x0202;
constexpr UINT WM_LBUTTONDBLCLK = 0x0203;
constexpr UINT WM_RBUTTONDOWN = 0x0204;
constexpr UINT WM_RBUTTONUP = 0x0205;
constexpr UINT WM_MBUTTONDOWN = 0x0207;
constexpr UINT WM_MBUTTONUP = 0x0208;
constexpr UINT WM_MOUSEWHEEL = 0x020A;
constexpr UINT WM_IME_CHAR = 0x0286;
constexpr UINT WM_USER = 0x0400;
constexpr UINT EM_GETSEL = 0x00B0;
constexpr UINT EM_SETSEL = 0x00B1;
constexpr UINT EM_SCROLLCARET = 0x00B7;
constexpr UINT EM_GETLINECOUNT = 0x00BA;
constexpr UINT EM_REPLACESEL = 0x00C2;
constexpr UINT EM_GETFIRSTVISIBLELINE = 0x00CE;

constexpr UINT PM_NOREMOVE = 0x0000;
constexpr UINT PM_REMOVE = 0x0001;

constexpr int VK_SHIFT = 0x10;
constexpr int VK_CONTROL = 0x11;
constexpr int VK_MENU = 0x12;
constexpr int VK_LBUTTON = 0x01;

inline LPARAM MAKELPARAM(int lo, int hi) {
    return static_cast<LPARAM>(static_cast<uint32_t>((lo & 0xFFFF) | ((hi & 0xFFFF) << 16)));
}
inline int LOWORD(uintptr_t v) { return static_cast<int>(v & 0xFFFF); }
inline int HIWORD(uintptr_t v) { return static_cast<int>((v >> 16) & 0xFFFF); }

// Receives the messages of one window. The control is one.
class IMessageHandler {
public:
    virtual LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) = 0;

protected:
    ~IMessageHandler() = default;
};

// The toolkit side of one window. Created by the active backend, owned by the handle registry.
class IWindowBackend {
public:
    virtual ~IWindowBackend() = default;
    virtual RECT ClientRect() const = 0;
    virtual void Invalidate(const RECT* rc) = 0;  // null: the whole client area
    virtual void Update() = 0;                    // paint what is invalid now
    virtual void SetTimer(UINT id, UINT ms) = 0;  // replaces a timer of the same id
    virtual void KillTimer(UINT id) = 0;
    virtual void PostedMessageWaiting() = 0;      // schedule DispatchPostedMessages on the event loop
    virtual void SetFocus() = 0;
    virtual bool HasFocus() const = 0;

    // Painting (platform/window/paint.h). BeginPaint gives a context for what is invalid, which
    // becomes valid; GetDC one for drawing at other times, shown at once. Both stay the
    // backend's, and come back through EndPaint and ReleaseDC.
    virtual CDC* BeginPaint(RECT* rcPaint) = 0;
    virtual void EndPaint(CDC* dc) = 0;
    virtual CDC* GetDC() = 0;
    virtual void ReleaseDC(CDC* dc) = 0;
    virtual bool GetUpdateRect(RECT* rc) const = 0;
    virtual void Validate(const RECT* rc) = 0;  // null: the whole client area
    // Moves the pixels of `scroll` by (dx, dy) inside `clip` and invalidates what is uncovered.
    virtual void Scroll(int dx, int dy, const RECT& scroll, const RECT& clip) = 0;

    // State that the window layer keeps and the backend shows: the caret (platform/window/caret.h)
    // of a window that owns it, in client pixels, and the window's scroll bars (scrollbar.h).
    virtual void CaretChanged(bool shown, const RECT& rc) = 0;
    virtual void ScrollBarChanged(int bar, const ScrollBarState& state) = 0;

    // Child controls (platform/window/controls.h), and placement of any window.
    virtual void SetText(const std::string& text) {}
    virtual void Move(const RECT& rc) {}
    virtual void Show(bool show) {}
    virtual void Animate(UINT resourceId, bool play) {}

    // Mouse input (platform/window/input.h): where the client area's origin is on the screen,
    // and the capture given to or taken from this window.
    virtual POINT ClientOrigin() const { return {0, 0}; }
    virtual void Capture(bool on) {}

    // Accessibility (platform/window/accessible.h): whether anything listens, and an event for it.
    virtual bool AccessibilityActive() const { return false; }
    virtual void AccessibleEvent(const AccessibleTextEvent& event) {}
};

// The process-wide services a backend supplies.
class IPlatformBackend {
public:
    virtual ~IPlatformBackend() = default;
    // Makes the toolkit window for a new handle; `parent` may be null (a top-level window).
    virtual std::unique_ptr<IWindowBackend> CreateWindowBackend(HWND hwnd, HWND parent, const RECT& rc) = 0;
    virtual DWORD TickCount() = 0;
    virtual short KeyState(int vk) = 0;  // high bit: down; low bit: toggled
    virtual void Beep(UINT type) = 0;
    // The toolkit side of a child control of the given kind (platform/window/controls.h).
    virtual std::unique_ptr<IWindowBackend> CreateChildControl(HWND hwnd, ChildControlKind kind, HWND parent,
                                                               const RECT& rc) = 0;
    virtual void SetWaitCursor(bool on) = 0;
    // Mouse input (platform/window/input.h): the cursor in screen coordinates, the double-click
    // time, and whether the buttons are swapped.
    virtual POINT CursorPos() { return {0, 0}; }
    virtual UINT DoubleClickTime() { return 500; }
    virtual bool ButtonsSwapped() { return false; }
    // Floating windows (platform/window/popup.h): a window on top of `owner` that never takes
    // the focus, at rc in screen pixels; and the desktop's rectangle in screen pixels.
    virtual std::unique_ptr<IWindowBackend> CreatePopupBackend(HWND hwnd, HWND owner, const RECT& rc) {
        return CreateWindowBackend(hwnd, nullptr, rc);
    }
    virtual RECT DesktopRect() { return {0, 0, 1280, 1024}; }
    // The mouse cursor (platform/window/cursor.h) by its id, over the window the mouse is in.
    virtual void SetCursor(UINT id) {}
};

// Installs the backend for the process; returns the previous one. The caller keeps ownership.
IPlatformBackend* SetPlatformBackend(IPlatformBackend* backend);
IPlatformBackend* GetPlatformBackend();

// Window life. CreateWindowFor sends WM_CREATE (a -1 result destroys the window again and gives
// null) and then WM_SIZE with the client size. DestroyWindow sends WM_DESTROY, drops every
// message still queued for the window, and invalidates the handle.
HWND CreateWindowFor(IMessageHandler* handler, HWND parent, const RECT& rc);
BOOL DestroyWindow(HWND hwnd);
BOOL IsWindow(HWND hwnd);
IWindowBackend* GetWindowBackend(HWND hwnd);  // null for an invalid handle
// Resizes through the backend's owner; sends WM_SIZE. Backends call it when the toolkit resizes.
void NotifyWindowResized(HWND hwnd);

LRESULT SendMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
// Queues a message for the window and wakes its backend. FALSE for an invalid handle, in which
// case the caller still owns whatever lParam carries.
BOOL PostMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
// Looks at the first queued message of hwnd in [first, last] (0, 0: any). PM_REMOVE takes it out.
BOOL PeekMessage(MSG* msg, HWND hwnd, UINT first, UINT last, UINT flags);
// Delivers the messages queued for hwnd now, in order, through its handler. Messages posted
// during delivery wait for the next call. Returns how many were delivered.
int DispatchPostedMessages(HWND hwnd);
// Removes every queued message of hwnd and hands each to `drop` (to release what they carry).
void DiscardPostedMessages(HWND hwnd, void (*drop)(const MSG&));

BOOL GetClientRect(HWND hwnd, RECT* rc);
BOOL InvalidateRect(HWND hwnd, const RECT* rc, BOOL erase);
BOOL UpdateWindow(HWND hwnd);
UINT SetTimer(HWND hwnd, UINT id, UINT ms);
BOOL KillTimer(HWND hwnd, UINT id);
HWND SetFocus(HWND hwnd);
HWND GetFocus();
DWORD GetTickCount();
short GetKeyState(int vk);
BOOL MessageBeep(UINT type);
