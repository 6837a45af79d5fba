#include "platform/qt/qtcontrolwidget.h"

#include <QFocusEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPointer>
#include <QScrollBar>
#include <QTimerEvent>
#include <QWheelEvent>
#include <chrono>
#include <cstdlib>
#include <utility>

#include "platform/codepage/convert.h"
#include "platform/qt/qtdragdrop.h"
#include "platform/qt/qtkeys.h"
#include "platform/qt/qtplatform.h"
#include "platform/qt/qtwindow.h"
#include "platform/qt/qtwindowbackend.h"
#include "platform/window/cursor.h"
#include "platform/window/scrollbar.h"
#include "platform/window/tooltip.h"

namespace {

// Lines the default wheel handling scrolls per notch.
constexpr int kWheelLines = 3;

LPARAM PointParam(const QPointF& point) {
    const QPoint p = point.toPoint();
    return MAKELPARAM(p.x(), p.y());
}

LPARAM KeyParam(const QKeyEvent* e, bool up) {
    LPARAM lp = 1 | static_cast<LPARAM>((e->nativeScanCode() & 0xFF) << 16);
    if (e->isAutoRepeat() || up) lp |= KF_REPEAT_BIT;
    if (up) lp |= KF_UP_BIT;
    return lp;
}

bool IsTabKey(const QKeyEvent* e) {
    return e->key() == Qt::Key_Tab || e->key() == Qt::Key_Backtab;
}

}  // namespace

int CQtControlWidget::s_nDelivering = 0;

// The key state that a handler sees while an input event is delivered: the event's own, as
// the window system reported it when the event was made. Other events read the state of now.
CQtInputState CQtControlWidget::InputStateOf(const QEvent* e) {
    Qt::KeyboardModifiers modifiers = QGuiApplication::queryKeyboardModifiers();
    Qt::MouseButtons buttons = QGuiApplication::mouseButtons();
    if (const auto* input = dynamic_cast<const QInputEvent*>(e)) modifiers = input->modifiers();
    if (const auto* mouse = dynamic_cast<const QMouseEvent*>(e)) buttons = mouse->buttons();
    return CQtInputState(modifiers, buttons);
}

CQtControlWidget::CQtControlWidget(HWND hwnd, QWidget* parent) : QAbstractScrollArea(parent), m_hwnd(hwnd) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled);
    viewport()->setMouseTracking(true);
    // The window paints every pixel of what it is asked to paint.
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setAutoFillBackground(false);
    new CQtDropSite(hwnd, viewport());
    const std::pair<QScrollBar*, UINT> bars[] = {{verticalScrollBar(), WM_VSCROLL},
                                                 {horizontalScrollBar(), WM_HSCROLL}};
    for (auto [bar, message] : bars) {
        connect(bar, &QAbstractSlider::actionTriggered, this,
                [this, bar = bar, message = message](int action) { ScrollAction(bar, message, action); });
        connect(bar, &QAbstractSlider::sliderReleased, this,
                [this, bar = bar, message = message] { ThumbReleased(bar, message); });
    }
}

// Qt may delete the widget ahead of its window, with a parent widget: the window then ends
// here, and its handler hears WM_DESTROY.
CQtControlWidget::~CQtControlWidget() {
    const HWND hwnd = std::exchange(m_hwnd, nullptr);
    if (!hwnd || !IsWindow(hwnd)) return;
    if (auto* backend = dynamic_cast<CQtWindowBackend*>(GetWindowBackend(hwnd))) backend->WidgetGone();
    DestroyWindow(hwnd);
}

void CQtControlWidget::Detach() {
    m_hwnd = nullptr;
    for (const auto& [id, qtId] : m_timers) killTimer(qtId);
    m_timers.clear();
    hide();
}

LRESULT CQtControlWidget::Send(UINT message, WPARAM wParam, LPARAM lParam) {
    return m_hwnd ? SendMessage(m_hwnd, message, wParam, lParam) : 0;
}

void CQtControlWidget::InvalidateClient(const RECT* rc) {
    QRect area = viewport()->rect();
    if (rc) area &= QRect(QPoint(rc->left, rc->top), QPoint(rc->right - 1, rc->bottom - 1));
    if (area.isEmpty()) return;
    m_rgnPending += area;
    viewport()->update(area);
}

