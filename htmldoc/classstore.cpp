#include "htmldoc/classstore.h"

#include <algorithm>
#include <cstring>

namespace {

// Room kept free after a reallocation, in nibbles: enough for a long run of typing, and in
// proportion to the text so that many small inserts stay linear overall.
long SlackFor(long length) { return std::max<long>(8192, length / 8); }

void SetNibble(uint8_t* buf, long i, uint8_t code) {
    uint8_t& b = buf[i >> 1];
    b = (i & 1) ? static_cast<uint8_t>((b & 0x0F) | (code << 4)) : static_cast<uint8_t>((b & 0xF0) | code);
}

uint8_t GetNibble(const uint8_t* buf, long i) { return static_cast<uint8_t>((buf[i >> 1] >> ((i & 1) << 2)) & 0xF); }

// Copies nibbles one at a time, first to last or last to first.
void MoveNibblesOneByOne(uint8_t* dst, long to, const uint8_t* src, long from, long count, bool forward) {
    if (forward) {
        for (long i = 0; i < count; ++i) SetNibble(dst, to + i, GetNibble(src, from + i));
    } else {
        for (long i = count - 1; i >= 0; --i) SetNibble(dst, to + i, GetNibble(src, from + i));
    }
}

}  // namespace

void CClassStore::Reset(long length) {
    long capacity = length + SlackFor(length);
    m_pBuf.reset(new uint8_t[static_cast<size_t>(capacity / 2 + 1)]);  // untouched until classified
    m_nCapacityNibbles = capacity;
    m_nLength = length;
    m_nGapStart = length;
    m_nGap = capacity - length;
}

void CClassStore::FillPhysical(long index, long count, uint8_t code) {
    uint8_t* buf = m_pBuf.get();
    if (count > 0 && (index & 1)) {
        SetNibble(buf, index++, code);
        --count;
    }
    long bytes = count / 2;
    if (bytes > 0) std::memset(buf + index / 2, code * 0x11, static_cast<size_t>(bytes));
    if (count & 1) SetNibble(buf, index + bytes * 2, code);
}

void CClassStore::Fill(long pos, long count, uint8_t code) {
    long head = std::clamp<long>(m_nGapStart - pos, 0, count);
    if (head > 0) FillPhysical(pos, head, code);
    if (count > head) FillPhysical(pos + std::max(head, 0L) + m_nGap, count - head, code);
}

bool CClassStore::Differs(long pos, long count, uint8_t code) const {
    for (long i = 0; i < count; ++i)
        if (Get(pos + i) != code) return true;
    return false;
}

void CClassStore::MoveNibbles(uint8_t* dst, long to, const uint8_t* src, long from, long count) {
    if (count <= 0 || (dst == src && to == from)) return;
    if (((to ^ from) & 1) == 0) {
        // Same parity: odd edges by hand, whole bytes between.
        long first = to & 1, end = to + count;
        long last = (count > first) ? (end & 1) : 0;
        uint8_t head = first ? GetNibble(src, from) : 0;
        uint8_t tail = last ? GetNibble(src, from + count - 1) : 0;
        long bytes = (count - first - last) / 2;
        if (bytes > 0) std::memmove(dst + (to + first) / 2, src + (from + first) / 2, static_cast<size_t>(bytes));
        if (first) SetNibble(dst, to, head);
        if (last) SetNibble(dst, end - 1, tail);
        return;
    }
    // Different parity: the odd edges nibble by nibble; between them each byte of the target
    // joins the high nibble of one source byte to the low nibble of the next. Going forward is
    // safe where the target lies in front of the source, backward where it lies behind.
    const bool forward = dst != src || to < from;
    const long head = to & 1, tail = (to + count) & 1;
    if (count <= head + tail) {
        MoveNibblesOneByOne(dst, to, src, from, count, forward);
        return;
    }
    const long bytes = (count - head - tail) / 2;
    uint8_t* out = dst + (to + head) / 2;
    const uint8_t* in = src + (from + head) / 2;  // the source's nibbles start in the high half
    if (forward) {
        if (head) SetNibble(dst, to, GetNibble(src, from));
        for (long j = 0; j < bytes; ++j) out[j] = static_cast<uint8_t>((in[j] >> 4) | (in[j + 1] << 4));
        if (tail) SetNibble(dst, to + count - 1, GetNibble(src, from + count - 1));
    } else {
        if (tail) SetNibble(dst, to + count - 1, GetNibble(src, from + count - 1));
        for (long j = bytes - 1; j >= 0; --j) out[j] = static_cast<uint8_t>((in[j] >> 4) | (in[j + 1] << 4));
        if (head) SetNibble(dst, to, GetNibble(src, from));
    }
}

void CClassStore::MoveGapTo(long pos) {
    uint8_t* buf = m_pBuf.get();
    if (pos < m_nGapStart) {
        MoveNibbles(buf, pos + m_nGap, buf, pos, m_nGapStart - pos);
    } else if (pos > m_nGapStart) {
        MoveNibbles(buf, m_nGapStart, buf, m_nGapStart + m_nGap, pos - m_nGapStart);
    }
    m_nGapStart = pos;
}

void CClassStore::Reserve(long nibbles) {
    if (m_pBuf && m_nGap >= nibbles) return;
    long capacity = m_nLength + nibbles + SlackFor(m_nLength + nibbles);
    long gap = capacity - m_nLength;
    // The tail keeps the parity of its old place, so that it moves as whole bytes.
    if (((m_nGap ^ gap) & 1) != 0) ++capacity, ++gap;
    std::unique_ptr<uint8_t[]> buf(new uint8_t[static_cast<size_t>(capacity / 2 + 1)]);
    if (m_pBuf) {
        MoveNibbles(buf.get(), 0, m_pBuf.get(), 0, m_nGapStart);
        MoveNibbles(buf.get(), m_nGapStart + gap, m_pBuf.get(), m_nGapStart + m_nGap, m_nLength - m_nGapStart);
    }
    m_pBuf = std::move(buf);
    m_nCapacityNibbles = capacity;
    m_nGap = gap;
}

void CClassStore::Replace(long pos, long oldCount, long newCount) {
    Reserve(newCount - oldCount + 1);
    MoveGapTo(pos);
    m_nGap += oldCount - newCount;
    m_nLength += newCount - oldCount;
    m_nGapStart = pos + newCount;
    if (newCount > 0) Fill(pos, newCount, 0);
}
