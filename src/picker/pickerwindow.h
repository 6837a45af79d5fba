// The syntax picker: a floating window beside the caret with one list of the pages, of which one
// shows at a time, and a help pane of three lines under it. The view keeps the focus: keys reach
// the list through the view, and clicks on the window come here.
#pragma once
#include <array>
#include <memory>
#include <string>

#include "platform/gdi/gdiobjects.h"
#include "platform/window/window.h"
#include "src/picker/valuepages.h"

class CZentrelCtrl;

constexpr int kPickerPages = 16;
constexpr int PAGE_TAG = 1, PAGE_ATTR = 2, PAGE_ENUM = 3, PAGE_COLOR = 4, PAGE_PIXEL = 5, PAGE_FONT = 6,
              PAGE_SIZE = 7, PAGE_SCRIPT = 8, PAGE_FILE = 9, PAGE_HELP = 16;
constexpr int kPickerWidth = 200, kPickerHeight = 130;

class CHTMLSyntaxPicker final : public IMessageHandler {
public:
    CHTMLSyntaxPicker();
    ~CHTMLSyntaxPicker();
    CHTMLSyntaxPicker(const CHTMLSyntaxPicker&) = delete;
    CHTMLSyntaxPicker& operator=(const CHTMLSyntaxPicker&) = delete;

    void SetControl(CZentrelCtrl* pControl);
    // Makes the window, hidden, on top of the view's; and destroys it.
    BOOL Create(HWND owner);
    void Destroy();
    HWND GetSafeHwnd() const { return m_hWnd; }

    void SetPage(int index, ISourceSchema* pSchema, const std::string& format);
    int SelectMatching(const std::string& text);
    void UpdateStatus();
    BOOL GetValue(std::string& value);
    BOOL HasSelection() const;
    BOOL NextOption();
    // A key that the view hands on: Up, Down, PgUp, PgDn, Home and End move the list.
    void OnListKey(UINT vk);
    // The options menu of the active page at a screen point.
    void ShowOptions(POINT screen);

    CHTMLSyntaxPickPage* ActivePage() const { return m_pActivePage; }
    int PageIndex() const { return m_nPageIndex; }
    ISourceSchema* Schema() const { return m_pSchema.Get(); }
    const std::string& StatusText() const { return m_strStatus; }
    // The page of an index from 1 to 16; any other index is the help page.
    CHTMLSyntaxPickPage& Page(int index);
    const RECT& ListRect() const { return m_rcList; }
    // The row under a client point of the list, or -1; and a client point inside a shown row.
    int RowAt(int x, int y) const;
    POINT RowPoint(int row) const;

    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void OnCreate();
    void Layout(int cx, int cy);
    void Paint();
    void PaintList(const PickDraw& draw);
    void PaintStatus(CDC& dc);
    void OnClick(int x, int y, bool bDouble);
    int VisibleRows() const;
    void EnsureVisible(int row);
    void Invalidate();

    CZentrelCtrl* m_pControl = nullptr;
    ComPtr<ISourceSchema> m_pSchema;
    CHTMLSyntaxPickPage* m_pActivePage = nullptr;
    int m_nPageIndex = 0;
    CHTMLSyntaxHelpPage m_HelpPage;
    CHTMLSyntaxTagPage m_TagPage;
    CHTMLSyntaxAttrPage m_AttrPage;
    CHTMLSyntaxEnumPage m_EnumPage;
    CHTMLSyntaxColorPage m_ColorPage;
    CHTMLSyntaxPixelPage m_PixelPage;
    CHTMLSyntaxFontPage m_FontPage;
    CHTMLSyntaxSizePage m_SizePage;
    CHTMLSyntaxScriptPage m_ScriptPage;
    std::array<CHTMLSyntaxFilePage, FILEKIND_COUNT> m_FilePages;
    RECT m_rcList{};
    std::string m_strStatus;
    HWND m_hWnd = nullptr;
    CFont m_font;
    CFont m_fontBold;
    int m_nTextHeight = 13;
    int m_nStatusHeight = 0;
};
