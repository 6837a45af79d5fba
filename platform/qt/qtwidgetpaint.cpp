// Painting of CQtControlWidget: the surface, paint and window contexts, presenting, scrolling
// pixels, the caret and the scroll bars.
#include <QGuiApplication>
#include <QInputMethod>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleHints>
#include <QTimerEvent>
#include <algorithm>
#include <climits>
#include <cstring>

#include "platform/qt/qtcontrolwidget.h"
#include "platform/qt/qtdc.h"
#include "platform/window/paint.h"
#include "platform/window/scrollbar.h"

namespace {

QRegion QRegionFromRgn(const CRgn& rgn) {
    QRegion region;
    for (const RECT& r : rgn.Rects()) region += QRectFromRect(r);
    return region;
}

CRgn RgnFromQRegion(const QRegion& region) {
    CRgn rgn;
    for (const QRect& r : region) rgn.Unite(RectFromQRect(r));
    return rgn;
}

// Moves the pixels of `from` by (dx, dy) inside the image, row by row in the order that never
// reads a row already written. All in logical units; the image holds `ratio` pixels per unit.
void ScrollImage(QImage& image, const QRect& logical, int ldx, int ldy, int ratio) {
    const QRect from(logical.topLeft() * ratio, logical.size() * ratio);
    const int dx = ldx * ratio, dy = ldy * ratio;
    const int bytes = from.width() * 4;
    const int first = dy > 0 ? from.bottom() : from.top();
    const int step = dy > 0 ? -1 : 1;
    for (int n = 0, y = first; n < from.height(); ++n, y += step)
        std::memmove(image.scanLine(y + dy) + (from.left() + dx) * 4, image.constScanLine(y) + from.left() * 4, bytes);
}

}  // namespace

// The surface follows the viewport's size; what both sizes hold is kept, and what a larger size
// uncovers is invalid, as a window's newly exposed area is. Not while a context draws on it.
// On a screen of high density the surface holds as many pixels as the screen shows, so that
// text and pictures are drawn sharp; everything outside it works in logical units.
void CQtControlWidget::EnsureSurface() {
    const QSize size = viewport()->size();
    const qreal ratio = viewport()->devicePixelRatioF();
    if ((SurfaceRect().size() == size && m_surface.devicePixelRatio() == ratio) || !m_contexts.empty()) return;
    QImage surface(size * ratio, QImage::Format_RGB32);
    surface.setDevicePixelRatio(ratio);
    surface.fill(Qt::white);
    if (!m_surface.isNull()) {
        QPainter p(&surface);
        p.setCompositionMode(QPainter::CompositionMode_Source);
        p.drawImage(0, 0, m_surface);
    }
    const QRegion uncovered = QRegion(QRect(QPoint(0, 0), size)) - QRegion(SurfaceRect());
    m_surface = std::move(surface);
    if (!uncovered.isEmpty()) {
        m_rgnPending += uncovered;
        viewport()->update(uncovered);
    }
}

CDC* CQtControlWidget::OpenContext(bool paint, const QRegion* system) {
    EnsureSurface();
    auto dc = std::make_unique<CQtDC>(&m_surface);
    if (system) dc->SetSystemRegion(RgnFromQRegion(*system));
    m_contexts.push_back({std::move(dc), paint});
    return m_contexts.back().dc.get();
}

// Gives back what the context drew.
QRect CQtControlWidget::CloseContext(CDC* dc) {
    auto it = std::find_if(m_contexts.begin(), m_contexts.end(), [dc](const CContext& c) { return c.dc.get() == dc; });
    if (it == m_contexts.end()) return {};
    const QRect drawn = it->dc->TakeDrawn();
    m_contexts.erase(it);
    return drawn;
}

bool CQtControlWidget::HasWindowContext() const {
    return std::any_of(m_contexts.begin(), m_contexts.end(), [](const CContext& c) { return !c.bPaint; });
}

CDC* CQtControlWidget::BeginPaintContext(RECT* rcPaint) {
    ++m_nBeginPaints;
    EnsureSurface();
    const QRegion region = m_rgnPending & SurfaceRect();
    m_rgnPending = QRegion();
    if (rcPaint) *rcPaint = region.isEmpty() ? RECT{} : RectFromQRect(region.boundingRect());
    return OpenContext(true, &region);
}

void CQtControlWidget::EndPaintContext(CDC* dc) {
    const QRect drawn = CloseContext(dc);
    // A paint of our own is shown by whoever delivered it.
    if (!m_bDelivering) Show(drawn);
}

CDC* CQtControlWidget::GetWindowContext() { return OpenContext(false, nullptr); }

void CQtControlWidget::ReleaseWindowContext(CDC* dc) { Show(CloseContext(dc)); }

bool CQtControlWidget::PendingBounds(RECT* rc) const {
    if (rc) *rc = m_rgnPending.isEmpty() ? RECT{} : RectFromQRect(m_rgnPending.boundingRect());
    return !m_rgnPending.isEmpty();
}

void CQtControlWidget::ValidateClient(const RECT* rc) {
    if (rc)
        m_rgnPending -= QRectFromRect(*rc);
    else
        m_rgnPending = QRegion();
}

// WM_PAINT for what is invalid, now; gives what was to be painted. A handler that does not call
// BeginPaint has the area validated for it, as the default handling would. Never inside another
// WM_PAINT (a handler that asks for an update while it paints): what is invalid then stays so and
// comes with the next paint event.
QRegion CQtControlWidget::DeliverPaint() {
    const QRegion asked = m_rgnPending;
    if (asked.isEmpty() || !m_hwnd) return {};
    if (m_bDelivering) {
        viewport()->update(asked);
        return {};
    }
    const int beginPaints = m_nBeginPaints;
    const bool wasDelivering = std::exchange(m_bDelivering, true);
    Send(WM_PAINT, 0, 0);
    m_bDelivering = wasDelivering;
    if (m_nBeginPaints == beginPaints) m_rgnPending -= asked;
    return asked;
}

