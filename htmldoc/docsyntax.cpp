// The document's syntax interfaces: tokens, items and documentation found from the syntax codes
// of the text, and the schema.
//
// Tokens: a tag, from its '<' to its '>', is one token of kind 4, and so are declarations,
// processing instructions and CDATA sections; a comment is one token of kind 1; text is one
// token per line (its line break included); character references and errors outside of tags are
// tokens of their class, one per reference or stray markup.
#include <cstdio>

#include "htmldoc/htmldocument.h"
#include "htmldoc/syntaxitems.h"
#include "platform/codepage/convert.h"
#include "platform/codepage/unicode.h"

namespace {

constexpr size_t kMaxItemName = 64;

bool IsNameEnd(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '>' || c == '/'; }

// The character in the process code page, or empty when it has none or is a control character.
std::string CharInCodePage(char32_t cp) {
    if (cp < 0x20 || (cp >= 0x7F && cp < 0xA0) || (cp >= 0xD800 && cp < 0xE000)) return {};
    std::string utf8, out;
    AppendUtf8(utf8, cp);
    bool lost = false;
    Utf8ToMultiByte(CP_ACP, utf8, &out, [&](char32_t, std::string&) { lost = true; });
    return lost ? std::string() : out;
}

// "© U+00A9 &copy;": the characters, their code points, and a name of the reference.
std::string HintOf(const std::string& ref) {
    const CHtmlSchema& schema = CHtmlSchema::Get();
    std::string body = ref.substr(1, ref.size() - 1 - (ref.back() == ';' ? 1 : 0));
    char32_t cps[2] = {0, 0};
    std::string name;
    if (!body.empty() && body[0] == '#') {
        bool hex = body.size() > 1 && (body[1] == 'x' || body[1] == 'X');
        cps[0] = static_cast<char32_t>(std::strtoul(body.c_str() + (hex ? 2 : 1), nullptr, hex ? 16 : 10));
        name = schema.EntityNameOf(cps[0]);
    } else if (const CSchemaEntity* e = schema.FindEntity(body)) {
        cps[0] = e->cp[0];
        cps[1] = e->cp[1];
        name = body;
    }
    std::string chars, points;
    for (char32_t cp : cps) {
        if (!cp) continue;
        chars += CharInCodePage(cp);
        char buf[16];
        std::snprintf(buf, sizeof buf, "%sU+%04X", points.empty() ? "" : " ", static_cast<unsigned>(cp));
        points += buf;
    }
    std::string hint = chars.empty() ? points : chars + " " + points;
    if (!name.empty()) hint += " &" + name + ";";
    return hint;
}

}  // namespace

ISourceTokenInfo CHtmlDocument::FindToken(long pos) {
    CSyntaxState& syntax = m_syntax;
    long length = m_text.Length();
    uint8_t code = syntax.CodeAt(pos);
    long start = pos, end = pos + 1;
    long kind = kClassOfCode[code];
    if (IsInTagCode(code) || code == SK_TAG_OPEN) {
        while (start > 0 && syntax.CodeAt(start) != SK_TAG_OPEN) --start;
        while (end < length && IsInTagCode(syntax.CodeAt(end))) ++end;
        kind = SC_TAG_ELEMENT;
    } else if (code == SK_COMMENT || code == SK_COMMENT_OPEN) {
        while (start > 0 && syntax.CodeAt(start) != SK_COMMENT_OPEN) --start;
        while (end < length && syntax.CodeAt(end) == SK_COMMENT) ++end;
    } else if (code == SK_TEXT) {
        while (start > 0 && m_text.At(start - 1) != '\n' && syntax.CodeAt(start - 1) == SK_TEXT) --start;
        while (end < length && m_text.At(end - 1) != '\n' && syntax.CodeAt(end) == SK_TEXT) ++end;
    } else {
        // References and stray markup: one token from each '&' or '<'.
        auto starts = [&](long p) { return m_text.At(p) == '&' || m_text.At(p) == '<'; };
        while (start > 0 && !starts(start) && syntax.CodeAt(start - 1) == code) --start;
        while (end < length && syntax.CodeAt(end) == code && !starts(end)) ++end;
    }
    return {kind, start, end - start};
}

