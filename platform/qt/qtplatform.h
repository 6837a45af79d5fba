// The Qt backend: process-wide services from Qt, and windows made of CQtControlWidget.
#pragma once
#include <QElapsedTimer>
#include <vector>

#include "platform/window/window.h"

class QWidget;

class CQtPlatform : public IPlatformBackend {
public:
    CQtPlatform();
    // Windows of this platform still open are abandoned: handles invalid, widgets deleted,
    // no WM_DESTROY.
    ~CQtPlatform() override;
    CQtPlatform(const CQtPlatform&) = delete;
    CQtPlatform& operator=(const CQtPlatform&) = delete;

    // The widget's parent is the parent window's viewport, or none for a top-level window.
    std::unique_ptr<IWindowBackend> CreateWindowBackend(HWND hwnd, HWND parent, const RECT& rc) override;
    DWORD TickCount() override;
    // Shift, Ctrl, Alt and the three mouse buttons, as they are now; other keys read as up.
    short KeyState(int vk) override;
    void Beep(UINT type) override;

    // CreateWindowFor with a widget as the parent instead of a window.
    HWND CreateWindowIn(IMessageHandler* handler, QWidget* parent, const RECT& rc);

private:
    QElapsedTimer m_clock;
    std::vector<HWND> m_windows;
    QWidget* m_pGivenParent = nullptr;
    bool m_bParentGiven = false;
};
