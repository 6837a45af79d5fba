// The printing services of the Qt backend: printer contexts (qtprinter.h), the desktop's print
// dialog (QPrintDialog), the page setup dialog (a form of ours: paper, orientation, margins and
// printer, with the control's items and the page picture whose text area the control draws), the
// progress window of a job, and message boxes.
#pragma once
#include <functional>

#include "platform/gdi/printer.h"

class CQtPrintBackend final : public IPrintBackend {
public:
    std::unique_ptr<CDC> CreatePrinterDC(const PrinterChoice& choice) override;
    bool PrintDialog(HWND parent, PrinterChoice* choice) override;
    bool PageSetupDialog(HWND parent, PageSetupRecord* record, IPageSetupHook* hook) override;
    std::unique_ptr<IPrintProgress> CreateProgress(HWND parent, const std::string& title) override;
    // A message box; with a sink set (a run without windows), the text goes there instead.
    void MessageBox(HWND parent, const std::string& text) override;
    void SetMessageSink(std::function<void(const std::string&)> sink) { m_sink = std::move(sink); }
    // No progress window (a run without windows).
    void SetQuiet(bool quiet) { m_bQuiet = quiet; }

private:
    std::function<void(const std::string&)> m_sink;
    bool m_bQuiet = false;
};
