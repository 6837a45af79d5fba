// What each page does differently from the base page.
#include "src/picker/valuepages.h"

#include <cstdio>

#include "platform/window/dialogs.h"
#include "src/picker/pickericons.h"
#include "src/resources/strings.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr UINT kStrUpper = 205, kStrLower = 206, kStrHexUpper = 207, kStrHexLower = 208, kStrNameUpper = 209,
               kStrNameLower = 210, kStrUserColor = 211, kStrUnchanged = 212;

template <class T>
T* ItemAs(const PickRow& row) {
    return dynamic_cast<T*>(row.item.Get());
}

}  // namespace

int PageIndexOfType(long type) {
    static constexpr int kPages[] = {16, 3, 16, 16, 9, 4, 16, 16, 5, 7, 13, 10, 11, 12, 14, 15, 8, 6, 16, 16, 16, 16};
    return (type >= 0 && type < static_cast<long>(std::size(kPages))) ? kPages[type] : 16;
}

// --- Case pages: tags, attributes, enumerated values ---

BOOL CHTMLSyntaxCasePage::SetOption(int index) {
    m_nCase = index == 1 ? CASE_LOWER : CASE_UPPER;
    return CHTMLSyntaxPickPage::SetOption(index);
}

std::string CHTMLSyntaxCasePage::GetOptionName(int index) const {
    return LoadString(index == 0 ? kStrUpper : index == 1 ? kStrLower : 0);
}

void CHTMLSyntaxTagPage::DrawIcon(const PickDraw& draw, int, const RECT& rc) { DrawPickerIcon(*draw.dc, IDB_PICK_TAG, rc); }

ComPtr<CHTMLSyntaxPickItem> CHTMLSyntaxAttrPage::CreateItem(ISourceSchema* pSchema) {
    auto item = MakePickItem<CHTMLSyntaxAttrItem>();
    item->SetSchema(pSchema);
    return AsPickItem(item);
}

void CHTMLSyntaxAttrPage::DrawIcon(const PickDraw& draw, int row, const RECT& rc) {
    const auto* item = ItemAs<CHTMLSyntaxLookupItem>(Row(row));
    if (!item || !item->GetSchema()) return;
    if (const UINT id = AttrTypeIcon(item->GetSchema()->GetType())) DrawPickerIcon(*draw.dc, id, rc);
}

void CHTMLSyntaxEnumPage::DrawIcon(const PickDraw& draw, int row, const RECT& rc) {
    DrawPickerIcon(*draw.dc, EnumValueIcon(Row(row).text), rc);
}

// --- Colours ---

ComPtr<CHTMLSyntaxPickItem> CHTMLSyntaxColorPage::CreateItem(ISourceSchema* pSchema) {
    auto item = MakePickItem<CHTMLSyntaxColorItem>();
    if (m_nOption == COLORFORM_HEXUPPER || m_nOption == COLORFORM_HEXLOWER) {
        item->SetColorFromSchema(pSchema);
    } else if (m_nOption == COLORFORM_NAMEUPPER || m_nOption == COLORFORM_NAMELOWER) {
        std::string name;
        if (pSchema) pSchema->GetName(&name);
        item->SetText(name);
        item->TakeColorFromSchema(pSchema);
    }
    return AsPickItem(item);
}

BOOL CHTMLSyntaxColorPage::SetOption(int index) {
    m_nCase = index == COLORFORM_USER ? CASE_UNCHANGED
                                      : (index == COLORFORM_HEXLOWER || index == COLORFORM_NAMELOWER) ? CASE_LOWER
                                                                                                      : CASE_UPPER;
    return CHTMLSyntaxPickPage::SetOption(index);
}

std::string CHTMLSyntaxColorPage::GetOptionName(int index) const {
    static constexpr UINT kNames[] = {kStrUserColor, kStrHexUpper, kStrNameUpper, kStrHexLower, kStrNameLower};
    return (index >= 0 && index < 5) ? LoadString(kNames[index]) : std::string();
}

void CHTMLSyntaxColorPage::AddSchemaRows() {
    if (m_nOption != COLORFORM_USER) CHTMLSyntaxPickPage::AddSchemaRows();
}

void CHTMLSyntaxColorPage::AddSpecialRows() {
    CHTMLSyntaxPickPage::AddSpecialRows();
    if (m_nOption != COLORFORM_USER || !m_pControl) return;
    for (SHORT i = 0; i < 16; ++i) {
        auto item = MakePickItem<CHTMLSyntaxColorItem>();
        item->SetColor(m_pControl->GetSyntaxPickerColor(i));
        std::string text;
        item->GetText(text);
        FormatValue(text);
        InsertRow(GetCount(), std::move(text), AsPickItem(item));
    }
}

