// Property setters and getters of the control: each compares first, marks the control
// modified and does the least repaint it needs.
#include <algorithm>
#include <cctype>

#include "src/resources/strings.h"
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr long kColumnMaxLow = 5;
constexpr long kColumnMaxHigh = 2048;
// Horizontal scroll settings are stored in character widths of 12 units.
constexpr SHORT kHorizontalUnit = 12;

void RequireNotNegative(long value) {
    if (value < 0) COleControl::ThrowError(CTL_E_INVALIDPROPERTYVALUE);
}

}  // namespace

void CZentrelCtrl::SetOption(DWORD mask, BOOL value) {
    const bool always = mask == OPT_READONLY || mask == OPT_FIRESELECTIONCHANGED;
    const bool on = value != FALSE;
    if (mask == OPT_AUTOCONVERT) {
        // The converter is a toggle: a set to the state it has already does nothing.
        if (on == ((m_Options & mask) != 0)) return;
        ToggleAutoConvert();
        SetModifiedFlag();
        return;
    }
    if (!always && on == ((m_Options & mask) != 0)) return;
    if (mask == OPT_COLLAPSEBLOCKENABLE && !on) m_CollapseRoot.RemoveAllChildren();
    m_Options = on ? (m_Options | mask) : (m_Options & ~mask);
    SetModifiedFlag();
    OnOptionChanged(mask, on);
}

void CZentrelCtrl::OnOptionChanged(DWORD mask, BOOL on) {
    switch (mask) {
        case OPT_DISPLAYALL:
        case OPT_AUTOINDENT:
        case OPT_RIGHTMARGINVISIBLE:
        case OPT_LEFTMARGINVISIBLE:
        case OPT_HIDESELECTION:
        case OPT_SHOWLINENUMBER:
        case OPT_MONODRAW:
        case OPT_NOSTYLEPAINTING:
            Refresh();
            break;
        case OPT_BOOKMARKVISIBLE:
        case OPT_GUTTERBITMAPVISIBLE:
            InvalidateGutter();
            break;
        case OPT_WORDWRAP:
            if (HasWindow()) Reformat(TRUE);
            break;
        case OPT_VSCROLLALWAYSMATCH:
            if (on) {
                ClampScrollPosition();
                Refresh();
            }
            break;
        case OPT_COLLAPSEBLOCKENABLE:
            if (!on) Reformat(FALSE);
            break;
        case OPT_OVERWRITE:
            OnOverwriteChanged();
            break;
        case OPT_CODECOMPLETION:
            if (!on) HidePicker();
            break;
        case OPT_AUTOHINT:
        case OPT_AUTODOC:
            UpdateToolTipActivation();
            break;
        default:
            break;
    }
}

void CZentrelCtrl::SetBackColor(OLE_COLOR color) {
    if (color == m_clrBack) return;
    m_clrBack = color;
    Refresh();
    SetModifiedFlag();
}

void CZentrelCtrl::SetSelectionStart(long value) {
    if (!m_pDoc) return;
    value = std::clamp<long>(value, 0, m_pDoc->GetLength());
    m_pSelection->SetActive(value, TRUE);
}

void CZentrelCtrl::SetSelectionEnd(long value) {
    if (!m_pDoc) return;
    value = std::clamp<long>(value, 0, m_pDoc->GetLength());
    m_pSelection->SetAnchor(value);
}

void CZentrelCtrl::SetSelection(long nStart, long nEnd) {
    if (!m_pDoc) return;
    long length = m_pDoc->GetLength();
    if (nStart < 0 || nStart > length || nEnd < 0 || nEnd > length) ThrowError(CTL_E_INVALIDPROPERTYVALUE);
    m_pSelection->SetRange(nStart, nEnd);
}

void CZentrelCtrl::GetSelection(long* pnStart, long* pnEnd) const {
    *pnStart = m_nSelActive;
    *pnEnd = m_nSelAnchor;
}

