// Scrolling: the scroll position, the two scroll bars, and bringing a range into view with a
// margin around it. Vertical scrolling goes by whole lines; horizontal scrolling by pixels,
// though the horizontal bar counts columns.
#include <algorithm>
#include <cstdlib>

#include "platform/window/caret.h"
#include "platform/window/keys.h"
#include "platform/window/paint.h"
#include "platform/window/scrollbar.h"
#include "src/view/zentrelctrl.h"

namespace {

// Lines per unit of the vertical bar grow past this many lines, so the bar never counts more
// than about this many units.
constexpr long kScrollUnits = 20000;
// Frames of an animated page scroll.
constexpr int kSmoothFrames = 7;
// SIF_ALL with SIF_DISABLENOSCROLL: a bar with nothing to scroll shows disabled.
constexpr UINT kScrollMask = 31;

// A rectangle of document points in long, where a RECT could overflow.
struct Box {
    long left, top, right, bottom;
    Box Union(const Box& o) const {
        return {std::min(left, o.left), std::min(top, o.top), std::max(right, o.right), std::max(bottom, o.bottom)};
    }
};

void SetBar(HWND hwnd, int bar, long nMax, long nPage, long nPos) {
    SCROLLINFO info;
    info.fMask = kScrollMask;
    info.nMin = 0;
    info.nMax = static_cast<int>(nMax);
    info.nPage = static_cast<UINT>(std::max(0L, nPage));
    info.nPos = static_cast<int>(nPos);
    info.nTrackPos = 0;
    SetScrollInfo(hwnd, bar, &info, TRUE);
}

}  // namespace

long CZentrelCtrl::GetVisibleLines() const { return m_pDoc ? m_rcClient.Height() / m_nLineHeight : 0; }

long CZentrelCtrl::GetScrollScale() const { return m_Lines.m_nCount / kScrollUnits + 1; }

// The client rectangle right of the gutter, where text moves on a sideways scroll.
RECT CZentrelCtrl::TextAreaRect() const {
    RECT rc = m_rcClient;
    rc.left = std::min<LONG>(rc.right, rc.left + m_nIndentSize);
    return rc;
}

BOOL CZentrelCtrl::ScrollTo(long nTop, long nLeft) {
    if (nTop == m_nTopLine && nLeft == m_nLeftPixel) return FALSE;
    const long dy = (m_nTopLine - nTop) * m_nLineHeight;
    const long dx = m_nLeftPixel - nLeft;
    m_nTopLine = nTop;
    m_nLeftPixel = nLeft;
    if (!HasWindow()) return TRUE;
    HideCaret(m_hWnd);
    CDC* dc = nullptr;
    if (std::labs(dy) < m_rcClient.Height() && std::labs(dx) < m_rcClient.Width()) dc = GetDC(m_hWnd);
    if (dc) {
        PrepareDC(dc);
        if (dy != 0 && dx == 0) {
            ScrollWindow(m_hWnd, 0, static_cast<int>(dy), nullptr, nullptr);
        } else if (dx != 0 && dy == 0) {
            // The gutter stays where it is: only the text area moves sideways.
            RECT rc = TextAreaRect();
            ScrollWindow(m_hWnd, static_cast<int>(dx), 0, &rc, &rc);
        } else {
            InvalidateControl();
        }
        ReleaseDC(m_hWnd, dc);
    } else {
        InvalidateControl();
    }
    RECT update;
    if (GetUpdateRect(m_hWnd, &update, FALSE)) RedrawWindow(m_hWnd, &update, RDW_INVALIDATE | RDW_UPDATENOW);
    UpdateScrollBars(-1, -1);
    PlaceCaret();
    ShowCaret(m_hWnd);
    return TRUE;
}

