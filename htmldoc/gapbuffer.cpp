#include "htmldoc/gapbuffer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "htmldoc/twothreads.h"

namespace {

// Room kept free after a reallocation: enough for a long run of typing, and in proportion to
// the text so that growing a large text by many small inserts stays linear overall.
long SlackFor(long length) { return std::max<long>(4096, length / 8); }

// Copies into memory that was never written: the kernel is first asked to map its whole pages
// in one call, which costs much less than a page fault at every page the copy reaches. Where
// the kernel cannot, the copy faults the pages in as usual.
void CopyIntoFreshMemory(char* dst, const char* src, size_t count) {
    const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    const uintptr_t first = (reinterpret_cast<uintptr_t>(dst) + page - 1) / page * page;
    const uintptr_t end = (reinterpret_cast<uintptr_t>(dst) + count) / page * page;
    if (end > first) madvise(reinterpret_cast<void*>(first), end - first, MADV_POPULATE_WRITE);
    std::memcpy(dst, src, count);
}

}  // namespace

CGapBuffer::CGapBuffer() { Reserve(1); }

void CGapBuffer::Copy(char* dst, long pos, long count) const {
    long head = std::clamp<long>(m_nGapStart - pos, 0, count);
    if (head > 0) std::memcpy(dst, m_pBuf.get() + pos, static_cast<size_t>(head));
    if (count > head)
        std::memcpy(dst + head, m_pBuf.get() + pos + head + GapSize(), static_cast<size_t>(count - head));
}

std::string CGapBuffer::Substr(long pos, long count) const {
    std::string out(static_cast<size_t>(count), '\0');
    if (count > 0) Copy(out.data(), pos, count);
    return out;
}

const char* CGapBuffer::Contiguous() {
    MoveGapTo(m_nLength);
    m_bPointerAsked = true;
    m_pBuf[m_nLength] = '\0';  // the gap is never empty, so this byte exists
    return m_pBuf.get();
}

void CGapBuffer::MoveGapTo(long pos) {
    char* buf = m_pBuf.get();
    long gap = GapSize();
    if (pos < m_nGapStart) {
        std::memmove(buf + pos + gap, buf + pos, static_cast<size_t>(m_nGapStart - pos));
    } else if (pos > m_nGapStart) {
        std::memmove(buf + m_nGapStart, buf + m_nGapStart + gap, static_cast<size_t>(pos - m_nGapStart));
    }
    m_nGapStart = pos;
}

void CGapBuffer::Reserve(long bytes) {
    if (m_pBuf && GapSize() >= bytes) return;
    long capacity = m_nLength + bytes + SlackFor(m_nLength + bytes);
    std::unique_ptr<char[]> buf(new char[static_cast<size_t>(capacity)]);
    long tail = m_nLength - m_nGapStart;
    if (m_pBuf) {
        std::memcpy(buf.get(), m_pBuf.get(), static_cast<size_t>(m_nGapStart));
        std::memcpy(buf.get() + capacity - tail, m_pBuf.get() + m_nGapStart + GapSize(), static_cast<size_t>(tail));
    }
    m_pBuf = std::move(buf);
    m_nCapacity = capacity;
}

void CGapBuffer::Replace(long pos, long oldCount, const char* text, long newCount) {
    std::string copy;
    if (newCount > 0 && PointsInside(text)) {
        // The source lives in this buffer and may move with the gap: take it out first.
        copy.assign(text, static_cast<size_t>(newCount));
        text = copy.data();
    }
    // Deleting is widening the gap; one byte of gap always stays for the terminator.
    Reserve(newCount - oldCount + 1);
    char* buf = m_pBuf.get();
    if (std::exchange(m_bPointerAsked, false) && m_nGapStart == m_nLength) {
        long tail = m_nLength - pos - oldCount;
        std::memmove(buf + pos + newCount, buf + pos + oldCount, static_cast<size_t>(tail));
        m_nGapStart = m_nLength = m_nLength - oldCount + newCount;
    } else {
        MoveGapTo(pos);
        m_nLength -= oldCount;
        m_nGapStart = pos + newCount;
        m_nLength += newCount;
    }
    if (newCount > 0) std::memcpy(buf + pos, text, static_cast<size_t>(newCount));
}

void CGapBuffer::Assign(std::string_view text) {
    long length = static_cast<long>(text.size());
    long capacity = length + SlackFor(length);
    std::unique_ptr<char[]> buf(new char[static_cast<size_t>(capacity)]);
    if (text.size() >= kTwoThreadBytes) {
        // Each half on its own core: the first touch of fresh memory costs more than the copy.
        const size_t half = text.size() / 2;
        RunOnTwoThreads([&] { CopyIntoFreshMemory(buf.get(), text.data(), half); },
                        [&] { CopyIntoFreshMemory(buf.get() + half, text.data() + half, text.size() - half); });
    } else if (length > 0) {
        std::memcpy(buf.get(), text.data(), text.size());
    }
    m_pBuf = std::move(buf);
    m_nCapacity = capacity;
    m_nLength = length;
    m_nGapStart = length;
    m_bPointerAsked = false;
    ++m_nGeneration;
}
