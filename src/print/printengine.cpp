// The print engine: the whole job of Print. It lays the document out afresh for the printer on a
// line table of its own, with the printer's fonts in the view's font cache, and paints pages
// with the screen's painter, column by column, under a header and a footer made from templates.
// On every way out the screen's metrics come back; the view's own line table and top line are
// never touched, and nothing of the screen is painted while the job holds the thread.
#include <cstring>
#include <ctime>
#include <stdexcept>

#include "platform/gdi/fontobject.h"
#include "platform/window/paint.h"
#include "src/layout/linelengthlist.h"
#include "src/layout/rowwrapper.h"
#include "src/layout/textreader.h"
#include "src/resources/strings.h"
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr UINT IDS_PRINT_ERROR = 175;
constexpr UINT IDS_NO_ROOM = 187;
constexpr UINT IDS_BAD_COLUMNS = 183;
// The option bits a printout never has: the screen metrics bit, the fold boxes, the gutter
// pictures and the bookmark flags.
constexpr DWORD kScreenOnlyOptions = OPT_SCREENMETRICS | OPT_COLLAPSEBLOCKENABLE | OPT_GUTTERBITMAPVISIBLE | OPT_BOOKMARKVISIBLE;
// The header and footer: centred lines that wrap at their box, with tabs expanded.
constexpr UINT kTemplateFormat = DT_CENTER | DT_WORDBREAK | DT_EXPANDTABS;
// The size of a path the document gives.
constexpr size_t kPathSize = 260;

// A failure of the job, with the text the user is shown.
struct PrintError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

bool SameNameIgnoringCase(const std::string& a, const char* b) {
    if (a.size() != std::strlen(b)) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (std::toupper(static_cast<unsigned char>(a[i])) != b[i]) return false;
    return true;
}

std::string FormatTime(const std::tm& now, const char* format) {
    char buffer[128];
    const size_t n = std::strftime(buffer, sizeof buffer, format, &now);
    return std::string(buffer, n);
}

// A length in thousandths of an inch as device pixels, truncated.
long DevicePixels(long dpi, long thousandths) { return static_cast<long>(static_cast<long long>(dpi) * thousandths / 1000); }

// The page's geometry in logical units, worked out once per job.
struct PageLayout {
    RECT rcText{};
    long nLinesPerColumn = 1;
    long nColumnGap = 0;
    RECT rcColumn{};
    RECT rcHeader{}, rcFooter{};
    long nHeaderTop = 0, nFooterTop = 0;
    long nGutter = 0;
};

}  // namespace

void CZentrelCtrl::ExpandTemplate(std::string* out, const std::string& lpszTemplate, const std::string& lpszName, long nPage,
                                  const std::tm& now) {
    out->clear();
    for (size_t i = 0; i < lpszTemplate.size(); ++i) {
        const char c = lpszTemplate[i];
        if (IsLeadByte(static_cast<BYTE>(c)) && i + 1 < lpszTemplate.size()) {
            *out += c;
            *out += lpszTemplate[++i];
            continue;
        }
        if (c != '<') {
            *out += c;
            continue;
        }
        const size_t close = lpszTemplate.find('>', i + 1);
        if (close == std::string::npos) return;  // an unclosed token drops the rest
        const std::string name = lpszTemplate.substr(i + 1, close - i - 1);
        i = close;
        if (SameNameIgnoringCase(name, "PAGE"))
            *out += std::to_string(nPage);
        else if (SameNameIgnoringCase(name, "DOCPATHNAME"))
            *out += lpszName;
        else if (SameNameIgnoringCase(name, "DATETIME"))
            *out += FormatTime(now, "%x %X");
        else if (SameNameIgnoringCase(name, "DATE"))
            *out += FormatTime(now, "%x");
        else if (SameNameIgnoringCase(name, "TIME"))
            *out += FormatTime(now, "%X");
    }
}

