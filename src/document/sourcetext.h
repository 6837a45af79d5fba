// The document contract: what the view asks of an outside document object, and the two sink
// interfaces through which the document reports back. The view holds no text; it reaches the
// text, the selection, undo and syntax only through these interfaces. Operations appear in the
// order of the contract; a document may offer more through its own host interface.
#pragma once
#include <string>

#include "platform/com/dataobject.h"
#include "platform/com/dispatch.h"
#include "platform/com/unknown.h"
#include "platform/window/window.h"

class ISourceTextSink;
class ISourceRangeSink;
class ISourceRange;
class ISourceUndo;

extern const IID IID_ISourceText;
extern const IID IID_ISourceSyntax;
extern const IID IID_ISourceTokens;
extern const IID IID_ISourceRangeStep;
extern const IID IID_ISourceChange;
extern const IID IID_ISourceTextSink;
extern const IID IID_ISourceRangeSink;
extern const IID IID_ISourceTagItem;
extern const IID IID_ISourceHintItem;
extern const IID IID_ISourceDocLink;
extern const IID IID_ISourceSchema;
extern const IID IID_ISourceSchemaColor;
// Interfaces that are reached through an out parameter and need no identifier in the contract
// still get one here, so that every object can answer QueryInterface for itself.
extern const IID IID_ISourceRange;
extern const IID IID_ISourceUndo;
extern const IID IID_ISourceSyntaxItem;
extern const IID IID_ISourceDocItem;

// The private message by which a document asks for a repaint without a text change.
// lParam: an IUnknown answering ISourceChange, carrying one reference for the receiver; 0 for all.
constexpr UINT WM_SOURCE_REPAINT = WM_USER + 1;

// Syntax classes, as given by GetClassAt and in ISourceTokenInfo::nKind.
enum SourceClass : long {
    SC_TEXT = 0,
    SC_COMMENT = 1,
    SC_ERROR = 2,
    SC_TAG = 3,
    SC_TAG_ELEMENT = 4,
    SC_ATTRIBUTE = 5,
    SC_STRING_VALUE = 6,
    SC_INTEGER_VALUE = 7,
    SC_ENUM_VALUE = 8,
    SC_COLOR_VALUE = 9,
    SC_URL_VALUE = 10,
};

// Change actions, as given by ISourceChange::GetAction.
enum SourceAction : long {
    SA_STYLE = 0,     // only syntax classes changed
    SA_INSERT = 1,    // nStart..nEnd is the new text
    SA_DELETE = 2,    // nStart..nEnd is the old span, in positions before the deletion
    SA_RESET = 3,     // all the text is gone
    SA_NOLAYOUT = 4,  // text unchanged as far as layout goes
    SA_REPLACE = 5,   // nStart..nEnd is the new text
};

struct ISourceTokenInfo {
    long nKind = 0;
    long nStart = 0;
    long nLength = 0;
};

struct ISourceChangeRange {
    long nStart = 0;
    long nEnd = 0;
};

class ISourceText : public IUnknown {
public:
    virtual HRESULT AdviseTextSink(ISourceTextSink* sink) = 0;
    virtual HRESULT UnadviseTextSink(ISourceTextSink* sink) = 0;
    virtual long GetLength() = 0;
    virtual HRESULT GetPathName(char* buffer) = 0;  // at least 260 bytes
    virtual long GetCharAt(long pos) = 0;
    virtual HRESULT CopyText(char* dst, long pos, long count) = 0;
    virtual HRESULT CopyTextZ(char* dst, long pos, long count) = 0;
    virtual HRESULT GetTextPointer(char** out) = 0;
    virtual HRESULT GetTextPointerAt(long pos, char** out) = 0;
    virtual HRESULT InsertText(long pos, const char* text, long count, ISourceTextSink* sink) = 0;
    virtual HRESULT DeleteText(long pos, long count, ISourceTextSink* sink) = 0;
    virtual HRESULT ReplaceText(long pos, long oldCount, const char* text, long newCount,
                                ISourceTextSink* sink) = 0;
    virtual HRESULT GetUndoManager(ISourceUndo** out) = 0;
    virtual HRESULT Undo(ISourceTextSink* sink, long* caretPos) = 0;
    virtual HRESULT Redo(ISourceTextSink* sink, long* caretPos) = 0;
    virtual BOOL IsUndoEmpty() = 0;
    virtual BOOL IsRedoEmpty() = 0;
    virtual HRESULT CreateRange(ISourceRange** out) = 0;
    virtual HRESULT DestroyRange(ISourceRange* range) = 0;
    virtual HRESULT InsertData(long pos, long replaceCount, long* insertedCount, IDataObject* data,
                               ISourceTextSink* sink) = 0;
    virtual HRESULT PrevLineBreak(long lineEnd, long* out) = 0;
    virtual HRESULT PrevWord(long pos, long* out) = 0;
    virtual HRESULT NextWord(long pos, long* out) = 0;
    virtual HRESULT GetTextLine(long pos, long* line) = 0;
    virtual HRESULT GetTextLineStart(long line, long* pos) = 0;

protected:
    ~ISourceText() = default;
};

class ISourceUndo : public IUnknown {
public:
    virtual HRESULT BeginGroup(const char* title) = 0;
    virtual HRESULT EndGroup() = 0;

protected:
    ~ISourceUndo() = default;
};

