// A font object as automation sees it: a face, a size in points and style flags, read and
// written as properties with the classic font dispatch ids. Font properties of a control hand
// out the object their holder keeps, and take the properties of any such object given to them.
#pragma once
#include "platform/com/dispatch.h"
#include "platform/gdi/fontdesc.h"

constexpr DISPID DISPID_FONT_NAME = 0;
constexpr DISPID DISPID_FONT_SIZE = 2;
constexpr DISPID DISPID_FONT_BOLD = 3;
constexpr DISPID DISPID_FONT_ITALIC = 4;
constexpr DISPID DISPID_FONT_UNDER = 5;
constexpr DISPID DISPID_FONT_STRIKE = 6;
constexpr DISPID DISPID_FONT_WEIGHT = 7;
constexpr DISPID DISPID_FONT_CHARSET = 8;

class CFontDispatch final : public IDispatch {
public:
    // A new object with one reference for the caller.
    static CFontDispatch* Create(const FontDesc& desc);

    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    ULONG AddRef() override { return m_refs.Increment(); }
    ULONG Release() override;
    HRESULT GetIDsOfNames(const std::string& name, DISPID* pDispId) override;
    HRESULT Invoke(DISPID dispid, WORD flags, std::vector<Variant>& args, Variant* result, ExcepInfo* excep) override;

    FontDesc& Desc() { return m_desc; }
    const FontDesc& Desc() const { return m_desc; }

private:
    explicit CFontDispatch(const FontDesc& desc) : m_desc(desc) {}
    ~CFontDispatch() = default;

    CRefCount m_refs;
    FontDesc m_desc;
};

// Reads a font object's face, size, weight, style and character set; false, with `out`
// unchanged, when the object does not answer them as a font does.
bool FontDescFromDispatch(IDispatch* font, FontDesc* out);
