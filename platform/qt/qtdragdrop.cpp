#include "platform/qt/qtdragdrop.h"

#include <QApplication>
#include <QCursor>
#include <QDrag>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPointer>
#include <QThread>
#include <QDropEvent>
#include <QMimeData>
#include <QTimerEvent>
#include <QWidget>

#include "platform/com/textdataobject.h"
#include "platform/qt/qtclipboard.h"
#include "platform/qt/qtcontrolwidget.h"
#include "platform/qt/qtwindowbackend.h"
#include "platform/window/keys.h"

namespace {

// How often a resting drag ticks, and how often the wait for a drag's start looks at the mouse.
constexpr int kDragTickMs = 50;
constexpr int kDragWaitMs = 5;

Qt::DropActions ActionsOf(DROPEFFECT effects) {
    Qt::DropActions actions;
    if (effects & DROPEFFECT_COPY) actions |= Qt::CopyAction;
    if (effects & DROPEFFECT_MOVE) actions |= Qt::MoveAction;
    if (effects & DROPEFFECT_LINK) actions |= Qt::LinkAction;
    return actions;
}

Qt::DropAction ActionOf(DROPEFFECT effect) {
    if (effect & DROPEFFECT_MOVE) return Qt::MoveAction;
    if (effect & DROPEFFECT_COPY) return Qt::CopyAction;
    if (effect & DROPEFFECT_LINK) return Qt::LinkAction;
    return Qt::IgnoreAction;
}

DROPEFFECT EffectOf(Qt::DropActions actions) {
    DROPEFFECT effect = DROPEFFECT_NONE;
    if (actions & Qt::CopyAction) effect |= DROPEFFECT_COPY;
    if (actions & Qt::MoveAction) effect |= DROPEFFECT_MOVE;
    if (actions & Qt::LinkAction) effect |= DROPEFFECT_LINK;
    return effect;
}

DWORD KeysOf(Qt::KeyboardModifiers mods) {
    return (mods & Qt::ControlModifier ? MK_CONTROL : 0) | (mods & Qt::ShiftModifier ? MK_SHIFT : 0);
}

ComPtr<IDataObject> DataOf(const QMimeData& mime) {
    ComPtr<CDataObject> data(new CDataObject);
    for (auto& [format, bytes] : FormatsFromMimeData(mime)) data->SetData(format, std::move(bytes));
    return ComPtr<IDataObject>::Adopt(data.Detach());
}

ClipboardFormats FormatsOf(IDataObject* data) {
    ClipboardFormats formats;
    std::vector<CLIPFORMAT> offered;
    if (FAILED(data->EnumFormats(&offered))) return formats;
    for (CLIPFORMAT format : offered) {
        std::string bytes;
        if (SUCCEEDED(data->GetData(format, &bytes))) formats.emplace_back(format, std::move(bytes));
    }
    return formats;
}

// A drag begins once the mouse has gone the desktop's start distance with the button held, or
// the button has been held for the start time; true then, false if the button went up first (a
// click, which the caller turns into a caret move). Events are handled meanwhile, the button's
// release among them.
bool WaitForDragStart(const QPointer<QWidget>& widget) {
    const QPoint start = QCursor::pos();
    QElapsedTimer held;
    held.start();
    while (widget && (QGuiApplication::mouseButtons() & Qt::LeftButton)) {
        if ((QCursor::pos() - start).manhattanLength() >= QApplication::startDragDistance()) return true;
        if (held.elapsed() >= QApplication::startDragTime()) return true;
        QCoreApplication::processEvents(QEventLoop::AllEvents, kDragWaitMs);
        QThread::msleep(kDragWaitMs);
    }
    return false;
}

}  // namespace

DROPEFFECT CQtDragDrop::DoDragDrop(HWND source, IDataObject* data, DROPEFFECT allowed) {
    auto* backend = static_cast<CQtWindowBackend*>(GetWindowBackend(source));
    QPointer<QWidget> widget = backend ? backend->Widget() : nullptr;
    if (!widget || !WaitForDragStart(widget)) return DROPEFFECT_NONE;
    auto* drag = new QDrag(widget);
    drag->setMimeData(MimeDataFromFormats(FormatsOf(data)));
    // Qt runs the drag's own loop; drops on this process's windows arrive inside it.
    const Qt::DropAction done = drag->exec(ActionsOf(allowed), Qt::MoveAction);
    return EffectOf(done) & allowed;
}

CQtDropSite::CQtDropSite(HWND hwnd, QWidget* viewport) : QObject(viewport), m_hwnd(hwnd) {
    viewport->setAcceptDrops(true);
    viewport->installEventFilter(this);
}

bool CQtDropSite::eventFilter(QObject* watched, QEvent* e) {
    switch (e->type()) {
        case QEvent::DragEnter:
        case QEvent::DragMove: {
            auto* drag = static_cast<QDragMoveEvent*>(e);
            IDropTarget* target = Target();
            if (!target) return false;
            m_pt = drag->position().toPoint();
            m_keys = KeysOf(drag->modifiers());
            m_allowed = EffectOf(drag->possibleActions());
            if (e->type() == QEvent::DragEnter) {
                m_data = DataOf(*drag->mimeData());
                target->OnDragEnter(m_data.Get(), m_keys, {m_pt.x(), m_pt.y()});
                m_tick.start(kDragTickMs, this);
            }
            m_effect = DragOverTick(target, m_data.Get(), m_keys, {m_pt.x(), m_pt.y()}, m_allowed);
            // The entry is always taken: Qt sends no moves to a widget that refused it, so a drag
            // that enters where it cannot drop would stay refused for the whole pass, even where
            // Ctrl or another point makes it droppable. Each move answers for its own point.
            drag->setDropAction(ActionOf(m_effect));
            drag->setAccepted(e->type() == QEvent::DragEnter || ActionOf(m_effect) != Qt::IgnoreAction);
            return true;
        }
        case QEvent::DragLeave:
            if (IDropTarget* target = Target()) target->OnDragLeave();
            End();
            return true;
        case QEvent::Drop: {
            auto* drop = static_cast<QDropEvent*>(e);
            IDropTarget* target = Target();
            const DROPEFFECT effect = EffectOf(drop->dropAction());
            const POINT pt{drop->position().toPoint().x(), drop->position().toPoint().y()};
            ComPtr<IDataObject> data = m_data ? m_data : DataOf(*drop->mimeData());
            End();
            if (target && effect != DROPEFFECT_NONE && target->OnDrop(data.Get(), effect, pt))
                drop->acceptProposedAction();
            else
                drop->ignore();
            return true;
        }
        default: return QObject::eventFilter(watched, e);
    }
}

void CQtDropSite::timerEvent(QTimerEvent* e) {
    if (e->timerId() != m_tick.timerId()) return QObject::timerEvent(e);
    IDropTarget* target = Target();
    if (!target || !m_data) return End();
    m_effect = DragOverTick(target, m_data.Get(), m_keys, {m_pt.x(), m_pt.y()}, m_allowed);
}

void CQtDropSite::End() {
    m_tick.stop();
    m_data.Reset();
}
