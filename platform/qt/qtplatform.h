// The Qt backend: process-wide services from Qt, windows made of CQtControlWidget, child
// controls, and the drawing backend (qtgdi.h) and the clipboard (qtclipboard.h), which it
// installs for its lifetime.
#pragma once
#include <QElapsedTimer>
#include <vector>

#include <Qt>

#include "platform/qt/qtclipboard.h"
#include "platform/qt/qtdialogform.h"
#include "platform/qt/qtdialogs.h"
#include "platform/qt/qtdragdrop.h"
#include "platform/qt/qtgdi.h"
#include "platform/qt/qtprintdialogs.h"
#include "platform/window/window.h"

class QWidget;

// The modifiers and buttons of the input event that a widget is delivering as a message, for
// the key state of that moment, as a window's handler reads it. Scopes nest.
class CQtInputState {
public:
    CQtInputState(Qt::KeyboardModifiers modifiers, Qt::MouseButtons buttons);
    ~CQtInputState();
    CQtInputState(const CQtInputState&) = delete;
    CQtInputState& operator=(const CQtInputState&) = delete;
    // The innermost scope's state; false outside every scope.
    static bool Current(Qt::KeyboardModifiers* modifiers, Qt::MouseButtons* buttons);

private:
    CQtInputState* m_pOuter;
    Qt::KeyboardModifiers m_modifiers;
    Qt::MouseButtons m_buttons;
};

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
    // Shift, Ctrl, Alt and the three mouse buttons: as the input event being delivered has them
    // (see CQtInputState), else as they are now; other keys read as up.
    short KeyState(int vk) override;
    void Beep(UINT type) override;
    std::unique_ptr<IWindowBackend> CreateChildControl(HWND hwnd, ChildControlKind kind, HWND parent,
                                                       const RECT& rc) override;
    // Each call pushes or pops Qt's override cursor, which nests by itself.
    void SetWaitCursor(bool on) override;
    POINT CursorPos() override;
    // Shows the cursor over the control widget that the mouse last came to.
    void SetCursor(UINT id) override;
    UINT DoubleClickTime() override;
    // A frameless tool window that shows without taking the focus, and the primary screen.
    std::unique_ptr<IWindowBackend> CreatePopupBackend(HWND hwnd, HWND owner, const RECT& rc) override;
    RECT DesktopRect() override;

    // Printers and the print dialogs.
    CQtPrintBackend& Print() { return m_print; }

    // CreateWindowFor with a widget as the parent instead of a window.
    HWND CreateWindowIn(IMessageHandler* handler, QWidget* parent, const RECT& rc);

private:
    QWidget* ViewportOf(HWND hwnd) const;

    CQtGdiBackend m_gdi;
    IGdiBackend* m_pPreviousGdi;
    CQtClipboard m_clipboard;
    IClipboardBackend* m_pPreviousClipboard;
    CQtDragDrop m_dragDrop;
    IDragDropBackend* m_pPreviousDragDrop;
    CQtDialogs m_dialogs;
    IDialogBackend* m_pPreviousDialogs;
    CQtPrintBackend m_print;
    IPrintBackend* m_pPreviousPrint;
    CQtForms m_forms;
    IFormBackend* m_pPreviousForms;
    QElapsedTimer m_clock;
    std::vector<HWND> m_windows;
    QWidget* m_pGivenParent = nullptr;
    bool m_bParentGiven = false;
};
