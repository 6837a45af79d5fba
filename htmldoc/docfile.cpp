// Text in and out of the document as a whole: the host's SetText, loading and saving files.
#include "htmldoc/htmldocument.h"
#include "htmldoc/safefile.h"
#include "htmldoc/sourcerange.h"
#include "platform/codepage/encodings.h"

HRESULT CHtmlDocument::ResetText(std::string_view text, const char* busyText) {
    if (text.size() > static_cast<size_t>(kMaxLength)) return E_OUTOFMEMORY;
    ComPtr<CHtmlDocument> alive(this);
    bool busy = static_cast<long>(text.size()) > kBusyBytes;
    if (busy) NotifyBusy(true, busyText);
    CSelectionMark mark = MarkSelectionEnds();
    // Two reports, as a viewer keeps its layout: all the old text went, then the new text came.
    m_lines.Assign({});
    m_text.Assign({});
    m_ranges.ForEach([](CSourceRange* range) { range->PlaceSilently(0, 0); });
    m_undo.Clear();
    m_marks.Reset(0);
    NotifyChange(SA_RESET, 0, 0);
    if (!text.empty()) {
        m_lines.Assign(text);
        m_text.Assign(text);
        m_marks.Reset(m_text.Length());
        NotifyChange(SA_INSERT, 0, m_text.Length());
    }
    ReportSelection(mark);
    if (busy) NotifyBusy(false, nullptr);
    return S_OK;
}

HRESULT CHtmlDocument::SetText(std::string_view text) {
    HRESULT hr = ResetText(text, "Setting text");
    if (SUCCEEDED(hr)) m_undo.MarkUnsaved();
    return hr;
}

HRESULT CHtmlDocument::LoadFile(const std::string& path, std::string* error, std::string_view encoding) {
    CDecodeOptions options{nullptr, m_pDefaultEncoding};
    if (!encoding.empty() && !(options.forced = FindEncoding(encoding))) {
        if (error) *error = "Unknown encoding \"" + std::string(encoding) + "\"";
        return E_INVALIDARG;
    }
    CDecodedFile file;
    {
        std::string bytes;
        if (HRESULT hr = ReadWholeFile(path, kMaxLength, &bytes, error); FAILED(hr)) return hr;
        DecodeFileBytes(bytes, options, &file);
    }
    HRESULT hr = ResetText(file.text, "Loading document");
    if (FAILED(hr)) {
        if (error) *error = "The text of \"" + path + "\" is too large to edit";
        return hr;
    }
    m_marks = std::move(file.marks);
    m_strPath = path;
    m_fileEncoding = file.encoding;
    m_pLoadedEncoding = file.encoding.encoding;
    m_lastLoad = file.report;
    m_undo.MarkSaved();
    if (m_onLoad) m_onLoad(m_lastLoad);
    return S_OK;
}

HRESULT CHtmlDocument::SaveFile(const std::string& path, std::string* error) {
    std::string target = path.empty() ? m_strPath : path;
    if (target.empty()) {
        if (error) *error = "The document has no file name to save to";
        return E_INVALIDARG;
    }
    std::string bytes, reason;
    const std::string_view text(m_text.Contiguous(), static_cast<size_t>(m_text.Length()));
    // The bytes that loading kept are the loaded encoding's.
    const bool keepBytes = m_fileEncoding.encoding == m_pLoadedEncoding;
    if (HRESULT hr = EncodeFileText(text, m_fileEncoding, &m_marks, keepBytes, &bytes, &reason); FAILED(hr)) {
        if (error) *error = "Cannot save \"" + target + "\": " + reason;
        return hr;
    }
    if (bytes.size() > static_cast<size_t>(kMaxLength)) {
        if (error) *error = "Cannot save \"" + target + "\": the file would be too large to load again";
        return E_OUTOFMEMORY;
    }
    if (HRESULT hr = ReplaceWholeFile(target, bytes, error); FAILED(hr)) return hr;
    m_strPath = target;
    m_undo.MarkSaved();
    return S_OK;
}

HRESULT CHtmlDocument::SetEncoding(std::string_view label) {
    const CEncodingInfo* found = FindEncoding(label);
    if (!found) return E_INVALIDARG;
    const CEncodingInfo& current = m_fileEncoding.Resolved();
    if (found == &current) return S_OK;
    // UTF-16 needs its mark to be found again; UTF-8 reads as well without one.
    const CFileEncoding next{found, found->IsUnicode() && found != &Utf8Encoding()};
    m_fileEncoding = next;
    SetModified(true);
    return S_OK;
}

void CHtmlDocument::SetByteOrderMark(bool on) {
    // Only UTF-8 may go either way: UTF-16 keeps what the file had or SetEncoding gave it.
    if (&m_fileEncoding.Resolved() != &Utf8Encoding() || on == m_fileEncoding.bByteOrderMark) return;
    m_fileEncoding.bByteOrderMark = on;
    SetModified(true);
}

HRESULT CHtmlDocument::SetDefaultEncoding(std::string_view label) {
    if (label.empty()) {
        m_pDefaultEncoding = nullptr;
        return S_OK;
    }
    const CEncodingInfo* found = FindEncoding(label);
    if (!found) return E_INVALIDARG;
    m_pDefaultEncoding = found;
    return S_OK;
}
