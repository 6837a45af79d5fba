// The gutter: the column left of the text with its background tile, and each line's marks in
// it (bookmark flag, line number, plus box of a collapsed block, the bracket along the
// selection). The tile and the boxes are kept as bitmaps in the desktop's colours; a flag is
// made when its line is painted and dropped right after.
#include <algorithm>
#include <cstdio>
#include <memory>

#include "platform/gdi/mappedbitmap.h"
#include "src/resources/gutterpictures.h"
#include "src/view/zentrelctrl.h"

namespace {

// The tile's ground becomes the button colour and its pattern a shade lighter, so that it
// shows as a faint watermark of the button colour.
COLORREF LighterShade(COLORREF c) {
    constexpr COLORREF kLighter = 15;
    COLORREF out = 0;
    for (int shift = 0; shift < 24; shift += 8) out |= std::min<COLORREF>(255, ((c >> shift) & 0xFF) + kLighter) << shift;
    return out;
}

// Black, greys and white as the desktop draws buttons.
struct StandardColors {
    COLORMAP map[4] = {{0x000000, GetSysColor(COLOR_BTNTEXT)},
                       {0x808080, GetSysColor(COLOR_BTNSHADOW)},
                       {0xC0C0C0, GetSysColor(COLOR_BTNFACE)},
                       {0xFFFFFF, GetSysColor(COLOR_3DHIGHLIGHT)}};
};

BOOL LoadStandardBitmap(CDC& dc, UINT id, CBitmap* bitmap) {
    const PixelPicture* picture = FindGutterPicture(id);
    const StandardColors colors;
    return picture && CreateMappedBitmap(dc, *picture, colors.map, 4, bitmap);
}

}  // namespace

void CZentrelCtrl::LoadGutterBitmaps() {
    m_bmpGutter.DeleteObject();
    m_bmpFold.DeleteObject();
    m_bmpMark.DeleteObject();
    IGdiBackend* backend = GetGdiBackend();
    std::unique_ptr<CDC> screen = backend ? backend->CreateScreenDC() : nullptr;
    if (!screen) return;
    const COLORREF face = GetSysColor(COLOR_BTNFACE);
    const COLORMAP tile[] = {{kTileGround, face}, {kTilePattern, LighterShade(face)}};
    if (const PixelPicture* picture = FindGutterPicture(IDB_GUTTER)) CreateMappedBitmap(*screen, *picture, tile, 2, &m_bmpGutter);
    LoadStandardBitmap(*screen, IDB_FOLD, &m_bmpFold);
    LoadStandardBitmap(*screen, IDB_MARK, &m_bmpMark);
}

void CZentrelCtrl::PaintGutterColumn(PaintContext* pCtx, CDC* pMemDC, long nWidth) {
    CDC* dc = pCtx->pDC;
    const RECT& update = *pCtx->prcUpdate;
    const LONG left = pCtx->prcBounds->left;
    const COLORREF face = GetSysColor(COLOR_BTNFACE);
    if (!(pCtx->dwOptions & OPT_GUTTERBITMAPVISIBLE) || !m_bmpGutter.IsValid()) {
        const COLORREF color = (pCtx->dwOptions & OPT_MONODRAW) ? 0xFFFFFF : face;
        dc->FillSolidRect(RECT{left, update.top, static_cast<LONG>(left + nWidth), update.bottom}, color);
        return;
    }
    // The tile is fixed to the document: it scrolls up and down with the text. A column wider
    // than the tile is flat in the button colour right of it.
    const long tileWidth = std::min<long>(kGutterTileWidth, nWidth);
    dc->FillSolidRect(RECT{static_cast<LONG>(left + tileWidth), update.top, static_cast<LONG>(left + nWidth), update.bottom},
                      face);
    const long phase = ((update.top + pCtx->nScrollY) % kGutterTileHeight + kGutterTileHeight) % kGutterTileHeight;
    CBitmap* old = pMemDC->SelectObject(&m_bmpGutter);
    for (long y = update.top - phase; y < update.bottom; y += kGutterTileHeight)
        dc->BitBlt(left, static_cast<int>(y), static_cast<int>(tileWidth), kGutterTileHeight, pMemDC, 0, 0, SRCCOPY);
    pMemDC->SelectObject(old);
}

void CZentrelCtrl::PaintGutterMarks(LinePaint* pLine) {
    PaintContext* ctx = pLine->pPaint;
    const long gutterRight = ctx->prcBounds->left + ctx->nGutter;
    if (ctx->dwOptions & OPT_BOOKMARKVISIBLE) PaintBookmarkFlag(pLine, gutterRight);
    if ((ctx->dwOptions & OPT_SHOWLINENUMBER) && m_pDoc) PaintLineNumber(pLine, gutterRight);
    RECT box = FoldBoxRectAt(pLine->yTop);
    box.left += ctx->prcBounds->left;
    box.right += ctx->prcBounds->left;
    long blockStart = 0, blockEnd = 0;
    if ((ctx->dwOptions & OPT_COLLAPSEBLOCKENABLE) && FindCollapse(pLine->nStart, &blockStart, &blockEnd))
        PaintGutterBitmap(pLine, &m_bmpMark, box);
    if (box.right <= gutterRight) PaintSelectionBracket(pLine, box);
}

