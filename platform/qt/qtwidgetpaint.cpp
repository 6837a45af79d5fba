// Painting of CQtControlWidget: the surface, paint and window contexts, presenting, scrolling
// pixels, the caret and the scroll bars.
#include <QBackingStore>
#include <QGuiApplication>
#include <QInputMethod>
#include <QPaintEvent>
#include <QPaintEngine>
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

// Copies the pixels of `rc` (in `to`'s coordinates) from `from`, where they stand at `rc`
// moved by `fromOffset`, into `to` at `rc` moved by `toOffset`. Both hold one pixel per unit.
void CopyPixelRows(const QImage& from, QPoint fromOffset, QImage& to, QPoint toOffset, const QRect& rc) {
    const size_t bytes = static_cast<size_t>(rc.width()) * sizeof(QRgb);
    for (int y = rc.top(); y <= rc.bottom(); ++y)
        std::memcpy(to.scanLine(y + toOffset.y()) + (rc.left() + toOffset.x()) * sizeof(QRgb),
                    from.constScanLine(y + fromOffset.y()) + (rc.left() + fromOffset.x()) * sizeof(QRgb), bytes);
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
    SyncStale(SurfaceRect());
    if (!m_surface.isNull()) {
        QPainter p(&surface);
        p.setCompositionMode(QPainter::CompositionMode_Source);
        p.drawImage(0, 0, m_surface);
    }
    const QRegion uncovered = QRegion(QRect(QPoint(0, 0), size)) - QRegion(SurfaceRect());
    m_surface = std::move(surface);
    m_rgnShown -= uncovered;
    if (!uncovered.isEmpty()) {
        m_rgnPending += uncovered;
        viewport()->update(uncovered);
    }
}

CDC* CQtControlWidget::OpenContext(bool paint, const QRegion* system) {
    EnsureSurface();
    const bool inStore = paint && !m_storeView.isNull();
    if (!inStore) {
        // The store shows the context's drawing only once it is presented.
        const QRegion reach = system ? *system : QRegion(SurfaceRect());
        SyncStale(reach);
        m_rgnShown -= reach;
    }
    auto dc = std::make_unique<CQtDC>(inStore ? &m_storeView : &m_surface);
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
    if (m_storeView.isNull()) SyncStale(m_rgnPending);  // what the store lost joins the paint
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
    ++m_nDeliveries;
    Send(WM_PAINT, 0, 0);
    m_bDelivering = wasDelivering;
    if (m_nBeginPaints == beginPaints) m_rgnPending -= asked;
    return asked;
}

void CQtControlWidget::PaintPending() {
    CDelivery delivery;  // the handler may destroy the window while it paints
    EnsureSurface();
    // Qt's paint event paints straight into the store where it can; the window's paint is sent
    // once either way.
    const int deliveries = m_nDeliveries;
    if (CanPaintInStore()) viewport()->repaint(m_rgnPending);
    if (m_nDeliveries == deliveries) Show(DeliverPaint());
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
    QPainter p(viewport());
    // The painter draws on the store itself, not on a picture that another device asked for.
    const bool toStore = StoreHolds() && p.paintEngine()->paintDevice() == m_store.image;
    QRegion painted;
    if (!m_bPresentOnly && toStore) painted = DeliverPaintInStore(e->region());
    if (!m_bPresentOnly && painted.isEmpty()) DeliverPaint();
    Present(p, e->region() - painted, toStore);
    const QRegion overlaid = DrawOverlays(p, e->region());
    if (!toStore) return;
    m_rgnShown |= e->region();
    m_rgnOverlaid = (m_rgnOverlaid - e->region()) | overlaid;
}

// Shows the surface's part of `region`; the store already holds its stale part.
void CQtControlWidget::Present(QPainter& p, const QRegion& region, bool toStore) {
    if (!toStore) SyncStale(region);
    p.setCompositionMode(QPainter::CompositionMode_Source);
    const qreal ratio = m_surface.devicePixelRatio();
    for (const QRect& r : toStore ? region - m_rgnStale : region)
        p.drawImage(r.topLeft(), m_surface, QRectF(r.x() * ratio, r.y() * ratio, r.width() * ratio, r.height() * ratio));
}

// Draws the preedit text, else the caret, over what `region` shows; gives where it drew.
QRegion CQtControlWidget::DrawOverlays(QPainter& p, const QRegion& region) {
    // The store holds nothing but the window's pixels where the surface lags behind.
    SyncStale(OverlayRegion() & region);
    if (!m_strPreedit.isEmpty() && region.intersects(PreeditRect())) {
        DrawPreedit(p);
        return region & PreeditRect();
    }
    if (!CaretVisible() || !region.intersects(m_rcCaret)) return {};
    p.setCompositionMode(QPainter::CompositionMode_Difference);
    p.fillRect(m_rcCaret, Qt::white);
    return region & m_rcCaret;
}

