// Reads the document's bytes for layout, mapping and painting through copies of windows of the
// text. The reader never asks for the pointer to the whole text: that would make the document
// close its gap, and the next keystroke would move it back, a move of half the text. Most readers
// look at a few lines and copy a window or two; a reader that goes on (a whole layout) copies
// ever larger windows, so that the cost of copying stays that of one memcpy of what it reads.
#pragma once
#include <algorithm>
#include <memory>

#include "src/document/sourcetext.h"

class CTextReader {
public:
    explicit CTextReader(ISourceText* doc) : m_pDoc(doc), m_nLength(doc->GetLength()) {}

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
    // The first windows are small: a repair of a few lines fits in one or two.
    static constexpr long kSmallWindow = 4096;
    // Windows of a long read grow up to this, where a copy costs little more than its memcpy.
    static constexpr long kLargeWindow = 256 * 1024;
    // A window starts a little before the byte asked for, as readers look a byte or two back.
    static constexpr long kLookBehind = 64;

    void Fill(long pos) {
        long size = kSmallWindow;
        if (++m_nFills > 2) {
            size = std::min(kLargeWindow, kSmallWindow << std::min(m_nFills - 2, 6));
            if (!m_pLarge) m_pLarge = std::make_unique<char[]>(kLargeWindow);
        }
        m_nWinStart = std::max(0L, pos - kLookBehind);
        m_nWinLen = std::min(size, m_nLength - m_nWinStart);
        char* window = size > kSmallWindow ? m_pLarge.get() : m_aSmall;
        m_pDoc->CopyText(window, m_nWinStart, m_nWinLen);
        m_pWin = window;
    }

    ISourceText* m_pDoc;
    long m_nLength;
    const char* m_pWin = nullptr;
    long m_nWinStart = 0;
    long m_nWinLen = 0;
    int m_nFills = 0;
    char m_aSmall[kSmallWindow];
    std::unique_ptr<char[]> m_pLarge;
};
