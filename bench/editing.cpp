// Editing as a user feels it, in a 1000 x 800 Qt window (offscreen without a display) over
// generated HTML of each size given in megabytes (default 1 10 100), word wrap on:
//   - a burst of typed characters in the middle, each through the whole path: WM_CHAR, the
//     document's edit, the notifications, the repair of the layout, and the repaint of what
//     changed (us per character, median and p99);
//   - Page Down from the top to the end of the text, or for kPages pages at most, each page
//     repainted (us per page, median);
//   - a drag selection held below the window, which scrolls the view a few rows a frame, each
//     frame repainted, until it has gone over 10,000 rows (us per frame, median);
//   - a paste of 10 MB of HTML from the system clipboard in the middle, through the repaint
//     (ms, median of kPastes, each undone before the next).
// Built with QScintilla, the same workloads run on a QScintilla widget, with each figure's
// ratio (peer time / ours: above 1 means faster than the peer). The peer's drag frame is its
// selection extended by the rows that our frame scrolls, with the caret scrolled into view; its
// bursts and page runs are shorter (see kPeerBurst), and their medians are compared. The peer
// leaves out the sizes that its budget refuses (bench/peerworkloads.h), with a line saying so.
// Usage: bench_editing [MEGABYTES...]   (ZENTREL_BENCH_NO_PEER=1 leaves the peer out)
#include <QApplication>
#include <QClipboard>
#include <cstdlib>
#include <malloc.h>
#include <string>
#include <vector>

#include "bench/benchtools.h"
#include "bench/htmlgen.h"
#include "bench/peerreport.h"
#include "bench/viewwindow.h"
#include "platform/qt/qtplatform.h"
#include "platform/window/keys.h"
#ifdef ZENTREL_HAVE_QSCINTILLA
#include "bench/qscipeer.h"
#endif

