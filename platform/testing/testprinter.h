// The printing side of the deterministic backend: a recording printer whose context keeps every
// text run of a job with its page and its place on the page in device pixels, and dialogs that
// answer as a test scripts them. Without a script the print dialog answers OK and the page
// setup dialog Cancel.
#pragma once
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/gdi/printer.h"
#include "platform/testing/testdc.h"

// The page of the recording printer, in device pixels: Letter at 600 pixels per inch, with no
// unprintable border unless a test sets one.
struct TestPaper {
    LONG nWidth = 5100;
    LONG nHeight = 6600;
    LONG nDpi = 600;
    LONG nOffsetX = 0;
    LONG nOffsetY = 0;
};

// A text run as it reached the page.
struct PrintedRun {
    int nPage = 0;       // from 1
    POINT ptDevice{};    // the left end of the baseline, in device pixels
    std::string text;
    COLORREF color = 0;
    COLORREF background = 0;
    bool bOpaque = false;  // its cells were filled with the background
};

struct PrintJobRecord {
    std::string strName;
    int nPages = 0;        // pages started
    bool bEnded = false;   // EndDoc came
    std::vector<PrintedRun> runs;
    std::vector<std::pair<int, COLORREF>> fills;  // page and colour of every fill
};

class CTestPrinterDC : public CTestDC {
public:
    CTestPrinterDC(const TestPaper& paper, std::shared_ptr<PrintJobRecord> job, int nFailAtPage);
    int GetDeviceCaps(int index) const override;
    int StartDoc(const DOCINFO* info) override;
    int StartPage() override;
    int EndPage() override;
    int EndDoc() override;
    int AbortDoc() override { return 1; }
    bool m_bFailStartDoc = false;

protected:
    RECT DeviceRect() const override;
    bool CanScale() const override { return true; }
    void TextPrimitive(const TextRunPrimitive& run) override;
    void FillPrimitive(const RECT& rc, COLORREF color) override;

private:
    TestPaper m_paper;
    std::shared_ptr<PrintJobRecord> m_pJob;
    int m_nFailAtPage;
    bool m_bStarted = false;
};

// The control's items of a scripted page setup dialog, with the typing a user does.
class CTestDialogItems final : public IPageSetupItems {
public:
    explicit CTestDialogItems(IPageSetupHook* hook) : m_pHook(hook) {}
    std::string GetItemText(int id) const override;
    void SetItemText(int id, const std::string& text) override { m_text[id] = text; }
    bool IsChecked(int id) const override;
    void CheckItem(int id, bool checked) override { m_checked[id] = checked; }
    void EnableItem(int id, bool enable) override { m_enabled[id] = enable; }
    bool IsItemEnabled(int id) const override;
    void InvalidatePreview() override { ++m_nPreviewInvalidated; }
    void Message(const std::string& text) override { m_messages.push_back(text); }

    // A user's actions: select the item's text and type over it (each refused character beeps),
    // leave the item, click a check box.
    void Type(int id, const std::string& text);
    void Leave(int id) { m_pHook->OnKillFocus(*this, id); }
    void Click(int id);

    int m_nPreviewInvalidated = 0;
    int m_nBeeps = 0;
    std::vector<std::string> m_messages;

private:
    IPageSetupHook* m_pHook;
    std::map<int, std::string> m_text;
    std::map<int, bool> m_checked;
    std::map<int, bool> m_enabled;
};

class CTestPrintBackend final : public IPrintBackend {
public:
    std::unique_ptr<CDC> CreatePrinterDC(const PrinterChoice& choice) override;
    bool PrintDialog(HWND parent, PrinterChoice* choice) override;
    bool PageSetupDialog(HWND parent, PageSetupRecord* record, IPageSetupHook* hook) override;
    std::unique_ptr<IPrintProgress> CreateProgress(HWND parent, const std::string& title) override;
    void MessageBox(HWND parent, const std::string& text) override { m_messages.push_back(text); }

    // The print dialog's answer, and the printer it chooses on OK (a device name "missing"
    // cannot be opened).
    bool m_bPrintOK = true;
    std::string m_strChooseDevice = "Test Printer";
    // The page setup dialog: a script that acts on the items and gives OK (true) or Cancel; with
    // OK the dialog's OK runs as the platform's does, and a refusal counts as Cancel.
    std::function<bool(CTestDialogItems&, PageSetupRecord&)> m_pageSetupScript;
    TestPaper m_paper;
    bool m_bFailStartDoc = false;
    int m_nFailAtPage = 0;     // StartPage of this page fails
    // Called at each redraw of the progress window with the page it shows.
    std::function<void(int page)> m_onProgress;

    std::vector<std::shared_ptr<PrintJobRecord>> m_jobs;
    std::vector<std::string> m_messages;
    std::vector<std::string> m_progressTexts;
    // What the progress window's animation drew at each redraw: its filled rectangles.
    std::vector<std::string> m_animationPictures;
    PrinterChoice m_lastDialogChoice;  // what the print dialog was opened with
};

// Installs a CTestPrintBackend for the life of the scope.
class CTestPrintScope {
public:
    CTestPrintScope() : m_pPrevious(SetPrintBackend(&m_backend)) {}
    ~CTestPrintScope() { SetPrintBackend(m_pPrevious); }
    CTestPrintBackend& Backend() { return m_backend; }

private:
    CTestPrintBackend m_backend;
    IPrintBackend* m_pPrevious;
};
