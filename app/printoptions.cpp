#include "app/printoptions.h"

#include <QFile>
#include <QFileInfo>
#include <QPrinterInfo>
#include <cstdio>

#include "platform/qt/qtprintdialogs.h"
#include "src/print/pagesetup.h"
#include "src/view/zentrelctrl.h"

namespace {

struct PaperSize {
    const char* name;
    long width, height;
};
constexpr PaperSize kPapers[] = {{"letter", 8500, 11000}, {"legal", 8500, 14000}, {"a4", 8268, 11693},
                                 {"a3", 11693, 16535}, {"a5", 5827, 8268}};

// A length in inches ("0.75", "1.5\"") as thousandths; false unless it is a number of 0 or more.
bool ReadInches(const QString& text, long* out) {
    QString number = text.trimmed();
    if (number.endsWith('"')) number.chop(1);
    bool ok = false;
    const double inches = number.toDouble(&ok);
    if (!ok || inches < 0 || inches > 1000) return false;
    *out = CInchEdit::ValueFromText(number.toStdString());
    return true;
}

// A template as typed on a command line: "\n" stands for a line break.
QString TemplateText(const QString& text) { return QString(text).replace("\\n", "\r\n"); }

// One option that takes a length in inches.
bool LengthOption(const QString& value, const char* option, std::optional<long>* out, QString* error) {
    long n = 0;
    if (!ReadInches(value, &n)) {
        *error = QString("%1 needs a length in inches of 0 or more, such as 0.5").arg(option);
        return false;
    }
    *out = n;
    return true;
}

bool ReadMargins(const QString& value, std::optional<RECT>* out, QString* error) {
    const QStringList parts = value.split(',');
    long v[4] = {};
    bool ok = parts.size() == 1 || parts.size() == 4;
    for (qsizetype k = 0; ok && k < 4; ++k) ok = ReadInches(parts[parts.size() == 1 ? 0 : k], &v[k]);
    if (!ok) {
        *error = "--margins needs one length in inches for all four sides, or four as LEFT,TOP,RIGHT,BOTTOM, each 0 or more";
        return false;
    }
    *out = RECT{static_cast<LONG>(v[0]), static_cast<LONG>(v[1]), static_cast<LONG>(v[2]), static_cast<LONG>(v[3])};
    return true;
}

void ApplyRequest(const PrintRequest& r, CEditPageSetupDialog* setup) {
    if (r.margins) setup->m_psd.rtMargin = *r.margins;
    if (r.columns) setup->m_nColumns = *r.columns;
    if (r.columnGap) setup->m_nColumnGap = *r.columnGap;
    if (r.headerDistance) setup->m_nHeaderDistance = *r.headerDistance;
    if (r.footerDistance) setup->m_nFooterDistance = *r.footerDistance;
    if (r.lineNumberWidth) setup->m_nLineNumberWidth = *r.lineNumberWidth;
    if (r.header) setup->m_strHeader = r.header->toLocal8Bit().toStdString();
    if (r.footer) setup->m_strFooter = r.footer->toLocal8Bit().toStdString();
    if (r.colour) setup->m_bColorPrinting = *r.colour;
    if (r.lineNumbers) setup->m_bLineNumbers = *r.lineNumbers;
    if (r.hiddenChars) setup->m_bHiddenChars = *r.hiddenChars;
    auto mode = std::make_shared<DEVMODE>();
    for (const PaperSize& p : kPapers)
        if (r.paper && *r.paper == p.name) mode->nPaperWidth = p.width, mode->nPaperHeight = p.height;
    auto names = std::make_shared<DEVNAMES>();
    if (r.printer.isEmpty())
        names->strOutput = QFileInfo(r.pdf).absoluteFilePath().toStdString();
    else
        names->strDevice = r.printer.toStdString();
    setup->m_psd.device = PrinterChoice{mode, names};
}

// Whether the job's output can be made: the PDF file written, or the queue found. Says why not on stderr.
bool CanPrintTo(const PrintRequest& request) {
    if (!request.printer.isEmpty()) {
        if (!QPrinterInfo::printerInfo(request.printer).isNull()) return true;
        const QStringList queues = QPrinterInfo::availablePrinterNames();
        std::fprintf(stderr, "zentrel-edit: there is no printer queue %s (the queues are: %s)\n", qPrintable(request.printer),
                     queues.isEmpty() ? "none" : qPrintable(queues.join(", ")));
        return false;
    }
    QFile probe(request.pdf);
    if (!probe.open(QIODevice::WriteOnly)) {
        std::fprintf(stderr, "zentrel-edit: cannot write %s: %s\n", qPrintable(request.pdf), qPrintable(probe.errorString()));
        return false;
    }
    return true;
}

}  // namespace

