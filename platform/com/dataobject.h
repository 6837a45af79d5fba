// IDataObject: data offered in one or more clipboard formats, for the clipboard and for drag
// and drop. Formats are numbers: CF_TEXT is 1; named formats (such as "FileName") get numbers
// from RegisterClipboardFormat, stable for the life of the process.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "platform/com/unknown.h"

extern const IID IID_IDataObject;

using CLIPFORMAT = UINT;
constexpr CLIPFORMAT CF_TEXT = 1;
// UTF-16 text in little-endian byte order with its terminating NUL.
constexpr CLIPFORMAT CF_UNICODETEXT = 13;
constexpr HRESULT DV_E_FORMATETC = MakeHr(0x80040064u);

CLIPFORMAT RegisterClipboardFormat(std::string_view name);
// The registered name of a format, or empty for a predefined or unknown one.
std::string GetClipboardFormatName(CLIPFORMAT format);

class IDataObject : public IUnknown {
public:
    // The bytes of one format. CF_TEXT is NUL-terminated multi-byte text, as on the clipboard.
    virtual HRESULT GetData(CLIPFORMAT format, std::string* out) = 0;
    // S_OK if the format is offered, DV_E_FORMATETC if not.
    virtual HRESULT QueryGetData(CLIPFORMAT format) = 0;
    virtual HRESULT EnumFormats(std::vector<CLIPFORMAT>* out) = 0;

protected:
    ~IDataObject() = default;
};