void CQtControlWidget::StartTimer(UINT id, UINT ms) {
    StopTimer(id);
    const auto type = ms < 20 ? Qt::PreciseTimer : Qt::CoarseTimer;
    if (const int qtId = startTimer(std::chrono::milliseconds(ms), type)) m_timers[id] = qtId;
}

void CQtControlWidget::StopTimer(UINT id) {
    auto it = m_timers.find(id);
    if (it == m_timers.end()) return;
    killTimer(it->second);
    m_timers.erase(it);
}

// One queued call per wake-up, however many messages are posted before it runs. The flag is
// cleared before the dispatch, so that what the handlers post meanwhile gets a call of its own.
void CQtControlWidget::WakeForPostedMessages() {
    if (m_bWakePending || !m_hwnd) return;
    m_bWakePending = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            CDelivery delivery;
            m_bWakePending = false;
            if (m_hwnd) DispatchPostedMessages(m_hwnd);
        },
        Qt::QueuedConnection);
}

bool CQtControlWidget::event(QEvent* e) {
    CDelivery delivery;
    const CQtInputState state = InputStateOf(e);
    switch (e->type()) {
    case QEvent::ShortcutOverride:
        ShortcutOverride(static_cast<QKeyEvent*>(e));
        return true;
    case QEvent::KeyPress:
        KeyPress(static_cast<QKeyEvent*>(e));
        return true;
    case QEvent::KeyRelease:
        KeyRelease(static_cast<QKeyEvent*>(e));
        return true;
    case QEvent::ApplicationPaletteChange:
        // The desktop's colours changed: the control makes its pictures anew.
        Send(WM_SYSCOLORCHANGE, 0, 0);
        return QAbstractScrollArea::event(e);
    default:
        return QAbstractScrollArea::event(e);
    }
}

bool CQtControlWidget::viewportEvent(QEvent* e) {
    CDelivery delivery;
    const CQtInputState state = InputStateOf(e);
    if (e->type() == QEvent::Leave) Send(WM_MOUSELEAVE, 0, 0);
    const bool childWidget = e->type() == QEvent::ChildAdded && static_cast<QChildEvent*>(e)->child()->isWidgetType();
    if (e->type() == QEvent::Hide || childWidget) LeaveStore();
    return QAbstractScrollArea::viewportEvent(e);
}

void CQtControlWidget::resizeEvent(QResizeEvent*) {
    EnsureSurface();
    const QSize size = viewport()->size();
    if (size == m_sizeNotified) return;
    m_sizeNotified = size;
    if (m_hwnd) NotifyWindowResized(m_hwnd);
}

void CQtControlWidget::focusInEvent(QFocusEvent* e) {
    QAbstractScrollArea::focusInEvent(e);
    RestartBlink();
    Send(WM_SETFOCUS, 0, 0);
}

void CQtControlWidget::focusOutEvent(QFocusEvent* e) {
    QAbstractScrollArea::focusOutEvent(e);
    RestartBlink();
    Send(WM_KILLFOCUS, 0, 0);
}

// Offers a key to the window once per press: ahead of the host's shortcuts when Qt asks about
// an override, otherwise when the key press arrives. True if the window claims it.
bool CQtControlWidget::Pretranslate(QKeyEvent* e, int vk, LPARAM lParam) {
    if (!vk) return false;
    const bool offered = m_nOfferedKey == vk && m_nOfferedTime == e->timestamp();
    if (e->type() == QEvent::KeyPress) m_nOfferedKey = 0;
    if (offered) return m_bOfferedKeyClaimed;
    const bool claimed = Send(WM_PRETRANSLATEKEY, vk, lParam) != 0;
    if (e->type() == QEvent::ShortcutOverride) {
        m_nOfferedKey = vk;
        m_nOfferedTime = e->timestamp();
        m_bOfferedKeyClaimed = claimed;
    }
    return claimed;
}

// A claimed key overrides the host's shortcut for it, so that its press reaches the window.
void CQtControlWidget::ShortcutOverride(QKeyEvent* e) {
    const int vk = VirtualKeyFromQt(e->key(), e->modifiers());
    e->setAccepted(Pretranslate(e, vk, KeyParam(e, false)));
}

