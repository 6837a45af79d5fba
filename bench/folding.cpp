// Folding and bookmarks on generated HTML of each size given in megabytes (default 100), in a
// 1000 x 800 Qt window (offscreen without a display), word wrap on:
//   - folding a block of half the document and opening it again, each with its relayout and
//     repaint (ms);
//   - folding 10,000 blocks and setting 10,000 bookmarks, one by one, each after a move of the
//     selection to its line (ms), and the collapse and toggle calls alone (ms);
//   - a burst of typed characters in the middle, each through the whole path up to the repaint,
//     first with no blocks and bookmarks, then with 10,000 folded blocks and 10,000 bookmarks
//     spread over the text (us per character, median and p99);
//   - a repaint of the whole window over rows that are folded and bookmarked (ms, median).
// Usage: bench_folding [MEGABYTES...]
#include <QApplication>
#include <string>
#include <vector>

#include "bench/benchtools.h"
#include "bench/htmlgen.h"
#include "bench/viewwindow.h"
#include "platform/qt/qtplatform.h"

namespace {

using namespace bench;

constexpr int kBurst = 3000;
constexpr long kMarks = 10000;
constexpr int kRepaints = 50;

long LineStart(CHtmlDocument* doc, long line) {
    long pos = 0;
    doc->GetTextLineStart(line, &pos);
    return pos;
}

long LineCount(CHtmlDocument* doc) {
    long last = 0;
    doc->GetTextLine(doc->GetLength(), &last);
    return last + 1;
}

void MeasureFoldHalf(CView& view, CHtmlDocument* doc, const std::string& tag) {
    const long lines = LineCount(doc);
    const long lo = LineStart(doc, lines / 4), hi = LineStart(doc, lines / 4 + lines / 2);
    view->SetSelection(lo, lo);
    view.RepaintAll();
    auto t0 = Clock::now();
    view->CollapseBlock(lo, hi, TRUE);
    UpdateWindow(view.Hwnd());
    Print("fold_half_" + tag, SecondsSince(t0) * 1e3, "ms");
    t0 = Clock::now();
    view->ExpandBlocks(lo, hi, TRUE);
    UpdateWindow(view.Hwnd());
    Print("unfold_half_" + tag, SecondsSince(t0) * 1e3, "ms");
}

// Types at the start of the text line in the middle of the document, then undoes the burst, so
// that each burst types into the same text.
void MeasureTyping(CView& view, CHtmlDocument* doc, const std::string& name) {
    long pos = LineStart(doc, LineCount(doc) / 2), blockStart, blockEnd;
    if (view->FindCollapse(pos, &blockStart, &blockEnd)) pos = blockEnd;
    view->SetSelection(pos, pos);
    view->ScrollCaretIntoView();
    UpdateWindow(view.Hwnd());
    const long length = doc->GetLength();
    PrintMedianAndP99(name, TypeBurst(view, kBurst), "us");
    long caret = 0;
    while (doc->GetLength() > length && SUCCEEDED(doc->Undo(nullptr, &caret))) {
    }
}

// 10,000 blocks of two text lines each and 10,000 bookmarks on the lines between them, evenly
// over the text. Gives the milliseconds of the collapse and toggle calls alone: the rest is the
// selection's move to each line, which scrolls the focused view there and repaints it at once.
double FoldAndMark(CView& view, CHtmlDocument* doc) {
    const long lines = LineCount(doc);
    const long stride = lines / (kMarks + 1);
    double calls = 0;
    for (long k = 0; k < kMarks; ++k) {
        const long line = k * stride;
        const long blockStart = LineStart(doc, line + 1), blockEnd = LineStart(doc, line + 3);
        auto t0 = Clock::now();
        view->CollapseBlock(blockStart, blockEnd, FALSE);
        calls += SecondsSince(t0);
        view->SetSelection(LineStart(doc, line), LineStart(doc, line));
        const std::string name = "mark " + std::to_string(k);
        t0 = Clock::now();
        view->ToggleBookmark(name);
        calls += SecondsSince(t0);
    }
    view->Reformat(FALSE);
    return calls * 1e3;
}

void MeasureRepaint(CView& view, const std::string& tag) {
    view->SetSelection(0, 0);
    view->ScrollCaretIntoView();
    std::vector<double> millis;
    for (int i = 0; i < kRepaints; ++i) {
        const auto t0 = Clock::now();
        view.RepaintAll();
        millis.push_back(SecondsSince(t0) * 1e3);
    }
    Print("repaint_folded_marked_" + tag + "_median", Percentile(millis, 0.5), "ms");
}

void MeasureSize(double megabytes) {
    const std::string tag = std::to_string(static_cast<int>(megabytes)) + "mb";
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText(htmlgen::GenerateHtml(static_cast<size_t>(megabytes * 1e6)));
    CView view(doc.Get(), true);
    MeasureFoldHalf(view, doc.Get(), tag);
    MeasureTyping(view, doc.Get(), "typing_plain_" + tag);
    const auto t0 = Clock::now();
    const double calls = FoldAndMark(view, doc.Get());
    Print("fold_and_mark_" + tag, SecondsSince(t0) * 1e3, "ms");
    Print("fold_and_mark_calls_" + tag, calls, "ms");
    Print("blocks_" + tag, view->CollapseRoot().CountNodes(), "count");
    Print("bookmarks_" + tag, view->Bookmarks().GetCount(), "count");
    MeasureTyping(view, doc.Get(), "typing_folded_marked_" + tag);
    MeasureRepaint(view, tag);
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<char*> args(argv, argv + argc);
    if (argc == 1) args.push_back(const_cast<char*>("100"));
    int count = static_cast<int>(args.size());
    return RunViewBenchmark(count, args.data(), [](const std::vector<double>& sizes) {
        for (double megabytes : sizes) MeasureSize(megabytes);
    }, nullptr);
}
