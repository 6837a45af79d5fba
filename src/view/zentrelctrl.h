// CZentrelCtrl: the control. It holds all view state, owns the window, and is the object
// behind every property, method and event. Its member operations are spread over the
// subsystem folders by subject; this header lists every field and every operation.
#pragma once
#include <ctime>
#include <map>
#include <memory>
#include <string>

#include "platform/com/globalmemory.h"
#include "platform/com/propnotify.h"
#include "platform/com/stream.h"
#include "platform/gdi/fontholder.h"
#include "platform/window/dragdrop.h"
#include "platform/window/keys.h"
#include "platform/window/olecontrol.h"
#include "platform/window/tooltip.h"
#include "src/annotations/bookmarkmanager.h"
#include "src/annotations/collapsenode.h"
#include "src/document/sourcetext.h"
#include "src/edit/completionscan.h"
#include "src/edit/accessibletext.h"
#include "src/layout/fontmetrics.h"
#include "src/layout/layoutrange.h"
#include "src/layout/lineindex.h"
#include "src/paint/formatstyle.h"
#include "src/paint/paintcontext.h"
#include "src/paint/rowcheckpoints.h"
#include "src/print/pagesetup.h"
#include "src/print/printprogress.h"
#include "src/view/options.h"

extern const CLSID CLSID_Zentrel;
extern const IID IID_DZentrel;
extern const IID IID_DZentrelEvents;
extern const GUID LIBID_Zentrel;
// The control's class with its interfaces and enumerations, as its type library lists them.
const CClassInfo& ZentrelClassInfo();

// Event dispatch ids.
constexpr DISPID EVENT_SELECTIONCHANGED = 1;
constexpr DISPID EVENT_ONOLEDROP = 2;
constexpr DISPID EVENT_ONOLEDRAGOVER = 3;
constexpr DISPID EVENT_EDITMODETOGGLED = 4;
constexpr DISPID EVENT_DOCUMENTCHANGED = 5;
constexpr DISPID EVENT_AUTOCONVERTTOGGLED = 6;
constexpr DISPID EVENT_BOOKMARKCHANGED = 7;
constexpr DISPID EVENT_REQUESTCOLOR = 8;  // the other requests follow, 9 to 16
constexpr DISPID EVENT_SYNTAXOBJECTCHANGED = 17;

// Window timers of the control.
constexpr UINT kCompletionTimer = 1;
constexpr UINT kDragSelectTimer = 2;

// Sentinels of positions and widths.
constexpr long POS_TO_END = 0x7FFFFFFF;
constexpr long WIDTH_UNLIMITED = 0x7FFFFFFF;

class CHTMLSyntaxPicker;

class CZentrelCtrl : public COleControl {
public:
    // The automation surface as data: the dispatch interface, and the class with its events.
    static const CInterfaceInfo* DispatchInterface();
    const CInterfaceInfo* GetTypeInfo() override { return DispatchInterface(); }
    const CClassInfo* GetClassInfo() override;
    CZentrelCtrl();

    // The version of the persisted form.
    static constexpr DWORD kPersistVersion = 0x00010000;

    // Callback parts: small interface tables inside the object that forward to it.
    class XTextSink final : public ISourceTextSink {
    public:
        HRESULT QueryInterface(REFIID riid, void** ppv) override;
        ULONG AddRef() override;
        ULONG Release() override;
        HRESULT GetWindow(HWND* out) override;
        HRESULT OnChange(long a, long b, IUnknown* change) override;
        HRESULT OnBusy(BOOL busy, const char* text, long reserved) override;
        explicit XTextSink(CZentrelCtrl* owner) : m_pOwner(owner) {}
        CZentrelCtrl* Owner() const { return m_pOwner; }

    private:
        CZentrelCtrl* m_pOwner;
    };
    class XRangeSink final : public ISourceRangeSink {
    public:
        HRESULT QueryInterface(REFIID riid, void** ppv) override;
        ULONG AddRef() override;
        ULONG Release() override;
        HRESULT OnSelectionChanged(long active, long anchor) override;
        HRESULT OnEnsureVisible(long reserved) override;
        explicit XRangeSink(CZentrelCtrl* owner) : m_pOwner(owner) {}
        CZentrelCtrl* Owner() const { return m_pOwner; }