void CZentrelCtrl::PaintGutterBitmap(LinePaint* pLine, CBitmap* pBitmap, const RECT& rc) {
    if (!pBitmap->IsValid() || rc.IsEmpty()) return;
    CBitmap* old = pLine->pMemDC->SelectObject(pBitmap);
    pLine->pPaint->pDC->BitBlt(rc.left, rc.top, rc.Width(), rc.Height(), pLine->pMemDC, 0, 0, SRCCOPY);
    pLine->pMemDC->SelectObject(old);
}

void CZentrelCtrl::PaintBookmarkFlag(LinePaint* pLine, long nGutterRight) {
    const CBookmark* mark = m_Bookmarks.FindAtPosition(pLine->nStart);
    if (!mark) return;
    const PixelPicture* picture = FindGutterPicture(static_cast<UINT>(mark->GetBitmapId()));
    const StandardColors colors;
    CBitmap flag;
    if (!picture || !CreateMappedBitmap(*pLine->pMemDC, *picture, colors.map, 4, &flag)) return;  // no flag, the rest goes on
    // A narrow gutter cuts the flag at its right edge.
    const long x = m_nCharWidth / 4, y = pLine->yTop + (m_nLineHeight - kFlagHeight) / 2;
    const long width = std::clamp<long>(nGutterRight - x - kFlagWidth, 0, kFlagWidth);
    const long left = pLine->pPaint->prcBounds->left + x;
    PaintGutterBitmap(pLine, &flag, RECT{static_cast<LONG>(left), static_cast<LONG>(y), static_cast<LONG>(left + width),
                                         static_cast<LONG>(y + kFlagHeight)});
}

void CZentrelCtrl::PaintLineNumber(LinePaint* pLine, long nGutterRight) {
    PaintContext* ctx = pLine->pPaint;
    // Only the first row of a text line carries its number; wrapped rows do not count.
    long number = 0, start = -1;
    m_pDoc->GetTextLine(pLine->nStart, &number);
    m_pDoc->GetTextLineStart(number, &start);
    if (start != pLine->nStart) return;
    char digits[32];
    const int count = std::snprintf(digits, sizeof digits, "%ld", number + 1);
    CDC* dc = ctx->pDC;
    const int bkMode = dc->SetBkMode(TRANSPARENT);
    const UINT align = dc->SetTextAlign(TA_RIGHT | TA_BASELINE);
    dc->SetTextColor((ctx->dwOptions & OPT_MONODRAW) ? 0x000000 : TranslateColor(m_Styles[STYLE_LINE_NUMBER].crText));
    CFont* old = nullptr;
    CFontMetrics* metrics = FindFontMetrics(m_Styles[STYLE_LINE_NUMBER].dwFont);
    if (metrics) old = dc->SelectObject(&metrics->m_hFont);
    dc->ExtTextOut(static_cast<int>(nGutterRight - m_nCharWidth / 2 - m_nCharWidth), static_cast<int>(pLine->yTop + m_nAscent), 0,
                   nullptr, digits, static_cast<UINT>(count));
    if (metrics) dc->SelectObject(old);
    dc->SetTextAlign(align);
    dc->SetBkMode(bkMode);
}

void CZentrelCtrl::PaintSelectionBracket(LinePaint* pLine, const RECT& rcBox) {
    PaintContext* ctx = pLine->pPaint;
    if (!(ctx->dwOptions & OPT_COLLAPSEBLOCKENABLE) || (ctx->dwOptions & OPT_HIDESELECTION)) return;
    const long lo = std::min(m_nSelActive, m_nSelAnchor), hi = std::max(m_nSelActive, m_nSelAnchor);
    const long start = pLine->nStart, end = pLine->nStart + pLine->nLength;
    if (std::min(hi, end) - std::max(lo, start) <= 0) return;  // no selected byte on this line
    const auto inLine = [&](long pos) { return pos >= start && pos < end; };
    const bool begins = inLine(lo), ends = hi == end || inLine(hi);
    if (begins && ends) return;  // a selection within one line has no bracket
    const int midX = static_cast<int>(rcBox.left + rcBox.Width() / 2), midY = static_cast<int>(rcBox.top + rcBox.Height() / 2);
    const int top = static_cast<int>(pLine->yTop), bottom = static_cast<int>(pLine->yTop + m_nLineHeight);
    CDC* dc = ctx->pDC;
    CPen pen(PS_SOLID, 0, (ctx->dwOptions & OPT_MONODRAW) ? 0x000000 : GetSysColor(COLOR_BTNTEXT));
    CPen* oldPen = dc->SelectObject(&pen);
    const int bkMode = dc->SetBkMode(TRANSPARENT);
    // The bracket runs down the middle of the box column: from the box where the selection
    // begins, through the lines between, into the box where it ends.
    if (begins) {
        dc->MoveTo(midX, bottom);
        dc->LineTo(midX, midY);
    } else {
        dc->MoveTo(midX, top);
        dc->LineTo(midX, ends ? midY : bottom);
    }
    if (begins || ends) PaintGutterBitmap(pLine, &m_bmpFold, rcBox);
    dc->SetBkMode(bkMode);
    dc->SelectObject(oldPen);
}
