// The base page: filling, formatting, recent values, options and the rows of the list.
#include "src/picker/pickpage.h"

#include <algorithm>
#include <cctype>
#include <strings.h>

#include "src/picker/pickericons.h"
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr int kRecentMax = 4;
constexpr int kIconInset = 2;

bool LessNoCase(const std::string& a, const std::string& b) { return strcasecmp(a.c_str(), b.c_str()) < 0; }

}  // namespace

void ChangeCase(std::string& text, int nCase) {
    if (nCase == CASE_UNCHANGED) return;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<BYTE>(text[i]);
        if (IsLeadByte(c)) {
            ++i;
            continue;
        }
        text[i] = static_cast<char>(nCase == CASE_UPPER ? std::toupper(c) : std::tolower(c));
    }
}

BOOL CHTMLSyntaxPickPage::SetSource(ISourceSchema* pSchema, const std::string& format) {
    if (pSchema == m_pSchema.Get() && format == m_strFormat) {
        if (!m_bFilled) AddSpecialRows();
        return FALSE;
    }
    m_strFormat = format;
    if (pSchema != m_pSchema.Get()) m_pSchema = pSchema;
    ClearRows();
    AddSchemaRows();
    AddSpecialRows();
    return TRUE;
}

void CHTMLSyntaxPickPage::ClearRows() {
    m_rows.clear();
    m_nCurSel = -1;
    m_nTop = 0;
    m_bFilled = FALSE;
}

void CHTMLSyntaxPickPage::AddItemRow(ComPtr<CHTMLSyntaxPickItem> item) {
    std::string text;
    item->GetText(text);
    FormatValue(text);
    AddRow(std::move(text), std::move(item));
}

void CHTMLSyntaxPickPage::AddSchemaRows() {
    if (!m_pSchema) return;
    const long count = m_pSchema->GetChildCount();
    for (long i = 0; i < count; ++i) {
        std::string name;
        if (m_pSchema->GetChildName(&name, i) < 0) continue;
        ComPtr<ISourceSchema> child;
        if (m_pSchema->FindChild(name.c_str(), child.Out()) != 0 || !child) continue;
        if (auto item = CreateItem(child.Get())) AddItemRow(std::move(item));
    }
}

void CHTMLSyntaxPickPage::AddSpecialRows() {
    if (HasMore()) InsertRow(0, kMoreRow, nullptr);
    if (HasRecent()) {
        int row = FirstRecentRow();
        for (const auto& item : m_Recent) {
            std::string text;
            item->GetText(text);
            FormatValue(text);
            InsertRow(row++, std::move(text), item);
        }
    }
    m_bFilled = TRUE;
}

void CHTMLSyntaxPickPage::FormatValue(std::string& value) const {
    if (!m_strFormat.empty()) {
        std::string out = m_strFormat;
        if (const size_t at = out.find("%s"); at != std::string::npos) out.replace(at, 2, value);
        value = std::move(out);
    }
    ChangeCase(value, m_nCase);
}

BOOL CHTMLSyntaxPickPage::GetValue(std::string& value) {
    if (m_nCurSel < 0) return FALSE;
    const PickRow row = Row(m_nCurSel);
    if (!row.item) {
        value = row.text;
        return TRUE;
    }
    if (HasRecent()) AddRecent(row.item.Get());
    row.item->GetText(value);
    FormatValue(value);
    return TRUE;
}

BOOL CHTMLSyntaxPickPage::GetDescription(std::string& text) {
    text.clear();
    if (m_nCurSel < 0) return GetEmptyDescription(text);
    const PickRow& row = Row(m_nCurSel);
    if (row.item)
        row.item->GetDescription(text);
    else if (row.text == kMoreRow)
        text = "Select for more option.";
    return text.empty() ? FALSE : TRUE;
}