    private:
        CZentrelCtrl* m_pOwner;
    };
    class XFontNotify final : public IPropertyNotifySink {
    public:
        HRESULT QueryInterface(REFIID riid, void** ppv) override;
        ULONG AddRef() override;
        ULONG Release() override;
        HRESULT OnChanged(DISPID) override { return S_OK; }
        HRESULT OnRequestEdit(DISPID) override { return S_OK; }
        explicit XFontNotify(CZentrelCtrl* owner) : m_pOwner(owner) {}
        CZentrelCtrl* Owner() const { return m_pOwner; }

    private:
        CZentrelCtrl* m_pOwner;
    };
    // Hears the drags over the control's window, registered while the window lives.
    class XDropTarget final : public IDropTarget {
    public:
        DROPEFFECT OnDragEnter(IDataObject* data, DWORD keyState, POINT pt) override;
        DROPEFFECT OnDragOver(IDataObject* data, DWORD keyState, POINT pt) override;
        void OnDragLeave() override;
        BOOL OnDrop(IDataObject* data, DROPEFFECT effect, POINT pt) override;
        DROPEFFECT OnDragScroll(DWORD keyState, POINT pt) override;
        explicit XDropTarget(CZentrelCtrl* owner) : m_pOwner(owner) {}

    private:
        CZentrelCtrl* m_pOwner;
    };

    // --- Window messages (zentrelctrl.cpp) ---
    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override;
    int OnCreate();
    void OnSize(UINT type, int cx, int cy);
    void OnDestroy();
    LRESULT OnGetTextLength();
    LRESULT OnGetText(WPARAM size, char* buffer);
    LRESULT OnInputMessage(UINT message, WPARAM wParam, LPARAM lParam);

    // --- Document binding (src/document) ---
    BOOL AttachDocument(IDispatch* pDocument);
    void DetachDocument();
    // The control's reference count as it stands.
    ULONG CurrentRefs();
    HRESULT OnChange(long a, long b, IUnknown* change);
    HRESULT OnBusy(BOOL busy, const char* text, long reserved);
    HRESULT OnSelectionChanged(long active, long anchor);
    HRESULT OnEnsureVisible(long reserved);
    LRESULT OnSourceRepaint(WPARAM wParam, LPARAM lParam);
    IDispatch* GetDocument();   // a reference for the caller, or null
    void SetDocument(IDispatch* pDocument);
    IDispatch* GetSelection();  // a reference for the caller, or null

    // --- Layout (src/layout) ---
    void OnTextChanged(long nAction, long nFirst, long nSecond);
    // Bytes a replacement took out, worked out from the table's total and the new length.
    long ReplacedBytes(long nFirst, long nSecond) const;
    // Brings the table in step with nRemoved bytes at nPos replaced by nInserted.
    void ApplyTextChange(long nPos, long nRemoved, long nInserted, LayoutRange* pRange);
    // Lays the whole text out anew after a large change; widens pRange to all below nFrom.
    void RelayoutAll(long nFrom, LayoutRange* pRange);
    // Lays out anew the rows that a change of the text touched (nRemoved bytes at nPos replaced by
    // nInserted), so that the table is what a whole layout of the new text gives.
    void RelayoutChange(long nPos, long nRemoved, long nInserted, LayoutRange* pRange);
    // Lays out anew the rows from nStart to nEnd of an unchanged text: a block there folded or
    // opened.
    void RelayoutSpan(long nStart, long nEnd, LayoutRange* pRange) { RelayoutChange(nStart, nEnd - nStart, nEnd - nStart, pRange); }
    // The width the breaker wraps the view's text at: no limit without word wrap.
    long BreakWidth();
    BOOL Reformat(BOOL bOnlyIfWidthChanged);
    long GetWrapWidth();
    bool LaidOutBehindVerticalBar(long nWidth);
    void WrapLines(DWORD dwOptions, long nPos, LayoutRange* pRange, long nWidth, long nLines, CLineIndex* pTable);
    void RewrapLines(long nPos, LayoutRange* pRange, long nLines);
    // Lays out the whole text into pTable in one pass: the same breaks as WrapLines from 0.
    void WrapAll(DWORD dwOptions, long nWidth, CLineIndex* pTable);
    template <class Table>
    void WrapLinesIn(DWORD dwOptions, long nPos, LayoutRange* pRange, long nWidth, long nLines, Table* pTable);
    BOOL FindCollapse(long nPos, long* pnStart, long* pnEnd) const;
    // The start of the first collapsed block at or behind nPos; POS_TO_END when there is none.
    long NextCollapseStart(long nPos) const;
    void ShowBusyPanel(BOOL bShow);
    void SetBusyText(const char* lpszText);
    void OpenBusyPanel();
    void CloseBusyPanel();

