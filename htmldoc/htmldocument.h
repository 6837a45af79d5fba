// The reference HTML document: it holds the text, its hard lines, the live ranges and the undo
// history, and tells advised sinks about every change. The view reaches it through
// ISourceText and the ranges; a host uses the plain C++ methods of the host API below.
//
// Every edit runs in this order: the text and the ranges change, every advised text sink gets
// OnChange with a fresh change object carrying one reference for that call, and then, if the
// selection's ends moved, its range sinks get OnSelectionChanged; all before the edit returns.
// Action codes: 1 for InsertText (the new span), 2 for DeleteText (the old span), 5 for any
// ReplaceText (the new span); SetText and a load report 3 (all the text gone) and then, for a
// text that is not empty, 1 for the new text.
//
// The document also classifies its text as HTML (ISourceSyntax, ISourceTokens; the rules are in
// htmllexer.h, the incremental bookkeeping in syntaxstate.h): lazily, and in the background
// through a hidden window of its own where a window backend is installed.
#pragma once
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "htmldoc/fileencoding.h"
#include "htmldoc/gapbuffer.h"
#include "htmldoc/hardlines.h"
#include "htmldoc/rangetracker.h"
#include "htmldoc/syntaxstate.h"
#include "htmldoc/undostack.h"
#include "src/document/sourcetext.h"

class CSourceRange;

class CHtmlDocument final : public ISourceText, public ISourceSyntax, public ISourceTokens, public IDispatch {
public:
    // Texts above this size announce their load through OnBusy.
    static constexpr long kBusyBytes = 1 << 20;
    // Indenting more lines than this announces itself through OnBusy.
    static constexpr long kBusyLines = 2000;
    // Positions are 32-bit on the contract: the text stays below 2 GB.
    static constexpr long kMaxLength = 0x7FFFFFFE;

    CHtmlDocument();

    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    ULONG AddRef() override { return m_refs.Increment(); }
    ULONG Release() override;

    // ISourceText
    HRESULT AdviseTextSink(ISourceTextSink* sink) override;
    HRESULT UnadviseTextSink(ISourceTextSink* sink) override;
    long GetLength() override { return m_text.Length(); }
    HRESULT GetPathName(char* buffer) override;
    long GetCharAt(long pos) override;
    HRESULT CopyText(char* dst, long pos, long count) override;
    HRESULT CopyTextZ(char* dst, long pos, long count) override;
    HRESULT GetTextPointer(char** out) override;
    HRESULT GetTextPointerAt(long pos, char** out) override;
    HRESULT InsertText(long pos, const char* text, long count, ISourceTextSink* sink) override;
    HRESULT DeleteText(long pos, long count, ISourceTextSink* sink) override;
    HRESULT ReplaceText(long pos, long oldCount, const char* text, long newCount, ISourceTextSink* sink) override;
    HRESULT GetUndoManager(ISourceUndo** out) override;
    // The caret goes behind the text that the step puts back, or where removed text stood when
    // the step only removes; the selection is moved there as well.
    HRESULT Undo(ISourceTextSink* sink, long* caretPos) override;
    HRESULT Redo(ISourceTextSink* sink, long* caretPos) override;
    BOOL IsUndoEmpty() override { return !m_undo.CanUndo(); }
    BOOL IsRedoEmpty() override { return !m_undo.CanRedo(); }
    HRESULT CreateRange(ISourceRange** out) override;
    HRESULT DestroyRange(ISourceRange* range) override;
    // The data object is borrowed for the call; the caller keeps its reference.
    HRESULT InsertData(long pos, long replaceCount, long* insertedCount, IDataObject* data,
                       ISourceTextSink* sink) override;
    HRESULT PrevLineBreak(long lineEnd, long* out) override;
    HRESULT PrevWord(long pos, long* out) override;
    HRESULT NextWord(long pos, long* out) override;
    HRESULT GetTextLine(long pos, long* line) override;
    HRESULT GetTextLineStart(long line, long* pos) override;

