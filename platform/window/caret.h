// The caret: one per thread, owned by the window that created it, shown by a count as on the
// classic platform. A new caret starts hidden: every HideCaret needs a ShowCaret to undo it,
// and the caret shows while the count is 0. The backend of the owner draws and blinks it.
#pragma once
#include "platform/window/window.h"

// Replaces any caret; `bitmap` must be null (a solid caret). Size in pixels.
BOOL CreateCaret(HWND hwnd, const void* bitmap, int width, int height);
// Destroys the caret of this thread; FALSE if there is none.
BOOL DestroyCaret();
BOOL SetCaretPos(int x, int y);
BOOL GetCaretPos(POINT* pt);
// Hiding and showing count; null stands for the owner. FALSE for a window that does not own the caret.
BOOL HideCaret(HWND hwnd);
BOOL ShowCaret(HWND hwnd);
// For backends and tests: the owner (null: none), whether it shows, and its rectangle.
HWND GetCaretOwner();
bool IsCaretShown();
RECT GetCaretRect();