    // Fonts (src/layout/fontcache.cpp).
    void BuildFontCache(CDC* pDC, BOOL bPrinter);
    BOOL RebuildFontCache();
    void ClearFontCache();
    long GetGutterFontWidth();
    // The record of a font word, or that of word 0 when the word has none; null for an empty cache.
    CFontMetrics* GetFontMetrics(DWORD dwFont) const;
    // The record of exactly this font word, or null.
    CFontMetrics* FindFontMetrics(DWORD dwFont) const;

    // Mapping between positions and points (src/layout/mapping.cpp).
    long PositionFromDocPoint(long x, long y);
    long PositionFromClientPoint(long x, long y);
    void DocPointFromPosition(long nPos, POINT* pt);
    void ClientPointFromPosition(long nPos, POINT* pt);
    void ColumnRowFromPosition(long nPos, POINT* pColumnRow);
    long GetLineEnd(long nPos);
    // The line of a position and its start; at the document's end, the last line.
    long LineOfPosition(long nPos, long docLen, long* pnStart) const;
    // Where a position shows: its line, and how far along it in pixels and in columns; every
    // position in a collapsed block shows at its line's left edge.
    struct LinePlace {
        long line, pixels, columns;
    };
    LinePlace PlaceOfPosition(long nPos);
    long FindPositionFromPoint(long nX, long nY);
    long FindPositionFromCoordinate(long nColumn, long nRow);
    BOOL FindPointFromPosition(long nPosition, long* pnX, long* pnY);
    void FindCoordinateFromPosition(long nPosition, long* pnColumn, long* pnRow);

    // Scrolling and the caret (src/layout/scrolling.cpp, caret.cpp).
    BOOL ScrollTo(long nTop, long nLeft);
    BOOL SmoothScrollTo(long nTop, long nLeft);
    void ScrollRangeIntoView(long nFirst, long nSecond);
    void ScrollCaretIntoView();
    void ScrollToTop() { ScrollTo(0, 0); }
    void ClampScrollPosition();
    void UpdateScrollBars(long nWidth, long nHeight);
    void OnVScroll(int nCode, int nPos);
    void OnHScroll(int nCode, int nPos);
    // The farthest m_nLeftPixel can go: ColumnMax columns less the window's width.
    long HScrollLimit() const;
    long GetVisibleLines() const;
    long GetScrollScale() const;
    void CreateViewCaret();
    void PlaceCaret();
    void OnSetFocus();
    void OnKillFocus();
    void InvalidateHiddenSelection();
    // The client rectangle right of the gutter.
    RECT TextAreaRect() const;

    // --- Painting (src/paint) ---
    // The format of the character at nPos, whose first byte is c; gives its size in bytes.
    int GetCharFormat(BYTE c, long nPos, DWORD dwOptions, CharFormat* pFormat);
    void OnDraw(CDC* pDC, const RECT& rcBounds, const RECT& rcInvalid) override;
    void PrepareDC(CDC* pDC);
    void PaintView(CDC* pDC, const RECT& rcBounds, const RECT& rcUpdate, BOOL bBuffered);
    void PaintBuffered(CDC* pDC, long nScrollX, long nScrollY, const RECT& rcBounds, const RECT& rcUpdate,
                       BOOL bBuffered);
    void PaintLines(PaintContext* pCtx);
    void PaintLine(LinePaint* pLine);
    // False when it could not draw the line's band (no font for it).
    bool PaintCollapsedLine(LinePaint* pLine, long nBlockStart, long nBlockEnd);
    void FillLineTail(LinePaint* pLine, long nFrom);
    // --- The gutter (src/paint/gutter.cpp) ---
    void LoadGutterBitmaps();
    void PaintGutterColumn(PaintContext* pCtx, CDC* pMemDC, long nWidth);
    void PaintGutterMarks(LinePaint* pLine);
    void PaintBookmarkFlag(LinePaint* pLine, long nGutterRight);
    void PaintLineNumber(LinePaint* pLine, long nGutterRight);
    void PaintSelectionBracket(LinePaint* pLine, const RECT& rcBox);
    // Copies a gutter bitmap into a rectangle of the line's device, through the memory context.
    void PaintGutterBitmap(LinePaint* pLine, CBitmap* pBitmap, const RECT& rc);
    // The checkpoints of long rows, first brought in step with the format table, the fonts, the
    // option word and the selection in force (src/paint/viewcheckpoints.cpp).
    CRowCheckpoints& RowCheckpoints(DWORD dwOptions);
    void InvalidateRange(long nFrom, long nTo);
    void InvalidateGutter();
    void InvalidateGutterAt(long nPos);
    struct RunPainter;