    // ISourceSyntax
    HRESULT GetSchema(IDispatch** out) override;
    HRESULT GetItemAt(long pos, long* itemStart, ISourceSyntaxItem** out) override;
    long GetClassAt(long pos) override { return kClassOfCode[m_syntax.CodeAt(pos)]; }
    HRESULT GetDocItemAt(long pos, ISourceDocItem** out) override;
    // ISourceTokens
    HRESULT GetToken(long pos, ISourceTokenInfo* out) override;

    // IDispatch: Text, Length, PathName, Modified, LineCount, Encoding, DefaultEncoding,
    // ByteOrderMark; Undo, Redo, Load, Save.
    const CInterfaceInfo* GetTypeInfo() override;
    HRESULT GetIDsOfNames(const std::string& name, DISPID* pDispId) override;
    HRESULT Invoke(DISPID dispid, WORD flags, std::vector<Variant>& args, Variant* result,
                   ExcepInfo* excep) override;

    // Host API.
    std::string GetText() const { return m_text.Substr(0, m_text.Length()); }
    // Replaces all of the text as one reset; the undo history goes, and the document counts as
    // modified.
    HRESULT SetText(std::string_view text);
    // Reads the file in its encoding: a byte order mark, else `encoding` if one is given, else
    // what the page declares, else the default encoding, else a guess from its bytes. Bytes that
    // read as no character are kept for the save. The load listener then hears what was chosen.
    // On failure (the file cannot be read, or is too large) the document keeps its text, path,
    // modified flag and history, and `error` says why.
    HRESULT LoadFile(const std::string& path, std::string* error = nullptr, std::string_view encoding = {});
    // Writes the text in the document's encoding, text that was not edited as the bytes it was
    // read from, through a new file beside the target that replaces it once it is on the disk,
    // so that a failed save leaves the old file whole. A symbolic link stays and its target is
    // written; the file keeps its permissions. An empty path saves to the document's own path.
    HRESULT SaveFile(const std::string& path, std::string* error = nullptr);
    // What the last load chose and kept; and a listener told of each load once it is done.
    const CLoadReport& LastLoad() const { return m_lastLoad; }
    void SetLoadListener(std::function<void(const CLoadReport&)> listener) { m_onLoad = std::move(listener); }
    // The marks of what loading put in the text in place of the file's bytes.
    const CLoadMarks& LoadMarks() const { return m_marks; }
    // The canonical name of the encoding the file was read in and will be written in ("UTF-8",
    // "windows-1252", "Shift_JIS", ...); before any load, the process code page's.
    std::string Encoding() const { return m_fileEncoding.Resolved().pszName; }
    // Changes the encoding of the next save (the document then counts as modified); E_INVALIDARG
    // for a label that names no encoding. UTF-16 is written with a byte order mark, others without.
    HRESULT SetEncoding(std::string_view label);
    // Whether the file begins with a byte order mark; only UTF-8 can do without one of the
    // encodings that have one.
    bool ByteOrderMark() const { return m_fileEncoding.bByteOrderMark; }
    void SetByteOrderMark(bool on);
    // The encoding of files that declare none; empty: a guess from their bytes. An empty label
    // sets that; E_INVALIDARG for an unknown one.
    std::string DefaultEncoding() const { return m_pDefaultEncoding ? m_pDefaultEncoding->pszName : ""; }
    HRESULT SetDefaultEncoding(std::string_view label);
    bool IsModified() const { return !m_undo.IsAtSaved(); }
    // A locked document refuses every edit, undo and redo through the contract with
    // E_ACCESSDENIED and changes nothing (a file the user may not write, say); the host's own
    // SetText and LoadFile still work.
    void SetLocked(bool locked) { m_bLocked = locked; }
    bool IsLocked() const { return m_bLocked; }
    void SetModified(bool modified);
    const std::string& PathName() const { return m_strPath; }
    void SetPathName(std::string path) { m_strPath = std::move(path); }
    long LineCount() const { return m_lines.LineCount(); }
    // Titles of the steps that Undo and Redo would take; empty when there is none.
    std::string UndoTitle() const;
    std::string RedoTitle() const;
    // Asks every advised view to repaint a span whose syntax classes changed, through a posted
    // WM_SOURCE_REPAINT carrying a change of action 0.
    void PostRepaint(long start, long end);

