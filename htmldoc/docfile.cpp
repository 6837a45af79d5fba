// Text in and out of the document as a whole: the host's SetText, loading and saving files.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "htmldoc/htmldocument.h"
#include "htmldoc/sourcerange.h"
#include "platform/codepage/encodings.h"

namespace {

struct FileCloser {
    void operator()(FILE* f) const { std::fclose(f); }
};
using FilePtr = std::unique_ptr<FILE, FileCloser>;

HRESULT HrFromErrno(int err, HRESULT fallback) {
    switch (err) {
        case ENOENT: return STG_E_FILENOTFOUND;
        case EACCES:
        case EPERM: return E_ACCESSDENIED;
        case ENOMEM: return E_OUTOFMEMORY;
        default: return fallback;
    }
}

HRESULT Fail(HRESULT hr, std::string* error, const std::string& what, const std::string& path, int err) {
    if (error) *error = what + " \"" + path + "\": " + std::strerror(err);
    return hr;
}

// Reads all bytes of a file; on failure the result says why and `error` gets the text.
HRESULT ReadFile(const std::string& path, std::string* bytes, std::string* error) {
    errno = 0;
    FilePtr file(std::fopen(path.c_str(), "rb"));
    if (!file) return Fail(HrFromErrno(errno, STG_E_READFAULT), error, "Cannot open", path, errno);
    // Reserve the whole file at once where its size is known.
    if (std::fseek(file.get(), 0, SEEK_END) == 0) {
        long size = std::ftell(file.get());
        if (size > 0 && size <= CHtmlDocument::kMaxLength) bytes->reserve(static_cast<size_t>(size));
        std::rewind(file.get());
    }
    char chunk[1 << 16];
    size_t got;
    while ((got = std::fread(chunk, 1, sizeof chunk, file.get())) > 0) {
        if (bytes->size() + got > static_cast<size_t>(CHtmlDocument::kMaxLength)) {
            if (error) *error = "The file \"" + path + "\" is too large to edit";
            return E_OUTOFMEMORY;
        }
        bytes->append(chunk, got);
    }
    if (std::ferror(file.get())) return Fail(HrFromErrno(errno, STG_E_READFAULT), error, "Cannot read", path, errno);
    return S_OK;
}

HRESULT WriteFile(const std::string& path, const char* data, size_t size, std::string* error) {
    errno = 0;
    FILE* raw = std::fopen(path.c_str(), "wb");
    if (!raw) return Fail(HrFromErrno(errno, STG_E_WRITEFAULT), error, "Cannot create", path, errno);
    bool ok = std::fwrite(data, 1, size, raw) == size;
    ok = std::fflush(raw) == 0 && ok;
    int err = errno;
    if (std::fclose(raw) != 0 && ok) {
        ok = false;
        err = errno;
    }
    if (!ok) return Fail(HrFromErrno(err, STG_E_WRITEFAULT), error, "Cannot write", path, err);
    return S_OK;
}

}  // namespace

HRESULT CHtmlDocument::ResetText(std::string_view text, const char* busyText) {
    if (text.size() > static_cast<size_t>(kMaxLength)) return E_OUTOFMEMORY;
    ComPtr<CHtmlDocument> alive(this);
    bool busy = static_cast<long>(text.size()) > kBusyBytes;
    if (busy) NotifyBusy(true, busyText);
    CSelectionMark mark = MarkSelectionEnds();
    // Two reports, as a viewer keeps its layout: all the old text went, then the new text came.
    m_lines.Assign({});
    m_text.Assign({});
    for (auto& range : m_ranges) range->PlaceSilently(0, 0);
    m_undo.Clear();
    NotifyChange(SA_RESET, 0, 0);
    if (!text.empty()) {
        m_lines.Assign(text);
        m_text.Assign(text);
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
    std::string bytes;
    if (HRESULT hr = ReadFile(path, &bytes, error); FAILED(hr)) return hr;
    std::string text, reason;
    CFileEncoding found;
    if (HRESULT hr = DecodeFileBytes(bytes, options, &text, &found, &reason); FAILED(hr)) {
        if (error) *error = "Cannot load \"" + path + "\": " + reason;
        return hr;
    }
    bytes.clear();
    bytes.shrink_to_fit();
    HRESULT hr = ResetText(text, "Loading document");
    if (FAILED(hr)) return hr;
    m_strPath = path;
    m_fileEncoding = found;
    m_undo.MarkSaved();
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
    if (HRESULT hr = EncodeFileText(text, m_fileEncoding, &bytes, &reason); FAILED(hr)) {
        if (error) *error = "Cannot save \"" + target + "\": " + reason;
        return hr;
    }
    std::string temp = target + ".saving~";
    if (HRESULT hr = WriteFile(temp, bytes.data(), bytes.size(), error); FAILED(hr)) {
        std::remove(temp.c_str());
        return hr;
    }
    if (std::rename(temp.c_str(), target.c_str()) != 0) {
        int err = errno;
        std::remove(temp.c_str());
        return Fail(HrFromErrno(err, STG_E_WRITEFAULT), error, "Cannot replace", target, err);
    }
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
    // UTF-16 is always written with one, and other encodings have none.
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
