// Child controls that a control shows inside its window (a text label, a playing animation),
// window placement and visibility, and the wait cursor.
#pragma once
#include <string>

#include "platform/window/window.h"

enum class ChildControlKind {
    Static,     // a line of text
    Animation,  // a small looping animation, opened from a resource
    ToolTip,    // a popup of one line of text, placed in screen pixels and sized to its text
};

// A child window of `parent` with the given id, hidden until ShowWindow. Null on failure.
HWND CreateChildControl(ChildControlKind kind, HWND parent, int id, const RECT& rc);
BOOL SetWindowText(HWND hwnd, const std::string& text);
std::string GetWindowText(HWND hwnd);
BOOL MoveWindow(HWND hwnd, int x, int y, int cx, int cy, BOOL repaint);
constexpr int SW_HIDE = 0;
constexpr int SW_SHOW = 5;
BOOL ShowWindow(HWND hwnd, int cmd);
BOOL IsWindowVisible(HWND hwnd);
// Animations: open the frames of a resource, play them in a loop, stop.
BOOL AnimateOpen(HWND hwnd, UINT resourceId);
BOOL AnimatePlay(HWND hwnd);
BOOL AnimateStop(HWND hwnd);

// The wait cursor over the whole application while a long operation runs; calls nest.
void BeginWaitCursor();
void EndWaitCursor();
