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

namespace {

// A context that keeps its drawing out of sight until it is done, and reaches exactly `rc`,
// shows what a bitmap of the paint's own, clipped to `rc` and copied there, would show.
bool BuffersLikeABitmap(const CDC& dc, const RECT& rc) {
    RECT reach;
    return dc.DrawsOffScreen() && dc.GetClipBox(&reach) == SIMPLEREGION && reach == rc;
}

// The attributes that a paint changes on its context, put back when the paint is over, so that
// the context is left as a separate bitmap would have left it.
class CSavedAttributes {
public:
    explicit CSavedAttributes(CDC& dc)
        : m_dc(dc), m_bClipped(dc.GetClipRgn(&m_clip) == 1), m_pFont(dc.GetCurrentFont()), m_crText(dc.GetTextColor()),
          m_crBack(dc.GetBkColor()), m_nAlign(dc.GetTextAlign()), m_nBkMode(dc.GetBkMode()) {}
    ~CSavedAttributes() {
        m_dc.SelectClipRgn(m_bClipped ? &m_clip : nullptr);
        m_dc.SelectObject(m_pFont);
        m_dc.SetTextColor(m_crText);
        m_dc.SetBkColor(m_crBack);
        m_dc.SetTextAlign(m_nAlign);
        m_dc.SetBkMode(m_nBkMode);
    }
    CSavedAttributes(const CSavedAttributes&) = delete;
    CSavedAttributes& operator=(const CSavedAttributes&) = delete;

private:
    CDC& m_dc;
    CRgn m_clip;
    bool m_bClipped;
    CFont* m_pFont;
    COLORREF m_crText, m_crBack;
    UINT m_nAlign;
    int m_nBkMode;
};

}  // namespace

void CZentrelCtrl::PaintBuffered(CDC* pDC, long nScrollX, long nScrollY, const RECT& rcBounds, const RECT& rcUpdate,
                                 BOOL bBuffered) {
    const RECT rc = IntersectRects(rcBounds, rcUpdate);
    if (rc.IsEmpty()) return;
    if (bBuffered && BuffersLikeABitmap(*pDC, rc)) {
        // The copy of a bitmap would cost as much as the drawing: the paint draws in place,
        // starting from the state a fresh memory context has.
        CSavedAttributes saved(*pDC);
        pDC->SelectObject(static_cast<CFont*>(nullptr));
        pDC->SetTextColor(0x000000);
        pDC->SetBkColor(0xFFFFFF);
        PrepareDC(pDC);
        PaintBuffered(pDC, nScrollX, nScrollY, rcBounds, rcUpdate, FALSE);
        return;
    }
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