    // For the ranges and the undo manager.
    struct CEditArgs {
        long pos = 0;
        long oldCount = 0;
        std::string_view text;
        long action = SA_REPLACE;
        EditKind kind = EditKind::Replace;
        CSourceRange* actor = nullptr;  // the range that edits its own text
        const std::vector<CLoadMark>* made = nullptr;  // references made for the new text, marked
    };
    HRESULT Edit(const CEditArgs& args);
    // Makes several edits, in order and in positions current at each, as one undo step that is
    // reported as one change of action 5 spanning them all. `placeRanges` runs after the edits
    // and before the report, for a caller that puts ends in places of its own.
    HRESULT EditBlock(std::vector<CEdit> edits, EditKind kind, const char* busyText,
                      const std::function<void()>& placeRanges);
    CGapBuffer& Text() { return m_text; }
    const CHardLines& Lines() const { return m_lines; }
    CUndoStack& UndoStack() { return m_undo; }
    bool IsSelection(const CSourceRange* range) const { return range && range == m_pSelection; }
    void MarkSelection(CSourceRange* range, bool on);
    // A range is going away.
    void Forget(CSourceRange* range);
    CRangeTracker& Ranges() { return m_ranges; }
    void NotifyBusy(bool busy, const char* text);
    CSyntaxState& Syntax() { return m_syntax; }

private:
    ~CHtmlDocument();
    // The selection's ends before an operation, to report a move after it.
    struct CSelectionMark {
        ComPtr<CSourceRange> range;
        long active = 0;
        long anchor = 0;
    };
    CSelectionMark MarkSelectionEnds() const;
    void ReportSelection(const CSelectionMark& mark);

    HRESULT CheckSpan(long pos, long count) const;
    // Changes text, lines, tracked ranges and the marks of loading; no notification, no history.
    // `touched` gets the marks that the edit touched; undoing an edit passes them back as
    // `restore`. `made` marks references in the new text, at positions within it.
    void Apply(long pos, long oldCount, std::string_view text, std::vector<CLoadMark>* touched = nullptr,
               const std::vector<CLoadMark>* restore = nullptr, const std::vector<CLoadMark>* made = nullptr);
    void NotifyChange(long action, long start, long end);
    bool IsAdvised(ISourceTextSink* sink) const;
    HRESULT ResetText(std::string_view text, const char* busyText);
    long ReplayStep(const CUndoStep& step, bool undo);
    HRESULT Rewind(bool undo, long* caretPos);
    // The token that covers pos, which lies in the text.
    ISourceTokenInfo FindToken(long pos);

    CRefCount m_refs;
    CGapBuffer m_text;
    CHardLines m_lines;
    CUndoStack m_undo;
    bool m_bLocked = false;
    std::string m_strPath;
    CFileEncoding m_fileEncoding;
    const CEncodingInfo* m_pLoadedEncoding = nullptr;  // the marks' bytes are of this encoding
    const CEncodingInfo* m_pDefaultEncoding = nullptr;
    CLoadMarks m_marks;
    CLoadReport m_lastLoad;
    std::function<void(const CLoadReport&)> m_onLoad;
    std::vector<ComPtr<ISourceTextSink>> m_sinks;
    CRangeTracker m_ranges;
    CSourceRange* m_pSelection = nullptr;        // not counted; the range clears it when it goes
    CSyntaxState m_syntax{m_text};
    ISourceTokenInfo m_lastToken{-1, 0, 0};  // the token found last, while the version holds
    uint64_t m_nTokenVersion = 0;
};

ComPtr<CHtmlDocument> CreateHtmlDocument();
