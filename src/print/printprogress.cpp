#include "src/print/printprogress.h"

#include "src/resources/strings.h"

namespace {

constexpr UINT IDS_PRINTING_TITLE = 184;
constexpr UINT IDS_PRINTING_NAME = 208;
constexpr UINT IDS_PRINTING_PAGE = 209;

}  // namespace

CPrintProgressDialog::CPrintProgressDialog(HWND parent)
    : m_strNameFormat(LoadString(IDS_PRINTING_NAME)), m_strPageFormat(LoadString(IDS_PRINTING_PAGE)) {
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
