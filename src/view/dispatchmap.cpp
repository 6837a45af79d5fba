// The automation table of the control: every member by dispid and name, with its code.
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"

namespace {

using Table = CDispatchTable<CZentrelCtrl>;
using Args = std::vector<Variant>;

struct OptionProperty {
    DISPID id;
    const char* name;
    DWORD mask;
};

constexpr OptionProperty kOptionProperties[] = {
    {2, "DisplayAll", OPT_DISPLAYALL},
    {10, "ReadOnly", OPT_READONLY},
    {12, "RightMarginVisible", OPT_RIGHTMARGINVISIBLE},
    {13, "FireSelectionChanged", OPT_FIRESELECTIONCHANGED},
    {14, "DragDropEdit", OPT_DRAGDROPEDIT},
    {15, "AutoCloseBracket", OPT_AUTOCLOSEBRACKET},
    {19, "LeftMarginVisible", OPT_LEFTMARGINVISIBLE},
    {20, "WordWrap", OPT_WORDWRAP},
    {21, "HideSelection", OPT_HIDESELECTION},
    {24, "AutoIndent", OPT_AUTOINDENT},
    {25, "AutoHint", OPT_AUTOHINT},
    {26, "SmoothRefresh", OPT_SMOOTHREFRESH},
    {27, "VScrollAlwaysMatch", OPT_VSCROLLALWAYSMATCH},
    {28, "Overwrite", OPT_OVERWRITE},
    {29, "AutoDoc", OPT_AUTODOC},
    {34, "ShowLineNumber", OPT_SHOWLINENUMBER},
    {36, "AutoConvert", OPT_AUTOCONVERT},
    {37, "MonoDraw", OPT_MONODRAW},
    {38, "BookmarkVisible", OPT_BOOKMARKVISIBLE},
    {40, "GutterBitmapVisible", OPT_GUTTERBITMAPVISIBLE},
    {41, "MouseSelectionEnable", OPT_MOUSESELECTIONENABLE},
    {42, "CollapseBlockEnable", OPT_COLLAPSEBLOCKENABLE},
    {43, "NoStylePainting", OPT_NOSTYLEPAINTING},
    {44, "KeySelectionEnable", OPT_KEYSELECTIONENABLE},
    {48, "CodeCompletion", OPT_CODECOMPLETION},
};

Variant Nothing() { return Variant(); }

// A short property with a plain getter and setter.
void ShortProperty(Table& t, DISPID id, const char* name, SHORT (CZentrelCtrl::*get)() const,
                   void (CZentrelCtrl::*set)(SHORT)) {
    t.Property(id, std::string("short ") + name, [get](CZentrelCtrl& c, const Args&) { return Variant::Short((c.*get)()); },
               [set](CZentrelCtrl& c, const Args&, const Variant& v) { (c.*set)(ArgShort({v}, 0)); });
}

void LongProperty(Table& t, DISPID id, const char* name, long (CZentrelCtrl::*get)() const,
                  void (CZentrelCtrl::*set)(long)) {
    t.Property(id, std::string("long ") + name, [get](CZentrelCtrl& c, const Args&) { return Variant::Long((c.*get)()); },
               [set](CZentrelCtrl& c, const Args&, const Variant& v) { (c.*set)(ArgLong({v}, 0)); });
}

// A colour property of one format style, indexed by the style number.
void FormatColorProperty(Table& t, DISPID id, const char* signature, OLE_COLOR (CZentrelCtrl::*get)(SHORT) const,
                         void (CZentrelCtrl::*set)(SHORT, OLE_COLOR)) {
    t.Property(id, signature, [get](CZentrelCtrl& c, const Args& i) { return Variant::Color((c.*get)(ArgShort(i, 0))); },
               [set](CZentrelCtrl& c, const Args& i, const Variant& v) { (c.*set)(ArgShort(i, 0), ArgColor({v}, 0)); });
}

// A method without arguments or result that runs one command of the control.
void CommandMethod(Table& t, DISPID id, const char* name, void (CZentrelCtrl::*command)()) {
    t.Method(id, std::string("void ") + name + "()", [command](CZentrelCtrl& c, Args&) {
        (c.*command)();
        return Nothing();
    });
}

// A method of one long argument that answers two longs through by-reference arguments.
void PairOutMethod(Table& t, DISPID id, const char* signature, void (CZentrelCtrl::*method)(long, long*, long*)) {
    t.Method(id, signature, [method](CZentrelCtrl& c, Args& a) {
        long first = 0, second = 0;
        (c.*method)(ArgLong(a, 0), &first, &second);
        ArgSetOut(a, 1, Variant::Long(first));
        ArgSetOut(a, 2, Variant::Long(second));
        return Nothing();
    });
}

void AddOptions(Table& t) {
    for (const OptionProperty& p : kOptionProperties) {
        DWORD mask = p.mask;
        t.Property(p.id, std::string("BOOL ") + p.name, [mask](CZentrelCtrl& c, const Args&) { return Variant::Bool(c.GetOption(mask)); },
                   [mask](CZentrelCtrl& c, const Args&, const Variant& v) { c.SetOption(mask, ArgBool({v}, 0)); });
    }
}

void AddSettings(Table& t) {
    t.Property(1, "short FormatCount", [](CZentrelCtrl&, const Args&) { return Variant::Short(FORMAT_COUNT); });
    ShortProperty(t, 3, "ScrollMarginVertical", &CZentrelCtrl::GetScrollMarginVertical, &CZentrelCtrl::SetScrollMarginVertical);
    ShortProperty(t, 4, "ScrollByHorizontal", &CZentrelCtrl::GetScrollByHorizontal, &CZentrelCtrl::SetScrollByHorizontal);
    ShortProperty(t, 5, "ScrollByVertical", &CZentrelCtrl::GetScrollByVertical, &CZentrelCtrl::SetScrollByVertical);
    ShortProperty(t, 6, "TabSize", &CZentrelCtrl::GetTabSize, &CZentrelCtrl::SetTabSize);
    ShortProperty(t, 7, "IndentSize", &CZentrelCtrl::GetIndentSize, &CZentrelCtrl::SetIndentSize);
    ShortProperty(t, 9, "ScrollMarginHorizontal", &CZentrelCtrl::GetScrollMarginHorizontal,
                  &CZentrelCtrl::SetScrollMarginHorizontal);
    LongProperty(t, 11, "RightMargin", &CZentrelCtrl::GetRightMargin, &CZentrelCtrl::SetRightMargin);
    LongProperty(t, 22, "ColumnMax", &CZentrelCtrl::GetColumnMax, &CZentrelCtrl::SetColumnMax);
    t.Property(30, "OLE_COLOR TextColor", [](CZentrelCtrl& c, const Args&) { return Variant::Color(c.GetTextColor()); },
               [](CZentrelCtrl& c, const Args&, const Variant& v) { c.SetTextColor(ArgColor({v}, 0)); });
    t.Property(31, "short TagAttrCase", [](CZentrelCtrl&, const Args&) { return Variant::Short(0); },
               [](CZentrelCtrl&, const Args&, const Variant& v) { ArgShort({v}, 0); });
    t.Property(32, "HighLightType HighlightStyle", [](CZentrelCtrl& c, const Args&) { return Variant::Short(c.GetHighlightStyle()); },
               [](CZentrelCtrl& c, const Args&, const Variant& v) { c.SetHighlightStyle(ArgShort({v}, 0)); });
    t.Property(18, "IFontDisp* EditFont", [](CZentrelCtrl& c, const Args&) {
        IDispatch* font = c.GetEditFontDispatch();
        Variant v = Variant::Dispatch(font);
        font->Release();
        return v;
    }, [](CZentrelCtrl& c, const Args&, const Variant& v) { c.SetEditFontDispatch(ArgDispatch({v}, 0)); });
    t.Property(35, "IFontDisp* GutterFont", [](CZentrelCtrl&, const Args&) { return Variant::Dispatch(nullptr); },
               [](CZentrelCtrl& c, const Args&, const Variant&) { c.SetModifiedFlag(); });
    t.Property(45, "long BookmarkWidth", [](CZentrelCtrl&, const Args&) { return Variant::Long(10); });
    t.Property(47, "long GutterSize", [](CZentrelCtrl& c, const Args&) { return Variant::Long(c.GetIndentSize()); },
               [](CZentrelCtrl& c, const Args&, const Variant& v) { c.SetGutterSize(ArgLong({v}, 0)); });
    ShortProperty(t, 49, "CodeCompletionMode", &CZentrelCtrl::GetCodeCompletionMode, &CZentrelCtrl::SetCodeCompletionMode);
    LongProperty(t, 50, "CodeCompletionTimeDelay", &CZentrelCtrl::GetCodeCompletionTimeDelay,
                 &CZentrelCtrl::SetCodeCompletionTimeDelay);
}

void AddFormats(Table& t) {
    t.Property(95, "BSTR FormatStyleName(short nFormat)",
               [](CZentrelCtrl& c, const Args& i) { return Variant::Str(c.GetFormatStyleName(ArgShort(i, 0))); });
    FormatColorProperty(t, 96, "OLE_COLOR FormatBackColor(short nFormat)", &CZentrelCtrl::GetFormatBackColor, &CZentrelCtrl::SetFormatBackColor);
    FormatColorProperty(t, 97, "OLE_COLOR FormatTextColor(short nFormat)", &CZentrelCtrl::GetFormatTextColor, &CZentrelCtrl::SetFormatTextColor);
    t.Property(99, "long FormatStyle(short nFormat)",
               [](CZentrelCtrl& c, const Args& i) { return Variant::Long(c.GetFormatStyleWord(ArgShort(i, 0))); },
               [](CZentrelCtrl& c, const Args& i, const Variant& v) { c.SetFormatStyleWord(ArgShort(i, 0), ArgLong({v}, 0)); });
    FormatColorProperty(t, 100, "OLE_COLOR SyntaxPickerColor(short nIndex)", &CZentrelCtrl::GetSyntaxPickerColor, &CZentrelCtrl::SetSyntaxPickerColor);
    t.Method(62, "void AddExceptionTag(BSTR lpszTagName, OLE_COLOR colForeground, OLE_COLOR colBackground)", [](CZentrelCtrl& c, Args& a) {
        c.AddExceptionTag(ArgStr(a, 0), ArgColor(a, 1), ArgColor(a, 2));
        return Nothing();
    });
    t.Method(64, "void RemoveAllExceptionTags()", [](CZentrelCtrl& c, Args&) {
        c.RemoveAllExceptionTags();
        return Nothing();
    });
    t.Method(75, "BOOL FormatChangeBegin()", [](CZentrelCtrl&, Args&) { return Variant::Bool(true); });
    t.Method(76, "void FormatChangeEnd()", [](CZentrelCtrl&, Args&) { return Nothing(); });
}

// The extra info stores. There is no registry: its two methods give FALSE.
void AddExtraInfo(Table& t) {
    t.Method(82, "BOOL SaveExtraInfo(IUnknown* punkStream)", [](CZentrelCtrl& c, Args& a) { return Variant::Bool(c.SaveExtraInfo(ArgUnknown(a, 0))); });
    t.Method(83, "BOOL LoadExtraInfo(IUnknown* punkStream)", [](CZentrelCtrl& c, Args& a) { return Variant::Bool(c.LoadExtraInfo(ArgUnknown(a, 0))); });
    t.Method(84, "BOOL SaveExtraInfoToFile(BSTR lpszFileName)",
             [](CZentrelCtrl& c, Args& a) { return Variant::Bool(c.SaveExtraInfoToFile(ArgStr(a, 0))); });
    t.Method(85, "BOOL LoadExtraInfoFromFile(BSTR lpszFileName)",
             [](CZentrelCtrl& c, Args& a) { return Variant::Bool(c.LoadExtraInfoFromFile(ArgStr(a, 0))); });
    t.Method(86, "BOOL LoadExtraInfoFromRegKey(OLE_HANDLE hKey)", [](CZentrelCtrl&, Args&) { return Variant::Bool(false); });
    t.Method(87, "BOOL SaveExtraInfoToRegKey(OLE_HANDLE hKey)", [](CZentrelCtrl&, Args&) { return Variant::Bool(false); });
    t.Method(88, "BOOL SaveExtraInfoToMemory(OLE_HANDLE* lphGlobalMemory)", [](CZentrelCtrl& c, Args& a) {
        HGLOBAL block = 0;
        const BOOL saved = c.SaveExtraInfoToMemory(&block);
        if (saved) ArgSetOut(a, 0, Variant::Long(static_cast<int32_t>(block)));
        return Variant::Bool(saved != FALSE);
    });
    t.Method(89, "BOOL LoadExtraInfoFromMemory(OLE_HANDLE hGlobalMemory, long nMemorySize)", [](CZentrelCtrl& c, Args& a) {
        return Variant::Bool(c.LoadExtraInfoFromMemory(static_cast<HGLOBAL>(ArgLong(a, 0)), ArgLong(a, 1)));
    });
}

void AddDocument(Table& t) {
    t.Property(8, "IDispatch* Document", [](CZentrelCtrl& c, const Args&) {
        Variant v = Variant::Dispatch(nullptr);
        if (IDispatch* doc = c.GetDocument()) {
            v = Variant::Dispatch(doc);
            doc->Release();
        }
        return v;
    }, [](CZentrelCtrl& c, const Args&, const Variant& v) { c.SetDocument(ArgDispatch({v}, 0)); });
    t.Property(33, "IDispatch* Selection", [](CZentrelCtrl& c, const Args&) {
        Variant v = Variant::Dispatch(nullptr);
        if (IDispatch* sel = c.GetSelection()) {
            v = Variant::Dispatch(sel);
            sel->Release();
        }
        return v;
    });
    LongProperty(t, 16, "SelectionStart", &CZentrelCtrl::GetSelectionStart, &CZentrelCtrl::SetSelectionStart);
    LongProperty(t, 17, "SelectionEnd", &CZentrelCtrl::GetSelectionEnd, &CZentrelCtrl::SetSelectionEnd);
    t.Property(23, "long LineCount", [](CZentrelCtrl& c, const Args&) { return Variant::Long(c.GetLineCount()); });
    t.Property(39, "long BookmarkCount", [](CZentrelCtrl& c, const Args&) { return Variant::Long(c.GetBookmarkCount()); });
    t.Method(51, "void SetSelection(long nStart, long nEnd)", [](CZentrelCtrl& c, Args& a) {
        c.SetSelection(ArgLong(a, 0), ArgLong(a, 1));
        return Nothing();
    });
    t.Method(52, "void GetSelection(long* pnStart, long* pnEnd)", [](CZentrelCtrl& c, Args& a) {
        long start, end;
        c.GetSelection(&start, &end);
        ArgSetOut(a, 0, Variant::Long(start));
        ArgSetOut(a, 1, Variant::Long(end));
        return Nothing();
    });
    t.Method(53, "void ClearSelection()", [](CZentrelCtrl&, Args&) { return Nothing(); });
    t.Method(71, "BOOL AddBookmark(BSTR lpszBookmarkName)", [](CZentrelCtrl&, Args&) { return Variant::Bool(true); });
    t.Method(72, "BOOL DeleteBookmark(BSTR lpszBookmarkName)", [](CZentrelCtrl&, Args&) { return Variant::Bool(true); });
    AddExtraInfo(t);
    t.Method(91, "BOOL PointInGutter(long nClientX, long nClientY)", [](CZentrelCtrl& c, Args& a) {
        return Variant::Bool(c.PointInGutter(ArgLong(a, 0), ArgLong(a, 1)));
    });
}

void AddMapping(Table& t) {
    t.Property(46, "long GutterFontWidth", [](CZentrelCtrl& c, const Args&) { return Variant::Long(c.GetGutterFontWidth()); });
    CommandMethod(t, 57, "ScrollCaretToView", &CZentrelCtrl::ScrollCaretIntoView);
    t.Method(58, "long FindPositionFromPoint(long nX, long nY)", [](CZentrelCtrl& c, Args& a) {
        return Variant::Long(c.FindPositionFromPoint(ArgLong(a, 0), ArgLong(a, 1)));
    });
    t.Method(59, "long FindPositionFromCoordinate(long nColumn, long nRow)", [](CZentrelCtrl& c, Args& a) {
        return Variant::Long(c.FindPositionFromCoordinate(ArgLong(a, 0), ArgLong(a, 1)));
    });
    PairOutMethod(t, 63, "void FindCoordinateFromPosition(long nPosition, long* pnColumn, long* pnRow)", &CZentrelCtrl::FindCoordinateFromPosition);
    CommandMethod(t, 65, "ScrollToTop", &CZentrelCtrl::ScrollToTop);
    t.Method(94, "BOOL FindPointFromPosition(long nPosition, long* nX, long* nY)", [](CZentrelCtrl& c, Args& a) {
        long x = 0, y = 0;
        const BOOL found = c.FindPointFromPosition(ArgLong(a, 0), &x, &y);
        if (found) {
            ArgSetOut(a, 1, Variant::Long(x));
            ArgSetOut(a, 2, Variant::Long(y));
        }
        return Variant::Bool(found != FALSE);
    });
}

void AddEditing(Table& t) {
    t.Method(54, "void Cut()", [](CZentrelCtrl& c, Args&) {
        c.Cut();
        return Nothing();
    });
    CommandMethod(t, 55, "Copy", &CZentrelCtrl::CopyForHost);
    CommandMethod(t, 56, "Paste", &CZentrelCtrl::Paste);
    CommandMethod(t, 60, "Undo", &CZentrelCtrl::DoUndo);
    CommandMethod(t, 61, "Redo", &CZentrelCtrl::DoRedo);
    t.Method(66, "void SelectWordAtPos(long nPos)", [](CZentrelCtrl& c, Args& a) {
        c.SelectWordAtPos(ArgLong(a, 0));
        return Nothing();
    });
    PairOutMethod(t, 67, "void GetWordPosAtPos(long nPos, long* pnStart, long* pnEnd)", &CZentrelCtrl::GetWordPosAtPos);
    t.Method(90, "long GetMatchChar(long nPosition)", [](CZentrelCtrl& c, Args& a) { return Variant::Long(c.GetMatchChar(ArgLong(a, 0))); });
}

// Bookmarks and collapsed blocks.
void AddAnnotations(Table& t) {
    t.Property(98, "BSTR BookmarkName(long nIndex)", [](CZentrelCtrl& c, const Args& i) { return Variant::Str(c.GetBookmarkName(ArgLong(i, 0))); },
               [](CZentrelCtrl& c, const Args& i, const Variant& v) { c.SetBookmarkName(ArgLong(i, 0), ArgStr({v}, 0)); });
    CommandMethod(t, 68, "RemoveAllBookmarks", &CZentrelCtrl::RemoveAllBookmarks);
    t.Method(73, "BOOL GotoBookmark(BSTR lpszBookmarkName)", [](CZentrelCtrl& c, Args& a) { return Variant::Bool(c.GotoBookmark(ArgStr(a, 0))); });
    t.Method(74, "BOOL FindBookmark(BSTR lpszBookmarkName)", [](CZentrelCtrl& c, Args& a) { return Variant::Bool(c.FindBookmark(ArgStr(a, 0))); });
    t.Method(77, "BOOL Collapse()", [](CZentrelCtrl& c, Args&) { return Variant::Bool(c.Collapse()); });
    t.Method(78, "BOOL Expand(BOOL bOneLevel)", [](CZentrelCtrl& c, Args& a) { return Variant::Bool(c.Expand(ArgBool(a, 0))); });
    t.Method(79, "BOOL CollapseRange(long nStart, long nEnd)", [](CZentrelCtrl& c, Args& a) {
        return Variant::Bool(c.CollapseRange(ArgLong(a, 0), ArgLong(a, 1)));
    });
    // Blocks have no automation object: a position never gives one.
    t.Method(80, "IDispatch* FindCollapseFromPos(long nPos)", [](CZentrelCtrl&, Args& a) {
        ArgLong(a, 0);
        return Variant::Dispatch(nullptr);
    });
    t.Method(81, "BOOL ExpandRange(long nStart, long nEnd, BOOL bOneLevel)", [](CZentrelCtrl& c, Args& a) {
        return Variant::Bool(c.ExpandRange(ArgLong(a, 0), ArgLong(a, 1), ArgBool(a, 2)));
    });
}

// The About box, printing and the picker.
void AddDialogs(Table& t) {
    t.Method(DISPID_ABOUTBOX, "void AboutBox()", [](CZentrelCtrl& c, Args&) {
        ShowAboutBox(c.GetSafeHwnd());
        return Nothing();
    });
    t.Method(69, "BOOL Print(BSTR lpszPathName)", [](CZentrelCtrl& c, Args& a) {
        const std::string name = ArgStr(a, 0);
        return Variant::Bool(c.PrintDocument(name.c_str()));
    });
    t.Method(70, "BOOL PageSetup()", [](CZentrelCtrl& c, Args&) { return Variant::Bool(c.PageSetup()); });
    t.Method(92, "BOOL ShowSyntaxPicker()", [](CZentrelCtrl& c, Args&) { return Variant::Bool(c.ShowSyntaxPicker()); });
    t.Method(93, "BOOL HideSyntaxPicker()", [](CZentrelCtrl& c, Args&) { return Variant::Bool(c.HideSyntaxPicker()); });
}

const Table& ControlTable() {
    static const Table table = [] {
        Table t("_DZentrel", IID_DZentrel, "Dispatch interface for Zentrel Control");
        AddStockMembers(t);
        t.Property(DISPID_BACKCOLOR, "OLE_COLOR BackColor", [](CZentrelCtrl& c, const Args&) { return Variant::Color(c.GetBackColor()); },
                   [](CZentrelCtrl& c, const Args&, const Variant& v) { c.SetBackColor(ArgColor({v}, 0)); });
        AddOptions(t);
        AddSettings(t);
        AddFormats(t);
        AddDocument(t);
        AddMapping(t);
        AddEditing(t);
        AddAnnotations(t);
        AddDialogs(t);
        return t;
    }();
    return table;
}

}  // namespace

const CInterfaceInfo* CZentrelCtrl::DispatchInterface() { return &ControlTable().Info(); }

HRESULT CZentrelCtrl::GetOwnIDsOfNames(const std::string& name, DISPID* pDispId) {
    return ControlTable().GetIDsOfNames(name, pDispId);
}

HRESULT CZentrelCtrl::InvokeOwn(DISPID dispid, WORD flags, std::vector<Variant>& args, Variant* result,
                                ExcepInfo* excep) {
    return ControlTable().Invoke(*this, dispid, flags, args, result, excep);
}