DWORD CZentrelCtrl::GetPrintOptions(DWORD dwOptions) const {
    const CEditPageSetupDialog& setup = m_dlgPageSetup;
    DWORD options = (dwOptions & ~kScreenOnlyOptions) | OPT_HIDESELECTION;
    options = setup.m_bColorPrinting ? options & ~OPT_MONODRAW : options | OPT_MONODRAW;
    options = setup.m_bHiddenChars ? options | OPT_DISPLAYALL : options & ~OPT_DISPLAYALL;
    options = setup.m_bLineNumbers ? options | OPT_SHOWLINENUMBER : options & ~OPT_SHOWLINENUMBER;
    return options;
}

void CZentrelCtrl::PreparePrinterDC(CDC* pDC) {
    const int printerX = pDC->GetDeviceCaps(LOGPIXELSX), printerY = pDC->GetDeviceCaps(LOGPIXELSY);
    if (CDC* desktop = GetDC(nullptr)) {
        PrepareDC(desktop);
        const int screenX = desktop->GetDeviceCaps(LOGPIXELSX), screenY = desktop->GetDeviceCaps(LOGPIXELSY);
        pDC->SetMapMode(MM_ISOTROPIC);
        pDC->SetWindowExt(screenX, screenY);
        pDC->SetViewportExt(printerX, printerY);
        ReleaseDC(nullptr, desktop);
    }
    pDC->SetTextAlign(TA_BASELINE);
    pDC->SetBkMode(OPAQUE);
}

void CZentrelCtrl::PrintTemplate(CDC* pDC, const std::string& strTemplate, long nPage, const std::string& lpszName,
                                 const std::tm& now, const RECT* prc) {
    if (strTemplate.empty()) return;
    std::string text;
    ExpandTemplate(&text, strTemplate, lpszName, nPage, now);
    CFont font;
    CreateFontFromDesc(m_fontGutter.GetFontDesc(), &font);
    CFont* oldFont = pDC->SelectObject(font.IsValid() ? &font : nullptr);
    const int oldMode = pDC->SetBkMode(TRANSPARENT);
    pDC->SetTextColor(0x000000);
    RECT rc = *prc;
    pDC->DrawText(text.data(), static_cast<int>(text.size()), &rc, kTemplateFormat);
    pDC->SetBkMode(oldMode);
    pDC->SelectObject(oldFont);
}

void CZentrelCtrl::PrintHeader(CDC* pDC, long nPage, const std::string& lpszName, const std::tm& now, const RECT* prc) {
    PrintTemplate(pDC, m_dlgPageSetup.m_strHeader, nPage, lpszName, now, prc);
}

void CZentrelCtrl::PrintFooter(CDC* pDC, long nPage, const std::string& lpszName, const std::tm& now, const RECT* prc) {
    PrintTemplate(pDC, m_dlgPageSetup.m_strFooter, nPage, lpszName, now, prc);
}

BOOL CZentrelCtrl::PrintDocument(const char* lpszName) {
    IPrintBackend* backend = GetPrintBackend();
    PrinterChoice choice = m_dlgPageSetup.m_psd.device;
    if (!m_pDoc || !backend || !backend->PrintDialog(GetSafeHwnd(), &choice)) return FALSE;
    m_dlgPageSetup.m_psd.device = choice;
    return PrintJob(lpszName);
}

BOOL CZentrelCtrl::PageSetup() { return m_dlgPageSetup.DoModal(GetSafeHwnd()); }

