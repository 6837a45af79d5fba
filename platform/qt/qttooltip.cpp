#include "platform/qt/qttooltip.h"

#include <QGuiApplication>
#include <QLabel>
#include <QScreen>
#include <QToolTip>

#include "platform/qt/qttext.h"

namespace {

QLabel* MakeTipLabel() {
    auto* label = new QLabel(nullptr, Qt::ToolTip | Qt::BypassGraphicsProxyWidget);
    label->setPalette(QToolTip::palette());
    label->setFont(QToolTip::font());
    label->setForegroundRole(QPalette::ToolTipText);
    label->setBackgroundRole(QPalette::ToolTipBase);
    label->setAutoFillBackground(true);
    label->setFrameStyle(QFrame::Box | QFrame::Plain);
    label->setMargin(3);
    label->setTextFormat(Qt::PlainText);
    label->setAttribute(Qt::WA_ShowWithoutActivating);
    return label;
}

}  // namespace

CQtToolTip::CQtToolTip(HWND hwnd) : CQtChildControl(MakeTipLabel()), m_hwnd(hwnd) {}

CQtToolTip::~CQtToolTip() = default;

QLabel* CQtToolTip::Label() const { return qobject_cast<QLabel*>(Widget()); }

void CQtToolTip::SetTimer(UINT id, UINT ms) {
    auto& timer = m_timers[id];
    if (!timer) {
        timer = std::make_unique<QTimer>();
        QObject::connect(timer.get(), &QTimer::timeout, [hwnd = m_hwnd, id] { SendMessage(hwnd, WM_TIMER, id, 0); });
    }
    timer->start(static_cast<int>(ms));
}

void CQtToolTip::KillTimer(UINT id) {
    if (auto it = m_timers.find(id); it != m_timers.end()) it->second->stop();
}

// One line, or lines broken at words where one would be wider than half the screen.
void CQtToolTip::SetText(const std::string& text) {
    QLabel* label = Label();
    if (!label) return;
    label->setText(QtTextFromCodePage(text));
    label->setWordWrap(false);
    label->setMaximumWidth(QWIDGETSIZE_MAX);
    label->adjustSize();
    const QScreen* screen = QGuiApplication::primaryScreen();
    const int widest = screen ? screen->availableGeometry().width() / 2 : 600;
    if (label->width() <= widest) return;
    label->setWordWrap(true);
    label->setMaximumWidth(widest);
    label->adjustSize();
}

void CQtToolTip::Move(const RECT& rc) {
    QLabel* label = Label();
    if (!label) return;
    QPoint at(rc.left, rc.top);
    if (const QScreen* screen = QGuiApplication::screenAt(at) ? QGuiApplication::screenAt(at) : QGuiApplication::primaryScreen()) {
        const QRect area = screen->availableGeometry();
        at.setX(std::max(area.left(), std::min(at.x(), area.right() + 1 - label->width())));
        at.setY(std::max(area.top(), std::min(at.y(), area.bottom() + 1 - label->height())));
    }
    label->move(at);
}