class ISourceRange : public IUnknown {
public:
    virtual HRESULT GetDocument(ISourceText** out) = 0;  // no reference is passed
    virtual HRESULT SetOwner(IDispatch* owner) = 0;
    virtual HRESULT AdviseRangeSink(ISourceRangeSink* sink, DWORD* cookie) = 0;
    virtual HRESULT UnadviseRangeSink(DWORD cookie) = 0;
    virtual BOOL IsEmpty() = 0;
    virtual long GetActive() = 0;
    virtual long GetAnchor() = 0;
    virtual long GetStart() = 0;
    virtual long GetEnd() = 0;
    virtual HRESULT SetRange(long active, long anchor) = 0;
    virtual HRESULT SetAnchor(long pos) = 0;
    virtual HRESULT SetActive(long pos, BOOL extend) = 0;
    virtual HRESULT MoveCharLeft(BOOL extend, long count) = 0;
    virtual HRESULT MoveWordRight(BOOL extend, long count) = 0;
    virtual HRESULT MoveWordLeft(BOOL extend, long count) = 0;
    virtual HRESULT MoveLineDown(BOOL extend, long count) = 0;
    virtual HRESULT MoveToLineStart(BOOL extend) = 0;
    virtual HRESULT MoveToDocStart(BOOL extend) = 0;
    virtual HRESULT MoveToDocEnd(BOOL extend) = 0;
    virtual HRESULT Collapse() = 0;
    virtual HRESULT CollapseToLeft() = 0;
    virtual HRESULT CollapseToRight() = 0;
    virtual HRESULT MoveToMatch(BOOL extend, long reserved) = 0;
    virtual HRESULT ReplaceText(const char* text, long count, ISourceTextSink* sink) = 0;
    virtual HRESULT OvertypeText(const char* text, long count, ISourceTextSink* sink) = 0;
    virtual HRESULT DeleteText(ISourceTextSink* sink) = 0;
    virtual HRESULT IndentLines(ISourceTextSink* sink) = 0;
    virtual HRESULT UnindentLines(ISourceTextSink* sink) = 0;
    virtual HRESULT MarkAsSelection(BOOL on) = 0;

protected:
    ~ISourceRange() = default;
};

class ISourceRangeStep : public IUnknown {
public:
    virtual HRESULT StepBack(BOOL extend) = 0;
    virtual HRESULT StepForward(BOOL extend) = 0;

protected:
    ~ISourceRangeStep() = default;
};

class ISourceSyntaxItem;
class ISourceDocItem;

class ISourceSyntax : public IUnknown {
public:
    virtual HRESULT GetSchema(IDispatch** out) = 0;
    virtual HRESULT GetItemAt(long pos, long* itemStart, ISourceSyntaxItem** out) = 0;
    virtual long GetClassAt(long pos) = 0;
    virtual HRESULT GetDocItemAt(long pos, ISourceDocItem** out) = 0;

protected:
    ~ISourceSyntax() = default;
};

class ISourceTokens : public IUnknown {
public:
    virtual HRESULT GetToken(long pos, ISourceTokenInfo* out) = 0;

protected:
    ~ISourceTokens() = default;
};

class ISourceSyntaxItem : public IUnknown {
public:
    virtual long GetItemKind() = 0;  // kind 2 offers ISourceHintItem; tag items offer ISourceTagItem

protected:
    ~ISourceSyntaxItem() = default;
};

class ISourceTagItem : public IUnknown {
public:
    virtual HRESULT GetTagName(std::string* out) = 0;  // may begin with "/" for a closing tag

protected:
    ~ISourceTagItem() = default;
};

class ISourceHintItem : public IUnknown {
public:
    virtual HRESULT GetHintText(std::string* out) = 0;

protected:
    ~ISourceHintItem() = default;
};

class ISourceDocItem : public IUnknown {
public:
    virtual HRESULT GetDescription(std::string* out) = 0;
    virtual HRESULT GetSourceId(long* out) = 0;
    virtual HRESULT GetSourceName(long id, std::string* out) = 0;

protected:
    ~ISourceDocItem() = default;
};

class ISourceDocLink : public IUnknown {
public:
    virtual BOOL IsFinal() = 0;
    virtual HRESULT GetTarget(IUnknown** out) = 0;

protected:
    ~ISourceDocLink() = default;
};

class ISourceSchema : public IUnknown {
public:
    virtual long GetType() = 0;
    virtual HRESULT GetName(std::string* out) = 0;
    virtual HRESULT GetDescription(std::string* out) = 0;
    virtual long GetChildCount() = 0;
    virtual HRESULT GetChildName(std::string* out, long index) = 0;
    virtual long FindChild(const char* name, ISourceSchema** out) = 0;  // 0 when found

protected:
    ~ISourceSchema() = default;
};

class ISourceSchemaColor : public IUnknown {
public:
    virtual long GetRed() = 0;
    virtual long GetGreen() = 0;
    virtual long GetBlue() = 0;

protected:
    ~ISourceSchemaColor() = default;
};

class ISourceChange : public IUnknown {
public:
    virtual long GetAction() = 0;
    virtual HRESULT GetRange(ISourceChangeRange* out) = 0;

protected:
    ~ISourceChange() = default;
};

// Implemented by the view.
class ISourceTextSink : public IUnknown {
public:
    virtual HRESULT GetWindow(HWND* out) = 0;
    virtual HRESULT OnChange(long a, long b, IUnknown* change) = 0;  // consumes one reference of change
    virtual HRESULT OnBusy(BOOL busy, const char* text, long reserved) = 0;

protected:
    ~ISourceTextSink() = default;
};

class ISourceRangeSink : public IUnknown {
public:
    virtual HRESULT OnSelectionChanged(long active, long anchor) = 0;
    virtual HRESULT OnEnsureVisible(long reserved) = 0;

protected:
    ~ISourceRangeSink() = default;
};
