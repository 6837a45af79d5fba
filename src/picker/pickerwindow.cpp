// The picker's window: its pages, layout, painting, the list's keys and clicks, and the help pane.
#include "src/picker/pickerwindow.h"

#include <algorithm>
#include <cstring>

#include "platform/window/controls.h"
#include "platform/window/dialogs.h"
#include "platform/window/input.h"
#include "platform/window/paint.h"
#include "platform/window/popup.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr int kBorder = 1;
constexpr int kStatusInset = 4;
constexpr int kThumbWidth = 4;
constexpr short kWheelDelta = 120;
constexpr int kWheelRows = 3;
constexpr const char* kGuiFace = "DejaVu Sans";
constexpr LONG kGuiFontHeight = -11;

void FrameRect(CDC& dc, const RECT& rc, COLORREF color) {
    dc.FillSolidRect(RECT{rc.left, rc.top, rc.right, rc.top + kBorder}, color);
    dc.FillSolidRect(RECT{rc.left, rc.bottom - kBorder, rc.right, rc.bottom}, color);
    dc.FillSolidRect(RECT{rc.left, rc.top, rc.left + kBorder, rc.bottom}, color);
    dc.FillSolidRect(RECT{rc.right - kBorder, rc.top, rc.right, rc.bottom}, color);
}

}  // namespace

CHTMLSyntaxPicker::CHTMLSyntaxPicker() {
    for (int kind = 0; kind < FILEKIND_COUNT; ++kind) m_FilePages[static_cast<size_t>(kind)].SetKind(kind);
    LOGFONTA lf{};
    lf.lfHeight = kGuiFontHeight;
    lf.lfWeight = 400;
    std::strncpy(lf.lfFaceName, kGuiFace, LF_FACESIZE - 1);
    m_font.CreateFontIndirect(&lf);
    lf.lfWeight = 700;
    m_fontBold.CreateFontIndirect(&lf);
}

CHTMLSyntaxPicker::~CHTMLSyntaxPicker() { Destroy(); }

CHTMLSyntaxPickPage& CHTMLSyntaxPicker::Page(int index) {
    switch (index) {
        case PAGE_TAG: return m_TagPage;
        case PAGE_ATTR: return m_AttrPage;
        case PAGE_ENUM: return m_EnumPage;
        case PAGE_COLOR: return m_ColorPage;
        case PAGE_PIXEL: return m_PixelPage;
        case PAGE_FONT: return m_FontPage;
        case PAGE_SIZE: return m_SizePage;
        case PAGE_SCRIPT: return m_ScriptPage;
        default:
            if (index >= PAGE_FILE && index < PAGE_FILE + FILEKIND_COUNT) return m_FilePages[static_cast<size_t>(index - PAGE_FILE)];
            return m_HelpPage;
    }
}

void CHTMLSyntaxPicker::SetControl(CZentrelCtrl* pControl) {
    m_pControl = pControl;
    for (int i = 1; i <= kPickerPages; ++i) Page(i).SetOwner(pControl);
}

BOOL CHTMLSyntaxPicker::Create(HWND owner) {
    if (m_hWnd) return TRUE;
    m_hWnd = CreatePopupWindow(this, owner, RECT{0, 0, kPickerWidth, kPickerHeight});
    return m_hWnd ? TRUE : FALSE;
}

void CHTMLSyntaxPicker::Destroy() {
    if (HWND hwnd = std::exchange(m_hWnd, nullptr)) DestroyWindow(hwnd);
}

void CHTMLSyntaxPicker::OnCreate() {
    if (CDC* dc = GetDC(nullptr)) {
        dc->SelectObject(&m_font);
        TEXTMETRICA tm;
        if (dc->GetTextMetrics(&tm)) m_nTextHeight = static_cast<int>(tm.tmHeight);
        ReleaseDC(nullptr, dc);
    }
    m_nStatusHeight = 3 * m_nTextHeight + 2 * kBorder + 2 * kStatusInset;
    m_PixelPage.SetRowHeight(m_nTextHeight + 2);
}