void CQtControlWidget::PaintPending() {
    CDelivery delivery;  // the handler may destroy the window while it paints
    EnsureSurface();
    Show(DeliverPaint());
}

// Shows part of the surface: at once when possible, else with the next paint event. Showing
// delivers no WM_PAINT; what is still invalid keeps its paint event coming.
void CQtControlWidget::Show(const QRegion& region) {
    if (region.isEmpty()) return;
    QWidget* view = viewport();
    if (!view->isVisible() || m_bDelivering) {
        view->update(region);
        return;
    }
    m_bPresentOnly = true;
    view->repaint(region);
    m_bPresentOnly = false;
    if (!m_rgnPending.isEmpty()) view->update(m_rgnPending);
}

void CQtControlWidget::paintEvent(QPaintEvent* e) {
    EnsureSurface();
    if (!m_bPresentOnly) DeliverPaint();
    Present(e->region());
}

void CQtControlWidget::Present(const QRegion& region) {
    QPainter p(viewport());
    p.setCompositionMode(QPainter::CompositionMode_Source);
    const qreal ratio = m_surface.devicePixelRatio();
    for (const QRect& r : region)
        p.drawImage(r.topLeft(), m_surface, QRectF(r.x() * ratio, r.y() * ratio, r.width() * ratio, r.height() * ratio));
    if (!m_strPreedit.isEmpty() && region.intersects(PreeditRect())) {
        DrawPreedit(p);
        return;
    }
    if (CaretVisible() && region.intersects(m_rcCaret)) {
        p.setCompositionMode(QPainter::CompositionMode_Difference);
        p.fillRect(m_rcCaret, Qt::white);
    }
}

// The viewport shows the surface, so it follows by repainting the moved area from it; the
// caret, drawn over the surface, thus never moves with the pixels.
void CQtControlWidget::ScrollClient(int dx, int dy, const RECT& scroll, const RECT& clip) {
    EnsureSurface();
    const ScrollPlan plan = PlanScroll(dx, dy, scroll, clip);
    const QRect area = QRectFromRect(plan.area) & SurfaceRect();
    // Pixels move only by whole pixels: at a fractional density the area is painted anew.
    const qreal ratio = m_surface.devicePixelRatio();
    const bool whole = ratio == qRound(ratio);
    if (!plan.to.IsEmpty() && whole) ScrollImage(m_surface, QRectFromRect(plan.from), dx, dy, qRound(ratio));
    const QRegion moved = (m_rgnPending & area).translated(dx, dy) & area;
    const QRegion uncovered = whole ? QRegionFromRgn(plan.uncovered) : QRegion(area);
    m_rgnPending = (m_rgnPending - area) | moved | uncovered;
    // Frames drawn through a window context (a smooth scroll) show as they go.
    QRegion changed = area;
    for (CContext& c : m_contexts)
        if (!c.bPaint) changed |= c.dc->TakeDrawn();
    if (HasWindowContext())
        Show(changed);
    else
        viewport()->update(changed);
}

bool CQtControlWidget::CaretVisible() const { return m_bCaretShown && m_bCaretOn && hasFocus(); }

void CQtControlWidget::SetCaret(bool shown, const RECT& rc) {
    const QRect old = m_rcCaret;
    m_rcCaret = QRectFromRect(rc);
    m_bCaretShown = shown;
    RestartBlink();
    viewport()->update(QRegion(old) | m_rcCaret);
    if (hasFocus() && old != m_rcCaret) QGuiApplication::inputMethod()->update(Qt::ImCursorRectangle);
}

// The caret starts in its on phase whenever it moves, shows, or the focus changes.
void CQtControlWidget::RestartBlink() {
    m_bCaretOn = true;
    const int flash = QGuiApplication::styleHints()->cursorFlashTime();
    if (m_bCaretShown && hasFocus() && flash > 0)
        m_caretTimer.start(flash / 2, this);
    else
        m_caretTimer.stop();
    viewport()->update(m_rcCaret);
}

bool CQtControlWidget::CaretTimerEvent(QTimerEvent* e) {
    if (e->timerId() != m_caretTimer.timerId()) return false;
    m_bCaretOn = !m_bCaretOn;
    viewport()->update(m_rcCaret);
    return true;
}

// The bar shows the window's numbers; setting them sends nothing back, since only the user's
// actions on a bar become WM_HSCROLL and WM_VSCROLL.
void CQtControlWidget::SetScrollBar(int bar, const ScrollBarState& state) {
    QScrollBar* scrollBar = bar == SB_VERT ? verticalScrollBar() : horizontalScrollBar();
    const SCROLLINFO& si = state.info;
    const int page = static_cast<int>(std::min<UINT>(si.nPage, INT_MAX));
    const long long top = static_cast<long long>(si.nMax) - std::max(page, 1) + 1;
    scrollBar->setRange(si.nMin, static_cast<int>(std::max<long long>(top, si.nMin)));
    scrollBar->setPageStep(std::max(page, 1));
    scrollBar->setValue(si.nPos);
    scrollBar->setEnabled(state.enabled);
    const Qt::ScrollBarPolicy policy = state.visible ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff;
    if (bar == SB_VERT)
        setVerticalScrollBarPolicy(policy);
    else
        setHorizontalScrollBarPolicy(policy);
}