namespace {

using namespace bench;

constexpr int kBurst = 10000;
// The peer re-wraps in idle time after each character, which costs it tenths of a second at
// 100 MB; it types a shorter burst, and pages through the first pages only.
constexpr int kPeerBurst = 200;
constexpr int kPeerPages = 2000;
// Enough to page through 100 MB; through 1000 MB it would take a quarter of an hour.
constexpr size_t kPages = 40000;
constexpr long kDragRows = 10000;
// How far below the window the mouse rests during the drag, in rows.
constexpr int kRowsBelow = 3;
constexpr size_t kPasteBytes = 10'000'000;
constexpr int kPastes = 3;

// Puts 10 MB of generated HTML on the system clipboard, as a user's copy in another program would.
void FillClipboard() {
    QApplication::clipboard()->setText(QString::fromStdString(htmlgen::GenerateHtml(kPasteBytes)));
}

// Runs `paste` kPastes times, `undo` after each, and gives the median of the pastes in ms.
template <class Paste, class Undo>
double MedianPasteMillis(Paste paste, Undo undo) {
    std::vector<double> millis;
    for (int i = 0; i < kPastes; ++i) {
        const auto t0 = Clock::now();
        paste();
        millis.push_back(1e3 * SecondsSince(t0));
        undo();
    }
    return Percentile(millis, 0.5);
}

void MeasureTypingBurst(CView& view, CHtmlDocument* doc, const std::string& tag) {
    const long mid = doc->GetLength() / 2;
    view->SetSelection(mid, mid);
    view->ScrollCaretIntoView();
    UpdateWindow(view.Hwnd());
    const std::vector<double> micros = TypeBurst(view, kBurst);
    ReportMedianAndP99("typing_burst_" + tag, micros, "us");
}

void MeasurePageDown(CView& view, CHtmlDocument* doc, const std::string& tag) {
    view->SetSelection(0, 0);
    view->ScrollToTop();
    UpdateWindow(view.Hwnd());
    std::vector<double> micros;
    const long end = doc->GetLength();
    while (view->GetSelectionStart() < end && micros.size() < kPages) {
        const auto t0 = Clock::now();
        SendMessage(view.Hwnd(), WM_KEYDOWN, VK_NEXT, 1);
        UpdateWindow(view.Hwnd());
        micros.push_back(MicrosSince(t0));
    }
    Report("page_down_" + tag + "_median", Percentile(micros, 0.5), "us");
    Print("page_down_pages_" + tag, static_cast<double>(micros.size()), "pages");
}

void MeasureDragSelection(CView& view, const std::string& tag) {
    view->SetSelection(0, 0);
    view->ScrollToTop();
    UpdateWindow(view.Hwnd());
    const int below = static_cast<int>(kHeight + kRowsBelow * view->m_nLineHeight);
    const long rows = std::min(kDragRows, view->GetLineCount() - view->GetVisibleLines() - 1);
    std::vector<double> micros;
    while (view->GetTopLine() < rows) {
        const auto t0 = Clock::now();
        view->DragSelectTo(kWidth / 2, below);
        micros.push_back(MicrosSince(t0));
    }
    Report("drag_select_frame_" + tag + "_median", Percentile(micros, 0.5), "us");
    Print("drag_select_frames_" + tag, static_cast<double>(micros.size()), "frames");
}

void MeasurePaste(CView& view, CHtmlDocument* doc, const std::string& tag) {
    const long mid = doc->GetLength() / 2;
    FillClipboard();
    const double ms = MedianPasteMillis(
        [&] {
            view->SetSelection(mid, mid);
            view->Paste();
            UpdateWindow(view.Hwnd());
        },
        [&] {
            view->DoUndo();
            UpdateWindow(view.Hwnd());
        });
    Report("paste_10mb_into_" + tag, ms, "ms");
}

void MeasureSize(double megabytes) {
    const std::string tag = std::to_string(static_cast<int>(megabytes)) + "mb";
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText(htmlgen::GenerateHtml(static_cast<size_t>(megabytes * 1e6)));
    CView view(doc.Get(), true);
    MeasureTypingBurst(view, doc.Get(), tag);
    MeasurePageDown(view, doc.Get(), tag);
    MeasureDragSelection(view, tag);
    MeasurePaste(view, doc.Get(), tag);
}

#ifdef ZENTREL_HAVE_QSCINTILLA
// Every workload of one size on the peer; gives the resident bytes the peer took per byte of text.
double PeerSize(double megabytes, const std::string& tag) {
    malloc_trim(0);
    const double before = ResidentBytes();
    CPeer peer(htmlgen::GenerateHtml(static_cast<size_t>(megabytes * 1e6)), true);
    const double perByte = (ResidentBytes() - before) / (megabytes * 1e6);
    const long mid = peer.Length() / 2;
    peer.Send(QsciScintillaBase::SCI_SETEMPTYSELECTION, static_cast<unsigned long>(mid));
    peer.Send(QsciScintillaBase::SCI_SCROLLCARET);
    QApplication::processEvents();
    std::vector<double> typing;
    for (int i = 0; i < kPeerBurst; ++i) {
        const auto t0 = Clock::now();
        peer.Type();
        QApplication::processEvents();
        typing.push_back(MicrosSince(t0));
    }
    ReportPeer("typing_burst_" + tag + "_median", Percentile(typing, 0.5), "us");
    ReportPeer("typing_burst_" + tag + "_p99", Percentile(typing, 0.99), "us");

    const auto frames = [&](unsigned message, int repeat, auto done) {
        peer.Send(QsciScintillaBase::SCI_DOCUMENTSTART);
        QApplication::processEvents();
        std::vector<double> micros;
        while (!done() && static_cast<int>(micros.size()) < kPeerPages) {
            const auto t0 = Clock::now();
            for (int i = 0; i < repeat; ++i) peer.Send(message);
            peer.Send(QsciScintillaBase::SCI_SCROLLCARET);
            peer.Widget()->viewport()->repaint();
            micros.push_back(MicrosSince(t0));
        }
        return Percentile(micros, 0.5);
    };
    const long length = peer.Length();
    const auto caret = [&] { return peer.Widget()->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS); };
    ReportPeer("page_down_" + tag + "_median", frames(QsciScintillaBase::SCI_PAGEDOWN, 1, [&] { return caret() >= length; }), "us");
    const auto top = [&] { return peer.Widget()->SendScintilla(QsciScintillaBase::SCI_GETFIRSTVISIBLELINE); };
    ReportPeer("drag_select_frame_" + tag + "_median",
               frames(QsciScintillaBase::SCI_LINEDOWNEXTEND, kRowsBelow, [&] { return top() >= kDragRows || caret() >= length; }),
               "us");

    FillClipboard();
    const double paste = MedianPasteMillis(
        [&] {
            peer.Send(QsciScintillaBase::SCI_SETEMPTYSELECTION, static_cast<unsigned long>(mid));
            peer.Widget()->paste();
            peer.Send(QsciScintillaBase::SCI_SCROLLCARET);
            peer.RepaintAll();
            QApplication::processEvents();
        },
        [&] {
            peer.Send(QsciScintillaBase::SCI_UNDO);
            QApplication::processEvents();
        });
    ReportPeer("paste_10mb_into_" + tag, paste, "ms");
    return perByte;
}
#endif

}  // namespace

int main(int argc, char** argv) {
    const auto ours = [](const std::vector<double>& sizes) {
        for (double megabytes : sizes) MeasureSize(megabytes);
    };
#ifdef ZENTREL_HAVE_QSCINTILLA
    return RunViewBenchmark(argc, argv, ours, [](const std::vector<double>& sizes) {
        CPeerBudget budget("peer");
        for (double megabytes : sizes) {
            const std::string tag = std::to_string(static_cast<int>(megabytes)) + "mb";
            if (!budget.Allows(megabytes, tag)) continue;
            const auto t0 = Clock::now();
            const double perByte = PeerSize(megabytes, tag);
            budget.Measured(megabytes, SecondsSince(t0), perByte);
        }
    });
#else
    return RunViewBenchmark(argc, argv, ours, nullptr);
#endif
}