// A key first goes to the window as WM_PRETRANSLATEKEY; unless claimed there it becomes
// WM_KEYDOWN and, for a key that types, WM_CHAR (or WM_IME_CHAR for a double-byte character).
void CQtControlWidget::KeyPress(QKeyEvent* e) {
    e->accept();
    const Qt::KeyboardModifiers mods = e->modifiers();
    const int vk = VirtualKeyFromQt(e->key(), mods);
    const LPARAM lp = KeyParam(e, false);
    if (Pretranslate(e, vk, lp)) return;
    if (IsTabKey(e) && !(mods & (Qt::ControlModifier | Qt::AltModifier)) &&
        focusNextPrevChild(e->key() == Qt::Key_Tab && !(mods & Qt::ShiftModifier)))
        return;
    if (vk) Send(WM_KEYDOWN, vk, lp);
    if (const int control = ControlCharFromQt(e->key(), mods)) {
        Send(WM_CHAR, control, lp);
        return;
    }
    // Delete types nothing; Alt with a letter is a menu key, not a character. Ctrl with a digit
    // or a sign is a command key (Ctrl+Minus folds): it types at most a control character, never
    // the sign itself, which would replace what the command just did to the selection.
    const bool altOnly = (mods & Qt::AltModifier) && !(mods & Qt::ControlModifier);
    const bool controlOnly = (mods & Qt::ControlModifier) && !(mods & Qt::AltModifier) && e->text() != " ";
    if (e->key() != Qt::Key_Delete && !altOnly && !controlOnly) DeliverText(e->text(), lp);
}

void CQtControlWidget::KeyRelease(QKeyEvent* e) {
    e->accept();
    if (e->isAutoRepeat()) return;  // a held key repeats its WM_KEYDOWN only
    if (const int vk = VirtualKeyFromQt(e->key(), e->modifiers())) Send(WM_KEYUP, vk, KeyParam(e, true));
}

// Each character in the process code page: one byte as WM_CHAR, two as WM_IME_CHAR with the
// lead byte high; a character that the code page cannot hold as WM_UNICHAR.
void CQtControlWidget::DeliverText(const QString& text, LPARAM lParam) {
    const std::u16string_view all(reinterpret_cast<const char16_t*>(text.utf16()), text.size());
    size_t i = 0;
    while (i < all.size() && m_hwnd) {
        const bool pair =
            QChar::isHighSurrogate(all[i]) && i + 1 < all.size() && QChar::isLowSurrogate(all[i + 1]);
        const size_t count = pair ? 2 : 1;
        std::string bytes;
        const auto drop = [](char32_t, std::string&) {};
        const ConvertResult r = Utf16ToMultiByte(CP_ACP, all.substr(i, count), &bytes, drop);
        i += count;
        if (!r.Exact() || bytes.empty() || bytes.size() > 2) {
            // The window asks the document to keep what the code page cannot hold.
            const char32_t cp = pair ? QChar::surrogateToUcs4(all[i - 2], all[i - 1]) : all[i - 1];
            Send(WM_UNICHAR, cp, lParam);
            continue;
        }
        const auto lead = static_cast<uint8_t>(bytes[0]);
        if (bytes.size() == 1)
            Send(WM_CHAR, lead, lParam);
        else
            Send(WM_IME_CHAR, (WPARAM(lead) << 8) | static_cast<uint8_t>(bytes[1]), lParam);
    }
}

void CQtControlWidget::MouseButton(QMouseEvent* e, UINT left, UINT right, UINT middle) {
    UINT message = 0;
    switch (e->button()) {
    case Qt::LeftButton: message = left; break;
    case Qt::RightButton: message = right; break;
    case Qt::MiddleButton: message = middle; break;
    default: e->ignore(); return;
    }
    e->accept();
    Send(message, MouseKeysFromQt(e->buttons(), e->modifiers()), PointParam(e->position()));
}

void CQtControlWidget::mousePressEvent(QMouseEvent* e) {
    MouseButton(e, WM_LBUTTONDOWN, WM_RBUTTONDOWN, WM_MBUTTONDOWN);
}

void CQtControlWidget::mouseReleaseEvent(QMouseEvent* e) {
    MouseButton(e, WM_LBUTTONUP, WM_RBUTTONUP, WM_MBUTTONUP);
}

