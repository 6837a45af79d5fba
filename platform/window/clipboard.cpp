#include "platform/window/clipboard.h"

#include <optional>

#include "platform/com/textdataobject.h"

namespace {

struct ClipboardSession {
    bool open = false;
    // Set by EmptyClipboard: the formats that replace the clipboard's on the close.
    std::optional<ClipboardFormats> pending;
};

IClipboardBackend* g_backend = nullptr;
ClipboardSession g_session;

const std::string* Find(const ClipboardFormats& formats, CLIPFORMAT format) {
    for (const auto& [f, bytes] : formats)
        if (f == format) return &bytes;
    return nullptr;
}

ClipboardFormats Current() {
    if (g_session.pending) return *g_session.pending;
    return g_backend ? g_backend->Read() : ClipboardFormats{};
}

}  // namespace

IClipboardBackend* SetClipboardBackend(IClipboardBackend* backend) {
    IClipboardBackend* previous = g_backend;
    g_backend = backend;
    g_session = {};
    return previous;
}

IClipboardBackend* GetClipboardBackend() { return g_backend; }

BOOL OpenClipboard(HWND) {
    if (!g_backend || g_session.open) return FALSE;
    g_session = {true, std::nullopt};
    return TRUE;
}

BOOL EmptyClipboard() {
    if (!g_session.open) return FALSE;
    g_session.pending.emplace();
    return TRUE;
}

BOOL SetClipboardData(CLIPFORMAT format, std::string bytes) {
    if (!g_session.open || !g_session.pending) return FALSE;
    ClipboardFormats& formats = *g_session.pending;
    for (auto& [f, held] : formats) {
        if (f == format) {
            held = std::move(bytes);
            return TRUE;
        }
    }
    formats.emplace_back(format, std::move(bytes));
    return TRUE;
}

BOOL CloseClipboard() {
    if (!g_session.open) return FALSE;
    ClipboardSession session = std::move(g_session);
    g_session = {};
    if (session.pending && g_backend && !g_backend->Write(*session.pending)) return FALSE;
    return TRUE;
}

BOOL IsClipboardFormatAvailable(CLIPFORMAT format) { return Find(Current(), format) ? TRUE : FALSE; }

BOOL GetClipboardData(CLIPFORMAT format, std::string* out) {
    const ClipboardFormats formats = Current();
    const std::string* bytes = Find(formats, format);
    if (!bytes) return FALSE;
    *out = *bytes;
    return TRUE;
}

HRESULT OleSetClipboard(IDataObject* data) {
    if (!data) return E_POINTER;
    std::vector<CLIPFORMAT> formats;
    if (HRESULT hr = data->EnumFormats(&formats); FAILED(hr)) return hr;
    if (!OpenClipboard(nullptr)) return E_FAIL;
    EmptyClipboard();
    for (CLIPFORMAT format : formats) {
        std::string bytes;
        if (SUCCEEDED(data->GetData(format, &bytes))) SetClipboardData(format, std::move(bytes));
    }
    return CloseClipboard() ? S_OK : E_FAIL;
}

HRESULT OleGetClipboard(IDataObject** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (!g_backend) return E_FAIL;
    ComPtr<CDataObject> data(new CDataObject);
    for (auto& [format, bytes] : Current()) data->SetData(format, std::move(bytes));
    *out = data.Detach();
    return S_OK;
}
