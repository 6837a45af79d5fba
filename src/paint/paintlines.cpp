// The painter. It works only from its PaintContext, so that the screen and the print engine
// call the same code: it fills the gutter and the background, then walks the visible lines of
// the line table and draws each line's text in runs of one format. Every byte's format comes
// from GetCharFormat; nothing of the picture or the text is kept between paints, but where the
// runs of a long row start (rowcheckpoints.h), so that a paint far along it starts near there.
#include <algorithm>
#include <climits>
#include <limits>

#include "src/layout/textreader.h"
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr unsigned char kTab = '\t', kCR = '\r', kLF = '\n';
// A run is flushed once it is longer than this; runs stay far below the drawing buffer.
constexpr long kRunLimit = 400;
constexpr long kRunBuffer = 2048;
// Under the symbol font these bytes are a double-headed arrow (a tab) and a return arrow (a CR).
constexpr char kTabGlyph = static_cast<char>(0xAB);
constexpr char kReturnGlyph = static_cast<char>(0xBF);
// An ellipsis in the Windows code pages: the end of a collapsed line that does not fit.
constexpr char kEllipsis = static_cast<char>(0x85);

bool SameFormat(const CharFormat& a, const CharFormat& b) {
    return a.crText == b.crText && a.crBack == b.crBack && a.dwFont == b.dwFont;
}

RECT LineRect(long left, long right, long yTop, long height) {
    return RECT{static_cast<LONG>(left), static_cast<LONG>(yTop), static_cast<LONG>(right), static_cast<LONG>(yTop + height)};
}

}  // namespace

// The state of the runs of one line.
struct CZentrelCtrl::RunPainter {
    CZentrelCtrl& view;
    LinePaint& lp;
    CDC* dc;
    CTextReader& text;
    DWORD options;
    RECT rcLine;      // what is left of the line to paint; its left edge follows the runs
    long x;           // where the next run starts
    CharFormat cur{}; // the format on the device
    long overhang = 0;
    DWORD fontWord = 0;         // the word of the font last selected, once one was
    bool fontSelected = false;
    long maxX = 0;              // the largest x so far
    long reach = LONG_MIN;      // the right edge of the furthest cell drawn
    CRowCheckpoints* checkpoints = nullptr;
    long nextMark = std::numeric_limits<long>::max();  // where the walk looks at its states next
    long gridMark = std::numeric_limits<long>::max();  // where it remembers its state next
    // Until something of the line is visible, the walk keeps the state of the last run before:
    // where the next paint of about the same place can start.
    bool nearing = false;
    PaintCheckpoint nearest{};
    long walkFrom = 0;  // where the walk started: the row's start or a remembered state

    // Puts the format on the device: colours, and the font if the cache has it.
    void Apply(const CharFormat& format, bool all) {
        if (all || format.crText != cur.crText) dc->SetTextColor(format.crText);
        if (all || format.crBack != cur.crBack) dc->SetBkColor(format.crBack);
        if (all || format.dwFont != cur.dwFont) {
            if (CFontMetrics* metrics = view.FindFontMetrics(format.dwFont)) {
                dc->SelectObject(&metrics->m_hFont);
                overhang = metrics->m_tm.tmOverhang;
                fontWord = format.dwFont;
                fontSelected = true;
            }
        }
        cur = format;
    }

    void FlushTab() {
        // The tab runs to the next stop, counted in text coordinates.
        const long tx = x - lp.xText, stop = view.m_nTabPixels;
        const long end = lp.xText + tx + stop - (tx % stop);
        const RECT cell = LineRect(x, end, lp.yTop, view.m_nLineHeight);
        if (dc->RectVisible(cell)) {
            if (options & OPT_DISPLAYALL) {
                const UINT align = dc->SetTextAlign(TA_CENTER | TA_BASELINE);
                dc->ExtTextOut(static_cast<int>(x + (end - x) / 2), static_cast<int>(lp.yTop + view.m_nAscent),
                               ETO_OPAQUE | ETO_CLIPPED, &cell, &kTabGlyph, 1);
                dc->SetTextAlign(align);
            } else {
                dc->ExtTextOut(0, 0, ETO_OPAQUE, &cell, nullptr, 0);
            }
        }
        x = end;
    }