void CQtControlWidget::mouseDoubleClickEvent(QMouseEvent* e) {
    MouseButton(e, WM_LBUTTONDBLCLK, WM_RBUTTONDBLCLK, WM_MBUTTONDBLCLK);
}

namespace {

QPointer<CQtControlWidget>& MouseWidgetPointer() {
    static QPointer<CQtControlWidget> widget;
    return widget;
}

}  // namespace

CQtControlWidget* CQtControlWidget::MouseWidget() { return MouseWidgetPointer().data(); }

// The window chooses the cursor ahead of each move, as it would on a desktop that asks first.
void CQtControlWidget::mouseMoveEvent(QMouseEvent* e) {
    e->accept();
    MouseWidgetPointer() = this;
    Send(WM_SETCURSOR, reinterpret_cast<WPARAM>(m_hwnd), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
    Send(WM_MOUSEMOVE, MouseKeysFromQt(e->buttons(), e->modifiers()), PointParam(e->position()));
}

// WM_MOUSEWHEEL carries the keys and the movement in wParam and the screen point in lParam.
// A nonzero result asks for the default: a window whose vertical bar can move scrolls by lines,
// as WM_VSCROLL says.
void CQtControlWidget::wheelEvent(QWheelEvent* e) {
    const int delta = e->angleDelta().y();
    if (delta == 0) {
        e->ignore();
        return;
    }
    e->accept();
    const WPARAM keys = MouseKeysFromQt(e->buttons(), e->modifiers());
    const WPARAM wParam = MAKEWPARAM(static_cast<int>(keys), delta);
    if (Send(WM_MOUSEWHEEL, wParam, PointParam(e->globalPosition())) == 0 || !m_hwnd) return;
    ScrollBarState vertical;
    if (!GetScrollBarState(m_hwnd, SB_VERT, &vertical) || !vertical.visible || !vertical.enabled) return;
    m_nWheelRemainder += delta;
    const int lines = m_nWheelRemainder / WHEEL_DELTA * kWheelLines;
    m_nWheelRemainder %= WHEEL_DELTA;
    const int code = lines > 0 ? SB_LINEUP : SB_LINEDOWN;
    for (int n = 0; n < std::abs(lines) && m_hwnd; ++n) Send(WM_VSCROLL, code, 0);
}

void CQtControlWidget::timerEvent(QTimerEvent* e) {
    if (CaretTimerEvent(e)) return;
    for (const auto& [id, qtId] : m_timers) {
        if (qtId != e->timerId()) continue;
        const UINT timerId = id;  // the handler may change m_timers
        Send(WM_TIMER, timerId, 0);
        return;
    }
    QAbstractScrollArea::timerEvent(e);
}

// The bars move only when the window sets their position, as a window's own scroll bars do;
// only a dragged thumb follows the mouse.
void CQtControlWidget::ScrollAction(QScrollBar* bar, UINT message, int action) {
    CDelivery delivery;
    int code = -1;
    int position = 0;
    switch (action) {
    case QAbstractSlider::SliderSingleStepAdd: code = SB_LINEDOWN; break;
    case QAbstractSlider::SliderSingleStepSub: code = SB_LINEUP; break;
    case QAbstractSlider::SliderPageStepAdd: code = SB_PAGEDOWN; break;
    case QAbstractSlider::SliderPageStepSub: code = SB_PAGEUP; break;
    case QAbstractSlider::SliderToMinimum: code = SB_TOP; break;
    case QAbstractSlider::SliderToMaximum: code = SB_BOTTOM; break;
    case QAbstractSlider::SliderMove:
        if (bar->isSliderDown()) {
            Send(message, MAKEWPARAM(SB_THUMBTRACK, bar->sliderPosition()), 0);
            return;
        }
        code = SB_THUMBPOSITION;
        position = bar->sliderPosition();
        break;
    default: return;
    }
    bar->setSliderPosition(bar->value());
    Send(message, MAKEWPARAM(code, position), 0);
}

void CQtControlWidget::ThumbReleased(QScrollBar* bar, UINT message) {
    CDelivery delivery;
    Send(message, MAKEWPARAM(SB_THUMBPOSITION, bar->sliderPosition()), 0);
}
