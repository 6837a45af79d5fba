// The document's bytes in a gap buffer: edits move the gap to where they happen instead of
// shifting the whole text, and the gap is closed (moved to the end) only when someone asks for
// the text as one contiguous array.
#pragma once
#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

class CGapBuffer {
public:
    CGapBuffer();

    long Length() const { return m_nLength; }
    // The byte at pos, for 0 <= pos < Length().
    char At(long pos) const { return pos < m_nGapStart ? m_pBuf[pos] : m_pBuf[pos + GapSize()]; }
    void Copy(char* dst, long pos, long count) const;
    // The bytes from `pos` up to the gap or the end, at most `count` of them, read in place.
    // Valid until the next change.
    std::string_view Piece(long pos, long count) const {
        long end = pos < m_nGapStart ? std::min(m_nGapStart, pos + count) : pos + count;
        const char* p = pos < m_nGapStart ? m_pBuf.get() + pos : m_pBuf.get() + pos + GapSize();
        return {p, static_cast<size_t>(end - pos)};
    }
    // Counts the texts that Assign put in, so that a reader can tell a new text from an edited one.
    unsigned long Generation() const { return m_nGeneration; }
    std::string Substr(long pos, long count) const;

    // The whole text as one array, followed by a readable NUL. Valid until the next change.
    const char* Contiguous();

    // Replaces `oldCount` bytes at `pos` by `newCount` bytes of `text`. The caller checks the
    // bounds. `text` may point into this buffer. When the text was asked for as one array since
    // the last edit, the edit shifts the tail in place and leaves the gap closed: a reader that
    // wants the array after every edit then pays one move per edit instead of two.
    void Replace(long pos, long oldCount, const char* text, long newCount);
    void Assign(std::string_view text);

private:
    long Capacity() const { return m_nCapacity; }
    long GapSize() const { return m_nCapacity - m_nLength; }
    void MoveGapTo(long pos);
    // Makes the gap at least `bytes` wide, keeping the gap where it is.
    void Reserve(long bytes);
    bool PointsInside(const char* p) const { return p >= m_pBuf.get() && p < m_pBuf.get() + m_nCapacity; }

    std::unique_ptr<char[]> m_pBuf;
    long m_nCapacity = 0;
    long m_nLength = 0;
    long m_nGapStart = 0;  // the gap is [m_nGapStart, m_nGapStart + GapSize())
    bool m_bPointerAsked = false;  // the text was asked for as one array since the last edit
    unsigned long m_nGeneration = 0;
};
