// A page of the picker: one list of rows, filled from a schema object and formatted so that each
// row reads as what a pick inserts, with recent values, options and drawing of its own. The
// base class does all of it; the pages of valuepages.h differ in a few virtual operations.
#pragma once
#include <string>
#include <vector>

#include "platform/gdi/dc.h"
#include "src/picker/pickitems.h"

class CZentrelCtrl;

struct PickRow {
    std::string text;
    ComPtr<CHTMLSyntaxPickItem> item;  // the row's reference; null for a row without one
};

// What a page draws its rows with.
struct PickDraw {
    CDC* dc = nullptr;
    CFont* font = nullptr;  // the list's font
    CFont* bold = nullptr;  // the same in bold
    int textHeight = 0;     // tmHeight of the list's font
};

// Case options of a page's values.
constexpr int CASE_UPPER = 0, CASE_LOWER = 1, CASE_UNCHANGED = 2;
inline constexpr const char* kMoreRow = "More...";

class CHTMLSyntaxPickPage {
public:
    CHTMLSyntaxPickPage() = default;
    virtual ~CHTMLSyntaxPickPage() = default;
    CHTMLSyntaxPickPage(const CHTMLSyntaxPickPage&) = delete;
    CHTMLSyntaxPickPage& operator=(const CHTMLSyntaxPickPage&) = delete;

    // Refills the list when the object or the format changed; TRUE if it did.
    BOOL SetSource(ISourceSchema* pSchema, const std::string& format);
    void AddRecent(CHTMLSyntaxPickItem* pItem);
    // Drops the rows and the object, as the window goes; options and recent values stay.
    void Empty() {
        ClearRows();
        m_pSchema = nullptr;
    }
    ISourceSchema* GetSchema() const { return m_pSchema.Get(); }
    const std::string& GetFormat() const { return m_strFormat; }
    int GetOption() const { return m_nOption; }
    int GetCase() const { return m_nCase; }
    size_t RecentCount() const { return m_Recent.size(); }

    // The list: rows, the current row (-1 for none) and the first row shown.
    int GetCount() const { return static_cast<int>(m_rows.size()); }
    const PickRow& Row(int index) const { return m_rows[static_cast<size_t>(index)]; }
    int GetCurSel() const { return m_nCurSel; }
    void SetCurSel(int index);
    int GetTopIndex() const { return m_nTop; }
    void SetTopIndex(int index);
    // The first row from the top whose text begins with `prefix`, ignoring case; -1 for none.
    int FindPrefix(const std::string& prefix) const;
    // Adds a row in sorted place on a sorted page, else at the end; gives its index.
    int AddRow(std::string text, ComPtr<CHTMLSyntaxPickItem> item);
    int InsertRow(int index, std::string text, ComPtr<CHTMLSyntaxPickItem> item);
    void DeleteRow(int index);
    // Moves a row to another place, keeping its item; gives the new index or -1.
    int MoveItem(int toRow, int fromRow);
    bool IsDisabled() const { return m_bDisabled; }
    // The height of each row in a list of the given height, for rows of textHeight.
    virtual int RowHeight(int row, int textHeight, int listHeight) const;

    virtual void SetOwner(CZentrelCtrl* pControl) { m_pControl = pControl; }
    virtual void FormatValue(std::string& value) const;
    virtual BOOL GetValue(std::string& value);
    virtual BOOL GetDescription(std::string& text);
    virtual BOOL GetEmptyDescription(std::string&) { return FALSE; }
    virtual ComPtr<CHTMLSyntaxPickItem> CreateItem(ISourceSchema* pSchema);
    virtual BOOL NextOption();
    virtual BOOL PrevOption();
    virtual BOOL SetOption(int index);
    virtual int GetOptionCount() const { return 1; }
    virtual std::string GetOptionName(int) const { return {}; }
    virtual BOOL HasMore() const { return FALSE; }
    virtual BOOL RunMore(std::string&, const std::string&) { return FALSE; }
    virtual BOOL HasRecent() const { return FALSE; }
    virtual void AddSpecialRows();
    virtual void ClearRows();
    virtual void AddSchemaRows();
    virtual void DrawItem(const PickDraw& draw, int row, const RECT& rc, bool selected);
    virtual void DrawIcon(const PickDraw&, int, const RECT&) {}

protected:
    // Adds an item's row: its text through FormatValue.
    void AddItemRow(ComPtr<CHTMLSyntaxPickItem> item);
    int FirstRecentRow() const { return HasMore() ? 1 : 0; }
    // Fires a Request event with a text argument; the host's answer comes back in `value`.
    // Gives TRUE if the host took it, with `accepted` set to what it said.
    bool AskHost(DISPID event, std::string& value, bool* accepted);
    void DrawRowText(const PickDraw& draw, const RECT& rc, const RECT& rcText, const std::string& text, bool selected,
                     bool more);

    BOOL m_bFilled = FALSE;
    CZentrelCtrl* m_pControl = nullptr;
    ComPtr<ISourceSchema> m_pSchema;
    std::string m_strFormat;
    int m_nOption = 0;
    std::vector<ComPtr<CHTMLSyntaxPickItem>> m_Recent;  // newest first
    int m_nCase = CASE_UPPER;
    bool m_bSorted = true;
    bool m_bDisabled = false;

private:
    std::vector<PickRow> m_rows;
    int m_nCurSel = -1;
    int m_nTop = 0;
};

// Upper or lower case by the bytes of the code page's single-byte letters.
void ChangeCase(std::string& text, int nCase);
// Draws `text` in rc, broken at spaces into as many lines as fit.
void DrawWrappedText(CDC& dc, const RECT& rc, const std::string& text, int lineHeight);