    void FlushText(long runStart, long scan) {
        char buffer[kRunBuffer];
        const long count = std::min(scan - runStart, kRunBuffer);
        for (long i = 0, available = 0; i < count; i += available) {
            const char* bytes = text.Span(runStart + i, &available);
            if (available == 0) {
                std::fill(buffer + i, buffer + count, '\0');  // behind the text, as At reads it
                break;
            }
            available = std::min(available, count - i);
            std::copy_n(bytes, available, buffer + i);
        }
        // A CR shows as a return arrow among hidden characters; otherwise only a selected CR
        // reaches a run, and shows as one blank cell. Trail bytes are skipped, so that they are
        // not taken for a CR.
        for (long i = 0; i < count; ++i) {
            const auto c = static_cast<unsigned char>(buffer[i]);
            if (IsLeadByte(c)) {
                ++i;
            } else if (c == kCR) {
                if (!(options & OPT_DISPLAYALL)) {
                    buffer[i] = ' ';
                    break;
                }
                buffer[i] = kReturnGlyph;
            }
        }
        const long cx = dc->GetTextExtent(buffer, static_cast<int>(count)).cx;
        const RECT cell = LineRect(x, x + cx, lp.yTop, view.m_nLineHeight);
        if (dc->RectVisible(cell))
            dc->ExtTextOut(static_cast<int>(x), static_cast<int>(lp.yTop + view.m_nAscent), ETO_OPAQUE | ETO_CLIPPED, &cell,
                           buffer, static_cast<UINT>(count));
        x += cx - overhang;
    }

    // Draws the bytes from runStart to scan, if any.
    void Flush(long runStart, long scan) {
        if (scan <= runStart) return;
        if (text.At(runStart) == kTab) {
            FlushTab();
            reach = std::max(reach, x);
        } else {
            FlushText(runStart, scan);
            reach = std::max(reach, x + overhang);
        }
        maxX = std::max(maxX, x);
    }

    bool InSelection(long pos) const {
        const long low = std::min(view.m_nSelActive, view.m_nSelAnchor), high = std::max(view.m_nSelActive, view.m_nSelAnchor);
        return pos >= low && pos < high;
    }

    // The strip of the line left of `right`, from far outside the window.
    RECT StripBefore(long right) const { return LineRect(-(1L << 29), right, lp.yTop, view.m_nLineHeight); }

    // Takes up the walk at the last remembered state before whose runs nothing of the line is
    // visible; false where the walk starts at the row's start. Kept out of line, as is Remember,
    // so that the run loop of ordinary rows stays as tight as it was.
    [[gnu::noinline]] bool Resume(long lineEnd, long* pos) {
        if (lp.pPaint->pLines != &view.m_Lines || lp.nLength <= CRowCheckpoints::kSpacing) return false;
        checkpoints = &view.RowCheckpoints(options);
        gridMark = checkpoints->NextPaintMark(lp.nStart);
        const PaintCheckpoint* point = checkpoints->LastPaint(
            lp.nStart, lineEnd, [&](const PaintCheckpoint& p) { return !dc->RectVisible(StripBefore(lp.xText + p.reach)); });
        nearing = true;
        walkFrom = nearest.pos = point ? point->pos : lp.nStart;
        nextMark = walkFrom;
        if (!point) return false;
        dc->SetTextColor(point->format.crText);
        dc->SetBkColor(point->format.crBack);
        if (CFontMetrics* metrics = view.FindFontMetrics(point->fontWord)) dc->SelectObject(&metrics->m_hFont);
        cur = point->format;
        fontWord = point->fontWord;
        fontSelected = true;
        overhang = point->overhang;
        x = lp.xText + point->x;
        maxX = lp.xText + point->maxX;
        reach = lp.xText + point->reach;
        *pos = point->pos;
        return true;
    }

