// The editing core of the document: applying a change to text, lines and ranges, recording it,
// and telling the sinks, in that order.
#include <algorithm>

#include "htmldoc/changespan.h"
#include "htmldoc/htmldocument.h"
#include "htmldoc/sourcechange.h"
#include "htmldoc/sourcerange.h"
#include "htmldoc/unicodetext.h"

CHtmlDocument::CSelectionMark CHtmlDocument::MarkSelectionEnds() const {
    CSelectionMark mark;
    mark.range = m_pSelection;
    if (m_pSelection) {
        mark.active = m_pSelection->GetActive();
        mark.anchor = m_pSelection->GetAnchor();
    }
    return mark;
}

void CHtmlDocument::ReportSelection(const CSelectionMark& mark) {
    if (mark.range) mark.range->ReportIfMoved(mark.active, mark.anchor);
}

void CHtmlDocument::Apply(long pos, long oldCount, std::string_view text, std::vector<CLoadMark>* touched,
                          const std::vector<CLoadMark>* restore, const std::vector<CLoadMark>* made) {
    const auto newCount = static_cast<long>(text.size());
    if (restore) {
        m_marks.Restore(pos, oldCount, newCount, *restore);
    } else {
        m_marks.Replace(pos, oldCount, newCount, touched);
        if (made) m_marks.Insert(pos, *made);
    }
    // The lines read the new text before the buffer changes, in case it points into it.
    m_lines.Replace(pos, oldCount, text);
    m_text.Replace(pos, oldCount, text.data(), static_cast<long>(text.size()));
    m_syntax.OnReplace(pos, oldCount, static_cast<long>(text.size()));
    m_ranges.AdjustForEdit(pos, oldCount, static_cast<long>(text.size()));
}

void CHtmlDocument::NotifyChange(long action, long start, long end) {
    ComPtr<CSourceChange> change(new CSourceChange(action, start, end));
    // A sink may unadvise itself or others while it is called: walk a copy, and skip any sink
    // that has gone in the meantime.
    std::vector<ComPtr<ISourceTextSink>> sinks = m_sinks;
    for (auto& sink : sinks) {
        if (!IsAdvised(sink.Get())) continue;
        change->AddRef();  // the sink consumes this one
        sink->OnChange(start, end, change->AsUnknown());
    }
}

void CHtmlDocument::NotifyBusy(bool busy, const char* text) {
    std::vector<ComPtr<ISourceTextSink>> sinks = m_sinks;
    for (auto& sink : sinks)
        if (IsAdvised(sink.Get())) sink->OnBusy(busy ? TRUE : FALSE, text, 0);
}

HRESULT CHtmlDocument::Edit(const CEditArgs& args) {
    if (m_bLocked) return E_ACCESSDENIED;
    if (args.text.size() > 0 && !args.text.data()) return E_POINTER;
    if (HRESULT hr = CheckSpan(args.pos, args.oldCount); FAILED(hr)) return hr;
    long newCount = static_cast<long>(args.text.size());
    if (newCount > kMaxLength - (m_text.Length() - args.oldCount)) return E_OUTOFMEMORY;
    if (args.oldCount == 0 && newCount == 0) return S_FALSE;
    ComPtr<CHtmlDocument> alive(this);  // a sink might drop the last reference while it is told
    CSelectionMark mark = MarkSelectionEnds();
    // An edit of the document that covers the whole selection (typing through the document, a
    // paste over the selection) leaves the caret behind the new text, as typing does.
    bool selectionCovered = m_pSelection && !args.actor && m_pSelection->GetStart() >= args.pos &&
                            m_pSelection->GetEnd() <= args.pos + args.oldCount;
    CEdit record{args.pos, m_text.Substr(args.pos, args.oldCount), std::string(args.text), {}, {}};
    if (args.made) record.made = *args.made;
    Apply(args.pos, args.oldCount, record.inserted, &record.marks, nullptr, &record.made);
    long behind = args.pos + newCount;
    if (args.actor) args.actor->PlaceSilently(behind, behind);
    else if (selectionCovered) m_pSelection->PlaceSilently(behind, behind);
    m_undo.Record({std::move(record)}, args.kind);
    NotifyChange(args.action, args.pos, args.action == SA_DELETE ? args.pos + args.oldCount : behind);
    ReportSelection(mark);
    return S_OK;
}

