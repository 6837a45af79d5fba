// Realising a font object (a font property's face, point size and style) as a device font, as
// a container does when a control selects its font object into a context.
#pragma once
#include "platform/gdi/fontdesc.h"
#include "platform/gdi/gdiobjects.h"

// Pixels per inch of the screen, for turning points into device pixels.
constexpr long kScreenPixelsPerInch = 96;

// The point size of a font object, rounded to whole points.
long FontDescWholePoints(const FontDesc& desc);
// A device font for the object at `pixelsPerInch`; FALSE when none can be made.
BOOL CreateFontFromDesc(const FontDesc& desc, CFont* font, long pixelsPerInch = kScreenPixelsPerInch);
