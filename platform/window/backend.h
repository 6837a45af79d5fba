// Services for backends only: what a toolkit needs from the handle registry beyond window.h.
#pragma once
#include "platform/window/window.h"

// Takes a window and its children out of the registry without a word to their handlers, for a
// backend that goes away while windows are still open (their handlers may be gone already).
// The handles become invalid, queued messages are dropped, and the backends are released.
void AbandonWindow(HWND hwnd);