// Reads the device and works out where text, header and footer stand, in logical units.
namespace {

PageLayout LayOutPage(CDC* dc, const CEditPageSetupDialog& setup, long lineHeight) {
    const long dpiX = dc->GetDeviceCaps(LOGPIXELSX), dpiY = dc->GetDeviceCaps(LOGPIXELSY);
    const long offX = dc->GetDeviceCaps(PHYSICALOFFSETX), offY = dc->GetDeviceCaps(PHYSICALOFFSETY);
    const RECT& margin = setup.m_psd.rtMargin;
    PageLayout page;
    page.rcText = RECT{static_cast<LONG>(DevicePixels(dpiX, margin.left) - offX), static_cast<LONG>(DevicePixels(dpiY, margin.top) - offY),
                       static_cast<LONG>(dc->GetDeviceCaps(PHYSICALWIDTH) - DevicePixels(dpiX, margin.right) - offX),
                       static_cast<LONG>(dc->GetDeviceCaps(PHYSICALHEIGHT) - DevicePixels(dpiY, margin.bottom) - offY)};
    dc->DPtoLP(&page.rcText);
    page.nLinesPerColumn = std::max(1L, static_cast<long>(page.rcText.Height()) / lineHeight);
    const auto across = [&](long thousandths) {
        SIZE size{static_cast<LONG>(DevicePixels(dpiX, thousandths)), 0};
        dc->DPtoLP(&size);
        return static_cast<long>(size.cx);
    };
    const auto down = [&](long thousandths) {
        SIZE size{0, static_cast<LONG>(DevicePixels(dpiY, thousandths))};
        dc->DPtoLP(&size);
        return static_cast<long>(size.cy);
    };
    page.nColumnGap = across(setup.m_nColumnGap);
    const long columnWidth = (page.rcText.Width() - (setup.m_nColumns - 1) * page.nColumnGap) / setup.m_nColumns;
    if (columnWidth <= 0) throw PrintError(LoadString(IDS_NO_ROOM));
    page.rcColumn = RECT{0, 0, static_cast<LONG>(columnWidth), static_cast<LONG>(page.nLinesPerColumn * lineHeight)};
    page.rcHeader = RECT{0, 0, page.rcText.Width(), static_cast<LONG>(down(setup.m_nHeaderDistance))};
    page.rcFooter = RECT{0, 0, page.rcText.Width(), static_cast<LONG>(down(setup.m_nFooterDistance))};
    page.nHeaderTop = page.rcText.top - page.rcHeader.Height();
    page.nFooterTop = page.rcText.bottom + page.rcFooter.Height();
    if (setup.m_bLineNumbers) page.nGutter = across(setup.m_nLineNumberWidth);
    return page;
}

// Lays out the rows of the next page into `pLines`, behind one row that stands for all the text
// in front of them, so that each row keeps its place in the text and the table stays a page
// long; false when no text is left for another page.
bool LayOutNextPage(CRowWrapper& wrapper, long perPage, CLineIndex* pLines) {
    CLineLengthList rows;
    rows.InsertAt(0, wrapper.GetWrapped());
    if (wrapper.WrapRows(perPage, &rows) == 0) return false;
    pLines->Build(rows.Data(), rows.m_nCount);
    return true;
}

// The pages of the job: exact once the layout is done, and until then the rows laid out so far
// scaled up by the share of the text they cover.
long EstimatePageCount(const CRowWrapper& wrapper, long rows, long perPage) {
    if (!wrapper.IsDone() && wrapper.GetWrapped() > 0)
        rows = static_cast<long>(static_cast<double>(rows) * wrapper.GetLength() / wrapper.GetWrapped());
    return std::max(1L, (rows + perPage - 1) / perPage);
}

}  // namespace

