// The picker's row objects and the texts they give.
#include "src/picker/pickitems.h"

#include <cstdio>
#include <cstring>

#include "platform/com/classfactory.h"

CHTMLSyntaxPickItem::CHTMLSyntaxPickItem() { ModuleAddObject(); }

CHTMLSyntaxPickItem::~CHTMLSyntaxPickItem() { ModuleReleaseObject(); }

ULONG CHTMLSyntaxPickItem::ExternalRelease() {
    const ULONG n = m_refs.Decrement();
    if (n == 0) delete this;
    return n;
}

void CHTMLSyntaxLookupItem::SetSchema(ISourceSchema* pSchema) {
    if (pSchema) m_pSchema = pSchema;
}

void CHTMLSyntaxLookupItem::GetText(std::string& out) {
    out.clear();
    if (m_pSchema) m_pSchema->GetName(&out);
}

void CHTMLSyntaxLookupItem::GetDescription(std::string& out) {
    out.clear();
    if (m_pSchema) m_pSchema->GetDescription(&out);
}

void CHTMLSyntaxAttrItem::GetText(std::string& out) {
    CHTMLSyntaxLookupItem::GetText(out);
    if (GetSchema() && GetSchema()->GetType() != 0) out += '=';
}

namespace {

BYTE Red(COLORREF c) { return static_cast<BYTE>(c & 0xFF); }
BYTE Green(COLORREF c) { return static_cast<BYTE>((c >> 8) & 0xFF); }
BYTE Blue(COLORREF c) { return static_cast<BYTE>((c >> 16) & 0xFF); }

}  // namespace

void CHTMLSyntaxColorItem::SetColorFromSchema(ISourceSchema* pSchema) {
    if (!pSchema) return;
    m_Color = 0;
    TakeColorFromSchema(pSchema);
}

void CHTMLSyntaxColorItem::TakeColorFromSchema(ISourceSchema* pSchema) {
    const auto color = QueryAs<ISourceSchemaColor>(pSchema, IID_ISourceSchemaColor);
    if (!color) return;
    m_Color = static_cast<COLORREF>((color->GetBlue() & 0xFF) << 16 | (color->GetGreen() & 0xFF) << 8 |
                                    (color->GetRed() & 0xFF));
}

void CHTMLSyntaxColorItem::GetText(std::string& out) {
    if (!m_strText.empty()) {
        out = m_strText;
        return;
    }
    char buffer[8];
    std::snprintf(buffer, sizeof buffer, "#%02X%02X%02X", Red(m_Color), Green(m_Color), Blue(m_Color));
    out = buffer;
}

void CHTMLSyntaxColorItem::GetDescription(std::string& out) {
    if (!m_strDescription.empty()) {
        out = m_strDescription;
        return;
    }
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "Red=%02X, Green=%02X, Blue=%02X", Red(m_Color), Green(m_Color),
                  Blue(m_Color));
    out = buffer;
}

void CHTMLSyntaxFontItem::GetText(std::string& out) {
    out.assign(m_LogFont.lfFaceName, strnlen(m_LogFont.lfFaceName, LF_FACESIZE));
}

ComPtr<CHTMLSyntaxFontItem> MakeFontItem(const std::string& faceName) {
    LOGFONTA lf{};
    lf.lfHeight = 15;
    std::strncpy(lf.lfFaceName, faceName.c_str(), LF_FACESIZE - 1);
    auto item = MakePickItem<CHTMLSyntaxFontItem>();
    item->SetLogFont(lf);
    return item;
}
