// The mouse cursor: system cursors by their IDC_ numbers, and pictures that the program draws
// itself and registers under resource ids. The window under the mouse hears WM_SETCURSOR
// (wParam: the window, lParam: hit-test code and mouse message) and answers with SetCursor.
#pragma once
#include <cstdint>
#include <vector>

#include "platform/window/window.h"

struct HCURSOR__;
using HCURSOR = HCURSOR__*;

constexpr UINT IDC_ARROW = 32512;
constexpr UINT IDC_IBEAM = 32513;
constexpr int HTCLIENT = 1;

// One picture in 0xAARRGGBB pixels, row by row; alpha 0 is transparent.
struct CursorImage {
    int width = 0, height = 0;
    std::vector<uint32_t> argb;
    uint32_t Pixel(int x, int y) const { return argb[static_cast<size_t>(y * width + x)]; }
};

// A cursor the program supplies: the picture at its own size and at twice that for screens of
// double density, and the hot spot in the first one's pixels.
struct CursorPicture {
    CursorImage normal;
    CursorImage doubled;
    POINT hotSpot{};
};

// Registers a picture under an id for the whole process; an id registered again is replaced.
void RegisterCursorPicture(UINT id, CursorPicture picture);
// The registered picture of an id, or null.
const CursorPicture* FindCursorPicture(UINT id);
// A registered picture's cursor, or a system cursor by its IDC_ number; null for neither.
HCURSOR LoadCursor(UINT id);
// Shows the cursor over the window that the mouse is in; gives the one shown before.
HCURSOR SetCursor(HCURSOR cursor);
HCURSOR GetCursor();
// The id a cursor was loaded by.
UINT CursorId(HCURSOR cursor);