BOOL CHTMLSyntaxColorPage::RunMore(std::string& value, const std::string&) {
    OLE_COLOR color = 0;
    VARIANT_BOOL dispatched = VARIANT_FALSE, accepted = VARIANT_FALSE;
    m_pControl->FireEvent(EVENT_REQUESTCOLOR, {Variant::RefBool(&dispatched), Variant::RefColor(&color), Variant::RefBool(&accepted)});
    if (!dispatched) accepted = ChooseColorDialog(m_pControl->GetSafeHwnd(), &color) ? VARIANT_TRUE : VARIANT_FALSE;
    if (!accepted) return FALSE;
    auto item = MakePickItem<CHTMLSyntaxColorItem>();
    item->SetColor(color);
    AddRecent(item.Get());
    item->GetText(value);
    FormatValue(value);
    return TRUE;
}

void CHTMLSyntaxColorPage::DrawIcon(const PickDraw& draw, int row, const RECT& rc) {
    const auto* item = ItemAs<CHTMLSyntaxColorItem>(Row(row));
    if (!item) return;
    draw.dc->FillSolidRect(rc, GetSysColor(COLOR_WINDOWTEXT));
    draw.dc->FillSolidRect(RECT{rc.left + 1, rc.top + 1, rc.right - 1, rc.bottom - 1}, item->GetColor());
}

// --- Pixel widths ---

void CHTMLSyntaxPixelPage::AddSpecialRows() {
    CHTMLSyntaxPickPage::AddSpecialRows();
    for (int n = 0; n <= m_nRowHeight - 3; ++n) {
        std::string text = std::to_string(n);
        FormatValue(text);
        InsertRow(GetCount(), std::move(text), nullptr);
    }
}

BOOL CHTMLSyntaxPixelPage::GetDescription(std::string& text) {
    const int row = GetCurSel();
    if (row < 0) return FALSE;
    if (row == 0) {
        text = "None";
    } else {
        char buffer[32];
        std::snprintf(buffer, sizeof buffer, "%d Pixel%s", row, row > 1 ? "s" : "");
        text = buffer;
    }
    return TRUE;
}

