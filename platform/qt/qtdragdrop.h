// Drag and drop through Qt: drags leave with QDrag and the data object's formats as mime data
// (text as text/plain, file names as text/uri-list); drags over a control's viewport reach the
// window's drop target, with a tick while the drag rests so that the target can scroll.
#pragma once
#include <QBasicTimer>
#include <QObject>
#include <QPoint>

#include "platform/window/dragdrop.h"

class CQtDragDrop final : public IDragDropBackend {
public:
    DROPEFFECT DoDragDrop(HWND source, IDataObject* data, DROPEFFECT allowed) override;
};

// Hears the drag events of one window's viewport, its parent.
class CQtDropSite final : public QObject {
public:
    CQtDropSite(HWND hwnd, QWidget* viewport);

protected:
    bool eventFilter(QObject* watched, QEvent* e) override;
    void timerEvent(QTimerEvent* e) override;

private:
    IDropTarget* Target() const { return GetDropTarget(m_hwnd); }
    void End();

    HWND m_hwnd;
    ComPtr<IDataObject> m_data;  // what the drag over the window carries
    QPoint m_pt;
    DWORD m_keys = 0;
    DROPEFFECT m_allowed = DROPEFFECT_NONE;
    DROPEFFECT m_effect = DROPEFFECT_NONE;
    QBasicTimer m_tick;
};
