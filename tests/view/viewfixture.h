// A control in a window of the test backend over a reference document.
#pragma once
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/testing/testplatform.h"
#include "platform/testing/testwindow.h"
#include "tests/view/scriptedsyntax.h"
#include "tests/view/viewtest.h"

// A control of the given client size in a test window, with a reference document holding `text`.
class ViewFixture : public ::testing::Test {
protected:
    void Open(const std::string& text, LONG cx = 400, LONG cy = 300, DWORD options = 0) {
        NewControl(cx, cy, options);
        Attach(text);
    }
    // A fresh reference document holding `text`, attached to the control.
    void Attach(const std::string& text) {
        doc = CreateHtmlDocument();
        doc->SetText(text);
        ctrl->SetDocument(static_cast<IDispatch*>(doc.Get()));
    }
    // A new control in a window of the given size, with `options` switched on first; the
    // control before it goes (its window, and with it its document).
    void NewControl(LONG cx, LONG cy, DWORD options = 0) {
        Close();
        control = MakeControlThroughFactory();
        ctrl = AsControl(control.Get());
        for (DWORD bit = 1; bit; bit <<= 1)
            if (options & bit) ctrl->SetOption(bit, TRUE);
        ctrl->CreateControlWindow(nullptr, {0, 0, cx, cy});
    }
    void Close() {
        if (ctrl) ctrl->DestroyControlWindow();
        ctrl = nullptr;
        control = nullptr;
    }
    void TearDown() override { Close(); }
    CTestWindowBackend& Window() { return *TestWindow(ctrl->GetSafeHwnd()); }
    void Focus() { platform->MoveFocus(ctrl->GetSafeHwnd()); }
    // Paints what is invalid and gives what was drawn.
    const DrawLog& PaintNow() {
        Window().ClearDrawn();
        Window().Paint();
        return Window().Drawn();
    }

    CTestPlatformScope platform;
    ComPtr<IDispatch> control;
    CZentrelCtrl* ctrl = nullptr;
    ComPtr<CHtmlDocument> doc;
};
