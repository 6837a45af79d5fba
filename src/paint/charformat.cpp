// The format of one character: the document's syntax class (or token) chooses a format style,
// and hidden characters, the selection and monochrome drawing override its colours. This is
// the one place through which syntax colouring reaches the screen; it caches nothing, so a
// change of the document's syntax state shows at the next paint.
#include <algorithm>
#include <cctype>

#include "src/view/module.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr BYTE kTab = '\t', kCR = '\r';
constexpr int STYLE_OPERATOR = 2;
constexpr int STYLE_TAG = 4;

// The style of each syntax class 0 to 10.
constexpr int kClassStyle[] = {1, 6, 3, 4, 4, 5, 7, 8, 9, 10, 11};
constexpr long kClassCount = sizeof kClassStyle / sizeof kClassStyle[0];

int StyleOfClass(long k) { return k >= 0 && k < kClassCount ? kClassStyle[k] : STYLE_NONE; }

// Punctuation among single bytes: the tag's brackets, slash and equals sign paint as operators.
bool IsPunctuation(BYTE c) { return c < 0x80 && std::ispunct(c); }

}  // namespace

int CZentrelCtrl::GetCharFormat(BYTE c, long nPos, DWORD dwOptions, CharFormat* pFormat) {
    const int size = IsLeadByte(c) ? 2 : 1;
    if (size == 1 && (dwOptions & OPT_DISPLAYALL) && (c == kTab || c == kCR))
        *pFormat = m_Styles[STYLE_INVISIBLE];
    else
        *pFormat = SyntaxFormat(c, nPos);

    if (dwOptions & OPT_MONODRAW) {
        pFormat->crText = 0x000000;
        pFormat->crBack = 0xFFFFFF;
    } else if (SelectionShows(dwOptions)) {
        long low = std::min(m_nSelActive, m_nSelAnchor), high = std::max(m_nSelActive, m_nSelAnchor);
        if (nPos >= low && nPos < high) {
            pFormat->crText = m_Styles[STYLE_SELECTION].crText;
            pFormat->crBack = m_Styles[STYLE_SELECTION].crBack;
        }
    }
    return size;
}

CharFormat CZentrelCtrl::SyntaxFormat(BYTE c, long nPos) {
    if (m_nHighlightStyle == 1 && m_pSyntax) {
        long k = m_pSyntax->GetClassAt(nPos);
        if (k == 4) return m_Styles[IsPunctuation(c) ? STYLE_OPERATOR : STYLE_TAG];
        return m_Styles[StyleOfClass(k)];
    }
    if (m_nHighlightStyle == 2 && m_pSyntax && m_pTokens) {
        ISourceTokenInfo token{};
        m_pTokens->GetToken(nPos, &token);
        if (token.nKind == 4) return TagTokenFormat(token.nStart);
        return m_Styles[StyleOfClass(token.nKind)];
    }
    return m_Styles[STYLE_NONE];
}

bool CZentrelCtrl::SelectionShows(DWORD dwOptions) const {
    if (!(dwOptions & OPT_HIDESELECTION)) return true;
    // With HideSelection the selection shows only while the control has the focus, and only on
    // the screen: the screen metrics bit marks the screen's option word, and a printout's copy
    // of the word has it clear.
    return m_bFocused && (dwOptions & OPT_SCREENMETRICS);
}

CharFormat CZentrelCtrl::TagTokenFormat(long nTokenStart) {
    CharFormat format = m_Styles[STYLE_TAG];
    long itemStart = 0;
    ComPtr<ISourceSyntaxItem> item;
    if (FAILED(m_pSyntax->GetItemAt(nTokenStart, &itemStart, item.Out())) || !item) return format;
    ComPtr<ISourceTagItem> tag = QueryAs<ISourceTagItem>(item.Get(), IID_ISourceTagItem);
    if (!tag) return format;
    std::string name;
    tag->GetTagName(&name);
    if (!name.empty() && name[0] == '/') name.erase(0, 1);
    // The lookup is exact: the document gives names in upper case, as the keys are stored.
    auto it = m_ExceptionTags.find(name);
    if (it != m_ExceptionTags.end()) {
        format.crText = it->second.crText;
        format.crBack = it->second.crBack;
    }
    return format;
}
