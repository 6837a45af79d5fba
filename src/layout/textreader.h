// Reads the document's bytes for the line breaker. A whole layout reads through the pointer to
// the contiguous text. A repair after an edit reads a few lines only, so it copies windows of
// the text instead: asking for the pointer would make the document close its gap, a move of
// half the text on every keystroke.
#pragma once
#include <algorithm>

#include "src/document/sourcetext.h"

class CTextReader {
public:
    static CTextReader OverPointer(ISourceText* doc) {
        CTextReader r(doc);
        char* text = nullptr;
        doc->GetTextPointer(&text);
        r.m_pText = text;
        return r;
    }
    static CTextReader OverCopies(ISourceText* doc) { return CTextReader(doc); }

    long Length() const { return m_nLength; }
    // The byte at pos; the byte behind the text reads as 0.
    unsigned char At(long pos) {
        if (pos >= m_nLength) return 0;
        if (m_pText) return static_cast<unsigned char>(m_pText[pos]);
        if (pos < m_nWinStart || pos >= m_nWinStart + m_nWinLen) Fill(pos);
        return static_cast<unsigned char>(m_aWindow[pos - m_nWinStart]);
    }

private:
    // Bytes per copy; a repair of a few lines fits in one or two.
    static constexpr long kWindow = 4096;
    // A window starts a little before the byte asked for, as the breaker looks one byte back.
    static constexpr long kLookBehind = 64;

    explicit CTextReader(ISourceText* doc) : m_pDoc(doc), m_nLength(doc->GetLength()) {}

    void Fill(long pos) {
        m_nWinStart = std::max(0L, pos - kLookBehind);
        m_nWinLen = std::min(kWindow, m_nLength - m_nWinStart);
        m_pDoc->CopyText(m_aWindow, m_nWinStart, m_nWinLen);
    }

    ISourceText* m_pDoc;
    long m_nLength;
    const char* m_pText = nullptr;
    long m_nWinStart = 0;
    long m_nWinLen = 0;
    char m_aWindow[kWindow];
};
