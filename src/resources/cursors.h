// The control's own cursors, drawn here as shapes and rasterised at their size and at double
// size: the mirrored arrow of the gutter, the arrows with "!" and "?" that show while a tip is
// up, and the gutter arrows with the marks for expand and collapse.
#pragma once
#include "platform/window/cursor.h"

constexpr UINT IDC_GUTTER_ARROW = 104;
constexpr UINT IDC_HINT_ARROW = 209;
constexpr UINT IDC_DOC_ARROW = 210;
constexpr UINT IDC_GUTTER_EXPAND = 235;
constexpr UINT IDC_GUTTER_COLLAPSE = 236;

// The side of every cursor picture at its own size.
constexpr int kCursorSize = 32;

// Draws one of the cursors above; an empty picture for another id.
CursorPicture DrawCursorPicture(UINT id);
// Registers all five with the window layer; once is enough for the process.
void RegisterControlCursors();
