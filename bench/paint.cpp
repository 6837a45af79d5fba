// The paint path alone, for profiling it: the view in its 1000 x 800 window over a generated
// page of the size given in megabytes (default 10), wholly classified and shown from its middle,
// repainted whole again and again:
//   - a full repaint of the window, with word wrap on (ms, median and p99);
//   - the same with a selection over half the window;
//   - a copy of a frame of the window's size from one image to another, the floor a full repaint
//     cannot go below (ms, median), and the repaint's ratio to it.
// Usage: bench_paint [MEGABYTES [REPAINTS]]   (default 10 and 1000)
#include <QImage>
#include <cstdlib>
#include <cstring>
#include <string>

#include "bench/htmlgen.h"
#include "bench/viewwindow.h"

namespace {

using namespace bench;

double MedianRepaint(CView& view, int repaints, const std::string& name) {
    const std::vector<double> millis = RepaintTimes(view, repaints);
    PrintMedianAndP99(name, millis, "ms");
    return Percentile(millis, 0.5);
}

double MedianFrameCopy(int repaints) {
    QImage from(kWidth, kHeight, QImage::Format_RGB32), to(kWidth, kHeight, QImage::Format_RGB32);
    from.fill(Qt::white);
    to.fill(Qt::black);
    std::vector<double> millis;
    for (int i = 0; i < repaints; ++i) {
        const auto t0 = Clock::now();
        for (int y = 0; y < kHeight; ++y) std::memcpy(to.scanLine(y), from.constScanLine(y), from.bytesPerLine());
        millis.push_back(1e3 * SecondsSince(t0));
    }
    const double median = Percentile(millis, 0.5);
    Print("frame_copy_median", median, "ms");
    return median;
}

void MeasurePaint(double megabytes, int repaints) {
    const std::string tag = std::to_string(static_cast<int>(megabytes)) + "mb";
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText(htmlgen::GenerateHtml(static_cast<size_t>(megabytes * 1e6)));
    doc->Syntax().ClassifyTo(doc->GetLength());
    CView view(doc.Get(), true);
    const long mid = doc->GetLength() / 2;
    view->SetSelection(mid, mid);
    view->ScrollRangeIntoView(mid, mid);
    view.RepaintAll();
    const double repaint = MedianRepaint(view, repaints, "paint_full_" + tag);
    // From the top of the window to half way down.
    const long top = view->PositionFromClientPoint(0, 0);
    const long half = view->PositionFromClientPoint(kWidth / 2, kHeight / 2);
    view->SetSelection(top, half);
    MedianRepaint(view, repaints, "paint_full_selection_" + tag);
    const double floor = MedianFrameCopy(repaints);
    if (floor > 0) Print("paint_full_over_frame_copy_" + tag, repaint / floor, "x");
}

}  // namespace

int main(int argc, char** argv) {
    const double megabytes = argc > 1 ? std::atof(argv[1]) : 10;
    const int repaints = argc > 2 ? std::atoi(argv[2]) : 1000;
    // The sizes of RunViewBenchmark are ours to read here: it is given no arguments.
    char* none[] = {argv[0], nullptr};
    return RunViewBenchmark(1, none, [&](const std::vector<double>&) { MeasurePaint(megabytes, repaints); }, nullptr);
}
