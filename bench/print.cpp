// Printing: the 10 MB document in two columns to a PDF file through the print engine, in pages
// per second and the time until the first page is done; and the same document through the
// peer's printer (QsciPrinter, one column, as it prints), with the ratio of the two.
#include <QApplication>
#include <QPrinter>
#include <QTemporaryDir>
#include <memory>
#include <string>

#include "bench/benchtools.h"
#include "bench/htmlgen.h"
#include "bench/peerreport.h"
#include "bench/viewwindow.h"
#include "platform/qt/qtprintdialogs.h"
#include "src/print/pagesetup.h"
#ifdef ZENTREL_HAVE_QSCINTILLA
#include <Qsci/qsciprinter.h>

#include "bench/qscipeer.h"
#endif

namespace {

using namespace bench;

// The document's size in megabytes, unless the command line gives one.
constexpr double kDocumentMegabytes = 10;

// The pages of a job as its progress window hears them, with the time the first one was done.
struct PageClock {
    Clock::time_point start;
    double firstPageSeconds = 0;
    int pages = 0;
    void PageStarted(int page) {
        if (page == 2) firstPageSeconds = SecondsSince(start);
        pages = page;
    }
};

class CClockedProgress final : public IPrintProgress {
public:
    explicit CClockedProgress(PageClock& clock) : m_clock(clock) {}
    void SetNameText(const std::string&) override {}
    void SetPageText(const std::string&) override {}
    void SetRange(int, int) override {}
    void SetPos(int pos) override { m_clock.PageStarted(pos); }
    void Redraw() override {}

private:
    PageClock& m_clock;
};

// The Qt backend's printers, with a progress window that keeps the time of each page.
class CClockedBackend final : public IPrintBackend {
public:
    explicit CClockedBackend(PageClock& clock) : m_clock(clock) {}
    std::unique_ptr<CDC> CreatePrinterDC(const PrinterChoice& choice) override { return m_qt.CreatePrinterDC(choice); }
    bool PrintDialog(HWND, PrinterChoice*) override { return true; }
    bool PageSetupDialog(HWND, PageSetupRecord*, IPageSetupHook*) override { return false; }
    std::unique_ptr<IPrintProgress> CreateProgress(HWND, const std::string&) override {
        return std::make_unique<CClockedProgress>(m_clock);
    }
    void MessageBox(HWND, const std::string& text) override { std::fprintf(stderr, "print: %s\n", text.c_str()); }

private:
    PageClock& m_clock;
    CQtPrintBackend m_qt;
};

void MeasureOurs(const std::string& text, const QString& pdf) {
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText(text);
    CView view(doc.Get(), false);
    CEditPageSetupDialog& setup = view->PageSetupObject();
    setup.m_nColumns = 2;
    setup.m_bColorPrinting = TRUE;
    auto names = std::make_shared<DEVNAMES>();
    names->strOutput = pdf.toStdString();
    setup.m_psd.device = PrinterChoice{std::make_shared<DEVMODE>(), names};
    PageClock clock;
    CClockedBackend backend(clock);
    IPrintBackend* previous = SetPrintBackend(&backend);
    // Qt loads its print support (and the CUPS library behind it) with the first printer of the
    // process: a cost of the process, not of the job, and one the peer's clock does not see either.
    { QPrinter warmUp(QPrinter::HighResolution); }
    clock.start = Clock::now();
    const BOOL ok = view->PrintJob("bench.html");
    const double seconds = SecondsSince(clock.start);
    SetPrintBackend(previous);
    if (!ok) return;
    Print("print_pages", clock.pages, "pages");
    Report("print_pages_per_second", clock.pages / seconds, "pages/s");
    Report("print_first_page", 1000.0 * (clock.pages > 1 ? clock.firstPageSeconds : seconds), "ms");
}

#ifdef ZENTREL_HAVE_QSCINTILLA
// The peer's printer, counting its pages as it draws them.
class CCountingPrinter final : public QsciPrinter {
public:
    void formatPage(QPainter& painter, bool drawing, QRect& area, int pagenr) override {
        QsciPrinter::formatPage(painter, drawing, area, pagenr);
        if (drawing) clock.PageStarted(pagenr);
    }
    PageClock clock;
};

void MeasurePeer(const std::string& text, const QString& pdf) {
    CPeer peer(text, false);
    CCountingPrinter printer;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(pdf);
    printer.setFullPage(true);
    printer.clock.start = Clock::now();
    const bool ok = printer.printRange(peer.Widget());
    const double seconds = SecondsSince(printer.clock.start);
    if (!ok) return;
    Print("peer_print_pages", printer.clock.pages, "pages");
    ReportPeer("print_pages_per_second", printer.clock.pages / seconds, "pages/s");
    ReportPeer("print_first_page", 1000.0 * (printer.clock.pages > 1 ? printer.clock.firstPageSeconds : seconds), "ms");
}
#endif

}  // namespace

int main(int argc, char** argv) {
    QTemporaryDir folder;
    std::string text;
    const auto document = [&](const std::vector<double>& sizes) -> const std::string& {
        const double megabytes = argc > 1 && !sizes.empty() ? sizes[0] : kDocumentMegabytes;
        if (text.empty()) text = htmlgen::GenerateHtml(static_cast<size_t>(megabytes * (1 << 20)));
        return text;
    };
    const auto ours = [&](const std::vector<double>& sizes) { MeasureOurs(document(sizes), folder.filePath("ours.pdf")); };
#ifdef ZENTREL_HAVE_QSCINTILLA
    return RunViewBenchmark(argc, argv, ours,
                            [&](const std::vector<double>& sizes) { MeasurePeer(document(sizes), folder.filePath("peer.pdf")); });
#else
    return RunViewBenchmark(argc, argv, ours, nullptr);
#endif
}
