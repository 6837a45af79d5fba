// The control as a Qt widget: Qt properties, slots and signals over the control's automation
// table. Every read, write and call goes through IDispatch::Invoke by the dispid that the table
// gives for the member's name; the widget keeps no state of the control's, only the outcome of
// its last call.
//
// Names are the automation names with a lower-case first letter (TabSize is tabSize). Colours
// are QColor, fonts QFont, BOOLs bool, shorts and longs int, objects ComPtr<IDispatch>. A method
// with out arguments answers them as its result: a QPoint for a point or a coordinate, a pair
// for a range, and a QVariant that is null when the method answers FALSE. An event's
// by-reference arguments are pointers: a slot connected directly writes through them, and the
// control reads what the slot wrote when the event returns (a Request slot answers the picker
// this way).
//
// The widget owns the control: destroying the widget detaches the document and releases the
// control. The Qt backend of the window services is installed while any widget lives, unless
// the host has installed one of its own.
#pragma once
#include "platform/com/export.h"
#include <QPair>
#include <QPoint>
#include <QWidget>
#include <memory>
#include <vector>

#include "platform/com/events.h"
#include "widget/qtvalues.h"

class CZentrelCtrl;

// A property with a getter and a setter that forward to the member `Name` of the table.
#define ZENTREL_READ(Type, getter, Name) \
    Type getter() const { return Get(Name).value<Type>(); }
#define ZENTREL_READ_WRITE(Type, getter, setter, Name) \
    ZENTREL_READ(Type, getter, Name)                   \
    void setter(const Type& value) { Put(Name, QVariant::fromValue(value)); }

class ZENTREL_EXPORT ZentrelWidget : public QWidget {
    Q_OBJECT
    Q_PROPERTY(int appearance READ appearance WRITE setAppearance)
    Q_PROPERTY(int borderStyle READ borderStyle WRITE setBorderStyle)
    Q_PROPERTY(int hWnd READ hWnd)
    Q_PROPERTY(QColor backColor READ backColor WRITE setBackColor)
    Q_PROPERTY(bool displayAll READ displayAll WRITE setDisplayAll)
    Q_PROPERTY(bool readOnly READ readOnly WRITE setReadOnly)
    Q_PROPERTY(bool rightMarginVisible READ rightMarginVisible WRITE setRightMarginVisible)
    Q_PROPERTY(bool fireSelectionChanged READ fireSelectionChanged WRITE setFireSelectionChanged)
    Q_PROPERTY(bool dragDropEdit READ dragDropEdit WRITE setDragDropEdit)
    Q_PROPERTY(bool autoCloseBracket READ autoCloseBracket WRITE setAutoCloseBracket)
    Q_PROPERTY(bool leftMarginVisible READ leftMarginVisible WRITE setLeftMarginVisible)
    Q_PROPERTY(bool wordWrap READ wordWrap WRITE setWordWrap)
    Q_PROPERTY(bool hideSelection READ hideSelection WRITE setHideSelection)
    Q_PROPERTY(bool autoIndent READ autoIndent WRITE setAutoIndent)
    Q_PROPERTY(bool autoHint READ autoHint WRITE setAutoHint)
    Q_PROPERTY(bool smoothRefresh READ smoothRefresh WRITE setSmoothRefresh)
    Q_PROPERTY(bool vScrollAlwaysMatch READ vScrollAlwaysMatch WRITE setVScrollAlwaysMatch)
    Q_PROPERTY(bool overwrite READ overwrite WRITE setOverwrite)
    Q_PROPERTY(bool autoDoc READ autoDoc WRITE setAutoDoc)
    Q_PROPERTY(bool showLineNumber READ showLineNumber WRITE setShowLineNumber)
    Q_PROPERTY(bool autoConvert READ autoConvert WRITE setAutoConvert)
    Q_PROPERTY(bool monoDraw READ monoDraw WRITE setMonoDraw)
    Q_PROPERTY(bool bookmarkVisible READ bookmarkVisible WRITE setBookmarkVisible)
    Q_PROPERTY(bool gutterBitmapVisible READ gutterBitmapVisible WRITE setGutterBitmapVisible)
    Q_PROPERTY(bool mouseSelectionEnable READ mouseSelectionEnable WRITE setMouseSelectionEnable)
    Q_PROPERTY(bool collapseBlockEnable READ collapseBlockEnable WRITE setCollapseBlockEnable)
    Q_PROPERTY(bool noStylePainting READ noStylePainting WRITE setNoStylePainting)
    Q_PROPERTY(bool keySelectionEnable READ keySelectionEnable WRITE setKeySelectionEnable)
    Q_PROPERTY(bool codeCompletion READ codeCompletion WRITE setCodeCompletion)
    Q_PROPERTY(int formatCount READ formatCount)
    Q_PROPERTY(int scrollMarginVertical READ scrollMarginVertical WRITE setScrollMarginVertical)
    Q_PROPERTY(int scrollByHorizontal READ scrollByHorizontal WRITE setScrollByHorizontal)
    Q_PROPERTY(int scrollByVertical READ scrollByVertical WRITE setScrollByVertical)
    Q_PROPERTY(int tabSize READ tabSize WRITE setTabSize)
    Q_PROPERTY(int indentSize READ indentSize WRITE setIndentSize)
    Q_PROPERTY(int scrollMarginHorizontal READ scrollMarginHorizontal WRITE setScrollMarginHorizontal)
    Q_PROPERTY(int rightMargin READ rightMargin WRITE setRightMargin)
    Q_PROPERTY(int columnMax READ columnMax WRITE setColumnMax)
    Q_PROPERTY(QColor textColor READ textColor WRITE setTextColor)
    Q_PROPERTY(int tagAttrCase READ tagAttrCase WRITE setTagAttrCase)
    Q_PROPERTY(int highlightStyle READ highlightStyle WRITE setHighlightStyle)
    Q_PROPERTY(QFont editFont READ editFont WRITE setEditFont)
    Q_PROPERTY(QFont gutterFont READ gutterFont WRITE setGutterFont)
    Q_PROPERTY(int bookmarkWidth READ bookmarkWidth)
    Q_PROPERTY(int gutterSize READ gutterSize WRITE setGutterSize)
    Q_PROPERTY(int codeCompletionMode READ codeCompletionMode WRITE setCodeCompletionMode)
    Q_PROPERTY(int codeCompletionTimeDelay READ codeCompletionTimeDelay WRITE setCodeCompletionTimeDelay)
    Q_PROPERTY(ComPtr<IDispatch> document READ document WRITE setDocument)
    Q_PROPERTY(ComPtr<IDispatch> selection READ selection)
    Q_PROPERTY(int selectionStart READ selectionStart WRITE setSelectionStart)
    Q_PROPERTY(int selectionEnd READ selectionEnd WRITE setSelectionEnd)
    Q_PROPERTY(int lineCount READ lineCount)
    Q_PROPERTY(int bookmarkCount READ bookmarkCount)
    Q_PROPERTY(int gutterFontWidth READ gutterFontWidth)

public:
    // An automation error: its number (380, 381, 383; 0 for a raised text; the failing HRESULT
    // for a call the table refuses) and its text.
    struct Error {
        int number = 0;
        QString text;
        bool IsError() const { return number != 0 || !text.isEmpty(); }
    };

