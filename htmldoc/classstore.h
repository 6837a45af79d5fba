// The syntax codes of the text, four bits a byte, in a gap buffer of nibbles that follows the
// text's own gap: an edit moves the gap to where it happens, so typing costs a few bytes of
// moves and a large text costs half a byte per byte. Moving the gap by an even number of
// nibbles is a byte copy; an odd one recombines nibbles, which only a jump of the edit
// position across the text pays for.
#pragma once
#include <cstdint>
#include <memory>

class CClassStore {
public:
    long Length() const { return m_nLength; }
    uint8_t Get(long pos) const {
        long i = pos < m_nGapStart ? pos : pos + m_nGap;
        return static_cast<uint8_t>((m_pBuf[i >> 1] >> ((i & 1) << 2)) & 0xF);
    }
    // Sets `count` codes from `pos`; the span lies inside the text.
    void Fill(long pos, long count, uint8_t code);
    // Whether any of `count` codes from `pos` differs from `code`.
    bool Differs(long pos, long count, uint8_t code) const;
    // Makes room for a text of `length` bytes, all codes unset (0). No byte is touched yet.
    void Reset(long length);
    // The text had `oldCount` bytes at `pos` replaced by `newCount` bytes; new codes are 0.
    void Replace(long pos, long oldCount, long newCount);
    // Bytes that the store holds, for the memory figures.
    long Capacity() const { return m_nCapacityNibbles / 2; }

private:
    void MoveGapTo(long pos);
    void Reserve(long nibbles);
    void FillPhysical(long index, long count, uint8_t code);
    // Copies `count` nibbles from physical index `from` to `to`; the ranges may overlap.
    static void MoveNibbles(uint8_t* dst, long to, const uint8_t* src, long from, long count);

    std::unique_ptr<uint8_t[]> m_pBuf;
    long m_nCapacityNibbles = 0;
    long m_nLength = 0;
    long m_nGapStart = 0;
    long m_nGap = 0;  // in nibbles
};
