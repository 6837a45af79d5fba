// The printer context of the Qt backend: the Qt context's drawing on a QPrinter, a queue of the
// desktop (CUPS) or a PDF file. Logical units reach the page through the painter's transform,
// which follows the map mode, the extents and the window origin.
#pragma once
#include <QPrinter>

#include "platform/gdi/printer.h"
#include "platform/qt/qtdc.h"

class CQtPrinterDC final : public CQtDC {
public:
    // A context of the chosen printer; null when the printer cannot be opened (no such queue,
    // or no printer at all).
    static std::unique_ptr<CQtPrinterDC> Create(const PrinterChoice& choice);
    ~CQtPrinterDC() override;

    int GetDeviceCaps(int index) const override;
    int StartDoc(const DOCINFO* info) override;
    int StartPage() override;
    int EndPage() override;
    int EndDoc() override;
    int AbortDoc() override;
    QPrinter& Printer() { return m_printer; }

protected:
    RECT DeviceRect() const override;
    bool CanScale() const override { return true; }
    void MappingChanged() override;
    void FillPrimitive(const RECT& rc, COLORREF color) override;
    void TextPrimitive(const TextRunPrimitive& run) override;

private:
    CQtPrinterDC();
    QPrinter m_printer;
    bool m_bFirstPage = true;
};

// A printer set up from a choice, and a choice read back from a printer: the two dialogs and
// the context share them.
void ApplyChoiceToPrinter(const PrinterChoice& choice, QPrinter* printer);
void ReadChoiceFromPrinter(const QPrinter& printer, PrinterChoice* choice);
