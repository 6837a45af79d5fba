// The control in a top-level Qt window of its own, 1000 x 800 pixels, over a document, for the
// benchmarks that measure the view as a user sees it.
#pragma once
#include <QApplication>
#include <QWidget>

#include "htmldoc/htmldocument.h"
#include "platform/qt/qtwindow.h"
#include "platform/window/paint.h"
#include "src/view/zentrelctrl.h"

namespace bench {

constexpr LONG kWidth = 1000, kHeight = 800;

// The control in a top-level window of its own, over a document.
class CView {
public:
    explicit CView(CHtmlDocument* doc, bool wrap) {
        m_pCtrl = CreateZentrelCtrl();
        m_pCtrl->SetOption(OPT_WORDWRAP, wrap);
        m_hwnd = CreateQtChildWindow(m_pCtrl, nullptr, {0, 0, kWidth, kHeight});
        QtWidgetFromHwnd(m_hwnd)->show();
        QApplication::processEvents();
        m_pCtrl->SetDocument(static_cast<IDispatch*>(doc));
        QApplication::processEvents();
    }
    ~CView() {
        m_pCtrl->SetDocument(nullptr);
        m_pCtrl->DestroyControlWindow();
        m_pCtrl->Release();
        QApplication::processEvents();
    }
    CZentrelCtrl* operator->() const { return m_pCtrl; }
    HWND Hwnd() const { return m_hwnd; }
    void RepaintAll() {
        InvalidateRect(m_hwnd, nullptr, FALSE);
        UpdateWindow(m_hwnd);
    }

private:
    CZentrelCtrl* m_pCtrl;
    HWND m_hwnd;
};

}  // namespace bench
