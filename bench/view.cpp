// The view in a real window (Qt, offscreen without a display), 1000 x 800 pixels with the
// default fonts, over generated HTML of each size given in megabytes (default 1 10 100):
//   - a whole layout (Reformat) with word wrap on and off, best of 3 (MB/s);
//   - a typed character in the middle of the wrapped document through the whole path: edit,
//     notification, rewrap, invalidation, and the repaint of what was invalidated; the same
//     with a full repaint; and the first again without word wrap (us, median and p99 over 200);
//   - a full repaint of the window (ms, median and p99 over 100);
//   - a jump to the middle and to the end of a text just put in, through the paint (ms);
//   - a text put into a document that the view shows, as a host's file load is, through the
//     first paint (MB/s, and ms); and a view attached to a document already loaded, through its
//     first paint (ms);
//   - the line table's memory per line, and the process's memory per byte of text after the
//     load and layout, and again once the whole text is classified;
// and once:
//   - a click at the end of a 5000-byte line (PositionFromClientPoint, us);
//   - a minified page (one 10 MB line) attached, wrapped and painted (ms), and a typed character
//     in its middle, wrapped and not (us, median and p99 over 200).
// The same workloads then run in the same process on peers of the same size, font and wrap mode,
// and each figure gets its ratio to the peer's (peer time / our time: above 1 means faster than
// the peer): a QScintilla widget where the build found it ("peer_", "ratio_"), and a
// QPlainTextEdit with an HTML highlighter ("plaintext_", "ratio_plaintext_"), which gives the
// jumps, the typed characters, the repaint, the load through the first paint, and its memory
// once the whole text is coloured. A peer leaves out a size that the last one says would take
// over 60 s or 6 GB (ZENTREL_BENCH_PEER_SECONDS, ZENTREL_BENCH_PEER_GB), and a first size above
// 100 MB, with a line saying so.
// Usage: bench_view [MEGABYTES...]   (ZENTREL_BENCH_NO_PEER=1 leaves the peers out)
#include <QApplication>
#include <QWidget>
#include <cstdlib>
#include <malloc.h>
#include <map>
#include <memory>
#include <string>

#include "bench/benchtools.h"
#include "bench/peerreport.h"
#include "bench/plaintextpeer.h"
#include "bench/viewwindow.h"
#include "bench/htmlgen.h"
#include "htmldoc/htmldocument.h"
#include "platform/qt/qtplatform.h"
#include "platform/qt/qtwindow.h"
#include "platform/window/paint.h"
#include "src/layout/lineblockpool.h"
#include "src/view/zentrelctrl.h"
#ifdef ZENTREL_HAVE_QSCINTILLA
#include "bench/qscipeer.h"
#endif