LRESULT CHTMLSyntaxPicker::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    const int x = static_cast<int16_t>(LOWORD(static_cast<uintptr_t>(lParam)));
    const int y = static_cast<int16_t>(HIWORD(static_cast<uintptr_t>(lParam)));
    switch (message) {
        case WM_CREATE: m_hWnd = hwnd; OnCreate(); return 0;
        case WM_SIZE: Layout(x, y); return 0;
        case WM_PAINT: Paint(); return 0;
        case WM_ERASEBKGND: return TRUE;
        case WM_LBUTTONDOWN: OnClick(x, y, false); return 0;
        case WM_LBUTTONDBLCLK: OnClick(x, y, true); return 0;
        case WM_RBUTTONDOWN: {
            POINT pt{x, y};
            ClientToScreen(hwnd, &pt);
            ShowOptions(pt);
            return 0;
        }
        case WM_MOUSEWHEEL:
            if (m_pActivePage) {
                const int steps = static_cast<int16_t>(HIWORD(wParam)) / kWheelDelta;
                m_pActivePage->SetTopIndex(m_pActivePage->GetTopIndex() - steps * kWheelRows);
                Invalidate();
            }
            return 0;
        case WM_DESTROY:
            m_hWnd = nullptr;
            m_pActivePage = nullptr;
            m_nPageIndex = 0;
            m_pSchema = nullptr;
            for (int i = 1; i <= kPickerPages; ++i) Page(i).Empty();
            return 0;
        default: return 0;
    }
}

void CHTMLSyntaxPicker::Layout(int cx, int cy) {
    if (cx < 0 || cy < 0) {
        RECT rc{};
        GetClientRect(m_hWnd, &rc);
        cx = rc.Width();
        cy = rc.Height();
    }
    m_rcList = RECT{0, 0, cx, cy};
    if (m_pActivePage) m_rcList.bottom = std::max(cy - m_nStatusHeight + kBorder, 0);
    Invalidate();
}

void CHTMLSyntaxPicker::Invalidate() {
    if (m_hWnd) InvalidateRect(m_hWnd, nullptr, FALSE);
}

int CHTMLSyntaxPicker::VisibleRows() const {
    if (!m_pActivePage) return 0;
    const int height = m_rcList.Height() - 2 * kBorder;
    int rows = 0;
    for (int row = m_pActivePage->GetTopIndex(), y = 0; row < m_pActivePage->GetCount(); ++row, ++rows) {
        y += m_pActivePage->RowHeight(row, m_nTextHeight, height);
        if (y > height) break;
    }
    return std::max(rows, 1);
}

void CHTMLSyntaxPicker::EnsureVisible(int row) {
    if (!m_pActivePage || row < 0) return;
    if (row < m_pActivePage->GetTopIndex()) m_pActivePage->SetTopIndex(row);
    while (row >= m_pActivePage->GetTopIndex() + VisibleRows()) m_pActivePage->SetTopIndex(m_pActivePage->GetTopIndex() + 1);
}

int CHTMLSyntaxPicker::RowAt(int x, int y) const {
    if (!m_pActivePage || x < m_rcList.left || x >= m_rcList.right || y < m_rcList.top + kBorder) return -1;
    const int height = m_rcList.Height() - 2 * kBorder;
    int top = m_rcList.top + kBorder;
    for (int row = m_pActivePage->GetTopIndex(); row < m_pActivePage->GetCount(); ++row) {
        const int h = m_pActivePage->RowHeight(row, m_nTextHeight, height);
        if (y < top + h) return top + h <= m_rcList.bottom ? row : -1;
        top += h;
    }
    return -1;
}

POINT CHTMLSyntaxPicker::RowPoint(int row) const {
    if (!m_pActivePage || row < m_pActivePage->GetTopIndex()) return {-1, -1};
    const int height = m_rcList.Height() - 2 * kBorder;
    int top = m_rcList.top + kBorder;
    for (int r = m_pActivePage->GetTopIndex(); r < row; ++r) top += m_pActivePage->RowHeight(r, m_nTextHeight, height);
    return {m_rcList.Width() / 2, top + 1};
}

// --- Pages and rows ---

void CHTMLSyntaxPicker::SetPage(int index, ISourceSchema* pSchema, const std::string& format) {
    if (pSchema != m_pSchema.Get()) m_pSchema = pSchema;
    if (!m_pSchema) {
        m_pActivePage = nullptr;
        Layout(-1, -1);
        UpdateStatus();
        m_nPageIndex = 0;
        m_strStatus.clear();
        return;
    }
    CHTMLSyntaxPickPage& page = Page(index);
    page.SetSource(m_pSchema.Get(), format);
    if (&page != m_pActivePage) {
        m_pActivePage = &page;
        Layout(-1, -1);
    }
    Invalidate();
    UpdateStatus();
    m_nPageIndex = (index >= 1 && index <= kPickerPages) ? index : PAGE_HELP;
}

