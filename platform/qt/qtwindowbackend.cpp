#include "platform/qt/qtwindowbackend.h"

#include <algorithm>

#include "platform/qt/qtaccessible.h"
#include "platform/qt/qtcontrolwidget.h"
#include "platform/qt/qtdc.h"

CQtWindowBackend::CQtWindowBackend(HWND hwnd, QWidget* parent, const RECT& rc)
    : m_pWidget(new CQtControlWidget(hwnd, parent)) {
    m_pWidget->setGeometry(rc.left, rc.top, std::max<LONG>(rc.Width(), 0), std::max<LONG>(rc.Height(), 0));
    m_pWidget->LayOutNow();  // the first WM_SIZE comes before the widget is shown
    if (parent) m_pWidget->show();
}

// A widget that Qt is still delivering an event to goes later, from the event loop.
CQtWindowBackend::~CQtWindowBackend() {
    if (!m_pWidget) return;
    m_pWidget->Detach();
    if (CQtControlWidget::IsDelivering())
        m_pWidget->deleteLater();
    else
        delete m_pWidget;
}

RECT CQtWindowBackend::ClientRect() const {
    if (!m_pWidget) return {};
    const QSize size = m_pWidget->viewport()->size();
    return {0, 0, size.width(), size.height()};
}

void CQtWindowBackend::Invalidate(const RECT* rc) {
    if (m_pWidget) m_pWidget->InvalidateClient(rc);
}

void CQtWindowBackend::Update() {
    if (m_pWidget) m_pWidget->PaintPending();
}

void CQtWindowBackend::SetTimer(UINT id, UINT ms) {
    if (m_pWidget) m_pWidget->StartTimer(id, ms);
}

void CQtWindowBackend::KillTimer(UINT id) {
    if (m_pWidget) m_pWidget->StopTimer(id);
}

void CQtWindowBackend::PostedMessageWaiting() {
    if (m_pWidget) m_pWidget->WakeForPostedMessages();
}

void CQtWindowBackend::SetFocus() {
    if (m_pWidget) m_pWidget->setFocus(Qt::OtherFocusReason);
}

bool CQtWindowBackend::HasFocus() const {
    return m_pWidget && m_pWidget->hasFocus();
}

CDC* CQtWindowBackend::BeginPaint(RECT* rcPaint) { return m_pWidget ? m_pWidget->BeginPaintContext(rcPaint) : nullptr; }

void CQtWindowBackend::EndPaint(CDC* dc) {
    if (m_pWidget) m_pWidget->EndPaintContext(dc);
}

CDC* CQtWindowBackend::GetDC() { return m_pWidget ? m_pWidget->GetWindowContext() : nullptr; }

void CQtWindowBackend::ReleaseDC(CDC* dc) {
    if (m_pWidget) m_pWidget->ReleaseWindowContext(dc);
}

bool CQtWindowBackend::GetUpdateRect(RECT* rc) const { return m_pWidget && m_pWidget->PendingBounds(rc); }

void CQtWindowBackend::Validate(const RECT* rc) {
    if (m_pWidget) m_pWidget->ValidateClient(rc);
}

void CQtWindowBackend::Scroll(int dx, int dy, const RECT& scroll, const RECT& clip) {
    if (m_pWidget) m_pWidget->ScrollClient(dx, dy, scroll, clip);
}

void CQtWindowBackend::CaretChanged(bool shown, const RECT& rc) {
    if (m_pWidget) m_pWidget->SetCaret(shown, rc);
}

void CQtWindowBackend::ScrollBarChanged(int bar, const ScrollBarState& state) {
    if (m_pWidget) m_pWidget->SetScrollBar(bar, state);
}

void CQtWindowBackend::Move(const RECT& rc) {
    if (m_pWidget) m_pWidget->setGeometry(QRectFromRect(rc));
}

void CQtWindowBackend::Show(bool show) {
    if (m_pWidget) m_pWidget->setVisible(show);
}

POINT CQtWindowBackend::ClientOrigin() const {
    if (!m_pWidget) return {0, 0};
    const QPoint p = m_pWidget->viewport()->mapToGlobal(QPoint(0, 0));
    return {p.x(), p.y()};
}

bool CQtWindowBackend::AccessibilityActive() const { return AccessibleEventsHeard(); }

void CQtWindowBackend::AccessibleEvent(const AccessibleTextEvent& event) {
    if (m_pWidget) PostAccessibleEvent(m_pWidget, event);
}
