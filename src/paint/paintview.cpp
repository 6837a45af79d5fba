// The screen's side of painting: what kind of picture a paint wants, and the off-screen bitmap
// that keeps it from flickering.
#include <algorithm>
#include <utility>

#include "platform/gdi/fontobject.h"
#include "src/layout/textreader.h"
#include "src/view/zentrelctrl.h"

void CZentrelCtrl::OnDraw(CDC* pDC, const RECT& rcBounds, const RECT& rcInvalid) {
    if (!GetEnabled()) return;
    if (!AmbientUserMode()) {
        // Being designed: a plain page with the control's name.
        pDC->SetMapMode(MM_TEXT);
        pDC->FillSolidRect(rcInvalid, TranslateColor(m_clrBack));
        CFont font;
        if (CreateFontFromDesc(m_fontEdit.GetFontDesc(), &font)) {
            CFont* old = pDC->SelectObject(&font);
            const std::string name = AmbientDisplayName();
            pDC->ExtTextOut(rcBounds.left + 4, rcBounds.top + 4, 0, nullptr, name.data(), static_cast<UINT>(name.size()));
            pDC->SelectObject(old);
        }
        return;
    }
    if (!m_pDoc) {
        pDC->FillSolidRect(rcInvalid, TranslateColor(m_clrBack));
        return;
    }
    if (m_nBusyCount > 0) {
        pDC->FillSolidRect(rcInvalid, GetSysColor(COLOR_BTNFACE));
        m_bBusyFilled = true;
        return;
    }
    const bool wasPainting = std::exchange(m_bPainting, true);
    PrepareDC(pDC);
    RECT bounds = rcBounds, invalid = rcInvalid;
    pDC->DPtoLP(&bounds);
    pDC->DPtoLP(&invalid);
    PaintView(pDC, bounds, invalid, TRUE);
    m_bPainting = wasPainting;
}

void CZentrelCtrl::PrepareDC(CDC* pDC) {
    pDC->SetMapMode(MM_TEXT);
    pDC->SetTextAlign(TA_BASELINE);
    pDC->SetBkMode(OPAQUE);
}

void CZentrelCtrl::PaintView(CDC* pDC, const RECT& rcBounds, const RECT& rcUpdate, BOOL bBuffered) {
    PaintBuffered(pDC, m_nLeftPixel, m_nTopLine * m_nLineHeight, rcBounds, rcUpdate, bBuffered);
}

void CZentrelCtrl::PaintBuffered(CDC* pDC, long nScrollX, long nScrollY, const RECT& rcBounds, const RECT& rcUpdate,
                                 BOOL bBuffered) {
    const RECT rc = IntersectRects(rcBounds, rcUpdate);
    if (rc.IsEmpty()) return;
    if (bBuffered) {
        CBitmap bitmap;
        if (!pDC->CreateCompatibleBitmap(&bitmap, rcBounds.Width(), rcBounds.Height())) return;  // nothing drawn
        if (std::unique_ptr<CDC> mem = pDC->CreateCompatibleDC()) {
            PrepareDC(mem.get());
            CBitmap* old = mem->SelectObject(&bitmap);
            // The memory context clips as the target does: to its clip region, or to rc.
            CRgn clip(rc);
            pDC->GetClipRgn(&clip);
            mem->SelectClipRgn(&clip);
            PaintBuffered(mem.get(), nScrollX, nScrollY, rcBounds, rcUpdate, FALSE);
            pDC->StretchBlt(rc.left, rc.top, rc.Width(), rc.Height(), mem.get(), rc.left, rc.top, rc.Width(), rc.Height(),
                            SRCCOPY);
            mem->SelectObject(old);
            return;
        }
    }
    CTextReader text(m_pDoc);
    PaintContext ctx;
    ctx.pDC = pDC;
    ctx.pText = &text;
    ctx.nDocLength = text.Length();
    ctx.pLines = &m_Lines;
    ctx.dwOptions = m_Options;
    ctx.nGutter = m_nIndentSize;
    ctx.prcBounds = &rcBounds;
    ctx.prcUpdate = &rcUpdate;
    ctx.nScrollX = nScrollX;
    ctx.nScrollY = nScrollY;
    PaintLines(&ctx);
}