void CZentrelCtrl::PrintPages(CDC* dc, const char* lpszName) {
    const CEditPageSetupDialog& setup = m_dlgPageSetup;
    if (setup.m_nColumns < CEditPageSetupDialog::kMinColumns || setup.m_nColumns > CEditPageSetupDialog::kMaxColumns)
        throw PrintError(FormatMessage(LoadString(IDS_BAD_COLUMNS), {std::to_string(CEditPageSetupDialog::kMinColumns),
                                                                     std::to_string(CEditPageSetupDialog::kMaxColumns)}));
    // The window shows before the printer's metrics take over: while it comes up the desktop may
    // have the application draw itself, and the view must still draw with the screen's.
    CPrintProgressDialog progress(GetSafeHwnd());
    PreparePrinterDC(dc);
    BuildFontCache(dc, TRUE);
    const PageLayout page = LayOutPage(dc, setup, m_nLineHeight);

    // The job's own table, laid out page by page just before each page prints (LayOutNextPage).
    CLineIndex lines;
    CTextReader text(m_pDoc);
    PaintContext paint;
    paint.pDC = dc;
    paint.pText = &text;
    paint.nDocLength = text.Length();
    paint.pLines = &lines;
    paint.dwOptions = GetPrintOptions(m_Options);
    paint.nGutter = page.nGutter;
    paint.prcBounds = paint.prcUpdate = &page.rcColumn;
    const long wrapWidth = std::max(0L, page.rcColumn.Width() - m_nCharWidth - page.nGutter);
    CRowWrapper wrapper(*this, m_pDoc, paint.dwOptions, wrapWidth);

    const long perPage = page.nLinesPerColumn * setup.m_nColumns;
    std::string name = lpszName && *lpszName ? lpszName : "";
    if (name.empty()) {
        char path[kPathSize] = {};
        if (SUCCEEDED(m_pDoc->GetPathName(path))) name.assign(path, strnlen(path, sizeof path));
    }
    progress.SetName(name);
    const std::time_t clock = std::time(nullptr);
    std::tm now{};
    localtime_r(&clock, &now);

    long rowsPrinted = 0;
    for (long nPage = 1;; ++nPage) {
        if (!LayOutNextPage(wrapper, perPage, &lines)) break;
        rowsPrinted += lines.m_nCount - 1;
        const long pages = EstimatePageCount(wrapper, rowsPrinted, perPage);
        if (pages != progress.GetPageCount()) progress.SetPageCount(static_cast<int>(pages));
        paint.nScrollY = m_nLineHeight;  // behind the row of the text in front of the page
        const long nTotalHeight = m_nLineHeight * lines.m_nCount;
        if (dc->StartPage() <= 0) throw PrintError(LoadString(IDS_PRINT_ERROR));
        PreparePrinterDC(dc);
        progress.SetPage(static_cast<int>(nPage));
        dc->SetWindowOrg(-page.rcText.left, -static_cast<int>(page.nHeaderTop));
        PrintHeader(dc, nPage, name, now, &page.rcHeader);
        dc->SetWindowOrg(-page.rcText.left, -static_cast<int>(page.nFooterTop));
        PrintFooter(dc, nPage, name, now, &page.rcFooter);
        for (long column = 0; column < setup.m_nColumns; ++column) {
            const long left = page.rcText.left + column * (page.rcColumn.Width() + page.nColumnGap);
            dc->SetWindowOrg(-static_cast<int>(left), -page.rcText.top);
            dc->IntersectClipRect(page.rcColumn);
            PaintLines(&paint);
            dc->SelectClipRgn(nullptr);
            paint.nScrollY += page.rcColumn.Height();
            if (paint.nScrollY >= nTotalHeight) break;
        }
        dc->SetWindowOrg(0, 0);
        if (dc->EndPage() <= 0) throw PrintError(LoadString(IDS_PRINT_ERROR));
    }
}

BOOL CZentrelCtrl::PrintJob(const char* lpszName) {
    if (!m_pDoc) return FALSE;
    BOOL result = TRUE;
    std::unique_ptr<CDC> dc;
    try {
        dc = m_dlgPageSetup.CreatePrinterDC();
        if (!dc) throw PrintError(LoadString(IDS_PRINT_ERROR));
        DOCINFO info;
        info.lpszDocName = lpszName;
        // A document the spooler refuses prints nothing, and says nothing.
        if (dc->StartDoc(&info) > 0) {
            PrintPages(dc.get(), lpszName);
            if (dc->EndDoc() <= 0) throw PrintError(LoadString(IDS_PRINT_ERROR));
        }
        dc.reset();
    } catch (const std::exception& e) {
        dc.reset();  // the job is left unfinished: no EndDoc
        if (IPrintBackend* backend = GetPrintBackend()) backend->MessageBox(GetSafeHwnd(), e.what());
        result = FALSE;
    }
    RebuildFontCache();
    InvalidateControl();
    return result;
}
