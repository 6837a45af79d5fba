// Mapping between byte positions and points. Every caret placement, click and popup goes
// through here. The functions walk a line's characters from its start and add up their widths
// from the font cache, each in the font of its own format. On a long row the walk remembers
// its state every few thousand bytes (rowcheckpoints.h), and a later walk starts from the last
// state it would have passed.
//
// Document points have x 0 at the text's left edge with no horizontal scrolling and y 0 at the
// top of line 0. Client points add the gutter and the scroll position.
#include <algorithm>
#include <limits>

#include "src/layout/textreader.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr unsigned char kCR = '\r', kLF = '\n', kTab = '\t';

// Walks the characters of one line, giving each one's width as the screen shows it. The walk
// ends at a CR or LF, which have no place of their own, and at the end of the text.
class CWidthWalk {
public:
    // A walk of the row that starts at rowStart, from the last remembered state that passes
    // `fits` below `stop`. A walk that cannot go as far as kSpacing leaves the store alone.
    template <class Fits>
    CWidthWalk(CZentrelCtrl& view, CTextReader& text, long rowStart, long stop, Fits fits)
        : m_view(view), m_text(text), m_nPos(rowStart), m_nRowStart(rowStart) {
        if (stop - rowStart <= CRowCheckpoints::kSpacing) return;
        m_pStore = &view.RowCheckpoints(view.GetOptionsWord());
        if (const MapCheckpoint* point = m_pStore->LastMap(rowStart, stop, fits)) {
            m_nPos = point->pos;
            m_nPixels = point->pixels;
            m_nColumns = point->columns;
            m_nReach = point->reach;
        }
        m_nFrom = m_nPos;
        m_nNextMark = m_pStore->NextMapMark(rowStart);
    }
    // A walk that went far remembers where it ended: the caret or the mouse is there, and the
    // next walk goes to about the same place.
    ~CWidthWalk() {
        if (m_pStore && m_nPos - m_nFrom >= CRowCheckpoints::kNearGap) Remember();
    }
    CWidthWalk(const CWidthWalk&) = delete;
    CWidthWalk& operator=(const CWidthWalk&) = delete;

    long Pos() const { return m_nPos; }
    long Pixels() const { return m_nPixels; }
    long Columns() const { return m_nColumns; }

    // The width and byte count of the character at Pos(); false where the walk ends.
    bool Peek(long* width, long* size) {
        if (m_nPos >= m_text.Length()) return false;
        const unsigned char c = m_text.At(m_nPos);
        if (c == kCR || c == kLF) return false;
        CharFormat format;
        *size = m_view.GetCharFormat(c, m_nPos, m_view.GetOptionsWord(), &format);
        if (*size == 2) {
            *width = 2 * m_view.m_nCharWidth;
            m_nColumnStep = 2;
        } else if (c == kTab) {
            *width = m_view.m_nTabPixels - (m_nPixels % m_view.m_nTabPixels);
            const long tab = m_view.GetTabSize();
            m_nColumnStep = tab - (m_nColumns % tab);
        } else {
            *width = Metrics(format.dwFont)[c];
            m_nColumnStep = 1;
        }
        return true;
    }

    void Advance(long width, long size) {
        m_nReach = std::max(m_nReach, m_nPixels + width);
        m_nPixels += width;
        m_nColumns += m_nColumnStep;
        m_nPos += size;
        if (m_nPos >= m_nNextMark) Remember();
    }

    // Walks on while the position is below `stop`.
    void WalkTo(long stop) {
        long width, size;
        while (m_nPos < stop && Peek(&width, &size)) Advance(width, size);
    }

private:
    void Remember() {
        m_pStore->AddMap(m_nRowStart, {m_nPos, m_nPixels, m_nColumns, m_nReach});
        m_nNextMark = m_nPos + CRowCheckpoints::kSpacing;
    }

    // The widths of a font word, looked up again only when the word changes.
    const LONG* Metrics(DWORD word) {
        if (!m_pWidths || word != m_dwFont) {
            const CFontMetrics* metrics = m_view.GetFontMetrics(word);
            m_pWidths = metrics ? metrics->m_aWidth : m_view.m_WrapMetrics.m_aWidth;
            m_dwFont = word;
        }
        return m_pWidths;
    }

    CZentrelCtrl& m_view;
    CTextReader& m_text;
    long m_nPos;
    long m_nPixels = 0;
    long m_nColumns = 0;
    long m_nColumnStep = 0;
    long m_nReach = 0;  // the right edge of the furthest character passed
    long m_nRowStart;
    long m_nFrom = 0;  // where the walk started
    CRowCheckpoints* m_pStore = nullptr;
    long m_nNextMark = std::numeric_limits<long>::max();
    DWORD m_dwFont = 0;
    const LONG* m_pWidths = nullptr;
};

}  // namespace

// Where a position's line starts: at the document's end, the last line's.
long CZentrelCtrl::LineOfPosition(long nPos, long docLen, long* pnStart) const {
    if (nPos != docLen) return m_Lines.FindLineAndStart(nPos, pnStart);
    const long last = m_Lines.m_nCount - 1;
    const long length = m_Lines.GetAt(last);
    *pnStart = length > 0 ? docLen - length : docLen;
    return last;
}

