// A plain data object holding bytes per format, as a clipboard or a drag source offers them.
#pragma once
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/com/dataobject.h"

class CDataObject final : public CUnknownImpl<IDataObject, IID_IDataObject> {
public:
    HRESULT GetData(CLIPFORMAT format, std::string* out) override;
    HRESULT QueryGetData(CLIPFORMAT format) override;
    HRESULT EnumFormats(std::vector<CLIPFORMAT>* out) override;

    void SetData(CLIPFORMAT format, std::string bytes);
    // CF_TEXT with its terminating NUL, as the clipboard keeps it.
    void SetText(std::string_view text);

private:
    ~CDataObject() override = default;
    std::vector<std::pair<CLIPFORMAT, std::string>> m_formats;
};

ComPtr<CDataObject> CreateTextDataObject(std::string_view text);