BOOL CZentrelCtrl::SmoothScrollTo(long nTop, long nLeft) {
    if (!GetOption(OPT_SMOOTHREFRESH)) return ScrollTo(nTop, nLeft);
    if (nTop == m_nTopLine && nLeft == m_nLeftPixel) return FALSE;
    const long oldLeft = m_nLeftPixel, oldY = m_nTopLine * m_nLineHeight;
    const long dx = m_nLeftPixel - nLeft, dy = (m_nTopLine - nTop) * m_nLineHeight;
    m_nTopLine = nTop;
    m_nLeftPixel = nLeft;
    CDC* dc = HasWindow() ? GetDC(m_hWnd) : nullptr;
    if (!dc) {
        InvalidateControl();
        return TRUE;
    }
    PrepareDC(dc);
    HideCaret(m_hWnd);
    const RECT rc = m_rcClient;
    long lastX = oldLeft, lastY = oldY;
    // The stored position is already the final one; only the painter's offsets move in between.
    for (int k = 1; k <= kSmoothFrames; ++k) {
        const long x = oldLeft - k * dx / kSmoothFrames, y = oldY - k * dy / kSmoothFrames;
        const long sx = lastX - x, sy = lastY - y;
        if (std::labs(sx) < rc.Width() && std::labs(sy) < rc.Height()) {
            RECT text = TextAreaRect();
            ScrollWindow(m_hWnd, static_cast<int>(sx), static_cast<int>(sy), sx ? &text : nullptr, sx ? &text : nullptr);
            RECT update;
            if (GetUpdateRect(m_hWnd, &update, FALSE)) {
                dc->IntersectClipRect(update);
                PaintBuffered(dc, x, y, rc, update, TRUE);
                dc->SelectClipRgn(nullptr);
            }
        } else {
            PaintBuffered(dc, x, y, rc, rc, TRUE);
        }
        lastX = x;
        lastY = y;
    }
    UpdateScrollBars(-1, -1);
    PlaceCaret();
    ShowCaret(m_hWnd);
    ReleaseDC(m_hWnd, dc);
    ValidateRect(m_hWnd, nullptr);
    return TRUE;
}

void CZentrelCtrl::OnVScroll(int nCode, int nPos) {
    const long visible = GetVisibleLines(), count = m_Lines.m_nCount;
    const long last = std::max(0L, count - visible);
    const auto within = [last](long top) { return std::clamp(top, 0L, last); };
    switch (nCode) {
        case SB_LINEUP: ScrollTo(within(m_nTopLine - 1), m_nLeftPixel); break;
        case SB_LINEDOWN: ScrollTo(within(m_nTopLine + 1), m_nLeftPixel); break;
        case SB_PAGEUP: SmoothScrollTo(within(m_nTopLine - visible), m_nLeftPixel); break;
        case SB_PAGEDOWN: SmoothScrollTo(within(m_nTopLine + visible), m_nLeftPixel); break;
        case SB_THUMBPOSITION:
        case SB_THUMBTRACK: ScrollTo(static_cast<long>(nPos) * GetScrollScale(), m_nLeftPixel); break;
        case SB_TOP: ScrollTo(0, m_nLeftPixel); break;
        case SB_BOTTOM: ScrollTo(last, m_nLeftPixel); break;
        default: break;
    }
}

long CZentrelCtrl::HScrollLimit() const {
    // Worked out wide, so that it holds at the default ColumnMax of 0x7FFFFFFF too.
    const long long wide = static_cast<long long>(m_nCharWidth) * m_nColumnMax - m_rcClient.Width();
    return static_cast<long>(std::clamp<long long>(wide, 0, 0x7FFFFFFF));
}

void CZentrelCtrl::OnHScroll(int nCode, int nPos) {
    const long width = m_rcClient.Width();
    const long limit = HScrollLimit();
    const auto within = [limit](long left) { return std::clamp(left, 0L, limit); };
    switch (nCode) {
        case SB_LINELEFT: ScrollTo(m_nTopLine, std::max(0L, m_nLeftPixel - m_nCharWidth)); break;
        case SB_LINERIGHT: ScrollTo(m_nTopLine, std::min(limit, m_nLeftPixel + m_nCharWidth)); break;
        case SB_PAGELEFT: SmoothScrollTo(m_nTopLine, std::max(0L, m_nLeftPixel - width)); break;
        case SB_PAGERIGHT: SmoothScrollTo(m_nTopLine, std::min(limit, m_nLeftPixel + width)); break;
        case SB_THUMBPOSITION:
        case SB_THUMBTRACK: ScrollTo(m_nTopLine, static_cast<long>(nPos) * m_nCharWidth); break;
        case SB_LEFT: ScrollTo(m_nTopLine, 0); break;
        case SB_RIGHT: ScrollTo(m_nTopLine, within(limit)); break;
        default: break;
    }
}

