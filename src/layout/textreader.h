// Reads the document's bytes for the line breaker. A repair after an edit reads a few lines, so
// the reader starts by copying small windows of the text: asking for the pointer to the whole
// text would make the document close its gap, a move of half the text on every keystroke.
// Once a run has read far enough that copying would cost more than that move, it switches to
// the pointer, so a whole layout walks the text without copies.
#pragma once
#include <algorithm>

#include "src/document/sourcetext.h"

class CTextReader {
public:
    explicit CTextReader(ISourceText* doc) : m_pDoc(doc), m_nLength(doc->GetLength()) {}

    long Length() const { return m_nLength; }
    // The byte at pos; the byte behind the text reads as 0.
    unsigned char At(long pos) {
        if (pos >= m_nLength) return 0;
        if (m_pText) return static_cast<unsigned char>(m_pText[pos]);
        if (pos < m_nWinStart || pos >= m_nWinStart + m_nWinLen) {
            Fill(pos);
            if (m_pText) return static_cast<unsigned char>(m_pText[pos]);
        }
        return static_cast<unsigned char>(m_aWindow[pos - m_nWinStart]);
    }

private:
    // Bytes per copy; a repair of a few lines fits in one or two.
    static constexpr long kWindow = 4096;
    // A window starts a little before the byte asked for, as the breaker looks one byte back.
    static constexpr long kLookBehind = 64;
    // Windows copied before the reader takes the pointer instead: 256 KB is far beyond any
    // repair of a few lines, and far below what closing the gap of a large text costs.
    static constexpr int kWindowsBeforePointer = 64;

    void Fill(long pos) {
        if (++m_nFills > kWindowsBeforePointer) {
            char* text = nullptr;
            m_pDoc->GetTextPointer(&text);
            m_pText = text;
            return;
        }
        m_nWinStart = std::max(0L, pos - kLookBehind);
        m_nWinLen = std::min(kWindow, m_nLength - m_nWinStart);
        m_pDoc->CopyText(m_aWindow, m_nWinStart, m_nWinLen);
    }

    ISourceText* m_pDoc;
    long m_nLength;
    const char* m_pText = nullptr;
    long m_nWinStart = 0;
    long m_nWinLen = 0;
    int m_nFills = 0;
    char m_aWindow[kWindow];
};
