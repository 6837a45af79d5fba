// A document that announces a long operation while the view paints (it classifies as the painter
// asks for classes) must not make the view paint inside that paint: Qt would warn that a device
// has two painters, and the nested picture would be lost.
#include <gtest/gtest.h>

#include <QAbstractScrollArea>
#include <QtGlobal>
#include <string>
#include <vector>

#include "htmldoc/htmldocument.h"
#include "platform/window/caret.h"
#include "platform/window/paint.h"
#include "tests/qt/processuntil.h"
#include "tests/qt/qtviewfixture.h"
#include "tests/view/viewfixture.h"

namespace {

// Collects Qt's warnings for the life of the object.
class QtWarnings {
public:
    QtWarnings() : m_previous(qInstallMessageHandler(&QtWarnings::Handle)) { Messages().clear(); }
    ~QtWarnings() { qInstallMessageHandler(m_previous); }
    static std::vector<std::string>& Messages() {
        static std::vector<std::string> messages;
        return messages;
    }

private:
    static void Handle(QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type != QtDebugMsg && type != QtInfoMsg) Messages().push_back(text.toStdString());
    }
    QtMessageHandler m_previous;
};

class BusyWhilePainting : public QtViewFixture {
protected:
    ~BusyWhilePainting() override { CloseView(); }
    QImage Shot() {
        return qobject_cast<QAbstractScrollArea*>(QtWidgetFromHwnd(hwnd))->viewport()->grab().toImage();
    }
    // A page of tagged lines, shown and painted; gives its picture.
    QImage OpenPage() {
        std::string text;
        for (int i = 0; i < 40; ++i) text += "<p class=\"x\">line " + std::to_string(i) + "</p>\n";
        doc->SetText(text);
        syntax.SetClass(0, 3, SC_TAG);
        OpenView(&syntax, 400, 300);
        ProcessUntil([&] { return !GetUpdateRect(hwnd, nullptr, FALSE); });
        return Shot();
    }
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    CScriptedSyntax syntax{doc.Get()};
};

TEST_F(BusyWhilePainting, AnAnnouncementDuringThePaintPaintsNothingInsideIt) {
    const QImage before = OpenPage();
    QtWarnings warnings;
    int announced = 0;
    syntax.onClassAsked = [&](long) {
        if (announced++ > 0) return;
        ctrl->OnBusy(TRUE, "Classifying", 0);
        ctrl->OnBusy(FALSE, nullptr, 0);
    };
    InvalidateRect(hwnd, nullptr, FALSE);
    UpdateWindow(hwnd);
    ProcessUntil([&] { return !GetUpdateRect(hwnd, nullptr, FALSE); });
    syntax.onClassAsked = nullptr;

    EXPECT_GT(announced, 0);
    EXPECT_EQ(ctrl->GetBusyCount(), 0);
    for (const std::string& message : warnings.Messages()) ADD_FAILURE() << "Qt warned: " << message;
    // The paint went through as any other: the window looks as it did, with no busy fill in it.
    EXPECT_TRUE(Shot() == before);
}

// While busy the view paints a flat fill over whatever it is asked to paint; when the work is
// over, the whole window shows the text again.
TEST_F(BusyWhilePainting, WhatWasFilledWhileBusyShowsTheTextAfterwards) {
    const QImage before = OpenPage();
    ctrl->OnBusy(TRUE, "Loading", 0);
    const RECT row{0, 0, 120, 14};
    InvalidateRect(hwnd, &row, FALSE);
    UpdateWindow(hwnd);
    ctrl->OnBusy(FALSE, nullptr, 0);
    ProcessUntil([&] { return !GetUpdateRect(hwnd, nullptr, FALSE); });
    HideCaret(hwnd);  // shown again when the work is over; the text is what counts here
    EXPECT_TRUE(Shot() == before);
}

}  // namespace