int CHTMLSyntaxPicker::SelectMatching(const std::string& text) {
    if (!m_pActivePage || m_pActivePage->IsDisabled()) return -1;
    CHTMLSyntaxPickPage& page = *m_pActivePage;
    const int before = page.GetCurSel();
    int row = text.empty() ? -1 : page.FindPrefix(text);
    if (row < 0 && !text.empty() && text.back() == '"') {
        size_t cut = text.size() - 1;
        while (cut > 0 && (text[cut - 1] == ' ' || text[cut - 1] == '\t')) --cut;
        if (cut > 0) row = page.FindPrefix(text.substr(0, cut));
    }
    if (row < 0) {
        if (page.GetCount() == 1 || page.HasMore()) {
            row = 0;
        } else {
            page.SetCurSel(-1);
            page.SetTopIndex(0);
            Invalidate();
            if (before != -1) UpdateStatus();
            return -1;
        }
    }
    page.SetCurSel(row);
    EnsureVisible(row);
    Invalidate();
    if (row != before) UpdateStatus();
    return row;
}

void CHTMLSyntaxPicker::OnListKey(UINT vk) {
    if (!m_pActivePage || m_pActivePage->IsDisabled() || m_pActivePage->GetCount() == 0) return;
    CHTMLSyntaxPickPage& page = *m_pActivePage;
    const int last = page.GetCount() - 1, cur = page.GetCurSel(), pageRows = std::max(VisibleRows() - 1, 1);
    int row = cur;
    switch (vk) {
        case VK_UP: row = cur < 0 ? 0 : std::max(cur - 1, 0); break;
        case VK_DOWN: row = cur < 0 ? 0 : std::min(cur + 1, last); break;
        case VK_PRIOR: row = std::max((cur < 0 ? 0 : cur) - pageRows, 0); break;
        case VK_NEXT: row = std::min((cur < 0 ? 0 : cur) + pageRows, last); break;
        case VK_HOME: row = 0; break;
        case VK_END: row = last; break;
        default: return;
    }
    page.SetCurSel(row);
    EnsureVisible(row);
    Invalidate();
    if (row != cur) UpdateStatus();
}

BOOL CHTMLSyntaxPicker::GetValue(std::string& value) { return m_pActivePage ? m_pActivePage->GetValue(value) : FALSE; }

BOOL CHTMLSyntaxPicker::HasSelection() const { return (m_pActivePage && m_pActivePage->GetCurSel() >= 0) ? TRUE : FALSE; }

BOOL CHTMLSyntaxPicker::NextOption() { return m_pActivePage ? m_pActivePage->NextOption() : FALSE; }

namespace {

// The name of the schema object behind a row, if the row stands for one.
std::string RowObjectName(const CHTMLSyntaxPickPage& page) {
    std::string name;
    if (page.GetCurSel() < 0) return name;
    const auto* item = dynamic_cast<const CHTMLSyntaxLookupItem*>(page.Row(page.GetCurSel()).item.Get());
    if (item && item->GetSchema()) item->GetSchema()->GetName(&name);
    return name;
}

}  // namespace

void CHTMLSyntaxPicker::UpdateStatus() {
    std::string help;
    if (m_pActivePage)
        m_pActivePage->GetDescription(help);
    else if (m_pSchema)
        m_pSchema->GetDescription(&help);
    if (help != m_strStatus) {
        m_strStatus = help;
        Invalidate();
    }
    if (!m_pSchema || !m_pActivePage || m_pActivePage->GetCurSel() < 0 || !m_pControl) return;
    std::string primary, secondary;
    if (m_pActivePage == &m_TagPage) {
        primary = RowObjectName(*m_pActivePage);
    } else {
        m_pSchema->GetName(&primary);
        secondary = RowObjectName(*m_pActivePage);
    }
    m_pControl->FireEvent(EVENT_SYNTAXOBJECTCHANGED, {Variant::Short(2), Variant::Str(primary), Variant::Str(secondary)});
}

// --- Mouse and options ---

