#include "platform/gdi/fontobject.h"

#include <cstring>

long FontDescWholePoints(const FontDesc& desc) { return static_cast<long>((desc.height + 5000) / 10000); }

BOOL CreateFontFromDesc(const FontDesc& desc, CFont* font, long pixelsPerInch) {
    LOGFONTA lf;
    // A negative height asks for the character (em) size.
    lf.lfHeight = -static_cast<LONG>((desc.height * pixelsPerInch + 360000) / 720000);
    lf.lfWeight = desc.weight;
    lf.lfItalic = desc.italic;
    lf.lfUnderline = desc.underline;
    lf.lfStrikeOut = desc.strikethrough;
    lf.lfCharSet = static_cast<BYTE>(desc.charset);
    std::strncpy(lf.lfFaceName, desc.name.c_str(), LF_FACESIZE - 1);
    return font->CreateFontIndirect(&lf);
}
