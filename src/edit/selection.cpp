// Words, tokens and the selection methods of the automation surface. A selection's ends stand in
// one order everywhere: the active end (the caret) first, the anchor second.
#include <algorithm>
#include <cctype>

#include "src/resources/strings.h"
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr UINT kStringOutOfRange = 168;
constexpr UINT kStringNoDocument = 169;

// A word byte is no space, punctuation, control character or lead byte; a single-byte
// character from 0x80 up is part of a word.
bool IsWordByte(BYTE c) {
    if (c >= 0x80) return !IsLeadByte(c);
    return !(std::isspace(c) || std::ispunct(c) || std::iscntrl(c));
}

}  // namespace

void CZentrelCtrl::SetSelectionEnds(long active, long anchor) { m_pSelection->SetRange(active, anchor); }

// The word around pos, or the one character there when it is not part of a word.
void CZentrelCtrl::GetWordRange(long pos, long* pActive, long* pAnchor) {
    const long length = m_pDoc->GetLength();
    const auto wordAt = [&](long p) { return IsWordByte(static_cast<BYTE>(m_pDoc->GetCharAt(p))); };
    *pAnchor = pos;
    *pActive = NextCharPos(pos);
    if (pos >= length || !wordAt(pos)) return;
    while (*pActive < length && wordAt(*pActive)) *pActive = NextCharPos(*pActive);
    while (*pAnchor > 0) {
        if (!wordAt(*pAnchor)) {
            *pAnchor = NextCharPos(*pAnchor);
            return;
        }
        *pAnchor = PrevCharPos(*pAnchor);
    }
}

void CZentrelCtrl::GetTokenRange(long pos, long* pActive, long* pAnchor) {
    if (!m_pTokens || pos >= m_pDoc->GetLength()) return;
    ISourceTokenInfo info;
    if (FAILED(m_pTokens->GetToken(pos, &info))) return;
    *pAnchor = info.nStart;
    *pActive = info.nStart + info.nLength;
}

namespace {

void CheckWordPosition(ISourceText* doc, long nPos) {
    if (!doc) COleControl::ThrowError(0, LoadString(kStringNoDocument));
    if (nPos < 0 || nPos >= doc->GetLength()) COleControl::ThrowError(0, LoadString(kStringOutOfRange));
}

}  // namespace

void CZentrelCtrl::SelectWordAtPos(long nPos) {
    CheckWordPosition(m_pDoc, nPos);
    long active, anchor;
    GetWordRange(nPos, &active, &anchor);
    SetSelectionEnds(active, anchor);
}

void CZentrelCtrl::GetWordPosAtPos(long nPos, long* pnStart, long* pnEnd) {
    CheckWordPosition(m_pDoc, nPos);
    GetWordRange(nPos, pnStart, pnEnd);
}

// The match of the bracket at the caret, found by a real move that is then undone.
long CZentrelCtrl::GetMatchChar(long) {
    if (!m_pDoc) return 0;
    const long active = m_nSelActive, anchor = m_nSelAnchor;
    MatchBracket(0);
    const long match = m_nSelActive;
    SetSelectionEnds(active, anchor);
    return match;
}
