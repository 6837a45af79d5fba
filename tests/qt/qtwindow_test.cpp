#include <gtest/gtest.h>

#include <QAbstractScrollArea>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QScrollBar>
#include <QThread>
#include <QWheelEvent>
#include <memory>

#include "platform/codepage/codepage.h"
#include "platform/qt/qtplatform.h"
#include "platform/qt/qtwindow.h"
#include "platform/window/cursor.h"
#include "platform/window/keys.h"
#include "platform/window/paint.h"
#include "platform/window/scrollbar.h"
#include "tests/platform/recorder.h"
#include "tests/qt/processuntil.h"

namespace {

const RECT kRect{0, 0, 320, 240};

void ProcessPending() {
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
}

class QtWindowTest : public ::testing::Test {
protected:
    QtWindowTest() : m_pPrevious(SetPlatformBackend(&platform)) {}
    ~QtWindowTest() override {
        SetPlatformBackend(m_pPrevious);
        ProcessPending();
    }

    HWND Create() { return CreateWindowFor(&handler, nullptr, kRect); }
    QAbstractScrollArea* Area(HWND hwnd) { return qobject_cast<QAbstractScrollArea*>(QtWidgetFromHwnd(hwnd)); }

    void Key(HWND hwnd, int key, Qt::KeyboardModifiers mods, const QString& text) {
        QKeyEvent press(QEvent::KeyPress, key, mods, text);
        QCoreApplication::sendEvent(QtWidgetFromHwnd(hwnd), &press);
    }
    void Mouse(HWND hwnd, QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons held,
               Qt::KeyboardModifiers mods = Qt::NoModifier) {
        QWidget* viewport = Area(hwnd)->viewport();
        QMouseEvent e(type, QPointF(at), viewport->mapToGlobal(QPointF(at)), button, held, mods);
        QCoreApplication::sendEvent(viewport, &e);
    }

