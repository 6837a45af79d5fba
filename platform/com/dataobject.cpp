#include "platform/com/dataobject.h"

#include <map>

#include "platform/com/textdataobject.h"

const IID IID_IDataObject = MakeGuid("{0000010E-0000-0000-C000-000000000046}");

namespace {

// Registered names get numbers from 0xC000 on, as named clipboard formats do.
constexpr CLIPFORMAT kFirstRegisteredFormat = 0xC000;

std::map<std::string, CLIPFORMAT, std::less<>>& FormatsByName() {
    static std::map<std::string, CLIPFORMAT, std::less<>> formats;
    return formats;
}

}  // namespace

CLIPFORMAT RegisterClipboardFormat(std::string_view name) {
    auto& formats = FormatsByName();
    auto it = formats.find(name);
    if (it != formats.end()) return it->second;
    CLIPFORMAT format = kFirstRegisteredFormat + static_cast<CLIPFORMAT>(formats.size());
    formats.emplace(std::string(name), format);
    return format;
}

std::string GetClipboardFormatName(CLIPFORMAT format) {
    for (const auto& [name, f] : FormatsByName())
        if (f == format) return name;
    return {};
}

void CDataObject::SetData(CLIPFORMAT format, std::string bytes) {
    for (auto& [f, data] : m_formats) {
        if (f == format) {
            data = std::move(bytes);
            return;
        }
    }
    m_formats.emplace_back(format, std::move(bytes));
}

void CDataObject::SetText(std::string_view text) {
    std::string bytes(text);
    bytes.push_back('\0');
    SetData(CF_TEXT, std::move(bytes));
}

HRESULT CDataObject::GetData(CLIPFORMAT format, std::string* out) {
    for (const auto& [f, data] : m_formats) {
        if (f == format) {
            *out = data;
            return S_OK;
        }
    }
    return DV_E_FORMATETC;
}

HRESULT CDataObject::QueryGetData(CLIPFORMAT format) {
    for (const auto& entry : m_formats)
        if (entry.first == format) return S_OK;
    return DV_E_FORMATETC;
}

HRESULT CDataObject::EnumFormats(std::vector<CLIPFORMAT>* out) {
    out->clear();
    for (const auto& entry : m_formats) out->push_back(entry.first);
    return S_OK;
}

ComPtr<CDataObject> CreateTextDataObject(std::string_view text) {
    ComPtr<CDataObject> data(new CDataObject);
    data->SetText(text);
    return data;
}
