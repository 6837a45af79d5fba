#include "src/print/printprogress.h"

#include "src/resources/strings.h"

namespace {

constexpr UINT IDS_PRINTING_TITLE = 184;
// The texts of the window's two lines (its items 208 and 209), which the window formats.
constexpr const char* kNameFormat = "Printing \"%1\"...";
constexpr const char* kPageFormat = "Page %1!d! of %2!d! page(s)";

}  // namespace

CPrintProgressDialog::CPrintProgressDialog(HWND parent)
    : m_strNameFormat(kNameFormat), m_strPageFormat(kPageFormat) {
    if (IPrintBackend* backend = GetPrintBackend()) m_pWindow = backend->CreateProgress(parent, LoadString(IDS_PRINTING_TITLE));
}

void CPrintProgressDialog::SetName(const std::string& text) {
    if (m_pWindow) m_pWindow->SetNameText(FormatMessage(m_strNameFormat, {text}));
}

void CPrintProgressDialog::SetPageCount(int n) {
    m_nPages = n;
    if (!m_pWindow) return;
    m_pWindow->SetPageText(FormatMessage(m_strPageFormat, {std::to_string(m_nPage + 1), std::to_string(n)}));
    m_pWindow->SetRange(0, n);
}

void CPrintProgressDialog::SetPage(int n) {
    m_nPage = n;
    if (!m_pWindow) return;
    m_pWindow->SetPageText(FormatMessage(m_strPageFormat, {std::to_string(n), std::to_string(m_nPages)}));
    m_pWindow->SetPos(n);
    m_pWindow->Redraw();
}
