// Paints that go straight into the window's backing store, against a model of the window: in
// random steps, a window whose handler paints coloured cells of a scrolling page is invalidated,
// painted now or by the event loop, scrolled, drawn on outside paints, given a moving caret,
// hidden and shown, shrunk and grown. After each step what the store shows and the surface both equal the model.
// And the control's own page, painted into the store, equals the same painted on the surface.
#include <gtest/gtest.h>

#include <QBackingStore>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QStyleHints>
#include <QWidget>
#include <random>

#include "htmldoc/htmldocument.h"
#include "platform/qt/qtcontrolwidget.h"
#include "platform/qt/qtplatform.h"
#include "platform/qt/qtwindow.h"
#include "platform/window/caret.h"
#include "platform/window/paint.h"
#include "tests/platform/recorder.h"
#include "src/view/zentrelctrl.h"
#include "tests/qt/processuntil.h"
#include "tests/qt/qtviewfixture.h"

namespace {

constexpr int kWidth = 160, kHeight = 120, kLine = 10, kCell = 20, kLines = 64;

// The page: cells of kCell by kLine pixels, each coloured by its line, column and the number of
// times its line changed.
class CPage {
public:
    QRgb Pixel(int x, int y) const {
        const int line = (y + m_nTop) / kLine, column = x / kCell, g = m_generation[line];
        return qRgb((line * 37 + g * 71) & 255, (column * 53 + g * 13) & 255, (line * 11) & 255);
    }
    // Paints the cells of the window that touch `rc`.
    void Paint(CDC& dc, const RECT& rc) const {
        for (int y = rc.top - (rc.top + m_nTop) % kLine; y < rc.bottom; y += kLine)
            for (int x = rc.left - rc.left % kCell; x < rc.right; x += kCell) {
                const QRgb c = Pixel(x, y);
                dc.FillSolidRect(RECT{x, y, x + kCell, y + kLine}, static_cast<COLORREF>(qRed(c) | qGreen(c) << 8 | qBlue(c) << 16));
            }
    }
    RECT LineRect(int line) const { return RECT{0, line * kLine - m_nTop, kWidth, (line + 1) * kLine - m_nTop}; }
    void Change(int line) { ++m_generation[line]; }
    int Top() const { return m_nTop; }
    void Scroll(int lines) { m_nTop += lines * kLine; }

private:
    int m_nTop = 20 * kLine;
    int m_generation[kLines] = {};
};

class StorePaint : public ::testing::Test {
protected:
    StorePaint() : m_pPrevious(SetPlatformBackend(&platform)) {
        m_nFlash = QGuiApplication::styleHints()->cursorFlashTime();
        QGuiApplication::styleHints()->setCursorFlashTime(0);  // a caret that stays on
    }
    ~StorePaint() override {
        QGuiApplication::styleHints()->setCursorFlashTime(m_nFlash);
        SetPlatformBackend(m_pPrevious);
        for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
    }

    // Where the pixels that the store shows (with the caret inverted over them) differ from the
    // page; with `surface`, the surface's too, which takes back all that only the store held.
    // Gives the first difference as text, empty when there is none.
    std::string Compare(CQtControlWidget* widget, const CPage& page, const QRect& caret, bool surface) {
        QWidget* view = widget->viewport();
        const auto* store = static_cast<const QImage*>(view->window()->backingStore()->paintDevice());
        const QPoint at = view->mapTo(view->window(), QPoint(0, 0));
        const QRect shownCaret = widget->CaretVisible() ? caret : QRect();
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                const QRgb want = page.Pixel(x, y);
                const QRgb shown = shownCaret.contains(x, y) ? ~want | 0xFF000000 : want;
                if (store->pixel(at.x() + x, at.y() + y) != shown) return "store at " + Spot(x, y);
                if (surface && widget->Surface().pixel(x, y) != want) return "surface at " + Spot(x, y);
            }
        return {};
    }
    static std::string Spot(int x, int y) { return std::to_string(x) + "," + std::to_string(y); }

    CQtPlatform platform;
    CRecorder handler;
    IPlatformBackend* m_pPrevious;
    int m_nFlash = 0;
};

