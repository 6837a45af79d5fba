// Input through Qt as a user gives it: key events through the widget's shortcut override and
// key press, and input method events with a composition that is shown but not yet typed, then
// committed, in a double-byte code page and in one that cannot hold what was committed.
#include <gtest/gtest.h>

#include <QAbstractScrollArea>
#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <string>

#include "platform/qt/qtcontrolwidget.h"
#include "tests/qt/qtviewfixture.h"

namespace {

class QtInput : public QtViewFixture {
protected:
    void Open(const std::string& text, UINT cp = 1252) {
        UseCodePage(cp);
        OpenText(text, 400, 200);
        widget = static_cast<CQtControlWidget*>(QtWidgetFromHwnd(hwnd));
        ctrl->SetSelection(static_cast<long>(text.size()), static_cast<long>(text.size()));
        // The offscreen platform gives no window the focus by itself; the control is told as Qt would.
        SendMessage(hwnd, WM_SETFOCUS, 0, 0);
    }

    // A key pressed and released, offered first as a shortcut override as Qt does.
    void Key(int key, Qt::KeyboardModifiers mods = Qt::NoModifier, const QString& text = {}) {
        QKeyEvent over(QEvent::ShortcutOverride, key, mods, text);
        QCoreApplication::sendEvent(widget, &over);
        QKeyEvent press(QEvent::KeyPress, key, mods, text);
        QCoreApplication::sendEvent(widget, &press);
        QKeyEvent release(QEvent::KeyRelease, key, mods, text);
        QCoreApplication::sendEvent(widget, &release);
    }

    // What the input method asks, through the public face every widget has.
    QVariant Query(Qt::InputMethodQuery query) const { return static_cast<QWidget*>(widget)->inputMethodQuery(query); }

    void Compose(const QString& preedit, const QString& commit = {}) {
        QInputMethodEvent e(preedit, {});
        if (!commit.isEmpty()) e.setCommitString(commit);
        QCoreApplication::sendEvent(widget, &e);
    }

    CQtControlWidget* widget = nullptr;
};

TEST_F(QtInput, KeysTypeMoveDeleteAndUndo) {
    Open("ab");
    Key(Qt::Key_X, Qt::NoModifier, "x");
    EXPECT_EQ(document->GetText(), "abx");
    Key(Qt::Key_Left);
    Key(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(ctrl->GetSelectionStart(), 1);
    EXPECT_EQ(ctrl->GetSelectionEnd(), 2);
    Key(Qt::Key_Backspace, Qt::NoModifier, "\b");
    EXPECT_EQ(document->GetText(), "ax");  // claimed ahead of the toolkit: no second deletion by a character
    Key(Qt::Key_Return, Qt::NoModifier, "\r");
    EXPECT_EQ(document->GetText(), "a\r\nx");
    Key(Qt::Key_Z, Qt::ControlModifier, "\x1a");
    EXPECT_EQ(document->GetText(), "ax");
}

TEST_F(QtInput, ACompositionShowsWithoutTouchingTheDocumentUntilItCommits) {
    Open("ab", 932);
    Compose(QString::fromUtf8("にほん"));
    EXPECT_EQ(document->GetText(), "ab");
    EXPECT_EQ(widget->PreeditText(), QString::fromUtf8("にほん"));
    Compose({}, QString::fromUtf8("日本"));
    EXPECT_EQ(document->GetText(), "ab\x93\xFA\x96\x7B");
    EXPECT_TRUE(widget->PreeditText().isEmpty());
    EXPECT_EQ(ctrl->GetSelectionStart(), 6);
}

TEST_F(QtInput, ACharacterTheCodePageCannotHoldBecomesAReference) {
    Open("<p>");
    Compose({}, QString::fromUtf8("日é"));
    EXPECT_EQ(document->GetText(), "<p>&#26085;\xE9");
    Compose({}, QString::fromUtf8("\U0001F600"));
    EXPECT_EQ(document->GetText(), "<p>&#26085;\xE9&#128512;");
}

TEST_F(QtInput, TheInputMethodIsToldTheCaretAndItsLine) {
    Open("first\r\nsecond line");
    ctrl->SetSelection(10, 10);
    const QRect caret = Query(Qt::ImCursorRectangle).toRect();
    POINT pt;
    ctrl->ClientPointFromPosition(10, &pt);
    EXPECT_EQ(caret.topLeft(), widget->viewport()->mapTo(widget, QPoint(pt.x, pt.y)));
    EXPECT_EQ(Query(Qt::ImSurroundingText).toString(), QString("second line"));
    EXPECT_EQ(Query(Qt::ImCursorPosition).toInt(), 3);
}

}  // namespace