void CZentrelCtrl::SetTabSize(SHORT value) {
    if (value < 1) ThrowError(CTL_E_INVALIDPROPERTYVALUE);
    m_nTabSize = value;
    SetModifiedFlag();
    // A new tab size changes the tab width at once, and with it the layout of every tab.
    m_nTabPixels = m_nTabSize * m_nCharWidth;
    if (HasWindow() && m_pDoc) {
        Reformat(FALSE);
        UpdateScrollBars(-1, -1);
    }
}

void CZentrelCtrl::SetIndentSize(SHORT value) {
    m_nIndentSize = value;
    SetModifiedFlag();
    if (HasWindow() && m_pDoc) {
        Reformat(TRUE);
        Refresh();
        PlaceCaret();
    }
}

void CZentrelCtrl::SetGutterSize(long value) {
    RequireNotNegative(value);
    SetIndentSize(static_cast<SHORT>(value));
}

void CZentrelCtrl::SetRightMargin(long value) {
    RequireNotNegative(value);
    m_nRightMargin = value;
    SetModifiedFlag();
    Refresh();
}

void CZentrelCtrl::SetColumnMax(long value) {
    if (value < kColumnMaxLow || value > kColumnMaxHigh) {
        ThrowError(CTL_E_INVALIDPROPERTYVALUE,
                   FormatMessage(LoadString(167), {std::to_string(kColumnMaxLow), std::to_string(kColumnMaxHigh)}));
    }
    m_nColumnMax = value;
    SetModifiedFlag();
}

void CZentrelCtrl::SetHighlightStyle(SHORT value) {
    if (value == m_nHighlightStyle) return;
    if (value < 0 || value > 3) ThrowError(CTL_E_INVALIDPROPERTYVALUE);
    m_nHighlightStyle = value;
    Refresh();
    SetModifiedFlag();
}

void CZentrelCtrl::SetScrollMarginVertical(SHORT value) {
    RequireNotNegative(value);
    m_nScrollMarginV = value;
    SetModifiedFlag();
}

void CZentrelCtrl::SetScrollMarginHorizontal(SHORT value) {
    RequireNotNegative(value);
    m_nScrollMarginH = static_cast<SHORT>(value / kHorizontalUnit);
    SetModifiedFlag();
}

void CZentrelCtrl::SetScrollByHorizontal(SHORT value) {
    RequireNotNegative(value);
    m_nScrollByH = static_cast<SHORT>(value / kHorizontalUnit);
    SetModifiedFlag();
}

void CZentrelCtrl::SetScrollByVertical(SHORT value) {
    RequireNotNegative(value);
    m_nScrollByV = value;
    SetModifiedFlag();
}

void CZentrelCtrl::SetTextColor(OLE_COLOR color) {
    m_Styles[STYLE_NONE].crText = TranslateColor(color);
    SetModifiedFlag();
    Refresh();
}

void CZentrelCtrl::SetCodeCompletionMode(SHORT value) {
    if (value < 0 || value > 2) ThrowError(0, "Code Completion Mode is out of Range (0 - 2)");
    if (value != m_nCompletionMode) {
        m_nCompletionMode = value;
        StartCodeCompletion();
        SetModifiedFlag();
    }
    m_bCompletionHeld = 1;
    HidePicker();
}

void CZentrelCtrl::SetCodeCompletionTimeDelay(long value) {
    if (value < 500) ThrowError(0, "Code Completion Delay Time is out of Range (500 - Anything)");
    if (value != m_nCompletionDelay) {
        m_nCompletionDelay = value;
        SetModifiedFlag();
    }
    HidePicker();
    m_bCompletionHeld = 1;
}

OLE_COLOR CZentrelCtrl::GetSyntaxPickerColor(SHORT nIndex) const {
    if (nIndex < 0 || nIndex > 15) ThrowError(0, "Color index is out of range. (0 - 16)");
    return m_clrPicker[nIndex];
}

void CZentrelCtrl::SetSyntaxPickerColor(SHORT nIndex, OLE_COLOR color) {
    if (nIndex < 0 || nIndex > 15) ThrowError(0, "Color index is out of range. (0 - 16)");
    m_clrPicker[nIndex] = TranslateColor(color);
    SetModifiedFlag();
}

