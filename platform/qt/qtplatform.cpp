#include "platform/qt/qtplatform.h"

#include <QApplication>
#include <QCursor>
#include <QScreen>
#include <QStyleHints>
#include <QGuiApplication>
#include <QWidget>
#include <utility>

#include "platform/qt/qtchildcontrol.h"
#include "platform/qt/qtaccessible.h"
#include "platform/qt/qtcursor.h"
#include "platform/qt/qttooltip.h"
#include "platform/qt/qtcontrolwidget.h"
#include "platform/qt/qtwindow.h"
#include "platform/qt/qtwindowbackend.h"
#include "platform/window/backend.h"
#include "platform/window/keys.h"

namespace {

constexpr short kKeyDown = static_cast<short>(0x8000);
constexpr RECT kTopLevelRect{0, 0, 640, 480};

CQtWindowBackend* QtBackend(HWND hwnd) {
    return dynamic_cast<CQtWindowBackend*>(GetWindowBackend(hwnd));
}

}  // namespace

CQtPlatform::CQtPlatform()
    : m_pPreviousGdi(SetGdiBackend(&m_gdi)), m_pPreviousClipboard(SetClipboardBackend(&m_clipboard)),
      m_pPreviousDragDrop(SetDragDropBackend(&m_dragDrop)), m_pPreviousDialogs(SetDialogBackend(&m_dialogs)),
      m_pPreviousPrint(GetPrintBackend()), m_pPreviousForms(SetFormBackend(&m_forms)) {
    // A print backend that a host or a test installed first stays: its dialogs answer.
    if (!m_pPreviousPrint) SetPrintBackend(&m_print);
    m_clock.start();
    InstallAccessibleFactory();
}

CQtPlatform::~CQtPlatform() {
    for (HWND hwnd : m_windows)
        if (IsWindow(hwnd)) AbandonWindow(hwnd);
    if (GetGdiBackend() == &m_gdi) SetGdiBackend(m_pPreviousGdi);
    if (GetClipboardBackend() == &m_clipboard) SetClipboardBackend(m_pPreviousClipboard);
    if (GetDragDropBackend() == &m_dragDrop) SetDragDropBackend(m_pPreviousDragDrop);
    if (GetFormBackend() == &m_forms) SetFormBackend(m_pPreviousForms);
    if (GetPrintBackend() == &m_print) SetPrintBackend(nullptr);
    if (GetDialogBackend() == &m_dialogs) SetDialogBackend(m_pPreviousDialogs);
}

std::unique_ptr<IWindowBackend> CQtPlatform::CreatePopupBackend(HWND hwnd, HWND, const RECT& rc) {
    std::erase_if(m_windows, [](HWND h) { return !IsWindow(h); });
    m_windows.push_back(hwnd);
    auto backend = std::make_unique<CQtWindowBackend>(hwnd, nullptr, rc);
    if (QWidget* widget = backend->Widget()) {
        widget->setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus);
        widget->setAttribute(Qt::WA_ShowWithoutActivating);
        widget->setFocusPolicy(Qt::NoFocus);
        widget->setGeometry(QRect(static_cast<int>(rc.left), static_cast<int>(rc.top), static_cast<int>(rc.Width()),
                                  static_cast<int>(rc.Height())));
    }
    return backend;
}

RECT CQtPlatform::DesktopRect() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen) return IPlatformBackend::DesktopRect();
    const QRect g = screen->geometry();
    return {g.left(), g.top(), g.right() + 1, g.bottom() + 1};
}

QWidget* CQtPlatform::ViewportOf(HWND hwnd) const {
    CQtWindowBackend* backend = QtBackend(hwnd);
    return backend && backend->Widget() ? backend->Widget()->viewport() : nullptr;
}

std::unique_ptr<IWindowBackend> CQtPlatform::CreateWindowBackend(HWND hwnd, HWND parent, const RECT& rc) {
    QWidget* parentWidget = nullptr;
    if (std::exchange(m_bParentGiven, false)) {
        parentWidget = std::exchange(m_pGivenParent, nullptr);
    } else {
        parentWidget = ViewportOf(parent);
    }
    // Handles are never reused, so the list only needs pruning to stay small.
    std::erase_if(m_windows, [](HWND h) { return !IsWindow(h); });
    m_windows.push_back(hwnd);
    return std::make_unique<CQtWindowBackend>(hwnd, parentWidget, rc);
}

