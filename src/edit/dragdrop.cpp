// The drop side of the view: what a drag over the window may do, the drop caret that follows
// it, scrolling while it rests near an edge, and the drop itself, which the host hears first
// and the document then takes unread.
#include <algorithm>
#include <cctype>

#include "platform/window/paint.h"
#include "src/view/zentrelctrl.h"

namespace {

// Where no drop caret is drawn; the second is a place the next drag-over always moves away from.
constexpr POINT kNoDropCaret{-10000, -10000};
constexpr POINT kDropCaretRedraw{-4096, -4096};

// What a drag carries, as m_nDragOverMode holds it.
constexpr long kDragCarriesNothing = 0;
constexpr long kDragCarriesFileName = 1;
constexpr long kDragCarriesText = 2;

bool SameNameIgnoringCase(const std::string& a, const char* b) {
    const std::string left = a.substr(0, 256);
    const std::string right = std::string(b).substr(0, 256);
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
    });
}

bool OffersFileName(IDataObject* data) {
    std::vector<CLIPFORMAT> formats;
    if (FAILED(data->EnumFormats(&formats))) return false;
    return std::any_of(formats.begin(), formats.end(),
                       [](CLIPFORMAT f) { return SameNameIgnoringCase(GetClipboardFormatName(f), "FileName"); });
}

bool OffersText(IDataObject* data) { return data->QueryGetData(CF_TEXT) == S_OK; }

bool SamePoint(POINT a, POINT b) { return a.x == b.x && a.y == b.y; }

}  // namespace

DROPEFFECT CZentrelCtrl::XDropTarget::OnDragEnter(IDataObject* data, DWORD keys, POINT pt) {
    return m_pOwner->OnDragEnter(data, keys, pt);
}
DROPEFFECT CZentrelCtrl::XDropTarget::OnDragOver(IDataObject* data, DWORD keys, POINT pt) {
    return m_pOwner->OnDragOver(data, keys, pt);
}
void CZentrelCtrl::XDropTarget::OnDragLeave() { m_pOwner->OnDragLeave(); }
BOOL CZentrelCtrl::XDropTarget::OnDrop(IDataObject* data, DROPEFFECT effect, POINT pt) {
    return m_pOwner->OnDrop(data, effect, pt);
}
DROPEFFECT CZentrelCtrl::XDropTarget::OnDragScroll(DWORD keys, POINT pt) { return m_pOwner->OnDragScroll(keys, pt); }

// The effect always comes from the drag-over that follows.
DROPEFFECT CZentrelCtrl::OnDragEnter(IDataObject* pDataObject, DWORD, POINT) {
    if (!m_pDoc) return DROPEFFECT_NONE;
    DrawDropCaret(&kNoDropCaret);
    m_nDragOverMode = kDragCarriesNothing;
    if (OffersFileName(pDataObject))
        m_nDragOverMode = kDragCarriesFileName;
    else if (OffersText(pDataObject))
        m_nDragOverMode = kDragCarriesText;
    return DROPEFFECT_NONE;
}

// A text drag moves and Ctrl copies; a file name is taken only with Ctrl. Inside the text being
// dragged nothing drops, yet the caret follows the mouse there too.
DROPEFFECT CZentrelCtrl::OnDragOver(IDataObject*, DWORD dwKeyState, POINT point) {
    if (!m_pDoc) return DROPEFFECT_NONE;
    const long pos = PositionFromClientPoint(point.x, point.y);
    DROPEFFECT effect = DROPEFFECT_NONE;
    const bool intoItself = m_pDragRange && pos > m_pDragRange->GetStart() && pos < m_pDragRange->GetEnd();
    const bool ctrl = (dwKeyState & MK_CONTROL) != 0;
    if (!intoItself && m_nDragOverMode == kDragCarriesFileName)
        effect = ctrl ? DROPEFFECT_LINK : DROPEFFECT_NONE;
    else if (!intoItself && m_nDragOverMode == kDragCarriesText)
        effect = ctrl ? DROPEFFECT_COPY : DROPEFFECT_MOVE;
    POINT pt;
    DocPointFromPosition(pos, &pt);
    if (!SamePoint(pt, m_ptDropCaret)) {
        DrawDropCaret(nullptr);
        DrawDropCaret(&pt);
    }
    return effect;
}

void CZentrelCtrl::OnDragLeave() {
    if (m_pDoc) DrawDropCaret(nullptr);
}

