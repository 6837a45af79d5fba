// Reads the document's bytes for layout, mapping and painting. Most readers look at a few lines,
// so the reader copies small windows of the text: asking for the pointer to the whole text would
// make the document close its gap, a move of half the text on every keystroke. A reader that may
// take the pointer (a whole layout) switches to it once it has read so far that copying would
// cost more than that move.
#pragma once
#include <algorithm>

#include "src/document/sourcetext.h"

class CTextReader {
public:
    // `mayTakePointer`: false for readers that must never make the document close its gap.
    explicit CTextReader(ISourceText* doc, bool mayTakePointer = true)
        : m_pDoc(doc), m_nLength(doc->GetLength()), m_bMayTakePointer(mayTakePointer) {}

    long Length() const { return m_nLength; }

    // The byte at pos; the byte behind the text reads as 0.
    unsigned char At(long pos) {
        if (pos - m_nWinStart < m_nWinLen && pos >= m_nWinStart)
            return static_cast<unsigned char>(m_pWin[pos - m_nWinStart]);
        if (pos >= m_nLength || pos < 0) return 0;
        Fill(pos);
        return static_cast<unsigned char>(m_pWin[pos - m_nWinStart]);
    }

    // The bytes from pos on, with how many of them may be read (at least 1 for pos below the
    // length, 0 from the length on).
    const char* Span(long pos, long* pnAvailable) {
        if (pos >= m_nLength || pos < 0) {
            *pnAvailable = 0;
            return nullptr;
        }
        if (!(pos >= m_nWinStart && pos - m_nWinStart < m_nWinLen)) Fill(pos);
        *pnAvailable = m_nWinStart + m_nWinLen - pos;
        return m_pWin + (pos - m_nWinStart);
    }

private:
    // Bytes per copy; a repair of a few lines fits in one or two.
    static constexpr long kWindow = 4096;
    // A window starts a little before the byte asked for, as readers look a byte or two back.
    static constexpr long kLookBehind = 64;
    // Windows copied before the reader takes the pointer instead: 256 KB is far beyond any
    // repair of a few lines, and far below what closing the gap of a large text costs.
    static constexpr int kWindowsBeforePointer = 64;

    void Fill(long pos) {
        if (m_bMayTakePointer && ++m_nFills > kWindowsBeforePointer) {
            char* text = nullptr;
            m_pDoc->GetTextPointer(&text);
            if (text) {
                m_pWin = text;
                m_nWinStart = 0;
                m_nWinLen = m_nLength;
                return;
            }
        }
        m_nWinStart = std::max(0L, pos - kLookBehind);
        m_nWinLen = std::min(kWindow, m_nLength - m_nWinStart);
        m_pDoc->CopyText(m_aWindow, m_nWinStart, m_nWinLen);
        m_pWin = m_aWindow;
    }

    ISourceText* m_pDoc;
    long m_nLength;
    bool m_bMayTakePointer;
    const char* m_pWin = nullptr;
    long m_nWinStart = 0;
    long m_nWinLen = 0;
    int m_nFills = 0;
    char m_aWindow[kWindow];
};