ComPtr<CHTMLSyntaxPickItem> CHTMLSyntaxPickPage::CreateItem(ISourceSchema* pSchema) {
    auto item = MakePickItem<CHTMLSyntaxLookupItem>();
    item->SetSchema(pSchema);
    return AsPickItem(item);
}

BOOL CHTMLSyntaxPickPage::NextOption() {
    return SetOption(m_nOption + 1 >= GetOptionCount() ? 0 : m_nOption + 1);
}

BOOL CHTMLSyntaxPickPage::PrevOption() {
    return SetOption(m_nOption <= 0 ? GetOptionCount() - 1 : m_nOption - 1);
}

BOOL CHTMLSyntaxPickPage::SetOption(int index) {
    if (index == m_nOption) return FALSE;
    m_nOption = index;
    if (m_pSchema) {
        ClearRows();
        AddSchemaRows();
        AddSpecialRows();
    }
    return TRUE;
}

void CHTMLSyntaxPickPage::AddRecent(CHTMLSyntaxPickItem* pItem) {
    if (!pItem) return;
    const int first = FirstRecentRow();
    const auto known = std::find_if(m_Recent.begin(), m_Recent.end(), [&](const auto& p) { return p.Get() == pItem; });
    if (known != m_Recent.end()) {
        const int index = static_cast<int>(known - m_Recent.begin());
        ComPtr<CHTMLSyntaxPickItem> keep = *known;
        m_Recent.erase(known);
        m_Recent.insert(m_Recent.begin(), keep);
        if (m_bFilled) MoveItem(first, first + index);
        return;
    }
    while (m_Recent.size() >= kRecentMax) {
        if (m_bFilled) DeleteRow(first + static_cast<int>(m_Recent.size()) - 1);
        m_Recent.pop_back();
    }
    m_Recent.insert(m_Recent.begin(), ComPtr<CHTMLSyntaxPickItem>(pItem));
    if (!m_bFilled) return;
    std::string text;
    pItem->GetText(text);
    FormatValue(text);
    InsertRow(first, std::move(text), ComPtr<CHTMLSyntaxPickItem>(pItem));
}

// --- The list ---

void CHTMLSyntaxPickPage::SetCurSel(int index) { m_nCurSel = (index >= 0 && index < GetCount()) ? index : -1; }

void CHTMLSyntaxPickPage::SetTopIndex(int index) { m_nTop = std::clamp(index, 0, std::max(GetCount() - 1, 0)); }

int CHTMLSyntaxPickPage::FindPrefix(const std::string& prefix) const {
    for (int i = 0; i < GetCount(); ++i)
        if (strncasecmp(Row(i).text.c_str(), prefix.c_str(), prefix.size()) == 0) return i;
    return -1;
}

int CHTMLSyntaxPickPage::AddRow(std::string text, ComPtr<CHTMLSyntaxPickItem> item) {
    auto at = m_rows.end();
    if (m_bSorted)
        at = std::upper_bound(m_rows.begin(), m_rows.end(), text,
                              [](const std::string& t, const PickRow& r) { return LessNoCase(t, r.text); });
    const int index = static_cast<int>(at - m_rows.begin());
    return InsertRow(index, std::move(text), std::move(item));
}

int CHTMLSyntaxPickPage::InsertRow(int index, std::string text, ComPtr<CHTMLSyntaxPickItem> item) {
    index = std::clamp(index, 0, GetCount());
    m_rows.insert(m_rows.begin() + index, PickRow{std::move(text), std::move(item)});
    if (m_nCurSel >= index) ++m_nCurSel;
    return index;
}

void CHTMLSyntaxPickPage::DeleteRow(int index) {
    if (index < 0 || index >= GetCount()) return;
    m_rows.erase(m_rows.begin() + index);
    if (m_nCurSel == index)
        m_nCurSel = -1;
    else if (m_nCurSel > index)
        --m_nCurSel;
}