const char* PrintOptionsUsage() {
    return "       zentrel-edit --print-pdf OUT.pdf|--printer QUEUE [--paper letter|legal|a4|a3|a5] [--margins INCHES|L,T,R,B]\n"
           "                    [--columns 1-3] [--column-gap INCHES] [--header TEXT] [--footer TEXT]\n"
           "                    [--header-distance INCHES] [--footer-distance INCHES] [--colour|--no-colour]\n"
           "                    [--line-numbers [--line-number-width INCHES]] [--hidden-characters] [FILE]";
}

bool ParsePrintOption(const QStringList& args, qsizetype* i, PrintRequest* out, QString* error) {
    const QString& arg = args[*i];
    static const QStringList flags = {"--colour", "--no-colour", "--line-numbers", "--hidden-characters"};
    static const QStringList valued = {"--print-pdf", "--printer", "--paper", "--margins", "--columns", "--column-gap", "--header", "--footer",
                                       "--header-distance", "--footer-distance", "--line-number-width"};
    if (!flags.contains(arg) && !valued.contains(arg)) return false;
    out->any = true;
    if (arg == "--colour" || arg == "--no-colour") out->colour = arg == "--colour";
    if (arg == "--line-numbers") out->lineNumbers = true;
    if (arg == "--hidden-characters") out->hiddenChars = true;
    if (flags.contains(arg)) return true;
    if (*i + 1 >= args.size()) {
        *error = QString("%1 needs a value").arg(arg);
        return true;
    }
    const QString value = args[++*i];
    if (arg == "--print-pdf" || arg == "--printer") {
        (arg == "--print-pdf" ? out->pdf : out->printer) = value;
        if (!out->pdf.isEmpty() && !out->printer.isEmpty()) *error = "--print-pdf and --printer cannot go together";
    } else if (arg == "--paper") {
        if (std::none_of(std::begin(kPapers), std::end(kPapers), [&](const PaperSize& p) { return value == p.name; }))
            *error = "--paper needs one of letter, legal, a4, a3, a5";
        out->paper = value;
    } else if (arg == "--margins") {
        ReadMargins(value, &out->margins, error);
    } else if (arg == "--columns") {
        bool ok = false;
        const int n = value.toInt(&ok);
        if (!ok || n < CEditPageSetupDialog::kMinColumns || n > CEditPageSetupDialog::kMaxColumns)
            *error = "--columns needs a whole number from 1 to 3";
        out->columns = n;
    } else if (arg == "--header" || arg == "--footer") {
        (arg == "--header" ? out->header : out->footer) = TemplateText(value);
    } else {
        std::optional<long>* length = arg == "--column-gap"        ? &out->columnGap
                                      : arg == "--header-distance" ? &out->headerDistance
                                      : arg == "--footer-distance" ? &out->footerDistance
                                                                   : &out->lineNumberWidth;
        LengthOption(value, qPrintable(arg), length, error);
    }
    return true;
}

int PrintWithoutDialog(CZentrelCtrl* ctrl, CQtPrintBackend& backend, const PrintRequest& request, const QString& docName) {
    if (!CanPrintTo(request)) return 1;
    ApplyRequest(request, &ctrl->PageSetupObject());
    bool failed = false;
    backend.SetMessageSink([&](const std::string& text) {
        std::fprintf(stderr, "zentrel-edit: %s\n", text.c_str());
        failed = true;
    });
    const BOOL printed = ctrl->PrintJob(docName.toLocal8Bit().constData());
    backend.SetMessageSink(nullptr);
    const QString where = request.printer.isEmpty() ? QFileInfo(request.pdf).absoluteFilePath() : "printer " + request.printer;
    if (!printed || failed || (request.printer.isEmpty() && QFileInfo(request.pdf).size() == 0)) {
        if (!failed) std::fprintf(stderr, "zentrel-edit: nothing was printed to %s\n", qPrintable(where));
        return 1;
    }
    std::printf("Printed %s to %s\n", qPrintable(docName), qPrintable(where));
    return 0;
}
