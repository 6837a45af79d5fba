// The control over a large document: a whole layout with word wrap off and on, and a typed
// character in the middle through edit, notification, rewrap and invalidation. Runs on the
// test backend in a 1000 x 800 window. Prints "name value unit" lines.
// Usage: bench_controllayout [MEGABYTES]   (default 100)
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/htmlgen.h"
#include "htmldoc/htmldocument.h"
#include "platform/testing/testplatform.h"
#include "src/view/zentrelctrl.h"

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point t0) { return std::chrono::duration<double>(Clock::now() - t0).count(); }

void Print(const std::string& name, double value, const char* unit) {
    std::printf("%s %.3f %s\n", name.c_str(), value, unit);
}

void PrintMedianAndP99(const std::string& name, std::vector<double> micros) {
    std::sort(micros.begin(), micros.end());
    Print(name + "_median", micros[micros.size() / 2], "us");
    Print(name + "_p99", micros[std::min(micros.size() - 1, micros.size() * 99 / 100)], "us");
}

// A whole layout, best of three.
void MeasureReformat(CZentrelCtrl* ctrl, bool wrap, double megabytes, const std::string& tag) {
    ctrl->SetOption(OPT_WORDWRAP, wrap);
    double best = 1e9;
    for (int i = 0; i < 3; ++i) {
        auto t0 = Clock::now();
        ctrl->Reformat(FALSE);
        best = std::min(best, SecondsSince(t0));
    }
    Print("reformat_" + tag + (wrap ? "_wrap" : "_nowrap"), megabytes / best, "MB/s");
    Print("reformat_" + tag + (wrap ? "_wrap" : "_nowrap") + "_lines", ctrl->GetLineCount(), "lines");
}

// Typed characters in the middle of the text, through the selection as typing goes.
void MeasureTyping(CZentrelCtrl* ctrl, ISourceRange* selection, CHtmlDocument* doc, const std::string& tag) {
    std::vector<double> micros;
    long pos = doc->GetLength() / 2;
    selection->SetRange(pos, pos);
    for (int i = 0; i < 200; ++i) {
        auto t0 = Clock::now();
        selection->ReplaceText("x", 1, &ctrl->m_xTextSink);
        micros.push_back(SecondsSince(t0) * 1e6);
    }
    PrintMedianAndP99("type_" + tag, micros);
}

}  // namespace

int main(int argc, char** argv) {
    double megabytes = argc > 1 ? std::atof(argv[1]) : 100.0;
    CTestPlatformScope platform;
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText(htmlgen::GenerateHtml(static_cast<size_t>(megabytes * 1e6)));
    std::string tag = std::to_string(static_cast<int>(megabytes)) + "mb";

    CZentrelCtrl* ctrl = CreateZentrelCtrl();
    ctrl->CreateControlWindow(nullptr, {0, 0, 1000, 800});
    auto t0 = Clock::now();
    ctrl->SetDocument(static_cast<IDispatch*>(doc.Get()));
    Print("attach_" + tag, SecondsSince(t0) * 1e3, "ms");

    MeasureReformat(ctrl, false, megabytes, tag);
    MeasureReformat(ctrl, true, megabytes, tag);
    ComPtr<IDispatch> selDisp = ComPtr<IDispatch>::Adopt(ctrl->GetSelection());
    ComPtr<ISourceRange> selection = QueryAs<ISourceRange>(selDisp.Get(), IID_ISourceRange);
    MeasureTyping(ctrl, selection.Get(), doc.Get(), tag + "_wrap");

    std::string why;
    if (ctrl->Lines().m_nTotal != doc->GetLength() || !ctrl->Lines().CheckInvariants(&why)) {
        std::fprintf(stderr, "bench_controllayout: line table broken: %s\n", why.c_str());
        return 1;
    }
    ctrl->DestroyControlWindow();
    ctrl->Release();
    return 0;
}