HRESULT CHtmlDocument::EditBlock(std::vector<CEdit> edits, EditKind kind, const char* busyText,
                                 const std::function<void()>& placeRanges) {
    if (m_bLocked) return E_ACCESSDENIED;
    if (edits.empty()) return S_FALSE;
    ComPtr<CHtmlDocument> alive(this);
    bool busy = static_cast<long>(edits.size()) > kBusyLines;
    if (busy) NotifyBusy(true, busyText);
    CSelectionMark mark = MarkSelectionEnds();
    CChangeSpan span;
    for (CEdit& e : edits) {
        long removed = static_cast<long>(e.removed.size());
        e.removed = m_text.Substr(e.pos, removed);
        Apply(e.pos, removed, e.inserted, &e.marks, nullptr, &e.made);
        span.Add(e.pos, removed, static_cast<long>(e.inserted.size()));
    }
    if (placeRanges) placeRanges();
    m_undo.Record(std::move(edits), kind);
    NotifyChange(SA_REPLACE, span.Start(), span.End());
    ReportSelection(mark);
    if (busy) NotifyBusy(false, nullptr);
    return S_OK;
}

HRESULT CHtmlDocument::InsertText(long pos, const char* text, long count, ISourceTextSink*) {
    if (count < 0) return E_INVALIDARG;
    if (count > 0 && !text) return E_POINTER;
    return Edit({pos, 0, std::string_view(text, static_cast<size_t>(count)), SA_INSERT, EditKind::Insert});
}

HRESULT CHtmlDocument::DeleteText(long pos, long count, ISourceTextSink*) {
    return Edit({pos, count, {}, SA_DELETE, EditKind::Delete});
}

HRESULT CHtmlDocument::ReplaceText(long pos, long oldCount, const char* text, long newCount, ISourceTextSink*) {
    if (newCount < 0) return E_INVALIDARG;
    if (newCount > 0 && !text) return E_POINTER;
    return Edit({pos, oldCount, std::string_view(text, static_cast<size_t>(newCount)), SA_REPLACE, EditKind::Replace});
}

HRESULT CHtmlDocument::InsertData(long pos, long replaceCount, long* insertedCount, IDataObject* data,
                                  ISourceTextSink*) {
    if (!data) return E_POINTER;
    if (HRESULT hr = CheckSpan(pos, replaceCount); FAILED(hr)) return hr;
    std::string bytes;
    std::vector<CLoadMark> made;
    if (SUCCEEDED(data->QueryGetData(CF_TEXT)) || FAILED(data->QueryGetData(CF_UNICODETEXT))) {
        if (HRESULT hr = data->GetData(CF_TEXT, &bytes); FAILED(hr)) return hr;
        // Clipboard text runs to its first NUL.
        bytes.resize(std::min(bytes.size(), bytes.find('\0')));
    } else {
        std::string units;
        if (HRESULT hr = data->GetData(CF_UNICODETEXT, &units); FAILED(hr)) return hr;
        bytes = TextFromUtf16Bytes(units, &made);
    }
    if (bytes.empty()) return S_FALSE;
    long action = replaceCount > 0 ? SA_REPLACE : SA_INSERT;
    HRESULT hr = Edit({pos, replaceCount, bytes, action, EditKind::Paste, nullptr, &made});
    if (SUCCEEDED(hr) && insertedCount) *insertedCount = static_cast<long>(bytes.size());
    return hr;
}

void CHtmlDocument::PostRepaint(long start, long end) {
    std::vector<ComPtr<ISourceTextSink>> sinks = m_sinks;
    for (auto& sink : sinks) {
        HWND hwnd = nullptr;
        if (FAILED(sink->GetWindow(&hwnd)) || !hwnd) continue;
        ComPtr<CSourceChange> change(new CSourceChange(SA_STYLE, start, end));
        // The message carries one reference; it stays ours if the message cannot be posted.
        IUnknown* carried = change->AsUnknown();
        carried->AddRef();
        if (!PostMessage(hwnd, WM_SOURCE_REPAINT, 0, reinterpret_cast<LPARAM>(carried))) carried->Release();
    }
}
