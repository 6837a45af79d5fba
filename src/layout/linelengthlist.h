// A plain list of line lengths with the operations of the line table that the line breaker
// uses. A full layout breaks the text into this list, where appending is cheap, and then builds
// the line table from it in one pass.
#pragma once
#include <cstdint>
#include <vector>

class CLineLengthList {
public:
    void InsertAt(long nIndex, long nLength) {
        m_aLength.insert(m_aLength.begin() + nIndex, static_cast<int32_t>(nLength));
        ++m_nCount;
        m_nTotal += static_cast<int32_t>(nLength);
    }
    long RemoveAt(long nIndex) {
        long n = m_aLength[static_cast<size_t>(nIndex)];
        m_aLength.erase(m_aLength.begin() + nIndex);
        --m_nCount;
        m_nTotal -= static_cast<int32_t>(n);
        return n;
    }
    long GetAt(long nIndex) const { return m_aLength[static_cast<size_t>(nIndex)]; }
    void AddAt(long nIndex, long nDelta) {
        m_aLength[static_cast<size_t>(nIndex)] += static_cast<int32_t>(nDelta);
        m_nTotal += static_cast<int32_t>(nDelta);
    }
    // Linear: the breaker asks these once, at the start of a run.
    long GetLineStart(long nIndex) const {
        long start = 0;
        for (long i = 0; i < nIndex && i < m_nCount; ++i) start += m_aLength[static_cast<size_t>(i)];
        return start;
    }
    long FindLine(long nPos) const {
        long start = 0;
        for (long i = 0; i < m_nCount; ++i) {
            start += m_aLength[static_cast<size_t>(i)];
            if (start > nPos) return i;
        }
        return m_nCount > 0 ? m_nCount - 1 : 0;
    }
    // Appends the lengths of `other` from index nFrom on.
    void Append(const CLineLengthList& other, long nFrom) {
        for (long i = nFrom; i < other.m_nCount; ++i) m_nTotal += other.m_aLength[static_cast<size_t>(i)];
        m_aLength.insert(m_aLength.end(), other.m_aLength.begin() + nFrom, other.m_aLength.end());
        m_nCount += other.m_nCount - static_cast<int32_t>(nFrom);
    }
    const int32_t* Data() const { return m_aLength.data(); }
    // Room for this many lengths without a move: pages of it that are never written cost nothing.
    void Reserve(long nCount) { m_aLength.reserve(static_cast<size_t>(nCount)); }

    int32_t m_nTotal = 0;
    int32_t m_nCount = 0;

private:
    std::vector<int32_t> m_aLength;
};