    CRecorder handler;
    CQtPlatform platform;  // after the handler: windows left open are abandoned first

private:
    IPlatformBackend* m_pPrevious;
};

TEST_F(QtWindowTest, CreationSendsCreateAndSizeAndDestructionDeletesTheWidget) {
    HWND hwnd = Create();
    ASSERT_NE(hwnd, nullptr);
    ASSERT_EQ(handler.Messages(), (std::vector<UINT>{WM_CREATE, WM_SIZE}));
    EXPECT_EQ(LOWORD(handler.log[1].lParam), 320);
    EXPECT_EQ(HIWORD(handler.log[1].lParam), 240);
    RECT rc;
    ASSERT_TRUE(GetClientRect(hwnd, &rc));
    EXPECT_EQ(rc, kRect);

    QPointer<QWidget> widget = QtWidgetFromHwnd(hwnd);
    ASSERT_TRUE(widget);
    EXPECT_FALSE(widget->isVisible());  // a top-level window waits for its host to show it
    DestroyWindow(hwnd);
    EXPECT_EQ(handler.Of(WM_DESTROY).size(), 1u);
    EXPECT_FALSE(widget);
    EXPECT_EQ(QtWidgetFromHwnd(hwnd), nullptr);
}

TEST_F(QtWindowTest, PostedMessagesArriveFromTheEventLoopInOrder) {
    HWND hwnd = Create();
    std::vector<LPARAM> seen;
    handler.react = [&](HWND h, UINT msg, WPARAM, LPARAM lp) -> LRESULT {
        if (msg != WM_USER + 1) return 0;
        seen.push_back(lp);
        if (lp == 1) PostMessage(h, WM_USER + 1, 0, 3);  // waits for a later turn
        return 0;
    };
    PostMessage(hwnd, WM_USER + 1, 0, 1);
    PostMessage(hwnd, WM_USER + 1, 0, 2);
    EXPECT_TRUE(seen.empty());
    ASSERT_TRUE(ProcessUntil([&] { return seen.size() == 3; }));
    EXPECT_EQ(seen, (std::vector<LPARAM>{1, 2, 3}));
}

TEST_F(QtWindowTest, TimersSendWmTimerUntilKilled) {
    HWND hwnd = Create();
    ASSERT_EQ(SetTimer(hwnd, 7, 5), 7u);
    ASSERT_TRUE(ProcessUntil([&] { return handler.Of(WM_TIMER).size() >= 2; }));
    EXPECT_EQ(handler.Of(WM_TIMER)[0].wParam, 7u);
    ASSERT_TRUE(KillTimer(hwnd, 7));
    const size_t fired = handler.Of(WM_TIMER).size();
    QThread::msleep(30);
    ProcessPending();
    EXPECT_EQ(handler.Of(WM_TIMER).size(), fired);
}

TEST_F(QtWindowTest, ResizingTheWidgetSendsWmSize) {
    HWND hwnd = Create();
    QWidget* widget = QtWidgetFromHwnd(hwnd);
    widget->show();
    ProcessPending();
    handler.log.clear();
    widget->resize(400, 300);
    ProcessPending();
    ASSERT_EQ(handler.Of(WM_SIZE).size(), 1u);
    EXPECT_EQ(LOWORD(handler.Of(WM_SIZE)[0].lParam), 400);
    EXPECT_EQ(HIWORD(handler.Of(WM_SIZE)[0].lParam), 300);
}

TEST_F(QtWindowTest, ChildWindowFillsItsParentAndEndsWithIt) {
    auto parent = std::make_unique<QWidget>();
    parent->resize(200, 150);
    HWND hwnd = CreateQtChildWindow(&handler, parent.get());
    ASSERT_NE(hwnd, nullptr);
    EXPECT_EQ(QtWidgetFromHwnd(hwnd)->parentWidget(), parent.get());
    RECT rc;
    GetClientRect(hwnd, &rc);
    EXPECT_EQ(rc, (RECT{0, 0, 200, 150}));

    CRecorder childHandler;  // a window inside the first one lives in its viewport
    HWND inner = CreateWindowFor(&childHandler, hwnd, RECT{10, 10, 50, 30});
    ASSERT_NE(inner, nullptr);
    EXPECT_EQ(QtWidgetFromHwnd(inner)->parentWidget(), Area(hwnd)->viewport());

    parent.reset();  // the host deletes its widgets: both windows end, with WM_DESTROY
    EXPECT_FALSE(IsWindow(hwnd));
    EXPECT_FALSE(IsWindow(inner));
    EXPECT_EQ(handler.Of(WM_DESTROY).size(), 1u);
    EXPECT_EQ(childHandler.Of(WM_DESTROY).size(), 1u);
}

TEST_F(QtWindowTest, KeysBecomePretranslateKeyDownAndChar) {
    HWND hwnd = Create();
    handler.log.clear();
    Key(hwnd, Qt::Key_A, Qt::ShiftModifier, "A");
    ASSERT_EQ(handler.Messages(), (std::vector<UINT>{WM_PRETRANSLATEKEY, WM_KEYDOWN, WM_CHAR}));
    EXPECT_EQ(handler.log[1].wParam, WPARAM('A'));
    EXPECT_EQ(handler.log[2].wParam, WPARAM('A'));

    handler.log.clear();
    Key(hwnd, Qt::Key_A, Qt::ControlModifier, "a");
    Key(hwnd, Qt::Key_Delete, Qt::NoModifier, "\x7f");
    Key(hwnd, Qt::Key_BraceRight, Qt::ControlModifier | Qt::ShiftModifier, "}");
    Key(hwnd, Qt::Key_F5, Qt::NoModifier, "");
    auto downs = handler.Of(WM_KEYDOWN);
    auto chars = handler.Of(WM_CHAR);
    ASSERT_EQ(downs.size(), 4u);
    EXPECT_EQ(downs[1].wParam, WPARAM(VK_DELETE));
    EXPECT_EQ(downs[2].wParam, WPARAM(VK_OEM_6));
    EXPECT_EQ(downs[3].wParam, WPARAM(VK_F1 + 4));
    // Ctrl+A is character 1; Delete and F5 type nothing, nor does Ctrl with a sign (a command key).
    ASSERT_EQ(chars.size(), 1u);
    EXPECT_EQ(chars[0].wParam, 1u);
}

TEST_F(QtWindowTest, ClaimedKeyGoesNoFurther) {
    HWND hwnd = Create();
    handler.react = [](HWND, UINT msg, WPARAM wp, LPARAM) -> LRESULT {
        return msg == WM_PRETRANSLATEKEY && wp == WPARAM(VK_BACK) ? 1 : 0;
    };
    handler.log.clear();
    Key(hwnd, Qt::Key_Backspace, Qt::NoModifier, "\b");
    EXPECT_EQ(handler.Messages(), (std::vector<UINT>{WM_PRETRANSLATEKEY}));

    // Asked ahead of the host's shortcuts, a claimed key overrides them; the press that follows
    // is not offered a second time, and neither is an unclaimed one.
    for (int key : {Qt::Key_Backspace, Qt::Key_F2}) {
        handler.log.clear();
        QKeyEvent query(QEvent::ShortcutOverride, key, Qt::NoModifier);
        query.setAccepted(false);
        QCoreApplication::sendEvent(QtWidgetFromHwnd(hwnd), &query);
        EXPECT_EQ(query.isAccepted(), key == Qt::Key_Backspace);
        Key(hwnd, key, Qt::NoModifier, "");
        EXPECT_EQ(handler.Of(WM_PRETRANSLATEKEY).size(), 1u);
        EXPECT_EQ(handler.Of(WM_KEYDOWN).size(), key == Qt::Key_Backspace ? 0u : 1u);
    }
}

TEST_F(QtWindowTest, TextArrivesInTheProcessCodePage) {
    HWND hwnd = Create();
    handler.log.clear();
    Key(hwnd, Qt::Key_Eacute, Qt::NoModifier, "é€");
    auto chars = handler.Of(WM_CHAR);
    ASSERT_EQ(chars.size(), 2u);
    EXPECT_EQ(chars[0].wParam, 0xE9u);
    EXPECT_EQ(chars[1].wParam, 0x80u);

    handler.log.clear();
    Key(hwnd, 0, Qt::NoModifier, "日");  // 1252 has no such character: refused
    EXPECT_TRUE(handler.Of(WM_CHAR).empty());
    EXPECT_TRUE(handler.Of(WM_IME_CHAR).empty());

    ASSERT_TRUE(SetProcessCodePage(932));
    Key(hwnd, 0, Qt::NoModifier, "日a");
    SetProcessCodePage(1252);
    ASSERT_EQ(handler.Of(WM_IME_CHAR).size(), 1u);
    EXPECT_EQ(handler.Of(WM_IME_CHAR)[0].wParam, 0x93FAu);
    ASSERT_EQ(handler.Of(WM_CHAR).size(), 1u);
    EXPECT_EQ(handler.Of(WM_CHAR)[0].wParam, WPARAM('a'));
}

TEST_F(QtWindowTest, MouseMessagesCarryKeysAndClientPoints) {
    HWND hwnd = Create();
    handler.log.clear();
    Mouse(hwnd, QEvent::MouseButtonPress, {10, 20}, Qt::LeftButton, Qt::LeftButton, Qt::ShiftModifier);
    Mouse(hwnd, QEvent::MouseMove, {15, 25}, Qt::NoButton, Qt::LeftButton);
    Mouse(hwnd, QEvent::MouseButtonRelease, {15, 25}, Qt::LeftButton, Qt::NoButton);
    Mouse(hwnd, QEvent::MouseButtonDblClick, {15, 25}, Qt::LeftButton, Qt::LeftButton);
    Mouse(hwnd, QEvent::MouseButtonPress, {1, 2}, Qt::RightButton, Qt::RightButton, Qt::ControlModifier);
    ASSERT_EQ(handler.Messages(),
              (std::vector<UINT>{WM_LBUTTONDOWN, WM_SETCURSOR, WM_MOUSEMOVE, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_RBUTTONDOWN}));
    EXPECT_EQ(handler.log[0].wParam, MK_LBUTTON | MK_SHIFT);
    EXPECT_EQ(GET_X_LPARAM(handler.log[0].lParam), 10);
    EXPECT_EQ(GET_Y_LPARAM(handler.log[0].lParam), 20);
    EXPECT_EQ(handler.log[1].lParam, MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));  // the cursor is asked for first
    EXPECT_EQ(handler.log[2].wParam, MK_LBUTTON);
    EXPECT_EQ(handler.log[3].wParam, 0u);  // the keys after the release
    EXPECT_EQ(handler.log[5].wParam, MK_RBUTTON | MK_CONTROL);
}

