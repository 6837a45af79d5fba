// A font holder: the font object of one font property, with the default it falls back to. The
// object is what automation hands out for the property; the holder reads its description.
#pragma once
#include "platform/com/unknown.h"
#include "platform/gdi/fontdesc.h"
#include "platform/gdi/fontdispatch.h"

class CFontHolder {
public:
    CFontHolder() { m_object.Attach(CFontDispatch::Create(FontDesc{})); }

    // Takes `font` if given, else the default.
    void InitializeFont(const FontDesc& def, const FontDesc* font = nullptr) {
        m_default = def;
        m_object.Attach(CFontDispatch::Create(font ? *font : def));
    }
    // Takes the properties of a font object; the default when it is null or not a font.
    void InitializeFont(const FontDesc& def, IDispatch* font) {
        FontDesc desc;
        InitializeFont(def, FontDescFromDispatch(font, &desc) ? &desc : nullptr);
    }
    const FontDesc& GetFontDesc() const { return m_object->Desc(); }
    FontDesc& FontRef() { return m_object->Desc(); }
    const FontDesc& Default() const { return m_default; }
    // The font object, with a reference for the caller.
    IDispatch* GetFontDispatch() const {
        m_object->AddRef();
        return m_object.Get();
    }

private:
    ComPtr<CFontDispatch> m_object;
    FontDesc m_default;
};