    explicit ZentrelWidget(QWidget* parent = nullptr);
    ~ZentrelWidget() override;

    // The control's automation object, for hosts that drive it by name or dispid.
    IDispatch* dispatch() const;
    // The error of the last property access or call; none when it succeeded.
    Error lastError() const { return m_lastError; }

    ZENTREL_READ_WRITE(int, appearance, setAppearance, "Appearance")
    ZENTREL_READ_WRITE(int, borderStyle, setBorderStyle, "BorderStyle")
    ZENTREL_READ(int, hWnd, "HWnd")
    ZENTREL_READ_WRITE(QColor, backColor, setBackColor, "BackColor")
    ZENTREL_READ_WRITE(bool, displayAll, setDisplayAll, "DisplayAll")
    ZENTREL_READ_WRITE(bool, readOnly, setReadOnly, "ReadOnly")
    ZENTREL_READ_WRITE(bool, rightMarginVisible, setRightMarginVisible, "RightMarginVisible")
    ZENTREL_READ_WRITE(bool, fireSelectionChanged, setFireSelectionChanged, "FireSelectionChanged")
    ZENTREL_READ_WRITE(bool, dragDropEdit, setDragDropEdit, "DragDropEdit")
    ZENTREL_READ_WRITE(bool, autoCloseBracket, setAutoCloseBracket, "AutoCloseBracket")
    ZENTREL_READ_WRITE(bool, leftMarginVisible, setLeftMarginVisible, "LeftMarginVisible")
    ZENTREL_READ_WRITE(bool, wordWrap, setWordWrap, "WordWrap")
    ZENTREL_READ_WRITE(bool, hideSelection, setHideSelection, "HideSelection")
    ZENTREL_READ_WRITE(bool, autoIndent, setAutoIndent, "AutoIndent")
    ZENTREL_READ_WRITE(bool, autoHint, setAutoHint, "AutoHint")
    ZENTREL_READ_WRITE(bool, smoothRefresh, setSmoothRefresh, "SmoothRefresh")
    ZENTREL_READ_WRITE(bool, vScrollAlwaysMatch, setVScrollAlwaysMatch, "VScrollAlwaysMatch")
    ZENTREL_READ_WRITE(bool, overwrite, setOverwrite, "Overwrite")
    ZENTREL_READ_WRITE(bool, autoDoc, setAutoDoc, "AutoDoc")
    ZENTREL_READ_WRITE(bool, showLineNumber, setShowLineNumber, "ShowLineNumber")
    ZENTREL_READ_WRITE(bool, autoConvert, setAutoConvert, "AutoConvert")
    ZENTREL_READ_WRITE(bool, monoDraw, setMonoDraw, "MonoDraw")
    ZENTREL_READ_WRITE(bool, bookmarkVisible, setBookmarkVisible, "BookmarkVisible")
    ZENTREL_READ_WRITE(bool, gutterBitmapVisible, setGutterBitmapVisible, "GutterBitmapVisible")
    ZENTREL_READ_WRITE(bool, mouseSelectionEnable, setMouseSelectionEnable, "MouseSelectionEnable")
    ZENTREL_READ_WRITE(bool, collapseBlockEnable, setCollapseBlockEnable, "CollapseBlockEnable")
    ZENTREL_READ_WRITE(bool, noStylePainting, setNoStylePainting, "NoStylePainting")
    ZENTREL_READ_WRITE(bool, keySelectionEnable, setKeySelectionEnable, "KeySelectionEnable")
    ZENTREL_READ_WRITE(bool, codeCompletion, setCodeCompletion, "CodeCompletion")
    ZENTREL_READ(int, formatCount, "FormatCount")
    ZENTREL_READ_WRITE(int, scrollMarginVertical, setScrollMarginVertical, "ScrollMarginVertical")
    ZENTREL_READ_WRITE(int, scrollByHorizontal, setScrollByHorizontal, "ScrollByHorizontal")
    ZENTREL_READ_WRITE(int, scrollByVertical, setScrollByVertical, "ScrollByVertical")
    ZENTREL_READ_WRITE(int, tabSize, setTabSize, "TabSize")
    ZENTREL_READ_WRITE(int, indentSize, setIndentSize, "IndentSize")
    ZENTREL_READ_WRITE(int, scrollMarginHorizontal, setScrollMarginHorizontal, "ScrollMarginHorizontal")
    ZENTREL_READ_WRITE(int, rightMargin, setRightMargin, "RightMargin")
    ZENTREL_READ_WRITE(int, columnMax, setColumnMax, "ColumnMax")
    ZENTREL_READ_WRITE(QColor, textColor, setTextColor, "TextColor")
    ZENTREL_READ_WRITE(int, tagAttrCase, setTagAttrCase, "TagAttrCase")
    ZENTREL_READ_WRITE(int, highlightStyle, setHighlightStyle, "HighlightStyle")
    ZENTREL_READ_WRITE(QFont, editFont, setEditFont, "EditFont")
    ZENTREL_READ_WRITE(QFont, gutterFont, setGutterFont, "GutterFont")
    ZENTREL_READ(int, bookmarkWidth, "BookmarkWidth")
    ZENTREL_READ_WRITE(int, gutterSize, setGutterSize, "GutterSize")
    ZENTREL_READ_WRITE(int, codeCompletionMode, setCodeCompletionMode, "CodeCompletionMode")
    ZENTREL_READ_WRITE(int, codeCompletionTimeDelay, setCodeCompletionTimeDelay, "CodeCompletionTimeDelay")
    ZENTREL_READ_WRITE(ComPtr<IDispatch>, document, setDocument, "Document")
    ZENTREL_READ(ComPtr<IDispatch>, selection, "Selection")
    ZENTREL_READ_WRITE(int, selectionStart, setSelectionStart, "SelectionStart")
    ZENTREL_READ_WRITE(int, selectionEnd, setSelectionEnd, "SelectionEnd")
    ZENTREL_READ(int, lineCount, "LineCount")
    ZENTREL_READ(int, bookmarkCount, "BookmarkCount")
    ZENTREL_READ(int, gutterFontWidth, "GutterFontWidth")