void CHTMLSyntaxPixelPage::DrawItem(const PickDraw& draw, int row, const RECT& rc, bool selected) {
    CDC& dc = *draw.dc;
    dc.FillSolidRect(rc, GetSysColor(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
    const COLORREF ink = GetSysColor(selected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT);
    const LONG middle = rc.top + draw.textHeight / 2;
    if (row == 0) {
        for (LONG x = rc.left + 2; x < rc.right - 2; x += 2) dc.FillSolidRect(RECT{x, middle, x + 1, middle + 1}, ink);
        return;
    }
    const LONG top = middle - row / 2;
    dc.FillSolidRect(RECT{rc.left + 2, top, rc.right - 2, top + row}, ink);
}

// --- Fonts ---

BOOL CHTMLSyntaxFontPage::SetOption(int index) {
    m_nCase = index == 1 ? CASE_UPPER : index == 2 ? CASE_LOWER : CASE_UNCHANGED;
    return CHTMLSyntaxPickPage::SetOption(index);
}

std::string CHTMLSyntaxFontPage::GetOptionName(int index) const {
    static constexpr UINT kNames[] = {kStrUnchanged, kStrUpper, kStrLower};
    return (index >= 0 && index < 3) ? LoadString(kNames[index]) : std::string();
}

void CHTMLSyntaxFontPage::AddSpecialRows() {
    for (const std::string& face : EnumFontFamilies()) AddItemRow(AsPickItem(MakeFontItem(face)));
    CHTMLSyntaxPickPage::AddSpecialRows();
}

BOOL CHTMLSyntaxFontPage::RunMore(std::string& value, const std::string& current) {
    std::string face = current;
    bool accepted = false;
    if (!AskHost(EVENT_REQUESTCOLOR + 1, face, &accepted)) {
        face = current.substr(0, LF_FACESIZE);
        accepted = ChooseFontDialog(m_pControl->GetSafeHwnd(), &face) != FALSE;
    }
    if (!accepted) return FALSE;
    auto item = MakeFontItem(face);
    AddRecent(item.Get());
    item->GetText(value);
    FormatValue(value);
    return TRUE;
}

void CHTMLSyntaxFontPage::DrawItem(const PickDraw& draw, int row, const RECT& rc, bool selected) {
    CFont own;
    const auto* item = ItemAs<CHTMLSyntaxFontItem>(Row(row));
    CFont* font = (item && own.CreateFontIndirect(&item->GetLogFont())) ? &own : draw.font;
    draw.dc->FillSolidRect(rc, GetSysColor(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
    PickDraw mine = draw;
    mine.font = mine.bold = font;
    DrawRowText(mine, rc, rc, Row(row).text, selected, false);
    draw.dc->SelectObject(draw.font);
}

// --- Sizes ---

void CHTMLSyntaxSizePage::AddSpecialRows() {
    CHTMLSyntaxPickPage::AddSpecialRows();
    for (int n = 0; n <= 7; ++n) {
        std::string text = std::to_string(n);
        FormatValue(text);
        InsertRow(GetCount(), std::move(text), nullptr);
    }
    for (int n = 1; n <= 7; ++n) {
        std::string text = "-" + std::to_string(n);
        FormatValue(text);
        InsertRow(GetCount(), std::move(text), nullptr);
    }
}

// --- Files ---

BOOL CHTMLSyntaxFilePage::RunMore(std::string& value, const std::string& current) {
    std::string path = current, name;
    bool accepted = false;
    if (!AskHost(EVENT_REQUESTCOLOR + 2 + m_nKind, path, &accepted)) {
        path.clear();
        accepted = OpenFileDialog(m_pControl->GetSafeHwnd(), &path) != FALSE;
        name = path.substr(path.find_last_of('/') + 1);
    }
    if (!accepted) return FALSE;
    auto item = MakePickItem<CHTMLSyntaxTextItem>();
    item->SetText(path);
    item->SetDescription(name);
    AddRecent(item.Get());
    item->GetText(value);
    FormatValue(value);
    return TRUE;
}

void CHTMLSyntaxFilePage::DrawIcon(const PickDraw& draw, int, const RECT& rc) {
    DrawPickerIcon(*draw.dc, FileKindIcon(m_nKind), rc);
}

std::string ShortenPath(CDC& dc, const std::string& path, long width) {
    if (dc.GetTextExtent(path.data(), static_cast<int>(path.size())).cx <= width) return path;
    // Keeps the end of the path, the file's name, and as much of its start as fits.
    for (size_t cut = 1; cut < path.size(); ++cut) {
        const size_t head = (path.size() - cut) / 2;
        std::string shown = path.substr(0, head) + "..." + path.substr(head + cut);
        if (dc.GetTextExtent(shown.data(), static_cast<int>(shown.size())).cx <= width) return shown;
    }
    return "...";
}

void CHTMLSyntaxFilePage::DrawItem(const PickDraw& draw, int row, const RECT& rc, bool selected) {
    draw.dc->FillSolidRect(rc, GetSysColor(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
    const std::string& text = Row(row).text;
    if (text == kMoreRow) {
        CHTMLSyntaxPickPage::DrawItem(draw, row, rc, selected);
        return;
    }
    RECT icon{rc.left + 2, rc.top + 2, 0, rc.bottom - 2};
    icon.right = icon.left + icon.Height();
    const RECT rcText{icon.right + 2, rc.top + (rc.Height() - draw.textHeight) / 2, rc.right, rc.bottom};
    draw.dc->SelectObject(draw.font);
    DrawRowText(draw, rc, rcText, ShortenPath(*draw.dc, text, rcText.Width()), selected, false);
    DrawIcon(draw, row, icon);
}

// --- Help ---

void CHTMLSyntaxHelpPage::AddSchemaRows() {
    static constexpr struct {
        long type;
        UINT title, text;
    } kHelp[] = {{2, 185, 197}, {3, 186, 198}, {6, 189, 199}, {7, 190, 200},
                 {18, 193, 201}, {19, 194, 202}, {20, 195, 203}, {21, 196, 204}};
    m_strTitle.clear();
    m_strHelp.clear();
    if (!m_pSchema) return;
    const long type = m_pSchema->GetType();
    for (const auto& h : kHelp)
        if (h.type == type) {
            m_strTitle = LoadString(h.title);
            m_strHelp = LoadString(h.text);
        }
}

void CHTMLSyntaxHelpPage::AddSpecialRows() {
    InsertRow(0, m_strTitle, nullptr);
    InsertRow(1, m_strHelp, nullptr);
    m_bFilled = TRUE;
}

BOOL CHTMLSyntaxHelpPage::GetValue(std::string& value) {
    value.clear();
    return TRUE;
}

int CHTMLSyntaxHelpPage::RowHeight(int row, int, int listHeight) const {
    constexpr int kTitleHeight = 15;
    return row == 0 ? kTitleHeight : std::max(listHeight - kTitleHeight, 0);
}

void CHTMLSyntaxHelpPage::DrawItem(const PickDraw& draw, int row, const RECT& rc, bool) {
    CDC& dc = *draw.dc;
    if (row == 0) {
        dc.SelectObject(draw.bold);
        dc.SetTextColor(GetSysColor(COLOR_WINDOW));
        dc.SetBkColor(GetSysColor(COLOR_BTNSHADOW));
        dc.ExtTextOut(rc.left, rc.top, ETO_OPAQUE | ETO_CLIPPED, &rc, Row(0).text.data(),
                      static_cast<UINT>(Row(0).text.size()));
        dc.SelectObject(draw.font);
        return;
    }
    dc.FillSolidRect(rc, GetSysColor(COLOR_WINDOW));
    dc.SetTextColor(GetSysColor(COLOR_WINDOWTEXT));
    dc.SetBkMode(TRANSPARENT);
    DrawWrappedText(dc, RECT{rc.left + 2, rc.top + 2, rc.right - 2, rc.bottom - 2}, Row(1).text, draw.textHeight);
    dc.SetBkMode(OPAQUE);
}
