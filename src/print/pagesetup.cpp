#include "src/print/pagesetup.h"

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>

#include "platform/window/olecontrol.h"
#include "src/resources/strings.h"

namespace {

constexpr UINT IDS_DEFAULT_HEADER = 176;
constexpr UINT IDS_DEFAULT_FOOTER = 177;
constexpr UINT IDS_PREVIEW_TEXT = 182;
constexpr UINT IDS_COLUMNS_RANGE = 183;
constexpr char kInchMark = '"';
// The number strip's digits stand this far in from its right edge, at the picture's scale.
constexpr long kNumberInset = 400;
// The preview's text is drawn in a font of this height, in picture pixels.
constexpr long kPreviewFontHeight = 7;

// A whole number as the dialog's number edit reads it: false for no number or an overflow.
bool ReadInt(const std::string& text, long* out) {
    errno = 0;
    char* end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 10);
    if (end == text.c_str() || errno == ERANGE || value > INT_MAX || value < INT_MIN) return false;
    *out = value;
    return true;
}

}  // namespace

bool CInchEdit::AcceptsChar(unsigned ch) { return (ch >= '0' && ch <= '9') || ch < 0x20 || ch == '.' || ch == kInchMark; }

long CInchEdit::ValueFromText(const std::string& text) {
    const double inches = std::strtod(text.c_str(), nullptr);
    const double thousandths = std::trunc(inches * 1000.0);
    if (!std::isfinite(thousandths) || std::fabs(inches) >= static_cast<double>(LONG_MAX) / 1000.0) return 0;
    return static_cast<long>(thousandths);
}

std::string CInchEdit::TextFromValue(long n) {
    std::string text = std::to_string(n / 1000);
    if (const long rest = std::labs(n % 1000); rest != 0) {
        char digits[8];
        std::snprintf(digits, sizeof digits, ".%03ld", rest);
        text += digits;
    }
    return text + kInchMark;
}

CEditPageSetupDialog::CEditPageSetupDialog()
    : m_strFooter(LoadString(IDS_DEFAULT_FOOTER)), m_strHeader(LoadString(IDS_DEFAULT_HEADER)) {}

BOOL CEditPageSetupDialog::DoModal(HWND parent) {
    IPrintBackend* backend = GetPrintBackend();
    return backend && backend->PageSetupDialog(parent, &m_psd, this) ? TRUE : FALSE;
}

std::unique_ptr<CDC> CEditPageSetupDialog::CreatePrinterDC() const {
    IPrintBackend* backend = GetPrintBackend();
    return backend ? backend->CreatePrinterDC(m_psd.device) : nullptr;
}

const CInchEdit* CEditPageSetupDialog::FindInchEdit(int id) const {
    for (const CInchEdit* edit : {&m_editColumnGap, &m_editFooterDistance, &m_editHeaderDistance, &m_editLineNumberWidth})
        if (edit->GetId() == id) return edit;
    return nullptr;
}

void CEditPageSetupDialog::OnInitDialog(IPageSetupItems& items) {
    m_editColumnGap.SetValue(items, m_nColumnGap);
    m_editFooterDistance.SetValue(items, m_nFooterDistance);
    m_editHeaderDistance.SetValue(items, m_nHeaderDistance);
    m_editLineNumberWidth.SetValue(items, m_nLineNumberWidth);
    items.CheckItem(IDC_COLOR_PRINTING, m_bColorPrinting);
    items.CheckItem(IDC_LINE_NUMBERS, m_bLineNumbers);
    items.CheckItem(IDC_HIDDEN_CHARS, m_bHiddenChars);
    items.SetItemText(IDC_HEADER, m_strHeader);
    items.SetItemText(IDC_FOOTER, m_strFooter);
    items.SetItemText(IDC_COLUMNS, std::to_string(m_nColumns));
    UpdateControls(items);
}

bool CEditPageSetupDialog::OnChar(int id, unsigned ch) {
    if (id == IDC_COLUMNS) return (ch >= '0' && ch <= '9') || ch < 0x20;
    return !FindInchEdit(id) || CInchEdit::AcceptsChar(ch);
}

void CEditPageSetupDialog::OnKillFocus(IPageSetupItems& items, int id) {
    if (const CInchEdit* edit = FindInchEdit(id)) edit->OnKillFocus(items);
}

void CEditPageSetupDialog::OnCommand(IPageSetupItems& items, int id) {
    if (id == IDC_LINE_NUMBERS || id == IDC_COLUMNS) UpdateControls(items);
    if (id == IDC_LINE_NUMBERS || id == IDC_COLUMNS || id == IDC_LINE_NUMBER_WIDTH || id == IDC_HEADER_DISTANCE ||
        id == IDC_COLOR_PRINTING || id == IDC_COLUMN_GAP)
        items.InvalidatePreview();
}

