#include "platform/qt/qtchildcontrol.h"

#include <QLabel>
#include <QPainter>
#include <QTimerEvent>
#include <QtMath>
#include <string>

#include "platform/qt/qtdc.h"
#include "platform/qt/qttext.h"

CQtAnimationWidget::CQtAnimationWidget(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TranslucentBackground);  // the control's panel shows around the ring
}

void CQtAnimationWidget::Open(UINT resourceId) {
    m_nResource = resourceId;
    m_nFrame = 0;
    update();
}

void CQtAnimationWidget::Play(bool play) {
    if (play && m_nResource)
        m_timer.start(kFrameMs, this);
    else
        m_timer.stop();
}

void CQtAnimationWidget::timerEvent(QTimerEvent* e) {
    if (e->timerId() != m_timer.timerId()) return QWidget::timerEvent(e);
    m_nFrame = (m_nFrame + 1) % kFrames;
    update();
}

void CQtAnimationWidget::paintEvent(QPaintEvent*) {
    if (!m_nResource) return;
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal side = std::min(width(), height());
    const qreal ring = side * 0.36;
    const qreal dot = std::max<qreal>(1.5, side * 0.08);
    const QPointF centre(width() / 2.0, height() / 2.0);
    for (int i = 0; i < kFrames; ++i) {
        const qreal angle = 2 * M_PI * i / kFrames - M_PI / 2;
        // The dot of this frame is darkest; those behind it fade.
        const int age = (m_nFrame - i + kFrames) % kFrames;
        p.setBrush(QColor(40, 80, 160, 255 - age * 200 / kFrames));
        p.setPen(Qt::NoPen);
        p.drawEllipse(centre + QPointF(qCos(angle), qSin(angle)) * ring, dot, dot);
    }
}

CQtChildControl::CQtChildControl(ChildControlKind kind, QWidget* parent, const RECT& rc) {
    if (kind == ChildControlKind::Animation) {
        m_pWidget = new CQtAnimationWidget(parent);
    } else {
        auto* label = new QLabel(parent);
        label->setAutoFillBackground(true);  // the panel covers the text behind it
        label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        m_pWidget = label;
    }
    m_pWidget->setGeometry(QRectFromRect(rc));
    m_pWidget->hide();
}

CQtChildControl::CQtChildControl(QWidget* widget) : m_pWidget(widget) { m_pWidget->hide(); }

CQtChildControl::~CQtChildControl() { delete m_pWidget.data(); }

RECT CQtChildControl::ClientRect() const {
    return m_pWidget ? RECT{0, 0, m_pWidget->width(), m_pWidget->height()} : RECT{};
}

void CQtChildControl::Invalidate(const RECT* rc) {
    if (!m_pWidget) return;
    if (rc)
        m_pWidget->update(QRectFromRect(*rc));
    else
        m_pWidget->update();
}

// Paints now, also while the thread is blocked.
void CQtChildControl::Update() {
    if (m_pWidget && m_pWidget->isVisible()) m_pWidget->repaint();
}

CDC* CQtChildControl::BeginPaint(RECT* rcPaint) {
    if (rcPaint) *rcPaint = {};
    return nullptr;
}

bool CQtChildControl::GetUpdateRect(RECT* rc) const {
    if (rc) *rc = {};
    return false;
}

void CQtChildControl::SetText(const std::string& text) {
    if (auto* label = qobject_cast<QLabel*>(m_pWidget.data())) label->setText(QtTextFromCodePage(text));
}

void CQtChildControl::Move(const RECT& rc) {
    if (m_pWidget) m_pWidget->setGeometry(QRectFromRect(rc));
}

void CQtChildControl::Show(bool show) {
    if (m_pWidget) m_pWidget->setVisible(show);
}

void CQtChildControl::Animate(UINT resourceId, bool play) {
    auto* animation = dynamic_cast<CQtAnimationWidget*>(m_pWidget.data());
    if (!animation) return;
    if (animation->Resource() != resourceId) animation->Open(resourceId);
    animation->Play(play);
}
