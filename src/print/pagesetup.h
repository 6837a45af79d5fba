// The page setup object: the one store of print settings, kept by the control for its whole life
// (nothing of it is persisted), and the control's part of the page setup dialog: its items, the
// inch edits with their tidy-up, the enabling, and the text area of the page picture. Lengths
// are in thousandths of an inch.
#pragma once
#include <string>

#include "platform/gdi/printer.h"

// Items of the control's part of the page setup dialog.
constexpr int IDC_PAGE_PREVIEW = 1080;
constexpr int IDC_COLOR_PRINTING = 205;
constexpr int IDC_HEADER_DISTANCE = 212;
constexpr int IDC_FOOTER_DISTANCE = 213;
constexpr int IDC_HEADER = 216;
constexpr int IDC_FOOTER = 217;
constexpr int IDC_LINE_NUMBER_WIDTH = 218;
constexpr int IDC_LINE_NUMBERS = 219;
constexpr int IDC_HIDDEN_CHARS = 221;
constexpr int IDC_COLUMNS = 226;
constexpr int IDC_COLUMN_GAP = 229;

// An edit for a length in inches. It takes digits, control characters, "." and the inch mark
// only; its text reads as thousandths of an inch, and is tidied into the form "1.500\"" when
// the focus leaves it.
class CInchEdit {
public:
    explicit CInchEdit(int id) : m_nId(id) {}
    int GetId() const { return m_nId; }
    static bool AcceptsChar(unsigned ch);
    // The text as thousandths: a number as strtod reads it (an inch mark behind it is ignored),
    // times 1000, truncated; 0 when its whole part overflows.
    static long ValueFromText(const std::string& text);
    // Thousandths as text: whole inches, a point and three digits if there is a remainder, and
    // the inch mark.
    static std::string TextFromValue(long n);
    long GetValue(const IPageSetupItems& items) const { return ValueFromText(items.GetItemText(m_nId)); }
    void SetValue(IPageSetupItems& items, long n) const { items.SetItemText(m_nId, TextFromValue(n)); }
    void OnKillFocus(IPageSetupItems& items) const { SetValue(items, GetValue(items)); }

private:
    int m_nId;
};

class CZentrelCtrl;

class CEditPageSetupDialog final : public IPageSetupHook {
public:
    CEditPageSetupDialog();

    // The dialog, modal over the control's window; TRUE if it ended with OK. Cancel changes nothing.
    BOOL DoModal(HWND parent);
    // A context of the chosen printer; null when it cannot be opened.
    std::unique_ptr<CDC> CreatePrinterDC() const;

    // The platform's record: the four margins and the device handles.
    PageSetupRecord m_psd;

    // The values, as the last OK left them.
    BOOL m_bColorPrinting = FALSE;
    std::string m_strFooter;
    std::string m_strHeader;
    BOOL m_bLineNumbers = FALSE;
    long m_nFooterDistance = 500;
    long m_nLineNumberWidth = 700;
    long m_nHeaderDistance = 500;
    int m_nColumns = 1;
    BOOL m_bHiddenChars = FALSE;
    long m_nColumnGap = 200;

    // The lowest and highest column count.
    static constexpr int kMinColumns = 1;
    static constexpr int kMaxColumns = 3;

    // --- IPageSetupHook ---
    void OnInitDialog(IPageSetupItems& items) override;
    bool OnChar(int id, unsigned ch) override;
    void OnKillFocus(IPageSetupItems& items, int id) override;
    void OnCommand(IPageSetupItems& items, int id) override;
    bool OnOK(IPageSetupItems& items, const RECT& rtMargin) override;
    void PaintTextArea(IPageSetupItems& items, CDC* dc, const RECT& rc, long paperWidth) override;

private:
    // 218 follows the check box 219; 229 is open for two columns or more.
    void UpdateControls(IPageSetupItems& items);
    const CInchEdit* FindInchEdit(int id) const;

    CInchEdit m_editColumnGap{IDC_COLUMN_GAP};
    CInchEdit m_editFooterDistance{IDC_FOOTER_DISTANCE};
    CInchEdit m_editHeaderDistance{IDC_HEADER_DISTANCE};
    CInchEdit m_editLineNumberWidth{IDC_LINE_NUMBER_WIDTH};
};