    // At the start of a run along a long row: remembers the state every so often, and the state
    // in front of the first visible run when the walk went far to get there.
    [[gnu::noinline]] void Remember(long pos) {
        const PaintCheckpoint state{pos, x - lp.xText, maxX - lp.xText, reach - lp.xText, cur, fontWord, overhang};
        if (pos >= gridMark) {
            checkpoints->AddPaint(lp.nStart, state);
            gridMark = pos + CRowCheckpoints::kSpacing;
        }
        if (nearing) {
            // Left of the update rectangle nothing shows; from there on the clip decides.
            if (reach <= lp.pPaint->prcUpdate->left || !dc->RectVisible(StripBefore(reach))) {
                nearest = state;
            } else {
                nearing = false;
                if (nearest.pos - walkFrom >= CRowCheckpoints::kNearGap) checkpoints->AddPaint(lp.nStart, nearest);
            }
        }
        nextMark = nearing ? pos + 1 : gridMark;
    }

    void Paint() {
        const long lineEnd = lp.nStart + lp.nLength;
        const long update = lp.pPaint->prcUpdate->right;
        // A line that starts with its line end shows nothing: the background stands.
        const unsigned char first = text.At(lp.nStart);
        if (first == kLF || (first == kCR && !(options & OPT_DISPLAYALL) && !InSelection(lp.nStart))) return;
        CharFormat nxt{};
        long size = 0, runStart = lp.nStart, scan = lp.nStart;
        bool tabRun = false;
        maxX = reach = x;
        if (Resume(lineEnd, &scan)) {
            // The walk from the row's start ends here when the rest of the line is out of sight.
            runStart = scan;
            rcLine.left = std::max<LONG>(rcLine.left, static_cast<LONG>(maxX));
            if (maxX > update || !dc->RectVisible(rcLine)) return;
        } else {
            size = view.GetCharFormat(first, lp.nStart, options, &nxt);
            Apply(nxt, true);
            // A format whose font the cache lacks measures in the font the device has from
            // before the row: then x depends on more than the row, and nothing is remembered.
            if (!fontSelected) {
                checkpoints = nullptr;
                nextMark = std::numeric_limits<long>::max();
            }
            scan = lp.nStart + size;
            tabRun = first == kTab;
        }
        bool last = false;
        while (scan <= lineEnd) {
            bool flush = true;
            if (scan == lineEnd) {
                last = true;
            } else if (!tabRun) {
                const unsigned char c = text.At(scan);
                size = view.GetCharFormat(c, scan, options, &nxt);
                if (c == kCR && !(options & OPT_DISPLAYALL) && !InSelection(scan)) {
                    last = true;  // a CR ends what the line shows, unless it is selected
                } else if (!SameFormat(nxt, cur)) {
                    // a new format starts a new run
                } else if (c == kTab) {
                    if (scan == runStart) ++scan;  // a tab is a run of its own
                } else if (c == kLF) {
                    last = true;
                } else {
                    scan += size;
                    flush = scan - runStart > kRunLimit;
                }
            }
            if (flush) {
                Flush(runStart, scan);
                runStart = scan;
                tabRun = false;
                if (last) return;
            }
            rcLine.left = std::max<LONG>(rcLine.left, static_cast<LONG>(x));
            if (x > update || !dc->RectVisible(rcLine)) return;
            if (!SameFormat(nxt, cur)) Apply(nxt, false);
            if (scan >= nextMark && runStart == scan) Remember(scan);
        }
    }
};

