// Printing from the command line: the page setup values that options give, and a job that
// prints the open document to a PDF file or to a printer queue of the desktop (CUPS) through
// the control's print engine, with no dialog.
#pragma once
#include <QString>
#include <QStringList>
#include <optional>

#include "platform/gdi/geometry.h"

class CZentrelCtrl;
class CQtPrintBackend;

struct PrintRequest {
    QString pdf;      // a PDF file to print to
    QString printer;  // a printer queue to print to; with `pdf`, both empty: no printing
    std::optional<RECT> margins;  // thousandths of an inch: left, top, right, bottom
    std::optional<int> columns;
    std::optional<long> columnGap;
    std::optional<long> headerDistance;
    std::optional<long> footerDistance;
    std::optional<long> lineNumberWidth;
    std::optional<QString> header;
    std::optional<QString> footer;
    std::optional<bool> colour;
    std::optional<bool> lineNumbers;
    std::optional<bool> hiddenChars;
    std::optional<QString> paper;
    bool any = false;  // some print option was given
    bool Prints() const { return !pdf.isEmpty() || !printer.isEmpty(); }
};

// Reads the print option at args[*i] (and its value); false when it is not one. A bad value
// sets `error` to a sentence for the user.
bool ParsePrintOption(const QStringList& args, qsizetype* i, PrintRequest* out, QString* error);
// The usage lines of the print options.
const char* PrintOptionsUsage();
// Prints the control's document to request.pdf or request.printer; 0 on success, else 1 with the
// reason on stderr.
int PrintWithoutDialog(CZentrelCtrl* ctrl, CQtPrintBackend& backend, const PrintRequest& request, const QString& docName);
