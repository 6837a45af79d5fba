// A control in a shown top-level Qt window over a document, with the Qt backend installed for
// the life of the test, and optionally a process code page other than the default.
#pragma once
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QWidget>
#include <optional>
#include <string>

#include "htmldoc/htmldocument.h"
#include "platform/qt/qtplatform.h"
#include "platform/qt/qtwindow.h"
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"
#include "tests/codepagescope.h"

class QtViewFixture : public ::testing::Test {
protected:
    QtViewFixture() : m_pPrevious(SetPlatformBackend(&platform)) {}
    ~QtViewFixture() override {
        CloseView();
        SetPlatformBackend(m_pPrevious);
        for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
        if (m_codePage) {
            m_codePage.reset();
            ZentrelApp().InitInstance();
        }
    }

    // The process code page for this test; before the control is made.
    void UseCodePage(UINT cp) {
        m_codePage.emplace(cp);
        ZentrelApp().InitInstance();
    }

    // The control goes with its window. A fixture whose members hold the document calls this
    // in its own destructor, before those members go.
    void CloseView() {
        if (!ctrl) return;
        ctrl->SetDocument(nullptr);
        ctrl->DestroyControlWindow();
        ctrl->Release();
        ctrl = nullptr;
    }

    void OpenView(IDispatch* document, LONG cx, LONG cy) {
        ctrl = CreateZentrelCtrl();
        hwnd = CreateQtChildWindow(ctrl, nullptr, {0, 0, cx, cy});
        ASSERT_NE(hwnd, nullptr);
        QtWidgetFromHwnd(hwnd)->show();
        ctrl->SetDocument(document);
    }
    // The view over a fresh reference document holding `text`.
    void OpenText(const std::string& text, LONG cx, LONG cy) {
        document = CreateHtmlDocument();
        document->SetText(text);
        OpenView(document.Get(), cx, cy);
    }

    CQtPlatform platform;
    CZentrelCtrl* ctrl = nullptr;
    HWND hwnd = nullptr;
    ComPtr<CHtmlDocument> document;  // of OpenText

private:
    IPlatformBackend* m_pPrevious;
    std::optional<CodePageScope> m_codePage;
};