TEST_F(QtWindowTest, WheelGoesToTheWindowAndScrollsByLinesWhenLeftToTheDefault) {
    HWND hwnd = Create();
    LRESULT answer = 0;
    handler.react = [&](HWND, UINT msg, WPARAM, LPARAM) -> LRESULT { return msg == WM_MOUSEWHEEL ? answer : 0; };
    QWidget* viewport = Area(hwnd)->viewport();
    auto wheel = [&](int delta) {
        QWheelEvent e(QPointF(5, 5), viewport->mapToGlobal(QPointF(5, 5)), QPoint(), QPoint(0, delta),
                      Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(viewport, &e);
    };
    handler.log.clear();
    wheel(120);
    ASSERT_EQ(handler.Of(WM_MOUSEWHEEL).size(), 1u);
    EXPECT_EQ(GET_WHEEL_DELTA_WPARAM(handler.log[0].wParam), 120);
    EXPECT_EQ(GET_KEYSTATE_WPARAM(handler.log[0].wParam), int(MK_CONTROL));
    EXPECT_TRUE(handler.Of(WM_VSCROLL).empty());  // handled: nothing more

    answer = 1;
    wheel(-120);  // the default scrolls only a window whose vertical bar can move
    EXPECT_TRUE(handler.Of(WM_VSCROLL).empty());
    SCROLLINFO si;
    si.fMask = SIF_ALL | SIF_DISABLENOSCROLL;
    si.nMax = 99;
    si.nPage = 10;
    SetScrollInfo(hwnd, SB_VERT, &si, TRUE);
    wheel(-60);  // half a notch: no whole step yet
    EXPECT_TRUE(handler.Of(WM_VSCROLL).empty());
    wheel(-60);
    auto scrolls = handler.Of(WM_VSCROLL);
    ASSERT_EQ(scrolls.size(), 3u);
    EXPECT_EQ(LOWORD(scrolls[0].wParam), SB_LINEDOWN);

    si.nPage = 100;  // disabled: nothing to scroll
    SetScrollInfo(hwnd, SB_VERT, &si, TRUE);
    wheel(-120);
    EXPECT_EQ(handler.Of(WM_VSCROLL).size(), 3u);
}

TEST_F(QtWindowTest, ScrollBarActionsBecomeScrollMessagesWithoutMovingTheBar) {
    HWND hwnd = Create();
    QScrollBar* bar = Area(hwnd)->verticalScrollBar();
    bar->setRange(0, 100);
    bar->setValue(10);
    handler.log.clear();
    bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    bar->triggerAction(QAbstractSlider::SliderPageStepSub);
    Area(hwnd)->horizontalScrollBar()->setRange(0, 50);
    Area(hwnd)->horizontalScrollBar()->triggerAction(QAbstractSlider::SliderToMaximum);
    auto v = handler.Of(WM_VSCROLL);
    ASSERT_EQ(v.size(), 2u);
    EXPECT_EQ(LOWORD(v[0].wParam), SB_LINEDOWN);
    EXPECT_EQ(LOWORD(v[1].wParam), SB_PAGEUP);
    EXPECT_EQ(bar->value(), 10);  // the window decides where the bar stands
    ASSERT_EQ(handler.Of(WM_HSCROLL).size(), 1u);
    EXPECT_EQ(LOWORD(handler.Of(WM_HSCROLL)[0].wParam), SB_RIGHT);
}

TEST_F(QtWindowTest, UpdatePaintsWhatIsInvalidAtOnceAndTheEventLoopPaintsTheRest) {
    HWND hwnd = Create();
    QtWidgetFromHwnd(hwnd)->show();
    ProcessPending();
    std::vector<RECT> painted;
    handler.react = [&](HWND h, UINT msg, WPARAM, LPARAM) -> LRESULT {
        if (msg != WM_PAINT) return 0;
        PAINTSTRUCT ps;
        if (BeginPaint(h, &ps)) painted.push_back(ps.rcPaint);
        EndPaint(h, &ps);
        return 0;
    };
    RECT band{0, 40, 320, 60};
    InvalidateRect(hwnd, &band, FALSE);
    UpdateWindow(hwnd);
    ASSERT_EQ(painted.size(), 1u);
    EXPECT_EQ(painted[0], band);

    handler.log.clear();
    InvalidateRect(hwnd, nullptr, FALSE);
    ASSERT_TRUE(ProcessUntil([&] { return !handler.Of(WM_PAINT).empty(); }));
    EXPECT_EQ(handler.Of(WM_PAINT)[0].wParam, 0u);
    EXPECT_EQ(painted.back(), kRect);
}

TEST_F(QtWindowTest, WindowDestroyedByItsOwnKeyHandlerIsSafe) {
    HWND hwnd = Create();
    QPointer<QWidget> widget = QtWidgetFromHwnd(hwnd);
    handler.react = [](HWND h, UINT msg, WPARAM, LPARAM) -> LRESULT {
        if (msg == WM_KEYDOWN) DestroyWindow(h);
        return 0;
    };
    Key(hwnd, Qt::Key_Escape, Qt::NoModifier, "\x1b");
    EXPECT_FALSE(IsWindow(hwnd));
    EXPECT_TRUE(handler.Of(WM_CHAR).empty());  // nothing after the end
    ASSERT_TRUE(ProcessUntil([&] { return widget.isNull(); }));
}

TEST_F(QtWindowTest, FocusMessagesFollowQtFocusAndUnclaimedTabMovesIt) {
    QWidget host;
    host.resize(400, 300);
    HWND hwnd = CreateQtChildWindow(&handler, &host, RECT{0, 0, 200, 300});
    QLineEdit* neighbour = new QLineEdit(&host);
    neighbour->setGeometry(200, 0, 200, 30);
    host.show();
    host.activateWindow();
    ASSERT_TRUE(ProcessUntil([&] { return host.isActiveWindow(); }));
    neighbour->setFocus();
    ASSERT_TRUE(ProcessUntil([&] { return neighbour->hasFocus(); }));

    handler.log.clear();
    EXPECT_EQ(SetFocus(hwnd), nullptr);
    ASSERT_TRUE(ProcessUntil([&] { return GetFocus() == hwnd; }));
    EXPECT_EQ(handler.Of(WM_SETFOCUS).size(), 1u);

    handler.log.clear();
    Key(hwnd, Qt::Key_Tab, Qt::NoModifier, "\t");
    ASSERT_TRUE(ProcessUntil([&] { return neighbour->hasFocus(); }));
    EXPECT_EQ(handler.Messages(), (std::vector<UINT>{WM_PRETRANSLATEKEY, WM_KILLFOCUS}));
    EXPECT_EQ(GetFocus(), nullptr);
}

TEST_F(QtWindowTest, ServicesComeFromQt) {
    const DWORD first = GetTickCount();
    QThread::msleep(20);
    EXPECT_GE(GetTickCount() - first, 15u);
    EXPECT_EQ(GetKeyState(VK_LBUTTON), 0);
    EXPECT_TRUE(MessageBeep(0));

    SetPlatformBackend(nullptr);  // a widget parent needs the Qt platform installed
    QWidget parent;
    EXPECT_EQ(CreateQtChildWindow(&handler, &parent), nullptr);
    SetPlatformBackend(&platform);
}

}  // namespace
