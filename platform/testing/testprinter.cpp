#include "platform/testing/testprinter.h"

CTestPrinterDC::CTestPrinterDC(const TestPaper& paper, std::shared_ptr<PrintJobRecord> job, int nFailAtPage)
    : CTestDC(nullptr, nullptr), m_paper(paper), m_pJob(std::move(job)), m_nFailAtPage(nFailAtPage) {
    UpdateVisible();
}

int CTestPrinterDC::GetDeviceCaps(int index) const {
    switch (index) {
    case LOGPIXELSX:
    case LOGPIXELSY:
        return m_paper.nDpi;
    case PHYSICALWIDTH:
        return m_paper.nWidth;
    case PHYSICALHEIGHT:
        return m_paper.nHeight;
    case PHYSICALOFFSETX:
        return m_paper.nOffsetX;
    case PHYSICALOFFSETY:
        return m_paper.nOffsetY;
    case HORZRES:
        return m_paper.nWidth - 2 * m_paper.nOffsetX;
    case VERTRES:
        return m_paper.nHeight - 2 * m_paper.nOffsetY;
    default:
        return 0;
    }
}

// The printable area, in logical units at the present mapping.
RECT CTestPrinterDC::DeviceRect() const {
    RECT rc{0, 0, m_paper.nWidth - 2 * m_paper.nOffsetX, m_paper.nHeight - 2 * m_paper.nOffsetY};
    DPtoLP(&rc);
    return rc;
}

int CTestPrinterDC::StartDoc(const DOCINFO* info) {
    if (!info || m_bFailStartDoc) return SP_ERROR;
    m_pJob->strName = info->lpszDocName ? info->lpszDocName : "";
    m_bStarted = true;
    return 1;
}

int CTestPrinterDC::StartPage() {
    if (!m_bStarted || m_pJob->nPages + 1 == m_nFailAtPage) return SP_ERROR;
    ++m_pJob->nPages;
    // A new page starts from a fresh context, as a printer's does.
    SetMapMode(MM_TEXT);
    SetWindowOrg(0, 0);
    return 1;
}

int CTestPrinterDC::EndPage() { return m_bStarted ? 1 : SP_ERROR; }

int CTestPrinterDC::EndDoc() {
    if (!m_bStarted) return SP_ERROR;
    m_pJob->bEnded = true;
    return 1;
}

void CTestPrinterDC::TextPrimitive(const TextRunPrimitive& run) {
    CTestDC::TextPrimitive(run);
    if (!Visible().Touches(RECT{run.origin.x, run.origin.y - 1, run.origin.x + 1, run.origin.y})) return;
    PrintedRun printed;
    printed.nPage = m_pJob->nPages;
    printed.ptDevice = run.origin;
    LPtoDP(&printed.ptDevice);
    printed.text.assign(run.text, run.count);
    printed.color = run.color;
    printed.background = run.background;
    printed.bOpaque = !run.filled.IsEmpty();
    m_pJob->runs.push_back(std::move(printed));
}

void CTestPrinterDC::FillPrimitive(const RECT& rc, COLORREF color) {
    CTestDC::FillPrimitive(rc, color);
    if (Visible().Touches(rc)) m_pJob->fills.emplace_back(m_pJob->nPages, color);
}

std::string CTestDialogItems::GetItemText(int id) const {
    auto it = m_text.find(id);
    return it == m_text.end() ? std::string() : it->second;
}

bool CTestDialogItems::IsChecked(int id) const {
    auto it = m_checked.find(id);
    return it != m_checked.end() && it->second;
}

bool CTestDialogItems::IsItemEnabled(int id) const {
    auto it = m_enabled.find(id);
    return it == m_enabled.end() || it->second;
}

void CTestDialogItems::Type(int id, const std::string& text) {
    std::string typed;
    for (char c : text) {
        if (m_pHook->OnChar(id, static_cast<unsigned char>(c)))
            typed += c;
        else
            ++m_nBeeps;
    }
    m_text[id] = typed;
    m_pHook->OnCommand(*this, id);
}

void CTestDialogItems::Click(int id) {
    m_checked[id] = !IsChecked(id);
    m_pHook->OnCommand(*this, id);
}

std::unique_ptr<CDC> CTestPrintBackend::CreatePrinterDC(const PrinterChoice& choice) {
    if (choice.hDevNames && choice.hDevNames->strDevice == "missing") return nullptr;
    auto job = std::make_shared<PrintJobRecord>();
    m_jobs.push_back(job);
    auto dc = std::make_unique<CTestPrinterDC>(m_paper, job, m_nFailAtPage);
    dc->m_bFailStartDoc = m_bFailStartDoc;
    return dc;
}

bool CTestPrintBackend::PrintDialog(HWND, PrinterChoice* choice) {
    m_lastDialogChoice = *choice;
    if (!m_bPrintOK) return false;
    if (!choice->hDevNames) choice->hDevNames = std::make_shared<DEVNAMES>();
    if (!choice->hDevMode) choice->hDevMode = std::make_shared<DEVMODE>();
    choice->hDevNames->strDevice = m_strChooseDevice;
    return true;
}

bool CTestPrintBackend::PageSetupDialog(HWND, PageSetupRecord* record, IPageSetupHook* hook) {
    if (!m_pageSetupScript) return false;
    CTestDialogItems items(hook);
    hook->OnInitDialog(items);
    PageSetupRecord edited = *record;
    if (!m_pageSetupScript(items, edited) || !hook->OnOK(items, edited.rtMargin)) return false;
    record->device = edited.device;
    return true;
}

namespace {

// The progress window: its texts go to the backend's list.
class CTestProgress final : public IPrintProgress {
public:
    explicit CTestProgress(CTestPrintBackend& backend) : m_backend(backend) {}
    void SetNameText(const std::string& text) override { m_backend.m_progressTexts.push_back(text); }
    void SetPageText(const std::string& text) override { m_backend.m_progressTexts.push_back(text); }
    void SetRange(int, int) override {}
    void SetPos(int pos) override { m_nPos = pos; }
    void SetAnimation(IPrintAnimation* animation) override { m_pAnimation = animation; }
    void Redraw() override {
        if (m_pAnimation) m_backend.m_animationPictures.push_back(PaintAnimation());
        if (m_backend.m_onProgress) m_backend.m_onProgress(m_nPos);
    }

private:
    // The animation's frame as the rectangles it filled, "left,top,right,bottom:colour" each.
    std::string PaintAnimation() {
        const SIZE size = m_pAnimation->GetSize();
        std::unique_ptr<CTestDC> dc = CTestDC::Screen(size.cx, size.cy);
        m_pAnimation->Paint(dc.get(), RECT{0, 0, size.cx, size.cy});
        std::string picture;
        for (const DrawRecord& draw : dc->Log())
            if (draw.kind == DrawKind::Fill)
                picture += std::to_string(draw.rc.left) + "," + std::to_string(draw.rc.top) + "," + std::to_string(draw.rc.right) + "," +
                           std::to_string(draw.rc.bottom) + ":" + std::to_string(draw.color) + " ";
        return picture;
    }

    CTestPrintBackend& m_backend;
    IPrintAnimation* m_pAnimation = nullptr;
    int m_nPos = 0;
};

}  // namespace

std::unique_ptr<IPrintProgress> CTestPrintBackend::CreateProgress(HWND, const std::string&) {
    return std::make_unique<CTestProgress>(*this);
}