HRESULT CHtmlDocument::GetToken(long pos, ISourceTokenInfo* out) {
    if (!out) return E_POINTER;
    *out = {};
    if (pos < 0 || pos >= m_text.Length()) return E_INVALIDARG;
    // The painter asks byte after byte: the last token answers until the codes change.
    m_syntax.CodeAt(pos);
    bool cached = m_nTokenVersion == m_syntax.Version() && pos >= m_lastToken.nStart &&
                  pos < m_lastToken.nStart + m_lastToken.nLength;
    if (!cached) {
        m_lastToken = FindToken(pos);
        m_nTokenVersion = m_syntax.Version();
    }
    *out = m_lastToken;
    return S_OK;
}

HRESULT CHtmlDocument::GetItemAt(long pos, long* itemStart, ISourceSyntaxItem** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (pos < 0 || pos >= m_text.Length()) return E_INVALIDARG;
    ISourceTokenInfo token;
    GetToken(pos, &token);
    uint8_t code = m_syntax.CodeAt(token.nStart);
    long kind;
    std::string text;
    if (token.nKind == SC_TAG_ELEMENT) {
        // The name behind '<': "/" first for an end tag, and "!", "?" or "![CDATA[" as written.
        kind = SI_TAG;
        long p = token.nStart + 1, end = token.nStart + token.nLength;
        if (p < end && m_text.At(p) == '/') text += m_text.At(p++);
        if (p < end && m_text.At(p) == '!' && p + 1 < end && m_text.At(p + 1) == '[') {
            text = "![CDATA[";
        } else {
            while (p < end && text.size() < kMaxItemName && (!IsNameEnd(m_text.At(p)) || (p == token.nStart + 1 && m_text.At(p) == '/')))
                text += static_cast<char>(std::toupper(static_cast<unsigned char>(m_text.At(p++))));
        }
    } else if (code == SK_NAMED_REF || code == SK_NUMERIC_REF) {
        kind = SI_CHAR_REF;
        text = HintOf(m_text.Substr(token.nStart, token.nLength));
    } else {
        kind = token.nKind == SC_COMMENT ? SI_COMMENT : token.nKind == SC_ERROR ? SI_ERROR : SI_TEXT;
    }
    if (itemStart) *itemStart = token.nStart;
    *out = CreateSyntaxItem(kind, std::move(text)).Detach();
    return S_OK;
}

HRESULT CHtmlDocument::GetDocItemAt(long pos, ISourceDocItem** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (pos < 0 || pos >= m_text.Length()) return E_INVALIDARG;
    ISourceTokenInfo token;
    GetToken(pos, &token);
    if (token.nKind != SC_TAG_ELEMENT) return S_FALSE;
    // The tag's name, then the attribute whose name, '=' or value holds pos, if any.
    long p = token.nStart + 1, end = token.nStart + token.nLength;
    bool endTag = p < end && m_text.At(p) == '/';
    if (endTag) ++p;
    std::string name;
    while (p < end && m_syntax.CodeAt(p) == SK_NAME) name += m_text.At(p++);
    const CHtmlSchema& schema = CHtmlSchema::Get();
    int tag = schema.FindTag(name);
    if (tag < 0) return S_FALSE;
    long attrEnd = pos + 1;
    while (attrEnd > p && m_syntax.CodeAt(attrEnd - 1) != SK_ATTR) --attrEnd;
    if (attrEnd <= p || endTag) {
        *out = CreateTagDocItem(tag, endTag).Detach();
        return *out ? S_OK : S_FALSE;
    }
    long attrStart = attrEnd;
    while (attrStart > p && m_syntax.CodeAt(attrStart - 1) == SK_ATTR) --attrStart;
    while (attrEnd < end && m_syntax.CodeAt(attrEnd) == SK_ATTR) ++attrEnd;
    *out = CreateAttrDocItem(schema.FindAttr(tag, m_text.Substr(attrStart, attrEnd - attrStart))).Detach();
    return *out ? S_OK : S_FALSE;
}

HRESULT CHtmlDocument::GetSchema(IDispatch** out) {
    if (!out) return E_POINTER;
    *out = CreateSchemaDispatch().Detach();
    return S_OK;
}
