#include "htmldoc/htmldocument.h"

#include <algorithm>
#include <cstring>

#include "htmldoc/sourcerange.h"
#include "htmldoc/textwalker.h"

ComPtr<CHtmlDocument> CreateHtmlDocument() { return ComPtr<CHtmlDocument>(new CHtmlDocument); }

CHtmlDocument::CHtmlDocument() {
    m_syntax.SetRepaint([this](long start, long end) { PostRepaint(start, end); });
    m_syntax.SetBusy([this](bool busy) { NotifyBusy(busy, "Classifying text"); });
}

CHtmlDocument::~CHtmlDocument() {
    // Ranges that callers still hold outlive the document: they stop following it.
    m_ranges.ForEach([](CSourceRange* range) { range->Orphan(); });
    m_pSelection = nullptr;
}

HRESULT CHtmlDocument::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_ISourceText) return HandOut(static_cast<ISourceText*>(this), ppv);
    if (riid == IID_IDispatch) return HandOut(static_cast<IDispatch*>(this), ppv);
    if (riid == IID_ISourceSyntax) return HandOut(static_cast<ISourceSyntax*>(this), ppv);
    if (riid == IID_ISourceTokens) return HandOut(static_cast<ISourceTokens*>(this), ppv);
    *ppv = nullptr;
    return E_NOINTERFACE;
}

ULONG CHtmlDocument::Release() {
    ULONG n = m_refs.Decrement();
    if (n == 0) delete this;
    return n;
}

HRESULT CHtmlDocument::AdviseTextSink(ISourceTextSink* sink) {
    if (!sink) return E_POINTER;
    if (!IsAdvised(sink)) m_sinks.emplace_back(sink);
    return S_OK;
}

HRESULT CHtmlDocument::UnadviseTextSink(ISourceTextSink* sink) {
    auto it = std::find_if(m_sinks.begin(), m_sinks.end(), [&](const auto& s) { return s.Get() == sink; });
    if (it == m_sinks.end()) return CONNECT_E_NOCONNECTION;
    m_sinks.erase(it);
    return S_OK;
}

bool CHtmlDocument::IsAdvised(ISourceTextSink* sink) const {
    return std::any_of(m_sinks.begin(), m_sinks.end(), [&](const auto& s) { return s.Get() == sink; });
}

HRESULT CHtmlDocument::GetPathName(char* buffer) {
    constexpr size_t kBufferSize = 260;
    if (!buffer) return E_POINTER;
    buffer[0] = '\0';
    if (m_strPath.empty() || m_strPath.size() >= kBufferSize) return E_FAIL;
    std::memcpy(buffer, m_strPath.c_str(), m_strPath.size() + 1);
    return S_OK;
}

long CHtmlDocument::GetCharAt(long pos) {
    if (pos < 0 || pos >= m_text.Length()) return 0;
    return static_cast<unsigned char>(m_text.At(pos));
}

HRESULT CHtmlDocument::CheckSpan(long pos, long count) const {
    if (pos < 0 || count < 0 || pos > m_text.Length() || count > m_text.Length() - pos) return E_INVALIDARG;
    return S_OK;
}

HRESULT CHtmlDocument::CopyText(char* dst, long pos, long count) {
    if (!dst) return E_POINTER;
    if (HRESULT hr = CheckSpan(pos, count); FAILED(hr)) return hr;
    m_text.Copy(dst, pos, count);
    return S_OK;
}

HRESULT CHtmlDocument::CopyTextZ(char* dst, long pos, long count) {
    HRESULT hr = CopyText(dst, pos, count);
    if (SUCCEEDED(hr)) dst[count] = '\0';
    return hr;
}

HRESULT CHtmlDocument::GetTextPointer(char** out) { return GetTextPointerAt(0, out); }

HRESULT CHtmlDocument::GetTextPointerAt(long pos, char** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (pos < 0 || pos > m_text.Length()) return E_INVALIDARG;
    // The contract hands out a writable-typed pointer; callers only read through it.
    *out = const_cast<char*>(m_text.Contiguous()) + pos;
    return S_OK;
}

HRESULT CHtmlDocument::CreateRange(ISourceRange** out) {
    if (!out) return E_POINTER;
    ComPtr<CSourceRange> range(new CSourceRange(this));
    m_ranges.Add(range);
    *out = range.Detach();
    return S_OK;
}

HRESULT CHtmlDocument::DestroyRange(ISourceRange* range) {
    // Released only after the tracker is consistent again.
    ComPtr<CSourceRange> gone = m_ranges.Remove(range);
    return gone ? S_OK : E_INVALIDARG;
}

void CHtmlDocument::Forget(CSourceRange* range) {
    if (m_pSelection == range) m_pSelection = nullptr;
}

void CHtmlDocument::MarkSelection(CSourceRange* range, bool on) {
    if (on) m_pSelection = range;
    else if (m_pSelection == range) m_pSelection = nullptr;
}

HRESULT CHtmlDocument::PrevLineBreak(long lineEnd, long* out) {
    if (!out) return E_POINTER;
    if (lineEnd < 0 || lineEnd > m_text.Length()) return E_INVALIDARG;
    *out = CTextWalker(m_text).LineBreakBefore(lineEnd);
    return S_OK;
}

HRESULT CHtmlDocument::PrevWord(long pos, long* out) {
    if (!out) return E_POINTER;
    if (pos < 0 || pos > m_text.Length()) return E_INVALIDARG;
    *out = CTextWalker(m_text).PrevWord(pos);
    return S_OK;
}

HRESULT CHtmlDocument::NextWord(long pos, long* out) {
    if (!out) return E_POINTER;
    if (pos < 0 || pos > m_text.Length()) return E_INVALIDARG;
    *out = CTextWalker(m_text).NextWord(pos);
    return S_OK;
}

HRESULT CHtmlDocument::GetTextLine(long pos, long* line) {
    if (!line) return E_POINTER;
    if (pos < 0 || pos > m_text.Length()) return E_INVALIDARG;
    *line = m_lines.LineFromPos(pos);
    return S_OK;
}

HRESULT CHtmlDocument::GetTextLineStart(long line, long* pos) {
    if (!pos) return E_POINTER;
    if (line < 0 || line >= m_lines.LineCount()) return E_INVALIDARG;
    *pos = m_lines.LineStart(line);
    return S_OK;
}

void CHtmlDocument::SetModified(bool modified) {
    if (modified) m_undo.MarkUnsaved();
    else m_undo.MarkSaved();
}