void CZentrelCtrl::UpdateScrollBars(long, long) {
    if (!HasWindow()) return;
    const long cols = m_rcClient.Width() / m_nCharWidth, rows = m_rcClient.Height();
    if (!m_pDoc) {
        SetBar(m_hWnd, SB_HORZ, cols - 1, cols, 0);
        SetBar(m_hWnd, SB_VERT, rows - 1, rows, 0);
        return;
    }
    if (!GetOption(OPT_WORDWRAP)) {
        ShowScrollBar(m_hWnd, SB_HORZ, TRUE);
        SetBar(m_hWnd, SB_HORZ, m_nColumnMax, cols, m_nLeftPixel / m_nCharWidth);
    } else {
        ShowScrollBar(m_hWnd, SB_HORZ, FALSE);
    }
    const long scale = GetScrollScale();
    SetBar(m_hWnd, SB_VERT, m_Lines.m_nCount / scale - 1, GetVisibleLines() / scale, m_nTopLine / scale);
}

void CZentrelCtrl::ScrollRangeIntoView(long nFirst, long nSecond) {
    if (!m_pDoc) return;
    // In long: the view may stand far right at a ColumnMax of 0x7FFFFFFF, beyond what a RECT holds.
    const long lh = m_nLineHeight, cw = m_nCharWidth;
    const long viewWidth = std::max(0L, static_cast<long>(m_rcClient.Width()) - m_nIndentSize);
    const Box view{m_nLeftPixel, m_nTopLine * lh, m_nLeftPixel + viewWidth,
                   m_nTopLine * lh + (m_rcClient.Height() / lh) * lh};

    const auto marginBox = [&](long pos) {
        POINT pt;
        DocPointFromPosition(pos, &pt);
        const long h = m_nScrollMarginH * cw;
        return Box{pt.x - h, pt.y - m_nScrollMarginV, pt.x + h, pt.y + m_nScrollMarginV + lh};
    };
    // The union holds both boxes, also when they have no width (no horizontal margin).
    Box u = marginBox(nFirst);
    if (nSecond != nFirst) u = u.Union(marginBox(nSecond));

    long top = m_nTopLine, left = m_nLeftPixel;
    const auto above = [&] { if (u.top < view.top) top = u.top / lh; };
    const auto below = [&] { if (u.bottom > view.bottom) top = (view.top - view.bottom + u.bottom) / lh; };
    const auto toLeft = [&] { if (u.left < view.left) left = u.left - m_nScrollByH * cw; };
    const auto toRight = [&] {
        if (u.right > view.right) left = m_nScrollByH * cw - view.right + u.right + view.left;
    };
    // The rule applied last wins, which decides what shows of a range taller or wider than the
    // window: the end that nFirst names.
    if (nFirst > nSecond) {
        above();
        below();
    } else {
        below();
        above();
    }
    if (!GetOption(OPT_WORDWRAP)) {
        if (nFirst > nSecond) {
            toLeft();
            toRight();
        } else {
            toRight();
            toLeft();
        }
    }
    ScrollTo(std::max(0L, top), std::clamp(left, 0L, HScrollLimit()));
}

void CZentrelCtrl::ScrollCaretIntoView() { ScrollRangeIntoView(m_nSelActive, m_nSelActive); }

void CZentrelCtrl::ClampScrollPosition() {
    const long left = GetOption(OPT_WORDWRAP) ? 0 : m_nLeftPixel;
    const long limit = GetOption(OPT_VSCROLLALWAYSMATCH) ? m_Lines.m_nCount - GetVisibleLines() : m_Lines.m_nCount - 1;
    ScrollTo(std::max(0L, std::min(m_nTopLine, limit)), left);
}
