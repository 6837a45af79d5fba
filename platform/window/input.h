// Mouse services beyond the messages: capture, the cursor's place on the screen, the
// double-click time, swapped buttons, and the key state read at the time of the call.
#pragma once
#include "platform/window/window.h"

constexpr int SM_SWAPBUTTON = 23;

// The window that gets the mouse while a button is held, wherever the mouse goes. Returns the
// window that had it before (null if none).
HWND SetCapture(HWND hwnd);
BOOL ReleaseCapture();
HWND GetCapture();

// The mouse in screen coordinates, and conversion into a window's client coordinates.
BOOL GetCursorPos(POINT* pt);
BOOL ScreenToClient(HWND hwnd, POINT* pt);
BOOL ClientToScreen(HWND hwnd, POINT* pt);

// Milliseconds within which a second click makes a double click.
UINT GetDoubleClickTime();
// SM_SWAPBUTTON: nonzero when the primary button is the physical right one.
int GetSystemMetrics(int index);
// The state of a key or button now, not as of the message being handled; high bit: down.
short GetAsyncKeyState(int vk);