void CZentrelCtrl::CheckFormatIndex(SHORT nFormat, SCODE scode) const {
    if (nFormat < 0 || nFormat >= FORMAT_COUNT) ThrowError(scode);
}

std::string CZentrelCtrl::GetFormatStyleName(SHORT nFormat) const {
    CheckFormatIndex(nFormat, CTL_E_INVALIDPROPERTYARRAYINDEX);
    return LoadString(FormatStyleNameId(nFormat));
}

OLE_COLOR CZentrelCtrl::GetFormatTextColor(SHORT nFormat) const {
    CheckFormatIndex(nFormat, CTL_E_INVALIDPROPERTYVALUE);
    return m_Styles[nFormat].crText;
}

void CZentrelCtrl::SetFormatTextColor(SHORT nFormat, OLE_COLOR color) {
    CheckFormatIndex(nFormat, CTL_E_INVALIDPROPERTYVALUE);
    m_Styles[nFormat].crText = TranslateColor(color);
    // The right margin line is drawn in the colour of hidden characters.
    if (nFormat == STYLE_INVISIBLE) m_penHidden.CreatePen(PS_SOLID, 0, m_Styles[nFormat].crText);
    SetModifiedFlag();
    Refresh();
}

OLE_COLOR CZentrelCtrl::GetFormatBackColor(SHORT nFormat) const {
    CheckFormatIndex(nFormat, CTL_E_INVALIDPROPERTYVALUE);
    return m_Styles[nFormat].crBack;
}

void CZentrelCtrl::SetFormatBackColor(SHORT nFormat, OLE_COLOR color) {
    CheckFormatIndex(nFormat, CTL_E_INVALIDPROPERTYVALUE);
    m_Styles[nFormat].crBack = TranslateColor(color);
    SetModifiedFlag();
    Refresh();
}

long CZentrelCtrl::GetFormatStyleWord(SHORT nFormat) const {
    CheckFormatIndex(nFormat, CTL_E_INVALIDPROPERTYVALUE);
    return static_cast<long>(m_Styles[nFormat].dwFont);
}

void CZentrelCtrl::SetFormatStyleWord(SHORT nFormat, long value) {
    CheckFormatIndex(nFormat, CTL_E_INVALIDPROPERTYVALUE);
    m_Styles[nFormat].dwFont = static_cast<DWORD>(value);
    SetModifiedFlag();
}

void CZentrelCtrl::AddExceptionTag(const std::string& lpszTagName, OLE_COLOR colForeground, OLE_COLOR colBackground) {
    auto it = m_ExceptionTags.find(lpszTagName);
    if (it == m_ExceptionTags.end()) {
        std::string key = lpszTagName;
        for (char& c : key) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        it = m_ExceptionTags.emplace(key, FormatStyle{}).first;
    }
    it->second.crText = colForeground;
    it->second.crBack = colBackground;
    m_RowCheckpoints.Clear();
}

void CZentrelCtrl::RemoveAllExceptionTags() {
    m_ExceptionTags.clear();
    m_RowCheckpoints.Clear();
}

BOOL CZentrelCtrl::PointInGutter(long nClientX, long nClientY) const {
    bool inClient = nClientX >= m_rcClient.left && nClientX < m_rcClient.right && nClientY >= m_rcClient.top &&
                    nClientY < m_rcClient.bottom;
    return inClient && nClientX >= 0 && nClientX <= m_nIndentSize - m_nCharWidth;
}

void CZentrelCtrl::SetEditFont(const FontDesc& font) {
    m_fontEdit.InitializeFont(DefaultEditFont(), &font);
    OnEditFontChanged();
}

void CZentrelCtrl::SetEditFontDispatch(IDispatch* font) {
    m_fontEdit.InitializeFont(DefaultEditFont(), font);
    OnEditFontChanged();
}

void CZentrelCtrl::OnEditFontChanged() {
    // A new edit font takes effect at once: the fonts are measured again (with them the tab
    // width), and the text is wrapped anew in the new widths even where the width stays.
    RebuildFontCache();
    if (HasWindow() && m_pDoc) Reformat(FALSE);
    SetModifiedFlag();
}