QRegion CQtControlWidget::OverlayRegion() const {
    QRegion overlays = PreeditRect();
    if (CaretVisible()) overlays += m_rcCaret;
    return overlays;
}

const QImage& CQtControlWidget::Surface() {
    SyncStale(SurfaceRect());
    return m_surface;
}

// Where the window's backing store holds the viewport's pixels, if a context can draw there as
// on the surface: an image of the surface's format at one pixel per unit, holding the viewport.
CQtControlWidget::CStoreSpot CQtControlWidget::StoreSpot() const {
    QBackingStore* store = viewport()->window()->backingStore();
    QPaintDevice* device = store ? store->paintDevice() : nullptr;
    if (!device || device->devType() != QInternal::Image || m_surface.devicePixelRatio() != 1) return {};
    auto* image = static_cast<QImage*>(device);
    if (image->format() != QImage::Format_RGB32 || image->devicePixelRatio() != 1) return {};
    const QPoint offset = viewport()->mapTo(viewport()->window(), QPoint(0, 0));
    if (!image->rect().contains(QRect(offset, m_surface.size()))) return {};
    // The upper half of the cache key names the image's pixels, and stays while they are written.
    return {image, image->cacheKey() >> 32, offset};
}

// Whether the store is still where the window's pixels were put; when it is not, what only it
// held is painted again.
bool CQtControlWidget::StoreHolds() {
    const CStoreSpot spot = StoreSpot();
    if (spot == m_store) return spot.image != nullptr;
    LoseStore();
    m_store = spot;
    return false;
}

void CQtControlWidget::LoseStore() {
    m_rgnShown = m_rgnOverlaid = QRegion();
    if (m_rgnStale.isEmpty()) return;
    m_rgnPending += m_rgnStale;
    viewport()->update(m_rgnStale);
    m_rgnStale = QRegion();
}

// Takes back what only the store holds, and trusts it no more: the viewport hides, or gets a
// child that draws into the store too.
void CQtControlWidget::LeaveStore() {
    SyncStale(SurfaceRect());
    m_rgnShown = m_rgnOverlaid = QRegion();
}

// Takes the pixels of `region` that the surface lacks back from the store.
void CQtControlWidget::SyncStale(const QRegion& region) {
    // Regions may reach past a surface that shrank; copies stay inside it.
    const QRegion part = m_rgnStale & region & SurfaceRect();
    if (part.isEmpty() || !StoreHolds()) return;
    for (const QRect& r : part) CopyPixelRows(*m_store.image, m_store.offset, m_surface, QPoint(0, 0), r);
    m_rgnStale -= part;
}

// A paint can go to the store when the store shows the window's pixels under all of it.
bool CQtControlWidget::CanPaintInStore() const {
    return m_hwnd && !m_bDelivering && m_contexts.empty() && m_store.image && viewport()->isVisible() &&
           !m_rgnPending.isEmpty() && (m_rgnPending - m_rgnShown).isEmpty() &&
           !viewport()->findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly) && StoreSpot() == m_store;
}

// Sends WM_PAINT with its context on the store, when Qt asks for all that is invalid; gives
// what was to be painted, nothing when the paint must go to the surface.
QRegion CQtControlWidget::DeliverPaintInStore(const QRegion& region) {
    if (!CanPaintInStore() || !(m_rgnPending - region).isEmpty()) return {};
    QImage& store = *m_store.image;
    // The window's pixels under the caret and the preedit text come first, as on the surface.
    for (const QRect& r : m_rgnOverlaid & m_rgnPending & SurfaceRect())
        CopyPixelRows(m_surface, QPoint(0, 0), store, m_store.offset, r);
    m_rgnOverlaid -= m_rgnPending;
    m_storeView = QImage(store.bits() + m_store.offset.y() * store.bytesPerLine() + m_store.offset.x() * sizeof(QRgb),
                         m_surface.width(), m_surface.height(), store.bytesPerLine(), QImage::Format_RGB32);
    const QRegion painted = DeliverPaint();
    m_storeView = QImage();
    m_rgnStale |= painted & SurfaceRect();
    return painted;
}

// The viewport shows the surface, so it follows by repainting the moved area from it; the
// caret, drawn over the surface, thus never moves with the pixels.
void CQtControlWidget::ScrollClient(int dx, int dy, const RECT& scroll, const RECT& clip) {
    EnsureSurface();
    const ScrollPlan plan = PlanScroll(dx, dy, scroll, clip);
    const QRect area = QRectFromRect(plan.area) & SurfaceRect();
    SyncStale(area);
    m_rgnShown -= area;  // the store shows the pixels from before the move
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