// Milliseconds on the monotonic clock (since boot on Linux), wrapping at 32 bits like a tick count.
DWORD CQtPlatform::TickCount() {
    return static_cast<DWORD>(m_clock.msecsSinceReference() + m_clock.elapsed());
}

namespace {

CQtInputState* g_pInputState = nullptr;

}  // namespace

CQtInputState::CQtInputState(Qt::KeyboardModifiers modifiers, Qt::MouseButtons buttons)
    : m_pOuter(g_pInputState), m_modifiers(modifiers), m_buttons(buttons) {
    g_pInputState = this;
}

CQtInputState::~CQtInputState() { g_pInputState = m_pOuter; }

bool CQtInputState::Current(Qt::KeyboardModifiers* modifiers, Qt::MouseButtons* buttons) {
    if (!g_pInputState) return false;
    *modifiers = g_pInputState->m_modifiers;
    *buttons = g_pInputState->m_buttons;
    return true;
}

short CQtPlatform::KeyState(int vk) {
    Qt::KeyboardModifiers mods = QGuiApplication::queryKeyboardModifiers();
    Qt::MouseButtons buttons = QGuiApplication::mouseButtons();
    CQtInputState::Current(&mods, &buttons);
    bool down = false;
    switch (vk) {
    case VK_SHIFT: down = mods & Qt::ShiftModifier; break;
    case VK_CONTROL: down = mods & Qt::ControlModifier; break;
    case VK_MENU: down = mods & Qt::AltModifier; break;
    case VK_LBUTTON: down = buttons & Qt::LeftButton; break;
    case VK_RBUTTON: down = buttons & Qt::RightButton; break;
    case VK_MBUTTON: down = buttons & Qt::MiddleButton; break;
    default: break;
    }
    return down ? kKeyDown : 0;
}

void CQtPlatform::Beep(UINT) {
    QApplication::beep();
}

std::unique_ptr<IWindowBackend> CQtPlatform::CreateChildControl(HWND hwnd, ChildControlKind kind, HWND parent,
                                                                const RECT& rc) {
    QWidget* parentWidget = ViewportOf(parent);
    if (!parentWidget) return nullptr;
    m_windows.push_back(hwnd);
    if (kind == ChildControlKind::ToolTip) return std::make_unique<CQtToolTip>(hwnd);
    return std::make_unique<CQtChildControl>(kind, parentWidget, rc);
}

void CQtPlatform::SetWaitCursor(bool on) {
    if (on)
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QGuiApplication::restoreOverrideCursor();
}

void CQtPlatform::SetCursor(UINT id) {
    if (CQtControlWidget* widget = CQtControlWidget::MouseWidget()) widget->viewport()->setCursor(QtCursor(id));
}

POINT CQtPlatform::CursorPos() {
    const QPoint p = QCursor::pos();
    return {p.x(), p.y()};
}

UINT CQtPlatform::DoubleClickTime() {
    return static_cast<UINT>(QGuiApplication::styleHints()->mouseDoubleClickInterval());
}

HWND CQtPlatform::CreateWindowIn(IMessageHandler* handler, QWidget* parent, const RECT& rc) {
    m_pGivenParent = parent;
    m_bParentGiven = true;
    HWND hwnd = CreateWindowFor(handler, nullptr, rc);
    // Creation may have failed before the backend took the parent.
    m_pGivenParent = nullptr;
    m_bParentGiven = false;
    return hwnd;
}

QWidget* QtWidgetFromHwnd(HWND hwnd) {
    CQtWindowBackend* backend = QtBackend(hwnd);
    return backend ? backend->Widget() : nullptr;
}

HWND CreateQtChildWindow(IMessageHandler* handler, QWidget* parent, const RECT& rc) {
    auto* platform = dynamic_cast<CQtPlatform*>(GetPlatformBackend());
    if (!platform) return nullptr;
    RECT area = rc;
    if (area.IsEmpty()) area = parent ? RECT{0, 0, parent->width(), parent->height()} : kTopLevelRect;
    return platform->CreateWindowIn(handler, parent, area);
}