void CHTMLSyntaxPicker::OnClick(int x, int y, bool bDouble) {
    const int row = RowAt(x, y);
    if (row < 0 || !m_pActivePage || m_pActivePage->IsDisabled()) return;
    if (row != m_pActivePage->GetCurSel()) {
        m_pActivePage->SetCurSel(row);
        Invalidate();
        UpdateStatus();
    }
    if (bDouble && m_pControl && m_pControl->AcceptPick()) m_pControl->HidePicker();
}

void CHTMLSyntaxPicker::ShowOptions(POINT screen) {
    if (!m_pActivePage) {
        MessageBeep(static_cast<UINT>(-1));
        return;
    }
    const int count = m_pActivePage->GetOptionCount();
    if (count < 1) return;
    std::vector<MenuEntry> entries;
    for (int i = 0; i < count; ++i) entries.push_back({m_pActivePage->GetOptionName(i), i == m_pActivePage->GetOption()});
    const int chosen = TrackPopupMenu(m_hWnd, entries, screen);
    // The refilled list follows the caret again, as after Ctrl+Space.
    if (chosen >= 1 && chosen <= count && m_pActivePage->SetOption(chosen - 1) && m_pControl) m_pControl->ShowPicker();
}

// --- Painting ---

void CHTMLSyntaxPicker::Paint() {
    PAINTSTRUCT ps;
    CDC* dc = BeginPaint(m_hWnd, &ps);
    if (!dc) return;
    dc->SelectObject(&m_font);
    const PickDraw draw{dc, &m_font, &m_fontBold, m_nTextHeight};
    if (m_pActivePage) PaintList(draw);
    PaintStatus(*dc);
    EndPaint(m_hWnd, &ps);
}

void CHTMLSyntaxPicker::PaintList(const PickDraw& draw) {
    CDC& dc = *draw.dc;
    CHTMLSyntaxPickPage& page = *m_pActivePage;
    const RECT inner{m_rcList.left + kBorder, m_rcList.top + kBorder, m_rcList.right - kBorder, m_rcList.bottom - kBorder};
    const bool scrolls = VisibleRows() < page.GetCount();
    const RECT rows{inner.left, inner.top, inner.right - (scrolls ? kThumbWidth : 0), inner.bottom};
    dc.FillSolidRect(inner, GetSysColor(COLOR_WINDOW));
    long y = rows.top;
    for (int row = page.GetTopIndex(); row < page.GetCount() && y < rows.bottom; ++row) {
        const int h = page.RowHeight(row, m_nTextHeight, inner.Height());
        // Only whole rows show, as in a list of integral height.
        if (y + h > rows.bottom && row > page.GetTopIndex()) break;
        const RECT rc{rows.left, static_cast<LONG>(y), rows.right, static_cast<LONG>(std::min<long>(y + h, rows.bottom))};
        page.DrawItem(draw, row, rc, row == page.GetCurSel());
        y += h;
    }
    if (scrolls) {
        const long track = inner.Height(), count = page.GetCount();
        const long top = inner.top + track * page.GetTopIndex() / count;
        const long height = std::max<long>(track * VisibleRows() / count, 4);
        dc.FillSolidRect(RECT{rows.right, inner.top, inner.right, inner.bottom}, GetSysColor(COLOR_BTNFACE));
        dc.FillSolidRect(RECT{rows.right, static_cast<LONG>(top), inner.right, static_cast<LONG>(std::min<long>(top + height, inner.bottom))},
                         GetSysColor(COLOR_BTNSHADOW));
    }
    FrameRect(dc, m_rcList, GetSysColor(COLOR_WINDOWTEXT));
}

void CHTMLSyntaxPicker::PaintStatus(CDC& dc) {
    RECT rc{};
    GetClientRect(m_hWnd, &rc);
    if (m_pActivePage) rc.top = m_rcList.bottom - kBorder;
    dc.FillSolidRect(rc, GetSysColor(COLOR_BTNFACE));
    FrameRect(dc, rc, GetSysColor(COLOR_BTNSHADOW));
    if (m_strStatus.empty()) return;
    dc.SelectObject(&m_font);
    dc.SetTextColor(GetSysColor(COLOR_BTNTEXT));
    dc.SetBkMode(TRANSPARENT);
    DrawWrappedText(dc, RECT{rc.left + kStatusInset, rc.top + kStatusInset, rc.right - kStatusInset, rc.bottom - kStatusInset},
                    m_strStatus, m_nTextHeight);
    dc.SetBkMode(OPAQUE);
}
