#include "platform/gdi/fontdispatch.h"

#include "platform/com/automation.h"

namespace {

using Table = CDispatchTable<CFontDispatch>;
using Args = std::vector<Variant>;

// A flag of the font as a boolean property.
void FlagProperty(Table& t, DISPID id, const char* name, bool FontDesc::*flag) {
    t.Property(id, std::string("BOOL ") + name, [flag](CFontDispatch& f, const Args&) { return Variant::Bool(f.Desc().*flag); },
               [flag](CFontDispatch& f, const Args&, const Variant& v) { f.Desc().*flag = ArgBool({v}, 0); });
}

const Table& FontTable() {
    static const Table table = [] {
        Table t;
        t.Property(DISPID_FONT_NAME, "BSTR Name", [](CFontDispatch& f, const Args&) { return Variant::Str(f.Desc().name); },
                   [](CFontDispatch& f, const Args&, const Variant& v) { f.Desc().name = ArgStr({v}, 0); });
        t.Property(DISPID_FONT_SIZE, "CURRENCY Size",
                   [](CFontDispatch& f, const Args&) { return Variant::Currency(f.Desc().height); },
                   [](CFontDispatch& f, const Args&, const Variant& v) {
                       int64_t size = 0;
                       if (!v.ToCurrency(&size) || size <= 0) throw AutomationError::InvalidValue();
                       f.Desc().height = size;
                   });
        t.Property(DISPID_FONT_BOLD, "BOOL Bold", [](CFontDispatch& f, const Args&) { return Variant::Bool(f.Desc().weight >= 600); },
                   [](CFontDispatch& f, const Args&, const Variant& v) {
                       f.Desc().weight = static_cast<int16_t>(ArgBool({v}, 0) ? 700 : 400);
                   });
        FlagProperty(t, DISPID_FONT_ITALIC, "Italic", &FontDesc::italic);
        FlagProperty(t, DISPID_FONT_UNDER, "Underline", &FontDesc::underline);
        FlagProperty(t, DISPID_FONT_STRIKE, "Strikethrough", &FontDesc::strikethrough);
        t.Property(DISPID_FONT_WEIGHT, "short Weight", [](CFontDispatch& f, const Args&) { return Variant::Short(f.Desc().weight); },
                   [](CFontDispatch& f, const Args&, const Variant& v) { f.Desc().weight = ArgShort({v}, 0); });
        t.Property(DISPID_FONT_CHARSET, "short Charset",
                   [](CFontDispatch& f, const Args&) { return Variant::Short(f.Desc().charset); },
                   [](CFontDispatch& f, const Args&, const Variant& v) { f.Desc().charset = ArgShort({v}, 0); });
        return t;
    }();
    return table;
}

// A property of a font object; false when it cannot be read.
bool Read(IDispatch* font, DISPID id, Variant* value) {
    std::vector<Variant> none;
    ExcepInfo excep;
    return SUCCEEDED(font->Invoke(id, DISPATCH_PROPERTYGET, none, value, &excep));
}

}  // namespace

CFontDispatch* CFontDispatch::Create(const FontDesc& desc) {
    auto* font = new CFontDispatch(desc);
    font->AddRef();
    return font;
}

HRESULT CFontDispatch::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_IDispatch) return HandOut(static_cast<IDispatch*>(this), ppv);
    *ppv = nullptr;
    return E_NOINTERFACE;
}

ULONG CFontDispatch::Release() {
    ULONG n = m_refs.Decrement();
    if (n == 0) delete this;
    return n;
}

HRESULT CFontDispatch::GetIDsOfNames(const std::string& name, DISPID* pDispId) {
    return FontTable().GetIDsOfNames(name, pDispId);
}

HRESULT CFontDispatch::Invoke(DISPID dispid, WORD flags, std::vector<Variant>& args, Variant* result, ExcepInfo* excep) {
    return FontTable().Invoke(*this, dispid, flags, args, result, excep);
}

bool FontDescFromDispatch(IDispatch* font, FontDesc* out) {
    if (!font) return false;
    Variant name, size, weight, italic, underline, strike, charset;
    if (!Read(font, DISPID_FONT_NAME, &name) || !Read(font, DISPID_FONT_SIZE, &size)) return false;
    FontDesc desc;
    int64_t height = 0;
    if (!name.ToStr(&desc.name) || !size.ToCurrency(&height) || height <= 0) return false;
    desc.height = height;
    int16_t number = 0;
    bool flag = false;
    if (Read(font, DISPID_FONT_WEIGHT, &weight) && weight.ToShort(&number)) desc.weight = number;
    if (Read(font, DISPID_FONT_CHARSET, &charset) && charset.ToShort(&number)) desc.charset = number;
    if (Read(font, DISPID_FONT_ITALIC, &italic) && italic.ToBool(&flag)) desc.italic = flag;
    if (Read(font, DISPID_FONT_UNDER, &underline) && underline.ToBool(&flag)) desc.underline = flag;
    if (Read(font, DISPID_FONT_STRIKE, &strike) && strike.ToBool(&flag)) desc.strikethrough = flag;
    *out = desc;
    return true;
}
