// The window of a running print job: the document's name, "Page n of m page(s)" and a bar.
// It is drawn at each page while the job holds the thread; its Cancel does not stop the job.
#pragma once
#include <memory>
#include <string>

#include "platform/gdi/printer.h"

class CPrintProgressDialog {
public:
    // Shows the window over `parent`; without a print backend nothing shows and every call is
    // kept in the counters only.
    explicit CPrintProgressDialog(HWND parent);
    void SetName(const std::string& text);
    void SetPageCount(int n);
    void SetPage(int n);
    int GetPageCount() const { return m_nPages; }
    int GetPage() const { return m_nPage; }

private:
    std::unique_ptr<IPrintProgress> m_pWindow;
    std::string m_strNameFormat;
    std::string m_strPageFormat;
    int m_nPages = 0;
    int m_nPage = 0;
};