TEST_F(StorePaint, StoreAndSurfaceShowTheWindowThroughPaintsScrollsContextsAndTheCaret) {
    CPage page;
    handler.react = [&](HWND hwnd, UINT message, WPARAM, LPARAM) -> LRESULT {
        if (message != WM_PAINT) return 0;
        PAINTSTRUCT ps;
        if (CDC* dc = BeginPaint(hwnd, &ps)) page.Paint(*dc, ps.rcPaint);
        EndPaint(hwnd, &ps);
        return 0;
    };
    // A child of a host, so that it stands away from the store's origin.
    QWidget host;
    host.resize(kWidth + 30, kHeight + 20);
    HWND hwnd = CreateQtChildWindow(&handler, &host, RECT{20, 10, 20 + kWidth, 10 + kHeight});
    auto* widget = static_cast<CQtControlWidget*>(QtWidgetFromHwnd(hwnd));
    host.show();
    host.activateWindow();
    ASSERT_TRUE(ProcessUntil([&] { return host.isActiveWindow(); }));
    const auto focus = [&] {
        SetFocus(hwnd);
        return ProcessUntil([&] { return widget->hasFocus(); });
    };
    ASSERT_TRUE(focus());
    CreateCaret(hwnd, nullptr, 2, 12);
    QRect caret;  // where the caret shows, empty while hidden
    std::mt19937 random(18);
    const auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    for (int step = 0; step < 300; ++step) {
        const int op = pick(8);
        const int line = page.Top() / kLine + pick(kHeight / kLine);
        if (op == 0 || op == 1) {
            // A line changes; the window paints it at once or when Qt asks.
            page.Change(line);
            const RECT rc = page.LineRect(line);
            InvalidateRect(hwnd, &rc, FALSE);
            if (op == 0) UpdateWindow(hwnd);
        } else if (op == 2) {
            InvalidateRect(hwnd, nullptr, FALSE);
            UpdateWindow(hwnd);
        } else if (op == 3 && page.Top() >= 3 * kLine && page.Top() + kHeight < (kLines - 3) * kLine) {
            const int lines = pick(5) - 2;
            page.Scroll(lines);
            ScrollWindow(hwnd, 0, -lines * kLine, nullptr, nullptr);
            UpdateWindow(hwnd);
        } else if (op == 4) {
            // A line changes and is drawn outside a paint.
            page.Change(line);
            CDC* dc = GetDC(hwnd);
            ASSERT_NE(dc, nullptr);
            page.Paint(*dc, page.LineRect(line));
            ReleaseDC(hwnd, dc);
        } else if (op == 5) {
            const POINT at{pick(kWidth - 2), pick(kHeight - 12)};
            SetCaretPos(at.x, at.y);
            if (caret.isEmpty() != (pick(2) == 0)) {
                if (caret.isEmpty())
                    ShowCaret(hwnd);
                else
                    HideCaret(hwnd);
                caret = caret.isEmpty() ? QRect(0, 0, 2, 12) : QRect();
            }
            if (!caret.isEmpty()) caret.moveTo(at.x, at.y);
        } else if (op == 6) {
            widget->hide();
            widget->show();
            ASSERT_TRUE(focus());
        } else if (op == 7) {
            // The window shrinks and grows back, with what was invalid and stale reaching past it.
            widget->resize(kWidth - pick(60), kHeight - pick(60));
            for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
            widget->resize(kWidth, kHeight);
        }
        ASSERT_TRUE(ProcessUntil([&] { return !GetUpdateRect(hwnd, nullptr, FALSE); })) << "step " << step;
        for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
        // The surface is read now and then only, so that what only the store holds lasts for
        // some steps.
        ASSERT_EQ(Compare(widget, page, caret, step % 7 == 6), "") << "step " << step << ", op " << op;
    }
    DestroyCaret();
    DestroyWindow(hwnd);
}

// The viewport's pixels in the store (none before the window is exposed).
QImage StorePixels(HWND hwnd) {
    QWidget* view = static_cast<CQtControlWidget*>(QtWidgetFromHwnd(hwnd))->viewport();
    const auto* store = static_cast<const QImage*>(view->window()->backingStore()->paintDevice());
    return store->copy(QRect(view->mapTo(view->window(), QPoint(0, 0)), view->size()));
}

// The same once what is invalid is painted.
QImage StoreShot(HWND hwnd) {
    UpdateWindow(hwnd);
    return StorePixels(hwnd);
}

using StorePaintView = QtViewFixture;

TEST_F(StorePaintView, APagePaintedIntoTheStoreEqualsThePagePaintedOnTheSurface) {
    std::string text;
    for (int i = 0; i < 40; ++i)
        text += "<p class=\"c" + std::to_string(i) + "\">\tsome &amp; text\t" + std::string(i % 9 * 7, 'x') + "</p>\r\n";
    OpenText(text, 420, 260);
    ASSERT_TRUE(ProcessUntil([&] { return !StorePixels(hwnd).isNull(); }));
    ctrl->SetOption(OPT_WORDWRAP, FALSE);
    for (DWORD option : {OPT_DISPLAYALL, OPT_SHOWLINENUMBER, OPT_BOOKMARKVISIBLE, OPT_COLLAPSEBLOCKENABLE})
        ctrl->SetOption(option, TRUE);
    const auto start = [&](long row) { return ctrl->Lines().GetLineStart(row); };
    ctrl->SetSelection(start(3), start(3));
    ctrl->ToggleNumberedBookmark(2);
    ASSERT_TRUE(ctrl->CollapseRange(start(4), start(7)));
    ctrl->SetSelection(start(2) + 5, start(9) + 3);
    ctrl->ScrollTo(1, 19);
    // The first paints go to the surface, until the store shows the window's pixels.
    QImage inStore;
    for (int i = 0; i < 3; ++i) {
        InvalidateRect(hwnd, nullptr, FALSE);
        inStore = StoreShot(hwnd);
    }
    // A child widget keeps the paints on the surface.
    QWidget child(static_cast<CQtControlWidget*>(QtWidgetFromHwnd(hwnd))->viewport());
    child.hide();
    InvalidateRect(hwnd, nullptr, FALSE);
    const QImage onSurface = StoreShot(hwnd);
    ASSERT_EQ(inStore.size(), onSurface.size());
    int differing = 0, white = 0;
    for (int y = 0; y < inStore.height(); ++y)
        for (int x = 0; x < inStore.width(); ++x) {
            differing += inStore.pixel(x, y) != onSurface.pixel(x, y);
            white += inStore.pixel(x, y) == qRgb(255, 255, 255);
        }
    EXPECT_EQ(differing, 0);
    EXPECT_LT(white, inStore.width() * inStore.height() * 9 / 10);  // a page, not a blank window
}

}  // namespace
