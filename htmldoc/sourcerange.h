// A live span of a document with an active end and an anchor end. Its ends follow every edit
// while the document tracks it; the range the view marks as its selection also reports each
// change of its ends to the advised range sinks.
//
// How ends follow an edit that replaces `d` bytes at `pos` by `n` bytes: an end inside the
// replaced bytes goes to `pos`, an end behind them moves by n - d. An end exactly at `pos`
// stays in front of new text, except the lower end of a range that is not empty: a range never
// grows by text inserted at its edges, so that a drag can drop text at its own start or end
// and then delete exactly its source. A range that edits its own text is left collapsed behind
// the new text.
#pragma once
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "htmldoc/rangetracker.h"
#include "src/document/sourcetext.h"

class CHtmlDocument;

class CSourceRange final : public ISourceRange, public ISourceRangeStep, public IDispatch {
public:
    explicit CSourceRange(CHtmlDocument* doc) : m_pDoc(doc) {}

    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    ULONG AddRef() override { return m_refs.Increment(); }
    ULONG Release() override;

    // ISourceRange
    HRESULT GetDocument(ISourceText** out) override;
    HRESULT SetOwner(IDispatch* owner) override;
    HRESULT AdviseRangeSink(ISourceRangeSink* sink, DWORD* cookie) override;
    HRESULT UnadviseRangeSink(DWORD cookie) override;
    // Non-zero when both ends lie in one hard line: the range has no lines to indent, so Tab
    // replaces a selection inside one line instead of indenting it.
    BOOL IsEmpty() override;
    long GetActive() override { return m_nActive + Shift(); }
    long GetAnchor() override { return m_nAnchor + Shift(); }
    long GetStart() override { return std::min(m_nActive, m_nAnchor) + Shift(); }
    long GetEnd() override { return std::max(m_nActive, m_nAnchor) + Shift(); }
    HRESULT SetRange(long active, long anchor) override;
    HRESULT SetAnchor(long pos) override;
    HRESULT SetActive(long pos, BOOL extend) override;
    // A negative count moves right.
    HRESULT MoveCharLeft(BOOL extend, long count) override;
    HRESULT MoveWordRight(BOOL extend, long count) override;
    HRESULT MoveWordLeft(BOOL extend, long count) override;
    // Keeps the byte column where the target line is long enough; past the last line it goes
    // to the end of the text, above the first to its start. A negative count moves up.
    HRESULT MoveLineDown(BOOL extend, long count) override;
    HRESULT MoveToLineStart(BOOL extend) override;
    HRESULT MoveToDocStart(BOOL extend) override;
    HRESULT MoveToDocEnd(BOOL extend) override;
    HRESULT Collapse() override;  // to the active end
    HRESULT CollapseToLeft() override;
    HRESULT CollapseToRight() override;
    HRESULT MoveToMatch(BOOL extend, long reserved) override;
    HRESULT ReplaceText(const char* text, long count, ISourceTextSink* sink) override;
    // Replaces the range, or with an empty range as many characters behind it as the text has,
    // never past the end of the line.
    HRESULT OvertypeText(const char* text, long count, ISourceTextSink* sink) override;
    HRESULT DeleteText(ISourceTextSink* sink) override;
    HRESULT IndentLines(ISourceTextSink* sink) override;
    HRESULT UnindentLines(ISourceTextSink* sink) override;
    HRESULT MarkAsSelection(BOOL on) override;

    // ISourceRangeStep: to the '<' of the previous or next tag.
    HRESULT StepBack(BOOL extend) override;
    HRESULT StepForward(BOOL extend) override;

    // IDispatch: Start, End, Active, Anchor, Text.
    const CInterfaceInfo* GetTypeInfo() override;
    HRESULT GetIDsOfNames(const std::string& name, DISPID* pDispId) override;
    HRESULT Invoke(DISPID dispid, WORD flags, std::vector<Variant>& args, Variant* result,
                   ExcepInfo* excep) override;

    // For the document. The ends must be settled (the range following the edits one by one).
    void AdjustForEdit(long pos, long removed, long inserted);
    // Sets both ends without a report; the caller reports when its operation is complete.
    void PlaceSilently(long active, long anchor);
    // Tells the range sinks of the selection about the ends if they differ from the old ones.
    void ReportIfMoved(long oldActive, long oldAnchor);
    void Orphan() { m_pDoc = nullptr; }
    CHtmlDocument* Document() const { return m_pDoc; }
    std::string Text();

private:
    friend class CRangeTracker;
    ~CSourceRange();
    // What the document's tracker has yet to add to the ends.
    long Shift() const;
    // Moves the active end, and the anchor with it unless `extend`.
    HRESULT MoveActive(long pos, BOOL extend);
    bool IsValidPos(long pos) const;
    HRESULT Indent(bool indent);

    CRefCount m_refs;
    CHtmlDocument* m_pDoc;  // not counted: the document drops its ranges when it goes
    // The ends as the tracker last settled them; a shifted range lacks the pending shift.
    long m_nActive = 0;
    long m_nAnchor = 0;
    CRangeTracker::Group m_group = CRangeTracker::Group::Following;
    ComPtr<IDispatch> m_pOwner;
    std::vector<std::pair<DWORD, ComPtr<ISourceRangeSink>>> m_sinks;
    DWORD m_nNextCookie = 1;
};