CZentrelCtrl::LinePlace CZentrelCtrl::PlaceOfPosition(long nPos) {
    long blockStart, blockEnd;
    if (FindCollapse(nPos, &blockStart, &blockEnd)) return {m_Lines.FindLine(nPos), 0, 0};
    CTextReader text(m_pDoc);
    long start;
    const long line = LineOfPosition(nPos, text.Length(), &start);
    CWidthWalk walk(*this, text, start, nPos + 1, [](const MapCheckpoint&) { return true; });
    walk.WalkTo(nPos);
    return {line, walk.Pixels(), walk.Columns()};
}

void CZentrelCtrl::DocPointFromPosition(long nPos, POINT* pt) {
    const LinePlace place = PlaceOfPosition(nPos);
    *pt = {static_cast<LONG>(place.pixels), static_cast<LONG>(place.line * m_nLineHeight)};
}

void CZentrelCtrl::ClientPointFromPosition(long nPos, POINT* pt) {
    DocPointFromPosition(nPos, pt);
    pt->x += m_nIndentSize - m_nLeftPixel;
    pt->y -= m_nTopLine * m_nLineHeight;
}

void CZentrelCtrl::ColumnRowFromPosition(long nPos, POINT* pColumnRow) {
    // A double-byte character counts two columns, as it is two columns wide on the screen.
    const LinePlace place = PlaceOfPosition(nPos);
    *pColumnRow = {static_cast<LONG>(place.columns), static_cast<LONG>(place.line)};
}

long CZentrelCtrl::PositionFromDocPoint(long x, long y) {
    const long line = y / m_nLineHeight;  // truncates towards 0: a point just above line 0 is on it
    const long docLen = m_pDoc->GetLength();
    if (line >= m_Lines.m_nCount) return docLen;
    if (line < 0) return 0;
    long pos = m_Lines.GetLineStart(line);
    if (x <= 0) return pos;
    long end = pos + m_Lines.GetAt(line);
    // A click far to the right stays in front of the line's break.
    if (end < docLen) m_pDoc->PrevLineBreak(end, &end);
    if (pos >= docLen) return pos;
    long blockStart, blockEnd;
    if (FindCollapse(pos, &blockStart, &blockEnd)) return blockStart;

    CTextReader text(m_pDoc);
    const unsigned char first = text.At(pos);
    if (first == kCR || first == kLF || pos >= end) return pos;
    // A walk stops at the first character that reaches the point, so it may start behind any
    // character that ends short of it.
    CWidthWalk walk(*this, text, pos, end, [x](const MapCheckpoint& p) { return p.reach < x; });
    long width, size;
    while (walk.Peek(&width, &size)) {
        const long left = walk.Pixels();
        if (x <= left + width) {
            // The character under the point: its left half (and its middle) gives the position
            // in front of it, its right half the position behind it. Of an odd width the larger
            // half is on the left.
            const long middle = left + width - (width >> 1);
            return x <= middle ? walk.Pos() : walk.Pos() + size;
        }
        walk.Advance(width, size);
        if (walk.Pos() >= end) return walk.Pos();
    }
    return walk.Pos();  // the walk ended on a CR or LF: the position in front of it
}

long CZentrelCtrl::PositionFromClientPoint(long x, long y) {
    return PositionFromDocPoint(x + m_nLeftPixel - m_nIndentSize, y + m_nTopLine * m_nLineHeight);
}

long CZentrelCtrl::GetLineEnd(long nPos) {
    const long docLen = m_pDoc->GetLength();
    long line, end;
    if (nPos < docLen) {
        long start;
        line = m_Lines.FindLineAndStart(nPos, &start);
        end = start + m_Lines.GetAt(line);
        if (end < docLen) {
            long breakPos = end;
            m_pDoc->PrevLineBreak(end, &breakPos);
            return breakPos;
        }
    } else {
        line = m_Lines.m_nCount - 1;
        end = docLen;
    }
    if (m_Lines.GetAt(line) != 0 && line != m_Lines.m_nCount - 1) {
        long breakPos = end;
        m_pDoc->PrevLineBreak(end, &breakPos);
        return breakPos;
    }
    return end;
}

// --- Automation ---

long CZentrelCtrl::FindPositionFromPoint(long nX, long nY) { return m_pDoc ? PositionFromClientPoint(nX, nY) : 0; }

long CZentrelCtrl::FindPositionFromCoordinate(long nColumn, long nRow) {
    // In spite of their names the arguments are document pixels.
    return m_pDoc ? PositionFromDocPoint(nColumn, nRow) : 0;
}

BOOL CZentrelCtrl::FindPointFromPosition(long nPosition, long* pnX, long* pnY) {
    if (!m_pDoc || nPosition < 0 || nPosition > m_pDoc->GetLength()) return FALSE;
    POINT pt;
    ClientPointFromPosition(nPosition, &pt);
    *pnX = pt.x;
    *pnY = pt.y;
    return TRUE;
}

void CZentrelCtrl::FindCoordinateFromPosition(long nPosition, long* pnColumn, long* pnRow) {
    if (!m_pDoc || nPosition < 0 || nPosition > m_pDoc->GetLength()) ThrowError(CTL_E_INVALIDPROPERTYVALUE);
    POINT cr;
    ColumnRowFromPosition(nPosition, &cr);
    *pnColumn = cr.x;
    *pnRow = cr.y;
}