// The host hears of the drop first, and a host that takes it leaves the view nothing to do.
// A move out of this view opens an undo group that the end of the drag closes, after the
// source is gone.
BOOL CZentrelCtrl::OnDrop(IDataObject* pDataObject, DROPEFFECT dropEffect, POINT point) {
    DrawDropCaret(nullptr);
    const long pos = PositionFromClientPoint(point.x, point.y);
    VARIANT_BOOL success = 0;
    FireEvent(EVENT_ONOLEDROP, {Variant::Unknown(pDataObject), Variant::Long(static_cast<int32_t>(dropEffect)),
                                Variant::Long(pos), Variant::RefBool(&success)});
    if (success) return TRUE;
    if (!m_pDoc || !OffersText(pDataObject) || dropEffect == DROPEFFECT_NONE) return FALSE;
    if (dropEffect == DROPEFFECT_MOVE && m_pDragRange) {
        ComPtr<ISourceUndo> undo;
        if (SUCCEEDED(m_pDoc->GetUndoManager(undo.Out())) && undo && SUCCEEDED(undo->BeginGroup("Moving Text")))
            m_bMoveUndoOpen = 1;
    }
    long inserted = 0;
    m_pDoc->InsertData(pos, 0, &inserted, pDataObject, &m_xTextSink);
    SetSelectionEnds(pos, pos + inserted);
    return TRUE;
}

// Near an edge (within a character at the sides, a line at the top and bottom) the view scrolls
// a step per tick, a page of the inner area with Shift. Sideways only without word wrap.
DROPEFFECT CZentrelCtrl::OnDragScroll(DWORD dwKeyState, POINT point) {
    if (!m_pDoc) return DROPEFFECT_NONE;
    const auto cw = static_cast<LONG>(m_nCharWidth), lh = static_cast<LONG>(m_nLineHeight);
    const RECT inner{m_rcClient.left + cw, m_rcClient.top + lh, m_rcClient.right - cw, m_rcClient.bottom - lh};
    DROPEFFECT effect = (dwKeyState & MK_CONTROL) ? DROPEFFECT_COPY : DROPEFFECT_MOVE;
    const bool inside = point.x >= inner.left && point.x < inner.right && point.y >= inner.top && point.y < inner.bottom;
    if (inside) return effect;
    const bool page = (dwKeyState & MK_SHIFT) != 0;
    const long innerWidth = std::max(0L, static_cast<long>(inner.right - inner.left));
    const long innerHeight = std::max(0L, static_cast<long>(inner.bottom - inner.top));
    long top = m_nTopLine, left = m_nLeftPixel;
    if (!GetOption(OPT_WORDWRAP)) {
        const long step = page ? innerWidth : m_nCharWidth;
        const long long wide = static_cast<long long>(m_nCharWidth) * m_nColumnMax - innerWidth;
        const long limit = static_cast<long>(std::clamp<long long>(wide, 0, 0x7FFFFFFF));
        if (point.x >= inner.right)
            left = std::min(limit, left + step);
        else if (point.x < inner.left)
            left = std::max(0L, left - step);
    }
    const long lineStep = page ? std::max(1L, innerHeight / m_nLineHeight) : 1;
    if (point.y >= inner.bottom) {
        const long innerLines = (innerHeight + m_nLineHeight - 1) / m_nLineHeight;
        top = std::min(m_Lines.m_nCount - innerLines, top + lineStep);
    } else if (point.y < inner.top) {
        top -= lineStep;
    }
    top = std::max(0L, top);
    if (top == m_nTopLine && left == m_nLeftPixel) return effect;
    DrawDropCaret(nullptr);
    m_ptDropCaret = kDropCaretRedraw;
    ScrollTo(top, left);
    return effect | DROPEFFECT_SCROLL;
}

void CZentrelCtrl::DrawDropCaret(const POINT* pt) {
    if (pt) m_ptDropCaret = *pt;
    if (!HasWindow()) return;
    CDC* dc = GetDC(m_hWnd);
    if (!dc) return;
    PrepareDC(dc);
    const long x = m_ptDropCaret.x + m_nIndentSize - m_nLeftPixel;
    const long y = m_ptDropCaret.y - m_nTopLine * m_nLineHeight;
    SIZE pixel{1, 1};
    dc->DPtoLP(&pixel);
    const long w = pixel.cx;
    dc->InvertRect(RECT{static_cast<LONG>(x - w), static_cast<LONG>(y), static_cast<LONG>(x + w),
                        static_cast<LONG>(y + m_nLineHeight)});
    ReleaseDC(m_hWnd, dc);
}