    // --- Editing (src/edit) ---
    // The modifier word of the moment: bit 0 Shift, bit 1 Ctrl.
    static int Mods();
    // Keys (keyrouting.cpp). PreTranslateMessage gives 1 for a key it claims ahead of the host;
    // OnKeyDown gives FALSE for a key that falls through to the default handling.
    LRESULT PreTranslateMessage(const MSG& msg);
    BOOL OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags);
    // Caret movement (caretmove.cpp).
    long PrevCharPos(long pos);
    long NextCharPos(long pos);
    void MoveCaret(long pos, int mods);
    void CharLeft(int mods);
    void CharRight(int mods);
    void LineUp(int mods);
    void LineDown(int mods);
    void PageUp(int mods);
    void PageDown(int mods);
    void LineHome(int mods);
    void LineEnd(int mods);
    void MatchBracket(int mods);
    void StepBack(int mods);
    void StepForward(int mods);
    // Deletion, undo and the two mode toggles (editcommands.cpp).
    void Backspace(int mods);
    void DeleteForward(int mods);
    void SelectAll();
    void DoUndo();
    void DoRedo();
    void ToggleOverwrite();
    void ToggleAutoConvert();
    // Typing (typing.cpp).
    void OnChar(UINT nChar, UINT nRepCnt, UINT nFlags);
    LRESULT OnImeChar(WPARAM wParam, LPARAM lParam);
    // Input methods (inputmethod.cpp).
    void OnUniChar(char32_t cp);
    LRESULT OnGetSurroundingText(SurroundingText* pText);
    // The mouse and the selection (mouse.cpp, selection.cpp).
    void OnLButtonDown(UINT nFlags, int x, int y);
    void OnLButtonUp(UINT nFlags, int x, int y);
    void OnLButtonDblClk(UINT nFlags, int x, int y);
    void OnMouseMove(UINT nFlags, int x, int y);
    void OnMButtonDown(UINT nFlags, int x, int y);
    void OnRButtonDown(UINT nFlags, int x, int y);
    void OnNcLButtonDown();
    void OnTripleClick(int x, int y);
    void OnDragSelectTimer();
    void DragSelectTo(int x, int y);
    void EndDragSelect();
    BOOL GutterBoxTakesClick(int x, int y);
    void SetSelectionEnds(long active, long anchor);
    void GetWordRange(long pos, long* pActive, long* pAnchor);
    void GetTokenRange(long pos, long* pActive, long* pAnchor);
    void SelectWordAtPos(long nPos);
    void GetWordPosAtPos(long nPos, long* pnStart, long* pnEnd);
    long GetMatchChar(long nPosition);
    // Clipboard and text drags (clipboard.cpp). Cut and Copy give FALSE with no selection.
    BOOL Cut();
    BOOL Copy();
    void Paste();
    // Copy for a host: running out of memory is an automation error instead of FALSE.
    void CopyForHost();
    // The text between two positions, in either order, as CF_TEXT; null with no document or an
    // empty range.
    ComPtr<IDataObject> CreateDataSource(long nFirst, long nSecond);
    BOOL BeginTextDrag(long nPos);
    // The drop side (dragdrop.cpp).
    DROPEFFECT OnDragEnter(IDataObject* pDataObject, DWORD dwKeyState, POINT point);
    DROPEFFECT OnDragOver(IDataObject* pDataObject, DWORD dwKeyState, POINT point);
    void OnDragLeave();
    BOOL OnDrop(IDataObject* pDataObject, DROPEFFECT dropEffect, POINT point);
    DROPEFFECT OnDragScroll(DWORD dwKeyState, POINT point);
    // Inverts the drop caret, a bar two pixels wide and a line high, at pt (stored) or, with
    // null, at the stored point; a second call at the same point erases it.
    void DrawDropCaret(const POINT* pt);

    // --- Tag hints and cursors (src/edit/taghints.cpp, mousecursor.cpp) ---
    static constexpr UINT kToolId = 1;
    BOOL CreateToolTip();
    // The tip is on while AutoHint or AutoDoc is.
    void UpdateToolTipActivation();
    void SetToolRectToTextArea();
    // While no tip shows, the tool follows the mouse at (x, y).
    void MoveToolRect(int x, int y);
    void RelayToToolTip(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnNotify(WPARAM id, NMHDR* pNMHDR);
    BOOL OnToolTipNeedText(UINT id, NMHDR* pNMHDR, LRESULT* pResult);
    BOOL OnToolTipShow(UINT id, NMHDR* pNMHDR, LRESULT* pResult);
    BOOL OnToolTipPop(UINT id, NMHDR* pNMHDR, LRESULT* pResult);
    BOOL SupplyHintText(ISourceSyntaxItem* pItem, NMTTDISPINFO* pInfo);
    BOOL SupplyDescriptionText(long nPos, NMTTDISPINFO* pInfo);
    BOOL OnSetCursor(HWND pWnd, UINT nHitTest, UINT message);
    // The id of the cursor for the mouse where it is now.
    UINT ChooseCursor();
    UINT GutterCursor(int x, int y);
    const CToolTipCtrl& ToolTip() const { return m_tooltip; }

    // --- Accessibility (src/edit/accessibletext.cpp) ---
    // Tell assistive technology of a change of the text and of the caret, while it listens.
    void TellAccessibleTextChange(long nPos, long nRemoved, long nInserted);
    void TellAccessibleCaret();

    // --- Picker window (src/picker) ---
    BOOL IsPickerVisible() const;
    BOOL PickerHasCurrentRow() const;
    void ShowPicker();
    void HidePicker();
    // Replaces the token at the caret with the current row's value; FALSE if nothing was picked.
    BOOL AcceptPick();
    // Hands a key message to the picker's window, so that its list moves instead of the caret.
    void ForwardToPicker(const MSG& msg);
    // The picker object, made on first use; its window lives while the view has the focus.
    CHTMLSyntaxPicker& Picker();
    const CHTMLSyntaxPicker* PickerIfAny() const { return m_pPicker.get(); }
    void CreatePickerWindow();
    void DestroyPickerWindow();
    // Fills the picker for the caret's place; gives where the token at the caret begins.
    long UpdatePicker();
    void PlacePicker(long nPosition, BOOL bShow);
    BOOL PickerNextOption();
    // The automation methods: FALSE without a document.
    BOOL ShowSyntaxPicker();
    BOOL HideSyntaxPicker();

    // --- Collapsed blocks (src/annotations/collapse.cpp) ---
    // Folds lo..hi into one line; with bUpdate the line table follows and the block is selected
    // and shown. FALSE where it would begin or end inside a block or equal one.
    BOOL CollapseBlock(long nStart, long nEnd, BOOL bUpdate);
    // Opens the outermost blocks inside nStart..nEnd, one level or all; FALSE if none.
    BOOL ExpandBlocks(long nStart, long nEnd, BOOL bOneLevel);
    BOOL Collapse();
    BOOL Expand(BOOL bOneLevel);
    BOOL CollapseRange(long nStart, long nEnd);
    BOOL ExpandRange(long nStart, long nEnd, BOOL bOneLevel);
    // Raises error 380 without a document or for a position outside 0 .. length - 1.
    void CheckBlockRange(long nStart, long nEnd) const;
    // The plus or minus box of a line, in client pixels.
    RECT GetFoldBoxRect(long nLine) const;
    // The same for a line whose top is at yTop.
    RECT FoldBoxRectAt(long yTop) const;
    // Whether the line's box stands for the selection: a selection that shares text with the
    // line and begins or ends on it.
    BOOL SelectionBoxOnLine(long nLine) const;
    // The box of a line in the gutter: TRUE if the click at (x, y) hit it and acted.
    BOOL OnGutterBox(long nLine, int x, int y);
    const CCollapseNode& CollapseRoot() const { return m_CollapseRoot; }

    // --- Bookmarks (src/annotations/bookmarks.cpp) ---
    BOOL ToggleBookmark(const std::string& name);
    BOOL ToggleNumberedBookmark(int n);
    BOOL GotoNumberedBookmark(int n);
    BOOL GotoBookmark(const std::string& name);
    BOOL FindBookmark(const std::string& name) const;
    void RemoveAllBookmarks();
    // The name of the bookmark at nIndex, newest first; an index outside the list raises.
    std::string GetBookmarkName(long nIndex) const;
    void SetBookmarkName(long nIndex, const std::string& name);
    const CBookmarkManager& Bookmarks() const { return m_Bookmarks; }

    // --- Extra info (src/annotations/extrainfo.cpp) ---
    // The selection, bookmarks and blocks as a record, in a store of the host's. Each gives
    // FALSE for anything that goes wrong, and a load that is refused changes nothing.
    BOOL SaveExtraInfoTo(IStream* pStream);
    BOOL LoadExtraInfoFrom(IStream* pStream);
    BOOL SaveExtraInfo(IUnknown* punkStream);
    BOOL LoadExtraInfo(IUnknown* punkStream);
    BOOL SaveExtraInfoToFile(const std::string& lpszFileName);
    BOOL LoadExtraInfoFromFile(const std::string& lpszFileName);
    BOOL SaveExtraInfoToMemory(HGLOBAL* lphGlobalMemory);
    BOOL LoadExtraInfoFromMemory(HGLOBAL hGlobalMemory, long nMemorySize);

    // --- Printing (src/print) ---
    // Print: the desktop's print dialog, then the job; FALSE when the dialog was cancelled or
    // the job failed (with a message box).
    BOOL PrintDocument(const char* lpszName);
    // The job alone, on the printer that the page setup object holds.
    BOOL PrintJob(const char* lpszName);
    BOOL PageSetup();
    void PreparePrinterDC(CDC* pDC);
    static void ExpandTemplate(std::string* out, const std::string& lpszTemplate, const std::string& lpszName, long nPage,
                               const std::tm& now);
    void PrintHeader(CDC* pDC, long nPage, const std::string& lpszName, const std::tm& now, const RECT* prc);
    void PrintFooter(CDC* pDC, long nPage, const std::string& lpszName, const std::tm& now, const RECT* prc);
    DWORD GetPrintOptions(DWORD dwOptions) const;
    CEditPageSetupDialog& PageSetupObject() { return m_dlgPageSetup; }

    // --- Code completion (src/edit) ---
    // Runs timer 1 in completion mode 1 and stops it in the others.
    void StartCodeCompletion();
    void StopCodeCompletion();
    // The root of the document's schema tree, or null without one (completion.cpp).
    ComPtr<ISourceSchema> GetSchemaRoot();
    // The bytes around pos that the scans read, and where they begin in the document.
    std::string ReadTagStretch(long pos, long* pStart);
    void FindTagBounds(long pos, long* pStart, long* pEnd);
    // The place at pos; CTX_NONE without a document or a schema.
    TagContext AnalyzeTag(long pos);
    void OnCompletionTimer();
    // Ctrl+Space: opens the picker, or steps the open page to its next option.
    void CompletionKey();

    // --- Properties (src/view/properties.cpp) ---
    BOOL GetOption(DWORD mask) const { return (m_Options & mask) ? TRUE : FALSE; }
    void SetOption(DWORD mask, BOOL value);
    OLE_COLOR GetBackColor() const { return m_clrBack; }
    void SetBackColor(OLE_COLOR color);
    long GetLineCount() const { return m_Lines.m_nCount; }
    long GetSelectionStart() const { return m_nSelActive; }
    long GetSelectionEnd() const { return m_nSelAnchor; }
    void SetSelectionStart(long value);
    void SetSelectionEnd(long value);
    void SetSelection(long nStart, long nEnd);
    void GetSelection(long* pnStart, long* pnEnd) const;
    SHORT GetTabSize() const { return m_nTabSize; }
    void SetTabSize(SHORT value);
    SHORT GetIndentSize() const { return m_nIndentSize; }
    void SetIndentSize(SHORT value);
    void SetGutterSize(long value);
    long GetRightMargin() const { return m_nRightMargin; }
    void SetRightMargin(long value);
    long GetColumnMax() const { return m_nColumnMax; }
    void SetColumnMax(long value);
    SHORT GetHighlightStyle() const { return m_nHighlightStyle; }
    void SetHighlightStyle(SHORT value);
    SHORT GetScrollMarginVertical() const { return m_nScrollMarginV; }
    void SetScrollMarginVertical(SHORT value);
    SHORT GetScrollMarginHorizontal() const { return m_nScrollMarginH; }
    void SetScrollMarginHorizontal(SHORT value);
    SHORT GetScrollByHorizontal() const { return m_nScrollByH; }
    void SetScrollByHorizontal(SHORT value);
    SHORT GetScrollByVertical() const { return m_nScrollByV; }
    void SetScrollByVertical(SHORT value);
    OLE_COLOR GetTextColor() const { return m_Styles[STYLE_NONE].crText; }
    void SetTextColor(OLE_COLOR color);
    SHORT GetCodeCompletionMode() const { return m_nCompletionMode; }
    void SetCodeCompletionMode(SHORT value);
    long GetCodeCompletionTimeDelay() const { return m_nCompletionDelay; }
    void SetCodeCompletionTimeDelay(long value);
    OLE_COLOR GetSyntaxPickerColor(SHORT nIndex) const;
    void SetSyntaxPickerColor(SHORT nIndex, OLE_COLOR color);
    const FormatStyle& GetFormatStyle(int nIndex) const { return m_Styles[nIndex]; }
    std::string GetFormatStyleName(SHORT nFormat) const;
    OLE_COLOR GetFormatTextColor(SHORT nFormat) const;
    void SetFormatTextColor(SHORT nFormat, OLE_COLOR color);
    OLE_COLOR GetFormatBackColor(SHORT nFormat) const;
    void SetFormatBackColor(SHORT nFormat, OLE_COLOR color);
    long GetFormatStyleWord(SHORT nFormat) const;
    void SetFormatStyleWord(SHORT nFormat, long value);
    void AddExceptionTag(const std::string& lpszTagName, OLE_COLOR colForeground, OLE_COLOR colBackground);
    void RemoveAllExceptionTags();
    long GetBookmarkCount() const { return m_Bookmarks.GetCount(); }
    BOOL PointInGutter(long nClientX, long nClientY) const;
    const FontDesc& GetEditFont() const { return m_fontEdit.GetFontDesc(); }
    void SetEditFont(const FontDesc& font);
    // The edit font's object, with a reference for the caller; and taking another font object.
    IDispatch* GetEditFontDispatch() const { return m_fontEdit.GetFontDispatch(); }
    void SetEditFontDispatch(IDispatch* font);
    void OnEditFontChanged();
    // Makes the caret anew in the mode's width and tells the host, after Overwrite changed.
    void OnOverwriteChanged();

    // Read access for tests and the host.
    const CLineIndex& Lines() const { return m_Lines; }
    long GetTopLine() const { return m_nTopLine; }
    long GetBusyCount() const { return m_nBusyCount; }
    DWORD GetOptionsWord() const { return m_Options; }
    ISourceText* GetDocumentText() const { return m_pDoc; }

protected:
    ~CZentrelCtrl() override;
    void OnFinalRelease() override;
    HRESULT QueryExtraInterface(REFIID riid, void** ppv) override;
    void DoPropExchange(CPropExchange* pPX) override;
    bool CheckPropertyKinds(const CPropertyBag& bag, std::string* error) const override;
    void OnEnabledChanged() override;
    HRESULT GetOwnIDsOfNames(const std::string& name, DISPID* pDispId) override;
    HRESULT InvokeOwn(DISPID dispid, WORD flags, std::vector<Variant>& args, Variant* result,
                      ExcepInfo* excep) override;

private:
    // The paths of a typed character (typing.cpp).
    void OnControlChar(UINT nChar);
    void TabKey(int mods);
    void TypeEnter();
    void TypeOvertype(BYTE ch);
    void TypeInsert(BYTE ch);
    // Helpers of the option setters.
    void OnOptionChanged(DWORD mask, BOOL value);
    void CheckFormatIndex(SHORT nFormat, SCODE scode) const;
    // Helpers of the bookmark toggle.
    long ToggleLineOf(long nPos) const;
    BOOL SetBookmarkAtSelection(const std::string& name);
    CBookmark& BookmarkAt(long nIndex) const;
    // The pages of a started job (printengine.cpp); throws what the user is told.
    void PrintPages(CDC* pDC, const char* lpszName);
    void PrintTemplate(CDC* pDC, const std::string& strTemplate, long nPage, const std::string& lpszName, const std::tm& now,
                       const RECT* prc);
    // Whether selected bytes get the selection's colours under this option word.
    bool SelectionShows(DWORD dwOptions) const;
    // The style that the highlight mode gives the character, before any override.
    CharFormat SyntaxFormat(BYTE c, long nPos);
    // The format of a tag token under TagHighlight: the tag style, or an exception tag's colours.
    CharFormat TagTokenFormat(long nTokenStart);

public:
    // Callback parts.
    XTextSink m_xTextSink;
    XRangeSink m_xRangeSink;
    XFontNotify m_xFontNotify;
    XDropTarget m_dropTarget;

    // General.
    OLE_COLOR m_clrBack = 0xFFFFFF;
    RECT m_rcClient{};

    // Document.
    ISourceText* m_pDoc = nullptr;
    ISourceSyntax* m_pSyntax = nullptr;
    ISourceTokens* m_pTokens = nullptr;
    ComPtr<IDispatch> m_dispSchema;

    // Accessibility: the text as assistive technology reads it.
    CAccessibleText m_accessible{this};

    // Tag hints.
    CToolTipCtrl m_tooltip;
    BOOL m_bTipShown = FALSE;

    // State flags.
    BOOL m_bFocused = FALSE;
    BOOL m_bDestroyed = FALSE;
    BOOL m_bDocTip = FALSE;

    // Layout.
    CLineIndex m_Lines;
    long m_nWrapWidth = WIDTH_UNLIMITED;
    long m_nColumnMax = 0x7FFFFFFF;
    long m_nCharWidth = 8;
    long m_nLineHeight = 15;
    long m_nAscent = 0;
    long m_nTabPixels = 40;
    long m_nTopLine = 0;
    long m_nLeftPixel = 0;
    long m_nGoalX = -1;

    // Selection mirror.
    long m_nSelActive = 0;
    long m_nSelAnchor = 0;
    ISourceRange* m_pSelection = nullptr;
    DWORD m_dwSelCookie = 0;
    // The references that the document's advice and the selection's owner took, which the
    // control gave back.
    ULONG m_nAdviceRefs = 0;
    BOOL m_bMouseDown = FALSE;
    BOOL m_bDragSelectTimer = FALSE;

    // Annotations and styles.
    CBookmarkManager m_Bookmarks;
    CCollapseNode m_CollapseRoot;
    FormatStyleTable m_Styles;
    std::map<std::string, FormatStyle> m_ExceptionTags;  // key: tag name in upper case; font word unused
    std::map<DWORD, std::unique_ptr<CFontMetrics>> m_FontMetrics;  // by font word
    CFontMetrics m_WrapMetrics;
    CRowCheckpoints m_RowCheckpoints;  // where the walks along long rows may start
    CPen m_penHidden;
    CBitmap m_bmpGutter;  // the background tile
    CBitmap m_bmpFold;    // the minus box
    CBitmap m_bmpMark;    // the plus box

    // Settings.
    DWORD m_Options = OPTIONS_DEFAULT;
    SHORT m_nHighlightStyle = 1;
    SHORT m_nTabSize = 5;
    SHORT m_nIndentSize = 60;
    CFontHolder m_fontEdit;
    CFontHolder m_fontGutter;
    CFontHolder m_fontSymbol;
    long m_nRightMargin = 80;
    SHORT m_nScrollMarginH = 10;
    SHORT m_nScrollMarginV = 0;
    SHORT m_nScrollByH = 10;
    SHORT m_nScrollByV = 1;

    // Mouse, drag and drop, busy panel.
    DWORD m_dwLastClick = 0;
    long m_nClickCount = 0;
    long m_nDragOverMode = 3;
    POINT m_ptDropCaret{};
    BYTE m_bMoveUndoOpen = 0;
    ISourceRange* m_pDragRange = nullptr;
    long m_nBusyCount = 0;
    std::string m_strBusyText;
    HWND m_hwndBusyText = nullptr;
    HWND m_hwndBusyAnim = nullptr;

    // Syntax picker and code completion.
    BYTE m_bPickerOpen = 0;
    OLE_COLOR m_clrPicker[16];
    SHORT m_nCompletionMode = 2;
    long m_nCompletionDelay = 1000;
    BYTE m_bCompletionHeld = 0;
    BYTE m_bCompletionTimer = 0;
    DWORD m_dwLastKey = 0;
    std::shared_ptr<CHTMLSyntaxPicker> m_pPicker;  // shared: the header needs no complete type

    // Printing: the page setup object, the one store of print settings.
    CEditPageSetupDialog m_dlgPageSetup;

    // Painting speed: set while OnDraw paints, so that nothing paints inside the paint.
    bool m_bPainting = false;
    // Set when a paint filled flat while the control was busy: that part of the window is stale
    // until the control is no longer busy.
    bool m_bBusyFilled = false;
};

// Creates a control with one reference for the caller, as the class factory does.
CZentrelCtrl* CreateZentrelCtrl();
