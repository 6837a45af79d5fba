#include "platform/qt/qtprinter.h"

#include <QPageLayout>
#include <QPageSize>
#include <QPrinterInfo>

namespace {

constexpr double kThousandths = 1000.0;
constexpr COLORREF kPaper = 0xFFFFFF;

}  // namespace

void ApplyChoiceToPrinter(const PrinterChoice& choice, QPrinter* printer) {
    if (const DEVNAMES* names = choice.hDevNames.get()) {
        if (!names->strOutput.empty()) {
            printer->setOutputFormat(QPrinter::PdfFormat);
            printer->setOutputFileName(QString::fromStdString(names->strOutput));
            // A file has no unprintable border: the page is the paper.
            printer->setFullPage(true);
        } else if (!names->strDevice.empty()) {
            printer->setPrinterName(QString::fromStdString(names->strDevice));
        }
    }
    if (const DEVMODE* mode = choice.hDevMode.get()) {
        const QSizeF inches(mode->nPaperWidth / kThousandths, mode->nPaperHeight / kThousandths);
        printer->setPageSize(QPageSize(inches, QPageSize::Inch));
        printer->setPageOrientation(mode->bLandscape ? QPageLayout::Landscape : QPageLayout::Portrait);
        printer->setColorMode(mode->bColor ? QPrinter::Color : QPrinter::GrayScale);
        printer->setCopyCount(std::max(1, mode->nCopies));
        printer->setCollateCopies(mode->bCollate);
    }
}

void ReadChoiceFromPrinter(const QPrinter& printer, PrinterChoice* choice) {
    auto names = std::make_shared<DEVNAMES>();
    if (printer.outputFormat() == QPrinter::PdfFormat)
        names->strOutput = printer.outputFileName().toStdString();
    else
        names->strDevice = printer.printerName().toStdString();
    auto mode = std::make_shared<DEVMODE>();
    const QSizeF inches = printer.pageLayout().pageSize().size(QPageSize::Inch);
    mode->nPaperWidth = std::lround(inches.width() * kThousandths);
    mode->nPaperHeight = std::lround(inches.height() * kThousandths);
    mode->bLandscape = printer.pageLayout().orientation() == QPageLayout::Landscape;
    mode->bColor = printer.colorMode() == QPrinter::Color;
    mode->nCopies = printer.copyCount();
    mode->bCollate = printer.collateCopies();
    choice->hDevNames = std::move(names);
    choice->hDevMode = std::move(mode);
}

CQtPrinterDC::CQtPrinterDC() : CQtDC(nullptr), m_printer(QPrinter::HighResolution) {}

std::unique_ptr<CQtPrinterDC> CQtPrinterDC::Create(const PrinterChoice& choice) {
    std::unique_ptr<CQtPrinterDC> dc(new CQtPrinterDC);
    ApplyChoiceToPrinter(choice, &dc->m_printer);
    const bool toFile = dc->m_printer.outputFormat() == QPrinter::PdfFormat;
    if (!toFile) {
        // A queue of the desktop: the named one, else the default; none at all cannot be opened.
        const QString name = dc->m_printer.printerName();
        const QPrinterInfo info = name.isEmpty() ? QPrinterInfo::defaultPrinter() : QPrinterInfo::printerInfo(name);
        if (info.isNull() || !dc->m_printer.isValid()) return nullptr;
        if (name.isEmpty()) dc->m_printer.setPrinterName(info.printerName());
    }
    dc->UpdateVisible();
    return dc;
}

CQtPrinterDC::~CQtPrinterDC() {
    // A job left unfinished is given up, not finished: the file or the queue gets no document.
    if (PainterObject().isActive()) {
        m_printer.abort();
        PainterObject().end();
    }
}

int CQtPrinterDC::GetDeviceCaps(int index) const {
    const QRect paper = m_printer.paperRect(QPrinter::DevicePixel).toRect();
    const QRect page = m_printer.pageRect(QPrinter::DevicePixel).toRect();
    switch (index) {
    case LOGPIXELSX:
    case LOGPIXELSY:
        return m_printer.resolution();
    case PHYSICALWIDTH:
        return paper.width();
    case PHYSICALHEIGHT:
        return paper.height();
    case PHYSICALOFFSETX:
        return m_printer.fullPage() ? 0 : page.left() - paper.left();
    case PHYSICALOFFSETY:
        return m_printer.fullPage() ? 0 : page.top() - paper.top();
    case HORZRES:
        return m_printer.fullPage() ? paper.width() : page.width();
    case VERTRES:
        return m_printer.fullPage() ? paper.height() : page.height();
    default:
        return 0;
    }
}

RECT CQtPrinterDC::DeviceRect() const {
    RECT rc{0, 0, GetDeviceCaps(HORZRES), GetDeviceCaps(VERTRES)};
    DPtoLP(&rc);
    return rc;
}

void CQtPrinterDC::MappingChanged() {
    QPainter& painter = PainterObject();
    if (!painter.isActive()) return;
    const double sx = ScaleX(), sy = ScaleY();
    const POINT org = GetWindowOrg();
    painter.setWorldTransform(QTransform(sx, 0, 0, sy, -org.x * sx, -org.y * sy));
    PainterChanged();
}

// A page starts as white paper, and a job paints every spot of it once at most: a white fill
// puts nothing on it, and is left out of the file.
void CQtPrinterDC::FillPrimitive(const RECT& rc, COLORREF color) {
    if (color != kPaper) CQtDC::FillPrimitive(rc, color);
}

// Glyphs are not clipped to their cells on paper: the ink of a slanted or bold glyph that
// reaches a pixel past its cell lands on paper, where nothing else is, and a clip per run would
// cost a clip path per run in the file. The clip region (a column) still holds.
void CQtPrinterDC::TextPrimitive(const TextRunPrimitive& run) {
    TextRunPrimitive unclipped = run;
    unclipped.clip = nullptr;
    CQtDC::TextPrimitive(unclipped);
}

int CQtPrinterDC::StartDoc(const DOCINFO* info) {
    if (!info || PainterObject().isActive()) return SP_ERROR;
    m_printer.setDocName(QString::fromLocal8Bit(info->lpszDocName ? info->lpszDocName : ""));
    if (!PainterObject().begin(&m_printer)) return SP_ERROR;
    m_bFirstPage = true;
    PainterChanged();
    MappingChanged();
    UpdateVisible();
    return 1;
}

int CQtPrinterDC::StartPage() {
    if (!PainterObject().isActive()) return SP_ERROR;
    // The painter's first page starts with the document; each later one is a new page.
    if (!m_bFirstPage && !m_printer.newPage()) return SP_ERROR;
    m_bFirstPage = false;
    SetMapMode(MM_TEXT);
    SetWindowOrg(0, 0);
    return 1;
}

int CQtPrinterDC::EndPage() { return PainterObject().isActive() ? 1 : SP_ERROR; }

int CQtPrinterDC::EndDoc() {
    if (!PainterObject().isActive()) return SP_ERROR;
    return PainterObject().end() ? 1 : SP_ERROR;
}

int CQtPrinterDC::AbortDoc() {
    if (!PainterObject().isActive()) return SP_ERROR;
    m_printer.abort();
    PainterObject().end();
    return 1;
}