namespace {

using namespace bench;

constexpr int kTypedCharacters = 200;
constexpr int kRepaints = 100;

double LineTableBytes(const CLineIndex& table) {
    const CLineBlockPool& pool = CLineBlock::Pool();
    const double blocks = double(pool.GetUsedCount()) * double(pool.GetSlotSize());
    const double nodes = double(CLineIndex::GetChildArrayCount()) * 2.0 * sizeof(CLineIndex);
    return blocks + nodes;
}

void MeasureLayout(CView& view, bool wrap, double megabytes, const std::string& tag) {
    view->SetOption(OPT_WORDWRAP, wrap);
    double best = 1e9;
    for (int i = 0; i < 3; ++i) {
        const auto t0 = Clock::now();
        view->Reformat(FALSE);
        best = std::min(best, SecondsSince(t0));
    }
    Report("reformat_" + std::string(wrap ? "wrap" : "nowrap") + "_" + tag, megabytes / best, "MB/s");
}

// Types characters in the middle, each repainted before the next.
void MeasureTyping(CView& view, CHtmlDocument* doc, const std::string& tag, bool fullRepaint) {
    const long mid = doc->GetLength() / 2;
    view->SetSelection(mid, mid);
    view->ScrollRangeIntoView(mid, mid);
    UpdateWindow(view.Hwnd());
    std::vector<double> micros;
    for (int i = 0; i < kTypedCharacters; ++i) {
        const auto t0 = Clock::now();
        view->m_pSelection->ReplaceText("x", 1, &view->m_xTextSink);
        if (fullRepaint) InvalidateRect(view.Hwnd(), nullptr, FALSE);
        UpdateWindow(view.Hwnd());
        micros.push_back(MicrosSince(t0));
    }
    ReportMedianAndP99((fullRepaint ? "type_full_repaint_" : "type_") + tag, micros, "us");
}

void MeasureRepaint(CView& view, const std::string& tag) {
    ReportMedianAndP99("repaint_" + tag, RepaintTimes(view, kRepaints), "ms");
}

// A jump from the top of a freshly loaded text, not yet classified, to its middle and to its
// end, through the paint there (ms, median of 3, each on the text put in anew).
void MeasureJumps(CView& view, CHtmlDocument* doc, const std::string& text, const std::string& tag) {
    std::vector<double> middle, end;
    for (int i = 0; i < 3; ++i) {
        for (auto* times : {&middle, &end}) {
            doc->SetText(text);
            view->ScrollRangeIntoView(0, 0);
            UpdateWindow(view.Hwnd());
            const long at = times == &middle ? doc->GetLength() / 2 : doc->GetLength();
            const auto t0 = Clock::now();
            view->ScrollRangeIntoView(at, at);
            UpdateWindow(view.Hwnd());
            times->push_back(1e3 * SecondsSince(t0));
        }
    }
    ReportMedianAndP99("jump_middle_" + tag, middle, "ms");
    ReportMedianAndP99("jump_end_" + tag, end, "ms");
}

// A text put into a document that a view shows, as a host's file load is: the view lays out
// what arrives (MB/s).
void MeasureLoadIntoView(const std::string& text, double megabytes, const std::string& tag) {
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    CView view(doc.Get(), true);
    const auto t0 = Clock::now();
    doc->SetText(text);
    UpdateWindow(view.Hwnd());
    const double seconds = SecondsSince(t0);
    Report("load_into_view_" + tag, megabytes / seconds, "MB/s");
    Report("open_to_first_paint_" + tag, seconds * 1e3, "ms");
}

void MeasureSize(double megabytes) {
    const std::string tag = std::to_string(static_cast<int>(megabytes)) + "mb";
    malloc_trim(0);
    const double before = ResidentBytes();
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    std::string text = htmlgen::GenerateHtml(static_cast<size_t>(megabytes * 1e6));
    MeasureLoadIntoView(text, megabytes, tag);
    malloc_trim(0);
    doc->SetText(text);
    const double bytes = doc->GetLength();
    {
        const auto t0 = Clock::now();
        CView view(doc.Get(), true);
        UpdateWindow(view.Hwnd());
        Report("attach_loaded_" + tag, 1e3 * SecondsSince(t0), "ms");
        MeasureJumps(view, doc.Get(), text, tag);
        std::string().swap(text);
        malloc_trim(0);
        Report("memory_per_text_byte_" + tag, (ResidentBytes() - before) / bytes, "bytes");
        // The document classifies lazily; once all of it is classified its syntax state is whole.
        doc->Syntax().ClassifyTo(doc->GetLength());
        Report("memory_per_text_byte_classified_" + tag, (ResidentBytes() - before) / bytes, "bytes");
        Report("linetable_bytes_per_line_" + tag, LineTableBytes(view->Lines()) / view->GetLineCount(), "bytes");
        MeasureLayout(view, false, megabytes, tag);
        MeasureLayout(view, true, megabytes, tag);
        MeasureTyping(view, doc.Get(), tag, false);
        MeasureTyping(view, doc.Get(), tag, true);
        MeasureRepaint(view, tag);
        view->SetOption(OPT_WORDWRAP, FALSE);
        view->Reformat(TRUE);
        MeasureTyping(view, doc.Get(), tag + "_nowrap", false);
    }
}

void MeasureClickOnLongLine() {
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    std::string line;
    while (line.size() < 5000) line += "<td class=\"cell\">value</td>";
    line.resize(5000);
    doc->SetText(line + "\n" + htmlgen::GenerateHtml(100000));
    CView view(doc.Get(), false);
    // The point where the line's last character ends.
    long x = 0, y = 0;
    view->FindPointFromPosition(5000, &x, &y);
    std::vector<double> micros;
    for (int i = 0; i < 1000; ++i) {
        const auto t0 = Clock::now();
        const long pos = view->PositionFromClientPoint(x, y + 5);
        micros.push_back(MicrosSince(t0));
        if (pos != 5000) std::fprintf(stderr, "click gave %ld\n", pos);
    }
    Report("click_end_of_5000_byte_line", Percentile(micros, 0.5), "us");
}

void MeasureMinified() {
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    std::string text;
    {
        std::string page = htmlgen::GenerateHtml(10'000'000);
        for (char c : page)
            if (c != '\n' && c != '\r' && c != '\t') text += c;
    }
    doc->SetText(text);
    const auto t0 = Clock::now();
    CView view(doc.Get(), true);
    view.RepaintAll();
    Report("minified_10mb_wrap_and_paint", 1e3 * SecondsSince(t0), "ms");
    MeasureTyping(view, doc.Get(), "minified_10mb", false);
    view->SetOption(OPT_WORDWRAP, FALSE);
    view->Reformat(TRUE);
    MeasureTyping(view, doc.Get(), "minified_10mb_nowrap", false);
}

}  // namespace

int main(int argc, char** argv) {
    const auto ours = [](const std::vector<double>& sizes) {
        MeasureClickOnLongLine();
        MeasureMinified();
        for (double megabytes : sizes) MeasureSize(megabytes);
    };
    return RunViewBenchmark(argc, argv, ours, [](const std::vector<double>& sizes) {
#ifdef ZENTREL_HAVE_QSCINTILLA
        RunPeer(sizes, ReportPeer);
#endif
        RunPlainTextPeer(sizes, [](const std::string& name, double value, const char* unit) {
            ReportPeerNamed("plaintext", name, value, unit);
        });
    });
}
