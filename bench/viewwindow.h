// The control in a top-level Qt window of its own, 1000 x 800 pixels, over a document, for the
// benchmarks that measure the view as a user sees it.
#pragma once
#include <QApplication>
#include <QWidget>
#include <cstdlib>
#include <functional>
#include <vector>

#include "bench/benchtools.h"
#include "htmldoc/htmldocument.h"
#include "platform/qt/qtplatform.h"
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

// Types `count` characters at the caret, words of 15 letters, each through the whole path up to
// its repaint; gives the microseconds of each.
inline std::vector<double> TypeBurst(CView& view, int count) {
    std::vector<double> micros;
    micros.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        const auto t0 = Clock::now();
        SendMessage(view.Hwnd(), WM_CHAR, i % 16 == 15 ? ' ' : 'a' + i % 26, 1);
        UpdateWindow(view.Hwnd());
        micros.push_back(MicrosSince(t0));
    }
    return micros;
}

// Repaints the whole window `count` times; gives the milliseconds of each.
inline std::vector<double> RepaintTimes(CView& view, int count) {
    std::vector<double> millis;
    millis.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        const auto t0 = Clock::now();
        view.RepaintAll();
        millis.push_back(1e3 * SecondsSince(t0));
    }
    return millis;
}

// Runs a view benchmark: a Qt application (offscreen without a display) with the Qt backend
// installed, the sizes from the command line in megabytes (default 1 10 100), our workloads and
// then, unless ZENTREL_BENCH_NO_PEER is set, the peer's.
inline int RunViewBenchmark(int argc, char** argv, const std::function<void(const std::vector<double>&)>& ours,
                            const std::function<void(const std::vector<double>&)>& peer) {
    if (!std::getenv("DISPLAY") && !std::getenv("QT_QPA_PLATFORM")) setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QApplication app(argc, argv);
    CQtPlatform platform;
    IPlatformBackend* previous = SetPlatformBackend(&platform);
    std::vector<double> sizes;
    for (int i = 1; i < argc; ++i) sizes.push_back(std::atof(argv[i]));
    if (sizes.empty()) sizes = {1, 10, 100};
    ours(sizes);
    if (peer && !std::getenv("ZENTREL_BENCH_NO_PEER")) peer(sizes);
    SetPlatformBackend(previous);
    return 0;
}

}  // namespace bench