    // Properties with an index: the format styles by number, the picker's colours, bookmarks.
    Q_INVOKABLE QString formatStyleName(int format) const;
    Q_INVOKABLE QColor formatBackColor(int format) const;
    Q_INVOKABLE void setFormatBackColor(int format, const QColor& color);
    Q_INVOKABLE QColor formatTextColor(int format) const;
    Q_INVOKABLE void setFormatTextColor(int format, const QColor& color);
    Q_INVOKABLE int formatStyle(int format) const;
    Q_INVOKABLE void setFormatStyle(int format, int style);
    Q_INVOKABLE QColor syntaxPickerColor(int index) const;
    Q_INVOKABLE void setSyntaxPickerColor(int index, const QColor& color);
    Q_INVOKABLE QString bookmarkName(int index) const;
    Q_INVOKABLE void setBookmarkName(int index, const QString& name);

public slots:
    void refresh();
    void aboutBox();
    void addExceptionTag(const QString& tagName, const QColor& foreground, const QColor& background);
    void removeAllExceptionTags();
    bool formatChangeBegin();
    void formatChangeEnd();
    bool saveExtraInfo(const ComPtr<IUnknown>& stream);
    bool loadExtraInfo(const ComPtr<IUnknown>& stream);
    bool saveExtraInfoToFile(const QString& fileName);
    bool loadExtraInfoFromFile(const QString& fileName);
    bool loadExtraInfoFromRegKey(int key);
    bool saveExtraInfoToRegKey(int key);
    // The memory block's handle, or null when nothing was saved.
    QVariant saveExtraInfoToMemory();
    bool loadExtraInfoFromMemory(int memory, int size);
    void setSelection(int start, int end);
    QPair<int, int> getSelection();
    void clearSelection();
    bool addBookmark(const QString& name);
    bool deleteBookmark(const QString& name);
    bool pointInGutter(int x, int y);
    void scrollCaretToView();
    int findPositionFromPoint(int x, int y);
    int findPositionFromCoordinate(int column, int row);
    // The column (x) and row (y) of a position.
    QPoint findCoordinateFromPosition(int position);
    void scrollToTop();
    // The point of a position in client pixels, or null when the position has none.
    QVariant findPointFromPosition(int position);
    void cut();
    void copy();
    void paste();
    void undo();
    void redo();
    void selectWordAtPos(int position);
    QPair<int, int> getWordPosAtPos(int position);
    int getMatchChar(int position);
    void removeAllBookmarks();
    bool gotoBookmark(const QString& name);
    bool findBookmark(const QString& name);
    bool collapse();
    bool expand(bool oneLevel);
    bool collapseRange(int start, int end);
    ComPtr<IDispatch> findCollapseFromPos(int position);
    bool expandRange(int start, int end, bool oneLevel);
    bool print(const QString& pathName);
    bool pageSetup();
    bool showSyntaxPicker();
    bool hideSyntaxPicker();

signals:
    void automationError(int number, const QString& text);

