// A font holder: the font of one font property, with the default it falls back to.
#pragma once
#include "platform/gdi/fontdesc.h"

class CFontHolder {
public:
    // Takes `font` if given, else the default.
    void InitializeFont(const FontDesc& def, const FontDesc* font = nullptr) {
        m_default = def;
        m_font = font ? *font : def;
    }
    const FontDesc& GetFontDesc() const { return m_font; }
    FontDesc& FontRef() { return m_font; }
    const FontDesc& Default() const { return m_default; }

private:
    FontDesc m_font;
    FontDesc m_default;
};
