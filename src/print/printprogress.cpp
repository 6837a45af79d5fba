#include "src/print/printprogress.h"

#include <cmath>

#include "platform/gdi/geometry.h"
#include "platform/window/olecontrol.h"
#include "platform/window/window.h"
#include "src/resources/strings.h"

namespace {

constexpr UINT IDS_PRINTING_TITLE = 184;
// The texts of the window's two lines (its items 208 and 209), which the window formats.
constexpr const char* kNameFormat = "Printing \"%1\"...";
constexpr const char* kPageFormat = "Page %1!d! of %2!d! page(s)";

// The animation's picture, in pixels: a document, a printer, and the sheet in flight between them.
constexpr LONG kWidth = 200, kHeight = 56;
constexpr COLORREF kPaper = 0xFFFFFF, kInk = 0x404040, kLines = 0xA0A0A0;
constexpr COLORREF kPrinterBody = 0x707070, kPrinterTop = 0x909090, kSlot = 0x202020, kLight = 0x00C000;
constexpr LONG kSheetWidth = 22, kSheetHeight = 28;
constexpr LONG kFlightTop = 4, kFlightArc = 16;  // the sheet's highest point, and how far the arc sags

// A sheet with its outline and a few lines of text, its top left at (x, y) of `at`.
void PaintSheet(CDC* dc, const RECT& at, LONG x, LONG y) {
    const RECT sheet = OffsetRect(RECT{0, 0, kSheetWidth, kSheetHeight}, at.left + x, at.top + y);
    dc->FillSolidRect(sheet, kInk);
    dc->FillSolidRect(RECT{sheet.left + 1, sheet.top + 1, sheet.right - 1, sheet.bottom - 1}, kPaper);
    for (LONG line = 0; line < 4; ++line) {
        const LONG top = sheet.top + 5 + line * 5;
        dc->FillSolidRect(RECT{sheet.left + 4, top, sheet.right - (line % 2 ? 8 : 4), top + 2}, kLines);
    }
}

}  // namespace

SIZE CPrintAnimation::GetSize() const { return SIZE{kWidth, kHeight}; }

void CPrintAnimation::Advance(DWORD now) {
    if (!m_bStarted) {
        m_bStarted = true;
        m_dwStart = now;
    }
    m_nFrame = static_cast<int>((now - m_dwStart) / kFrameMs % kFrames);
}

void CPrintAnimation::Paint(CDC* dc, const RECT& rc) {
    dc->FillSolidRect(rc, GetSysColor(COLOR_BTNFACE));
    // The document: a stack of two sheets.
    PaintSheet(dc, rc, 6, 22);
    PaintSheet(dc, rc, 2, 26);
    // The sheet in flight: from the document along an arc down into the printer, drawn
    // behind it so that the printer swallows it.
    const double t = static_cast<double>(m_nFrame) / (kFrames - 1);
    const LONG startX = 10, endX = kWidth - 38;
    const LONG x = startX + static_cast<LONG>(std::lround(t * (endX - startX)));
    const LONG y = kFlightTop + static_cast<LONG>(std::lround(kFlightArc * (2 * t - 1) * (2 * t - 1)));
    PaintSheet(dc, rc, x, y);
    // The printer, with the slot the sheet goes into and its light on.
    const LONG printerLeft = kWidth - 54;
    dc->FillSolidRect(OffsetRect(RECT{printerLeft, 30, kWidth - 2, kHeight - 2}, rc.left, rc.top), kPrinterBody);
    dc->FillSolidRect(OffsetRect(RECT{printerLeft + 4, 24, kWidth - 6, 30}, rc.left, rc.top), kPrinterTop);
    dc->FillSolidRect(OffsetRect(RECT{printerLeft + 10, 26, kWidth - 12, 28}, rc.left, rc.top), kSlot);
    dc->FillSolidRect(OffsetRect(RECT{kWidth - 12, kHeight - 10, kWidth - 7, kHeight - 6}, rc.left, rc.top), kLight);
}

CPrintProgressDialog::CPrintProgressDialog(HWND parent)
    : m_strNameFormat(kNameFormat), m_strPageFormat(kPageFormat) {
    if (IPrintBackend* backend = GetPrintBackend()) m_pWindow = backend->CreateProgress(parent, LoadString(IDS_PRINTING_TITLE));
    if (m_pWindow) m_pWindow->SetAnimation(&m_animation);
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
    m_animation.Advance(GetTickCount());
    if (!m_pWindow) return;
    m_pWindow->SetPageText(FormatMessage(m_strPageFormat, {std::to_string(n), std::to_string(m_nPages)}));
    m_pWindow->SetPos(n);
    m_pWindow->Redraw();
}
