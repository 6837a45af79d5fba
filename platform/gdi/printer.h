// Printers and the dialogs around a print job: the device a job prints on (its choice kept as
// two records, as the print and page setup dialogs share them), the desktop's print dialog, the
// page setup dialog with the control's own part in it, the progress window of a running job and
// a message box. A backend (Qt, or the scripted test backend) supplies them through
// IPrintBackend; without one nothing prints and every dialog answers Cancel.
#pragma once
#include <memory>
#include <string>

#include "platform/gdi/dc.h"
#include "platform/window/window.h"

// The printer's settings: paper, orientation, colour, copies. Lengths in thousandths of an inch.
struct DEVMODE {
    long nPaperWidth = 8500;   // Letter, portrait
    long nPaperHeight = 11000;
    bool bLandscape = false;
    bool bColor = true;
    int nCopies = 1;
    bool bCollate = true;
};

// Which printer: a queue of the desktop by name, or, with an output file, a PDF file.
struct DEVNAMES {
    std::string strDevice;  // empty: the desktop's default printer
    std::string strOutput;  // a PDF file to write instead of a printer; empty for none
};

// The device handles of a printer choice: null until a dialog or the host made a choice.
struct PrinterChoice {
    std::shared_ptr<DEVMODE> hDevMode;
    std::shared_ptr<DEVNAMES> hDevNames;
};

// The platform's part of the page setup: margins and the printer with its paper. The control's
// part goes through IPageSetupHook.
struct PageSetupRecord {
    PrinterChoice device;
    RECT rtMargin{1000, 1000, 1000, 1000};  // left, top, right, bottom, thousandths of an inch
};

// The control's items of an open page setup dialog, by item id.
class IPageSetupItems {
public:
    virtual std::string GetItemText(int id) const = 0;
    virtual void SetItemText(int id, const std::string& text) = 0;
    virtual bool IsChecked(int id) const = 0;
    virtual void CheckItem(int id, bool checked) = 0;
    virtual void EnableItem(int id, bool enable) = 0;
    virtual bool IsItemEnabled(int id) const = 0;
    // The page picture is drawn anew.
    virtual void InvalidatePreview() = 0;
    // A message over the dialog (a refused value).
    virtual void Message(const std::string& text) = 0;

protected:
    ~IPageSetupItems() = default;
};

// What the control does inside the page setup dialog, which the platform's dialog calls.
class IPageSetupHook {
public:
    // The dialog opens: fill the control's items (SetItemText, CheckItem) and their enabling.
    virtual void OnInitDialog(IPageSetupItems& items) = 0;
    // A character typed into item `id`: false refuses it (the dialog beeps).
    virtual bool OnChar(int id, unsigned ch) { return true; }
    // Item `id` loses the focus: the hook may tidy its text.
    virtual void OnKillFocus(IPageSetupItems& items, int id) {}
    // Item `id` was clicked or its text changed.
    virtual void OnCommand(IPageSetupItems& items, int id) {}
    // OK: take the values; false keeps the dialog open (with the message already shown).
    virtual bool OnOK(IPageSetupItems& items, const RECT& rtMargin) = 0;
    // Draws the text area of the page picture into `rc` of `dc`, for paper `paperWidth`
    // thousandths of an inch wide.
    virtual void PaintTextArea(IPageSetupItems& items, CDC* dc, const RECT& rc, long paperWidth) = 0;

protected:
    ~IPageSetupHook() = default;
};

// The moving picture of the progress window, drawn by the control.
class IPrintAnimation {
public:
    // Its size in pixels.
    virtual SIZE GetSize() const = 0;
    // Draws the current frame into `rc` of `dc`.
    virtual void Paint(CDC* dc, const RECT& rc) = 0;

protected:
    ~IPrintAnimation() = default;
};

// The window of a running job: an animation, a name line, a page line and a bar. It shows at
// once and is drawn while the job runs, without the rest of the application being served.
class IPrintProgress {
public:
    virtual ~IPrintProgress() = default;
    // Shows `animation` above the lines, drawn anew at each Redraw; the caller keeps it alive
    // as long as the window. A window without room for one ignores it.
    virtual void SetAnimation(IPrintAnimation* animation) {}
    virtual void SetNameText(const std::string& text) = 0;
    virtual void SetPageText(const std::string& text) = 0;
    virtual void SetRange(int low, int high) = 0;
    virtual void SetPos(int pos) = 0;
    // Draws the window now.
    virtual void Redraw() = 0;
};

class IPrintBackend {
public:
    virtual ~IPrintBackend() = default;
    // A context of the chosen printer, or null when it cannot be opened.
    virtual std::unique_ptr<CDC> CreatePrinterDC(const PrinterChoice& choice) = 0;
    // The desktop's print dialog, in print mode, starting from `choice`; true for OK, with the
    // choice made in `choice`.
    virtual bool PrintDialog(HWND parent, PrinterChoice* choice) = 0;
    // The page setup dialog with the hook's items; true for OK.
    virtual bool PageSetupDialog(HWND parent, PageSetupRecord* record, IPageSetupHook* hook) = 0;
    // A progress window over `parent`, titled `title`; null when none can be made.
    virtual std::unique_ptr<IPrintProgress> CreateProgress(HWND parent, const std::string& title) = 0;
    // A message box with OK.
    virtual void MessageBox(HWND parent, const std::string& text) = 0;
};

// Installs the backend for the process; returns the previous one. The caller keeps ownership.
IPrintBackend* SetPrintBackend(IPrintBackend* backend);
IPrintBackend* GetPrintBackend();