    void keyDown(int* keyCode, int shift);
    void keyUp(int* keyCode, int shift);
    void click();
    void dblClick();
    void mouseDown(int button, int shift, int x, int y);
    void keyPress(int* keyAscii);
    void mouseMove(int button, int shift, int x, int y);
    void mouseUp(int button, int shift, int x, int y);
    void readyStateChange();
    void error(int number, QString* description, int scode, const QString& source, const QString& helpFile,
               int helpContext, bool* cancelDisplay);
    void selectionChanged(int start, int end);
    void onOleDrop(const QVariant& dataObject, int dropEffect, int position, bool* success);
    void onOleDragOver(const QVariant& dataObject, int* dropEffect, int position, int keyState);
    void editModeToggled(bool overwrite);
    void documentChanged(int action, int changeAt, int changeCount);
    void autoConvertToggled();
    void bookmarkChanged(bool set, const QString& name);
    void requestColor(bool* dispatched, QColor* color, bool* accepted);
    void requestFont(bool* dispatched, QString* font, bool* accepted);
    void requestURL(bool* dispatched, QString* url, bool* accepted);
    void requestHTML(bool* dispatched, QString* html, bool* accepted);
    void requestPicture(bool* dispatched, QString* picture, bool* accepted);
    void requestSound(bool* dispatched, QString* sound, bool* accepted);
    void requestDirectory(bool* dispatched, QString* directory, bool* accepted);
    void requestAnim(bool* dispatched, QString* anim, bool* accepted);
    void requestJava(bool* dispatched, QString* java, bool* accepted);
    void syntaxObjectChanged(int type, const QString& primary, const QString& secondary);

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Outcome;

    // The member of the table by its automation name.
    const CMemberInfo* Member(const char* name) const;
    QVariant Get(const char* name, std::vector<Variant> index = {}) const;
    void Put(const char* name, const QVariant& value, std::vector<Variant> index = {});
    // Calls a method with its in-arguments; the by-reference ones are supplied here and
    // answered in the outcome.
    Outcome Call(const char* name, const QVariantList& in);
    bool Invoke(const CMemberInfo* member, WORD flags, std::vector<Variant>& args, Variant* result) const;
    void Fail(int number, const QString& text) const;
    // Emits the signal of an event, and writes back what its slots left in the by-reference
    // arguments.
    void EmitEvent(DISPID id, std::vector<Variant>& args);

    CZentrelCtrl* m_pCtrl = nullptr;
    const CInterfaceInfo* m_pInfo = nullptr;
    const CInterfaceInfo* m_pEvents = nullptr;
    ComPtr<CEventSink> m_sink;
    DWORD m_dwCookie = 0;
    QWidget* m_pView = nullptr;
    mutable Error m_lastError;
};

#undef ZENTREL_READ_WRITE
#undef ZENTREL_READ
