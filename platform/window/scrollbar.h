// A window's own scroll bars. The window layer keeps their state and rules; the backend shows it.
#pragma once
#include "platform/window/window.h"

constexpr int SB_HORZ = 0;
constexpr int SB_VERT = 1;
constexpr int SB_BOTH = 3;

constexpr UINT SIF_RANGE = 0x1;
constexpr UINT SIF_PAGE = 0x2;
constexpr UINT SIF_POS = 0x4;
constexpr UINT SIF_DISABLENOSCROLL = 0x8;  // a bar with nothing to scroll is disabled, not hidden
constexpr UINT SIF_TRACKPOS = 0x10;
constexpr UINT SIF_ALL = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_TRACKPOS;

struct SCROLLINFO {
    UINT cbSize = sizeof(SCROLLINFO);
    UINT fMask = 0;
    int nMin = 0;
    int nMax = 0;
    UINT nPage = 0;
    int nPos = 0;
    int nTrackPos = 0;
};

// Sets the parts the mask names. The page is kept within the range's size and the position
// within nMin .. nMax - nPage + 1. A bar with nothing to scroll (page at least the range's size)
// is hidden, or with SIF_DISABLENOSCROLL shown disabled. Gives the new position.
int SetScrollInfo(HWND hwnd, int bar, const SCROLLINFO* info, BOOL redraw);
BOOL GetScrollInfo(HWND hwnd, int bar, SCROLLINFO* info);
// Shows or hides a bar regardless of its state (SB_BOTH: both).
BOOL ShowScrollBar(HWND hwnd, int bar, BOOL show);

// What the backend of a window shows for one bar.
struct ScrollBarState {
    SCROLLINFO info;       // nMin, nMax, nPage, nPos as set
    bool visible = false;
    bool enabled = false;
};
BOOL GetScrollBarState(HWND hwnd, int bar, ScrollBarState* state);
