// Code completion on large documents, in a 1000 x 800 Qt window (offscreen without a display)
// over generated HTML of each size given in megabytes (default 1 10 100), the caret in the
// middle of the text:
//   - a typed '<' up to the picker shown and painted beside the caret (ms, median and p99);
//   - a typed letter up to the list filtered and the picker repainted (us, median and p99);
//   - the scan of AnalyzeTag at the end of a 1 MB attribute value in the middle of the text
//     (us, median), which reads the tag's stretch only and so keeps its time at every size.
// Usage: bench_picker [MEGABYTES...]
#include <QApplication>
#include <string>
#include <vector>

#include "bench/benchtools.h"
#include "bench/htmlgen.h"
#include "bench/viewwindow.h"
#include "src/picker/pickerwindow.h"

namespace {

using namespace bench;

constexpr int kRounds = 30;
constexpr size_t kValueBytes = 1'000'000;
constexpr int kScans = 20;

// Where a tag may start: just behind the first '>' from the middle of the text.
long MiddleOfText(const std::string& text) { return static_cast<long>(text.find('>', text.size() / 2) + 1); }

void PaintPicker(CView& view) {
    if (const CHTMLSyntaxPicker* picker = view->PickerIfAny()) UpdateWindow(picker->GetSafeHwnd());
    UpdateWindow(view.Hwnd());
}

void TypingFigures(double megabytes) {
    const std::string name = std::to_string(static_cast<int>(megabytes)) + "mb";
    std::string text = htmlgen::GenerateHtml(static_cast<size_t>(megabytes * 1e6));
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText(text);
    CView view(doc.Get(), true);
    view->SetCodeCompletionMode(2);
    // The picker's window comes with the focus; the document came after the window had it.
    SendMessage(view.Hwnd(), WM_KILLFOCUS, 0, 0);
    SendMessage(view.Hwnd(), WM_SETFOCUS, 0, 0);
    const long middle = MiddleOfText(text);
    std::vector<double> open, filter;
    for (int i = 0; i < kRounds; ++i) {
        view->SetSelection(middle, middle);
        auto t0 = Clock::now();
        SendMessage(view.Hwnd(), WM_CHAR, '<', 1);
        PaintPicker(view);
        open.push_back(1e3 * SecondsSince(t0));
        t0 = Clock::now();
        SendMessage(view.Hwnd(), WM_CHAR, 't', 1);
        PaintPicker(view);
        filter.push_back(MicrosSince(t0));
        if (!view->IsPickerVisible()) std::fprintf(stderr, "the picker did not open\n");
        view->DoUndo();
        view->DoUndo();
    }
    PrintMedianAndP99("picker_open_" + name, open, "ms");
    PrintMedianAndP99("picker_filter_" + name, filter, "us");
}

void ScanFigure(double megabytes) {
    std::string text = htmlgen::GenerateHtml(static_cast<size_t>(megabytes * 1e6));
    const long middle = MiddleOfText(text);
    text.insert(static_cast<size_t>(middle), "<a title=\"" + std::string(kValueBytes, 'v') + "\">");
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText(text);
    CView view(doc.Get(), false);
    const long caret = middle + 10 + static_cast<long>(kValueBytes);
    std::vector<double> micros;
    for (int i = 0; i < kScans; ++i) {
        const auto t0 = Clock::now();
        const TagContext ctx = view->AnalyzeTag(caret);
        micros.push_back(MicrosSince(t0));
        if (ctx.context != CTX_VALUE) std::fprintf(stderr, "the scan missed the value\n");
    }
    Print("analyzetag_1mb_value_in_" + std::to_string(static_cast<int>(megabytes)) + "mb", Percentile(micros, 0.5), "us");
}

}  // namespace

int main(int argc, char** argv) {
    return RunViewBenchmark(
        argc, argv,
        [](const std::vector<double>& sizes) {
            for (double mb : sizes) {
                TypingFigures(mb);
                ScanFigure(mb);
            }
        },
        nullptr);
}
