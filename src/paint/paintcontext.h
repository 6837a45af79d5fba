// The records the painter works from. Everything a paint needs is in PaintContext, so that the
// screen and the print engine call the same painter with their own table, options and device.
#pragma once
#include "platform/gdi/dc.h"

class CLineIndex;
class CTextReader;

struct PaintContext {
    CDC* pDC = nullptr;             // where to draw
    CTextReader* pText = nullptr;   // the document's bytes, read through copies of what is painted
    long nDocLength = 0;
    CLineIndex* pLines = nullptr;   // the line table to paint from
    DWORD dwOptions = 0;            // the option word in force
    long nGutter = 0;               // the gutter width
    const RECT* prcBounds = nullptr;  // the whole paintable area
    const RECT* prcUpdate = nullptr;  // the part to be drawn
    long nScrollX = 0;              // horizontal offset in pixels
    long nScrollY = 0;              // vertical offset in pixels
};

struct LinePaint {
    PaintContext* pPaint = nullptr;
    CDC* pMemDC = nullptr;  // a memory context compatible with pDC, for gutter pictures
    long nLine = 0;
    long nStart = 0;
    long nLength = 0;
    long xText = 0;  // x of the text origin: bounds' left - nScrollX + nGutter
    long yTop = 0;   // top of this line
    // Set where each line fills what its runs leave of its band, after them; otherwise the
    // background was filled under all lines beforehand.
    bool bFillAfterRuns = false;
    COLORREF crBack = 0;
};
