// Floating windows: a window that stands on top of its owner, may reach beyond it, and never
// takes the focus, so that the owner keeps getting the keys (a completion list beside the caret).
#pragma once
#include "platform/window/window.h"

// Made hidden, at rc in screen pixels; WM_CREATE and WM_SIZE as CreateWindowFor sends them.
// Move it with MoveWindow (screen pixels) and show it with ShowWindow (controls.h).
HWND CreatePopupWindow(IMessageHandler* handler, HWND owner, const RECT& rc);
// The desktop's rectangle in screen pixels.
RECT GetDesktopRect();