void CZentrelCtrl::PaintLines(PaintContext* pCtx) {
    CDC* dc = pCtx->pDC;
    const RECT& bounds = *pCtx->prcBounds;
    const RECT& update = *pCtx->prcUpdate;
    const DWORD options = pCtx->dwOptions;
    const COLORREF clrBack = (options & OPT_MONODRAW) ? 0xFFFFFF : TranslateColor(m_clrBack);
    const long first = update.top + pCtx->nScrollY;
    const long firstLine = first / m_nLineHeight, skip = first % m_nLineHeight;

    std::unique_ptr<CDC> mem = dc->CreateCompatibleDC();
    if (!mem) return;
    const long gutter = pCtx->nGutter - m_nCharWidth;
    // Where pixels cost per write, only the margin left of the lines is filled now: each line
    // fills what its runs leave, and the area below the lines is filled last.
    const bool fillAfterRuns = dc->WritesPixelsInMemory();
    RECT background = update;
    if (fillAfterRuns) background.right = std::min(update.right, static_cast<LONG>(bounds.left + pCtx->nGutter));
    if (gutter < 1) {
        dc->FillSolidRect(background, clrBack);
    } else {
        PaintGutterColumn(pCtx, mem.get(), gutter);
        background.left = static_cast<LONG>(bounds.left + gutter);
        dc->FillSolidRect(background, clrBack);
        if (options & OPT_LEFTMARGINVISIBLE) {
            const COLORREF color = (options & OPT_MONODRAW) ? 0x000000 : GetSysColor(COLOR_BTNSHADOW);
            const LONG lx = static_cast<LONG>(bounds.left + gutter - 1);
            dc->FillSolidRect(RECT{lx, update.top, lx + 1, update.bottom}, color);
        }
    }

    LinePaint lp;
    lp.pPaint = pCtx;
    lp.pMemDC = mem.get();
    lp.xText = bounds.left - pCtx->nScrollX + pCtx->nGutter;
    lp.yTop = update.top - skip;
    lp.bFillAfterRuns = fillAfterRuns;
    lp.crBack = clrBack;
    const CLineIndex& lines = *pCtx->pLines;
    if (firstLine >= 0 && firstLine < lines.m_nCount) {
        lp.nStart = lines.GetLineStart(firstLine);
        for (lp.nLine = firstLine; lp.nLine < lines.m_nCount; ++lp.nLine) {
            lp.nLength = lines.GetAt(lp.nLine);
            PaintLine(&lp);
            lp.yTop += m_nLineHeight;
            if (lp.yTop >= update.bottom) break;
            lp.nStart += lp.nLength;
        }
    }
    if (lp.yTop < update.bottom) {
        RECT below = update;
        below.top = static_cast<LONG>(std::max<long>(lp.yTop, update.top));
        below.left = std::max<LONG>(update.left, static_cast<LONG>(bounds.left + pCtx->nGutter));
        dc->FillSolidRect(below, clrBack);
    }
    if (options & OPT_RIGHTMARGINVISIBLE) {
        const int mx = static_cast<int>(lp.xText + m_nRightMargin * m_nCharWidth);
        CPen* old = dc->SelectObject(&m_penHidden);
        dc->MoveTo(mx, update.top);
        dc->LineTo(mx, update.bottom);
        dc->SelectObject(old);
    }
    dc->SelectClipRgn(nullptr);
}

void CZentrelCtrl::PaintLine(LinePaint* pLine) {
    PaintContext* ctx = pLine->pPaint;
    CDC* dc = ctx->pDC;
    const RECT& bounds = *ctx->prcBounds;
    RECT rcLine = LineRect(ctx->prcUpdate->left, ctx->prcUpdate->right, pLine->yTop, m_nLineHeight);
    if (!dc->RectVisible(rcLine)) return;
    long blockStart = 0, blockEnd = 0;
    const bool collapsed = FindCollapse(pLine->nStart, &blockStart, &blockEnd);
    const RECT gutter = LineRect(bounds.left, bounds.left + ctx->nGutter, pLine->yTop, m_nLineHeight);
    if (dc->RectVisible(gutter)) {
        PaintGutterMarks(pLine);
        dc->ExcludeClipRect(gutter);  // no text spills into the gutter
    }
    rcLine.left = std::max(rcLine.left, gutter.right);
    if (!dc->RectVisible(rcLine)) return;
    long uncovered = rcLine.left;  // where what the line draws leaves the background
    if (pLine->nLength == 0) {
        // an empty last line shows only the background
    } else if (collapsed) {
        if (PaintCollapsedLine(pLine, blockStart, blockEnd)) uncovered = ctx->prcUpdate->right;
    } else {
        RunPainter runs{*this, *pLine, dc, *ctx->pText, ctx->dwOptions, rcLine, pLine->xText};
        runs.Paint();
        uncovered = std::max(uncovered, runs.reach);
    }
    FillLineTail(pLine, uncovered);
}