int CHTMLSyntaxPickPage::MoveItem(int toRow, int fromRow) {
    if (fromRow < 0 || fromRow >= GetCount()) return -1;
    if (toRow == fromRow) return toRow;
    PickRow row = Row(fromRow);
    DeleteRow(fromRow);
    if (toRow > fromRow) --toRow;
    return InsertRow(toRow, std::move(row.text), std::move(row.item));
}

int CHTMLSyntaxPickPage::RowHeight(int, int textHeight, int) const { return textHeight + 2; }

// --- Drawing ---

void CHTMLSyntaxPickPage::DrawRowText(const PickDraw& draw, const RECT& rc, const RECT& rcText,
                                      const std::string& text, bool selected, bool more) {
    CDC& dc = *draw.dc;
    dc.SelectObject(more ? draw.bold : draw.font);
    dc.SetTextColor(GetSysColor(selected ? COLOR_HIGHLIGHTTEXT : (more ? COLOR_HIGHLIGHT : COLOR_WINDOWTEXT)));
    dc.SetBkColor(GetSysColor(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
    dc.FillSolidRect(RECT{rc.left, rc.top, rcText.left, rc.bottom}, dc.GetBkColor());
    dc.ExtTextOut(rcText.left, rcText.top, ETO_OPAQUE | ETO_CLIPPED, &rcText, text.data(),
                  static_cast<UINT>(text.size()));
}

void CHTMLSyntaxPickPage::DrawItem(const PickDraw& draw, int row, const RECT& rc, bool selected) {
    RECT icon{rc.left + kIconInset, rc.top + kIconInset, 0, rc.bottom - kIconInset};
    icon.right = icon.left + icon.Height();
    const std::string& text = Row(row).text;
    const bool more = text == kMoreRow;
    const RECT rcText{icon.right + 2, rc.top, rc.right, rc.bottom};
    draw.dc->FillSolidRect(rc, GetSysColor(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
    DrawRowText(draw, rc, rcText, text, selected, more);
    if (more)
        DrawPickerIcon(*draw.dc, IDB_PICK_MORE, icon);
    else
        DrawIcon(draw, row, icon);
    const bool divider = (HasMore() && row == 0) ||
                         (HasRecent() && !m_Recent.empty() && row == FirstRecentRow() + static_cast<int>(m_Recent.size()) - 1);
    if (divider) draw.dc->FillSolidRect(RECT{rc.left, rc.bottom - 1, rc.right, rc.bottom}, GetSysColor(COLOR_WINDOWTEXT));
}

bool CHTMLSyntaxPickPage::AskHost(DISPID event, std::string& value, bool* accepted) {
    VARIANT_BOOL dispatched = VARIANT_FALSE, ok = VARIANT_FALSE;
    m_pControl->FireEvent(event, {Variant::RefBool(&dispatched), Variant::RefStr(&value), Variant::RefBool(&ok)});
    *accepted = ok != VARIANT_FALSE;
    return dispatched != VARIANT_FALSE;
}

void DrawWrappedText(CDC& dc, const RECT& rc, const std::string& text, int lineHeight) {
    const long width = rc.Width();
    long y = rc.top;
    size_t at = 0;
    while (at < text.size() && y + lineHeight <= rc.bottom + lineHeight / 2) {
        // Takes words while they fit; a word wider than the line goes alone and is clipped.
        size_t end = at, fit = at;
        while (end < text.size()) {
            size_t next = text.find(' ', end + 1);
            if (next == std::string::npos) next = text.size();
            if (dc.GetTextExtent(text.data() + at, static_cast<int>(next - at)).cx > width && fit > at) break;
            fit = end = next;
        }
        const RECT line{rc.left, static_cast<LONG>(y), rc.right, static_cast<LONG>(std::min<long>(y + lineHeight, rc.bottom))};
        dc.ExtTextOut(rc.left, y, ETO_CLIPPED, &line, text.data() + at, static_cast<UINT>(fit - at));
        at = fit;
        while (at < text.size() && text[at] == ' ') ++at;
        y += lineHeight;
    }
}
