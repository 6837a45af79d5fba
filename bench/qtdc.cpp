// The Qt device context alone, on a synthetic full view: a 1000 x 800 window whose WM_PAINT
// fills the background and draws 50 lines of 15 runs of about 8 characters of Liberation Serif
// (18-pixel cells), changing colour and font between runs, into an off-screen bitmap that is
// then copied to the window; UpdateWindow paints and presents. Runs on QT_QPA_PLATFORM=offscreen
// unless another platform is set. Prints "name value unit" lines.
// Usage: bench_qtdc [FRAMES]   (default 300)
#include <QApplication>
#include <QWidget>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "platform/qt/qtplatform.h"
#include "platform/qt/qtwindow.h"
#include "platform/window/paint.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kWidth = 1000;
constexpr int kHeight = 800;
constexpr int kLines = 50;
constexpr int kRunsPerLine = 15;
constexpr int kLineHeight = 19;  // the cell height plus one, as the control spaces lines
constexpr LONG kCell = 18;

void PrintMedianAndP99(const std::string& name, std::vector<double> ms) {
    std::sort(ms.begin(), ms.end());
    std::printf("%s_median %.4f ms\n", name.c_str(), ms[ms.size() / 2]);
    std::printf("%s_p99 %.4f ms\n", name.c_str(), ms[std::min(ms.size() - 1, ms.size() * 99 / 100)]);
}

class CSyntheticView : public IMessageHandler {
public:
    CSyntheticView() {
        for (int i = 0; i < 2; ++i) {
            LOGFONTA lf;
            lf.lfHeight = kCell;
            lf.lfWeight = i ? 700 : 400;
            std::strcpy(lf.lfFaceName, "Times New Roman");
            m_fonts[i].CreateFontIndirect(&lf);
        }
        const char* words[] = {"<table ", "width=\"", "100%\" ", "border", "=\"0\">  ", "&nbsp;x ", "</td>  "};
        for (int r = 0; r < kRunsPerLine; ++r) m_runs.push_back(words[r % 7]);
    }

    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM, LPARAM) override {
        if (message != WM_PAINT) return 0;
        PAINTSTRUCT ps;
        CDC* dc = BeginPaint(hwnd, &ps);
        if (dc) Paint(dc, ps.rcPaint);
        EndPaint(hwnd, &ps);
        return 0;
    }

private:
    // As the control does: a bitmap of the whole view, a memory context, the lines that meet
    // the update rectangle, and a copy of that rectangle back.
    void Paint(CDC* dc, const RECT& rc) {
        CBitmap bitmap;
        if (!dc->CreateCompatibleBitmap(&bitmap, kWidth, kHeight)) return;
        std::unique_ptr<CDC> mem = dc->CreateCompatibleDC();
        mem->SelectObject(&bitmap);
        mem->SetTextAlign(TA_BASELINE);
        mem->FillSolidRect(rc, 0xFFFFFF);
        const int first = rc.top / kLineHeight;
        const int last = std::min(kLines - 1, (rc.bottom - 1) / kLineHeight);
        for (int line = first; line <= last; ++line) PaintLine(mem.get(), line, rc);
        dc->BitBlt(rc.left, rc.top, rc.right - rc.left, rc.bottom - rc.top, mem.get(), rc.left, rc.top, SRCCOPY);
    }

    void PaintLine(CDC* dc, int line, const RECT& rc) {
        const int top = line * kLineHeight;
        const int baseline = top + 15;
        int x = 40;
        for (int r = 0; r < kRunsPerLine && x < rc.right; ++r) {
            const std::string& run = m_runs[(r + line) % kRunsPerLine];
            dc->SelectObject(&m_fonts[(r + line) % 2]);
            dc->SetTextColor(kColours[r % 4]);
            dc->SetBkColor(r % 5 == 0 ? 0xFFE0E0 : 0xFFFFFF);
            const int cx = dc->GetTextExtent(run.data(), static_cast<int>(run.size())).cx;
            RECT cell{x, top, x + cx, top + kLineHeight};
            dc->ExtTextOut(x, baseline, ETO_OPAQUE | ETO_CLIPPED, &cell, run.data(), static_cast<UINT>(run.size()));
            x += cx;
        }
    }

    static constexpr COLORREF kColours[4] = {0x800000, 0x000080, 0x008000, 0x000000};
    CFont m_fonts[2];
    std::vector<std::string> m_runs;
};

double Frame(HWND hwnd, const RECT* rc) {
    const auto t0 = Clock::now();
    InvalidateRect(hwnd, rc, FALSE);
    UpdateWindow(hwnd);
    return std::chrono::duration<double, std::milli>(Clock::now() - t0).count();
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int frames = argc > 1 ? std::max(10, std::atoi(argv[1])) : 300;
    CQtPlatform platform;
    SetPlatformBackend(&platform);
    {
        CSyntheticView view;
        HWND hwnd = CreateWindowFor(&view, nullptr, RECT{0, 0, kWidth, kHeight});
        QtWidgetFromHwnd(hwnd)->show();
        QApplication::processEvents();

        std::vector<double> full, line;
        for (int i = 0; i < 20; ++i) Frame(hwnd, nullptr);  // warm the glyph caches
        for (int i = 0; i < frames; ++i) full.push_back(Frame(hwnd, nullptr));
        for (int i = 0; i < frames; ++i) {
            const LONG top = (i % kLines) * kLineHeight % kHeight;
            RECT band{0, top, kWidth, top + kLineHeight};
            line.push_back(Frame(hwnd, &band));
        }
        PrintMedianAndP99("qtdc_full_view", full);
        PrintMedianAndP99("qtdc_one_line", line);
        DestroyWindow(hwnd);
    }
    SetPlatformBackend(nullptr);
    return 0;
}