void CZentrelCtrl::FillLineTail(LinePaint* pLine, long nFrom) {
    if (!pLine->bFillAfterRuns) return;
    const RECT& update = *pLine->pPaint->prcUpdate;
    const RECT tail = IntersectRects(LineRect(nFrom, update.right, pLine->yTop, m_nLineHeight), update);
    pLine->pPaint->pDC->FillSolidRect(tail, pLine->crBack);
}

bool CZentrelCtrl::PaintCollapsedLine(LinePaint* pLine, long, long) {
    PaintContext* ctx = pLine->pPaint;
    CDC* dc = ctx->pDC;
    const RECT& bounds = *ctx->prcBounds;
    const RECT band = LineRect(bounds.left + ctx->nGutter, ctx->prcUpdate->right, pLine->yTop, m_nLineHeight);
    const RECT cell = IntersectRects(band, *ctx->prcUpdate);
    if (cell.IsEmpty()) return true;
    const long low = std::min(m_nSelActive, m_nSelAnchor), high = std::max(m_nSelActive, m_nSelAnchor);
    const bool selected = pLine->nStart >= low && pLine->nStart < high;
    CFontMetrics* metrics = GetFontMetrics(m_Styles[STYLE_COLLAPSED].dwFont);
    if (!metrics) return false;

    // The label: the line's text without tabs and line ends, cut with an ellipsis where it
    // would run past the window.
    const long limit = bounds.right - bounds.left - m_nCharWidth - ctx->nGutter;
    long width = metrics->m_aWidth[static_cast<unsigned char>(kEllipsis)];
    std::string label;
    CTextReader& text = *ctx->pText;
    for (long pos = pLine->nStart, end = pLine->nStart + pLine->nLength; pos < end;) {
        const unsigned char c = text.At(pos);
        const bool lead = IsLeadByte(c);
        const long step = lead ? 2 : 1;
        if (c == kTab || c == kCR || c == kLF) {
            ++pos;
            continue;
        }
        width += lead ? 2 * m_nCharWidth : metrics->m_aWidth[c];
        if (width > limit) {
            label += kEllipsis;
            break;
        }
        label += static_cast<char>(c);
        if (lead && pos + 1 < end) label += static_cast<char>(text.At(pos + 1));
        pos += step;
    }

    COLORREF back = GetSysColor(COLOR_BTNFACE), fore = GetSysColor(COLOR_BTNTEXT);
    if (selected) std::swap(back, fore);
    dc->SetBkColor(back);
    dc->SetTextColor(fore);
    CFont* old = dc->SelectObject(&metrics->m_hFont);
    dc->ExtTextOut(static_cast<int>(pLine->xText + m_nCharWidth), static_cast<int>(pLine->yTop + m_nAscent), ETO_OPAQUE, &cell,
                   label.data(), static_cast<UINT>(label.size()));
    dc->SelectObject(old);
    dc->FillSolidRect(RECT{band.left, band.top, band.right, band.top + 1}, GetSysColor(COLOR_3DHIGHLIGHT));
    dc->FillSolidRect(RECT{band.left, band.bottom - 1, band.right, band.bottom}, GetSysColor(COLOR_BTNSHADOW));
    return true;
}