void CEditPageSetupDialog::UpdateControls(IPageSetupItems& items) {
    items.EnableItem(IDC_LINE_NUMBER_WIDTH, items.IsChecked(IDC_LINE_NUMBERS));
    long columns = 0;
    items.EnableItem(IDC_COLUMN_GAP, ReadInt(items.GetItemText(IDC_COLUMNS), &columns) && columns >= 2);
}

bool CEditPageSetupDialog::OnOK(IPageSetupItems& items, const RECT& rtMargin) {
    long columns = 0;
    if (!ReadInt(items.GetItemText(IDC_COLUMNS), &columns) || columns < kMinColumns || columns > kMaxColumns) {
        items.Message(FormatMessage(LoadString(IDS_COLUMNS_RANGE), {std::to_string(kMinColumns), std::to_string(kMaxColumns)}));
        return false;
    }
    m_nColumns = static_cast<int>(columns);
    m_nColumnGap = m_editColumnGap.GetValue(items);
    m_nFooterDistance = m_editFooterDistance.GetValue(items);
    m_nHeaderDistance = m_editHeaderDistance.GetValue(items);
    m_nLineNumberWidth = m_editLineNumberWidth.GetValue(items);
    m_bColorPrinting = items.IsChecked(IDC_COLOR_PRINTING);
    m_bLineNumbers = items.IsChecked(IDC_LINE_NUMBERS);
    m_bHiddenChars = items.IsChecked(IDC_HIDDEN_CHARS);
    m_strHeader = items.GetItemText(IDC_HEADER);
    m_strFooter = items.GetItemText(IDC_FOOTER);
    m_psd.rtMargin = rtMargin;
    return true;
}

void CEditPageSetupDialog::PaintTextArea(IPageSetupItems& items, CDC* dc, const RECT& rc, long paperWidth) {
    if (paperWidth <= 0 || rc.IsEmpty()) return;
    const long w = rc.Width();
    long columns = 1;
    ReadInt(items.GetItemText(IDC_COLUMNS), &columns);
    columns = std::clamp<long>(columns, kMinColumns, kMaxColumns);
    const long gap = m_editColumnGap.GetValue(items) * w / paperWidth;
    const long columnWidth = (w - (columns - 1) * gap) / columns;
    const long numbers = items.IsChecked(IDC_LINE_NUMBERS) ? m_editLineNumberWidth.GetValue(items) * w / paperWidth : 0;
    const bool color = items.IsChecked(IDC_COLOR_PRINTING);
    const std::string sample = LoadString(IDS_PREVIEW_TEXT) + " " + LoadString(IDS_PREVIEW_TEXT);

    LOGFONTA lf;
    lf.lfHeight = kPreviewFontHeight;
    lf.lfWeight = FW_NORMAL;
    CFont font;
    font.CreateFontIndirect(&lf);
    CFont* oldFont = dc->SelectObject(&font);
    const int oldMode = dc->SetBkMode(TRANSPARENT);
    dc->SetTextColor(0x000000);
    TEXTMETRICA tm;
    const LONG lineHeight = dc->GetTextMetrics(&tm) ? std::max<LONG>(1, tm.tmHeight) : kPreviewFontHeight;
    CPen black(PS_SOLID, 0, 0x000000);
    for (long c = 0, left = rc.left; c < columns; ++c, left += columnWidth + gap) {
        RECT text{static_cast<LONG>(left), rc.top, static_cast<LONG>(left + columnWidth), rc.bottom};
        if (numbers > 0) {
            const RECT strip{text.left, rc.top, static_cast<LONG>(text.left + std::min(numbers, columnWidth)), rc.bottom};
            if (color) dc->FillSolidRect(strip, GetSysColor(COLOR_BTNFACE));
            const LONG digitsRight = strip.right - static_cast<LONG>(kNumberInset * w / paperWidth);
            const UINT align = dc->SetTextAlign(TA_RIGHT | TA_TOP);
            int number = 2;
            for (LONG y = strip.top; y + lineHeight <= rc.bottom; y += lineHeight, ++number) {
                const std::string digits = std::to_string(number);
                dc->ExtTextOut(digitsRight, y, 0, nullptr, digits.data(), static_cast<UINT>(digits.size()));
            }
            dc->SetTextAlign(align);
            CPen* oldPen = dc->SelectObject(&black);
            dc->MoveTo(strip.right - 1, strip.top);
            dc->LineTo(strip.right - 1, strip.bottom);
            dc->SelectObject(oldPen);
            text.left = strip.right;
        }
        dc->DrawText(sample.data(), static_cast<int>(sample.size()), &text, DT_WORDBREAK);
    }
    dc->SetBkMode(oldMode);
    dc->SelectObject(oldFont);
}
