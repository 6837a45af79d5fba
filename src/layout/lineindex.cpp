// The line table: a binary tree over fixed blocks of line lengths.
#include "src/layout/lineindex.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>

#include "src/layout/lineblockpool.h"

namespace {

constexpr int32_t kMaxLong32 = INT32_MAX;
constexpr size_t kBlockGrowth = 10;

long g_nChildArrays = 0;

CLineIndex* NewChildren() {
    CLineIndex* pChildren = new CLineIndex[2];
    ++g_nChildArrays;
    return pChildren;
}

void FreeChildren(CLineIndex* pChildren) noexcept {
    if (!pChildren)
        return;
    delete[] pChildren;
    --g_nChildArrays;
}

[[noreturn]] void ThrowBadIndex(const char* lpszOperation, long nIndex, long nCount) {
    throw std::out_of_range(std::string("CLineIndex::") + lpszOperation + ": line " +
                            std::to_string(nIndex) + " is outside a table of " +
                            std::to_string(nCount) + " lines");
}

[[noreturn]] void ThrowBadLength(const char* lpszOperation, const char* lpszWhat) {
    throw std::invalid_argument(std::string("CLineIndex::") + lpszOperation + ": " + lpszWhat);
}

}  // namespace

// ---- blocks ----

CLineBlockPool& CLineBlock::Pool() {
    // Never destroyed: a table in static storage may outlive any other static object.
    static CLineBlockPool* s_pPool = new CLineBlockPool(sizeof(CLineBlock), kBlockGrowth);
    return *s_pPool;
}

void* CLineBlock::operator new(size_t nSize) {
    assert(nSize <= Pool().GetSlotSize());
    return Pool().Allocate();
}

void CLineBlock::operator delete(void* p) noexcept {
    Pool().Free(p);
}

// ---- construction ----

CLineIndex::~CLineIndex() {
    RemoveAll();
}

void CLineIndex::RemoveAll() noexcept {
    delete m_pBlock;
    m_pBlock = nullptr;
    FreeChildren(m_pChildren);
    m_pChildren = nullptr;
    m_nCount = 0;
    m_nTotal = 0;
}

long CLineIndex::GetChildArrayCount() {
    return g_nChildArrays;
}

// ---- public operations: check the arguments once, then work on 32-bit values ----

void CLineIndex::InsertAt(long nIndex, long nLength) {
    if (nIndex < 0 || nIndex > m_nCount)
        ThrowBadIndex("InsertAt", nIndex, m_nCount);
    if (nLength < 0)
        ThrowBadLength("InsertAt", "a line length cannot be negative");
    if (nLength > kMaxLong32 - m_nTotal || m_nCount == kMaxLong32)
        ThrowBadLength("InsertAt", "the table would exceed 2^31-1 bytes or lines");
    Insert(static_cast<int32_t>(nIndex), static_cast<int32_t>(nLength));
}

long CLineIndex::RemoveAt(long nIndex) {
    if (nIndex < 0 || nIndex >= m_nCount)
        ThrowBadIndex("RemoveAt", nIndex, m_nCount);
    return Remove(static_cast<int32_t>(nIndex));
}

long CLineIndex::GetAt(long nIndex) const {
    if (nIndex < 0 || nIndex >= m_nCount)
        ThrowBadIndex("GetAt", nIndex, m_nCount);
    return Get(static_cast<int32_t>(nIndex));
}

void CLineIndex::AddAt(long nIndex, long nDelta) {
    if (nIndex < 0 || nIndex >= m_nCount)
        ThrowBadIndex("AddAt", nIndex, m_nCount);
    const int32_t nLength = Get(static_cast<int32_t>(nIndex));
    if (nDelta < -static_cast<long>(nLength))
        ThrowBadLength("AddAt", "a line length cannot become negative");
    if (nDelta > static_cast<long>(kMaxLong32 - m_nTotal))
        ThrowBadLength("AddAt", "the table would exceed 2^31-1 bytes");
    Add(static_cast<int32_t>(nIndex), static_cast<int32_t>(nDelta));
}

long CLineIndex::GetLineStart(long nIndex) const {
    if (nIndex < 0 || nIndex > m_nCount)
        ThrowBadIndex("GetLineStart", nIndex, m_nCount);
    const CLineIndex* pNode = this;
    int32_t nIdx = static_cast<int32_t>(nIndex);
    int32_t nStart = 0;
    while (pNode->m_pChildren) {
        const CLineIndex& left = pNode->m_pChildren[0];
        if (nIdx < left.m_nCount) {
            pNode = &left;
        } else {
            nIdx -= left.m_nCount;
            nStart += left.m_nTotal;
            pNode = &pNode->m_pChildren[1];
        }
    }
    return nStart + pNode->LeafLineStart(nIdx);
}

long CLineIndex::FindLine(long nPos) const {
    return FindLineAndStart(nPos, nullptr);
}

long CLineIndex::FindLineAndStart(long nPos, long* pnStart) const {
    if (nPos < 0)
        throw std::out_of_range("CLineIndex::FindLine: position " + std::to_string(nPos) +
                                " is negative");
    // Any position beyond the total finds the last line; clamping keeps it in 32 bits.
    int32_t nStart = 0;
    const int32_t nLine = Locate(static_cast<int32_t>(std::min<long>(nPos, kMaxLong32)), &nStart);
    if (pnStart)
        *pnStart = nStart;
    return nLine;
}

// ---- walks down one path ----

int32_t CLineIndex::Get(int32_t nIndex) const noexcept {
    const CLineIndex* pNode = this;
    while (pNode->m_pChildren) {
        const CLineIndex& left = pNode->m_pChildren[0];
        if (nIndex < left.m_nCount) {
            pNode = &left;
        } else {
            nIndex -= left.m_nCount;
            pNode = &pNode->m_pChildren[1];
        }
    }
    return pNode->m_pBlock->m_aLength[nIndex];
}

void CLineIndex::Add(int32_t nIndex, int32_t nDelta) noexcept {
    CLineIndex* pNode = this;
    for (;;) {
        pNode->m_nTotal += nDelta;
        if (!pNode->m_pChildren)
            break;
        CLineIndex& left = pNode->m_pChildren[0];
        if (nIndex < left.m_nCount) {
            pNode = &left;
        } else {
            nIndex -= left.m_nCount;
            pNode = &pNode->m_pChildren[1];
        }
    }
    pNode->m_pBlock->m_aLength[nIndex] += nDelta;
}

int32_t CLineIndex::Locate(int32_t nPos, int32_t* pnStart) const noexcept {
    const CLineIndex* pNode = this;
    int32_t nLine = 0;
    *pnStart = 0;
    while (pNode->m_pChildren) {
        const CLineIndex& left = pNode->m_pChildren[0];
        const CLineIndex& right = pNode->m_pChildren[1];
        // An empty right child has no last line to give; the left child's last line is it.
        if (nPos < left.m_nTotal || right.m_nCount == 0) {
            pNode = &left;
        } else {
            nPos -= left.m_nTotal;
            nLine += left.m_nCount;
            *pnStart += left.m_nTotal;
            pNode = &right;
        }
    }
    int32_t nLeafStart = 0;
    nLine += pNode->LeafFindLine(nPos, &nLeafStart);
    *pnStart += nLeafStart;
    return nLine;
}

// ---- inside one leaf ----

int32_t CLineIndex::LeafLineStart(int32_t nIndex) const noexcept {
    const int32_t n = m_nCount;
    if (nIndex >= n)
        return m_nTotal;
    const int32_t* pLength = m_pBlock->m_aLength;
    // Scan from whichever end is nearer.
    int32_t nStart = 0;
    if (nIndex < n / 2) {
        for (int32_t i = 0; i < nIndex; ++i)
            nStart += pLength[i];
        return nStart;
    }
    nStart = m_nTotal;
    for (int32_t i = n - 1; i >= nIndex; --i)
        nStart -= pLength[i];
    return nStart;
}

int32_t CLineIndex::LeafFindLine(int32_t nPos, int32_t* pnStart) const noexcept {
    const int32_t n = m_nCount;
    *pnStart = 0;
    if (n == 0)
        return 0;
    const int32_t* pLength = m_pBlock->m_aLength;
    if (nPos < m_nTotal / 2) {
        // The first line whose end lies beyond nPos.
        int32_t nEnd = 0;
        for (int32_t i = 0; i < n; ++i) {
            nEnd += pLength[i];
            if (nEnd > nPos) {
                *pnStart = nEnd - pLength[i];
                return i;
            }
        }
    }
    // The last line that starts at or before nPos; line 0 starts at 0, so one always does.
    int32_t nStart = m_nTotal;
    int32_t i = n - 1;
    for (; i > 0; --i) {
        nStart -= pLength[i];
        if (nStart <= nPos)
            break;
    }
    *pnStart = i > 0 ? nStart : 0;
    return i;
}

void CLineIndex::InsertInLeaf(int32_t nIndex, int32_t nLength) {
    if (!m_pBlock)
        m_pBlock = new CLineBlock;
    int32_t* pLength = m_pBlock->m_aLength;
    std::memmove(pLength + nIndex + 1, pLength + nIndex,
                 static_cast<size_t>(m_nCount - nIndex) * sizeof(int32_t));
    pLength[nIndex] = nLength;
    ++m_pBlock->m_nCount;
    ++m_nCount;
    m_nTotal += nLength;
}

int32_t CLineIndex::RemoveFromLeaf(int32_t nIndex) noexcept {
    int32_t* pLength = m_pBlock->m_aLength;
    const int32_t nLength = pLength[nIndex];
    std::memmove(pLength + nIndex, pLength + nIndex + 1,
                 static_cast<size_t>(m_nCount - nIndex - 1) * sizeof(int32_t));
    --m_pBlock->m_nCount;
    --m_nCount;
    m_nTotal -= nLength;
    if (m_nCount == 0) {
        delete m_pBlock;
        m_pBlock = nullptr;
    }
    return nLength;
}

// ---- changing the tree ----

void CLineIndex::Insert(int32_t nIndex, int32_t nLength) {
    if (!m_pChildren) {
        if (m_nCount < kLineBlockCapacity) {
            InsertInLeaf(nIndex, nLength);
            return;
        }
        Split();
    }
    CLineIndex& left = m_pChildren[0];
    CLineIndex& right = m_pChildren[1];
    const int32_t nLeft = left.m_nCount;
    try {
        // A line at the boundary joins the smaller side; on a tie the front of the right one.
        if (nIndex < nLeft || (nIndex == nLeft && nLeft < right.m_nCount))
            left.Insert(nIndex, nLength);
        else
            right.Insert(nIndex - nLeft, nLength);
    } catch (...) {
        Resum();
        throw;
    }
    ++m_nCount;
    m_nTotal += nLength;
    Balance();
}

int32_t CLineIndex::Remove(int32_t nIndex) {
    if (!m_pChildren)
        return RemoveFromLeaf(nIndex);
    const int32_t nLeft = m_pChildren[0].m_nCount;
    int32_t nLength = 0;
    try {
        nLength =
            nIndex < nLeft ? m_pChildren[0].Remove(nIndex) : m_pChildren[1].Remove(nIndex - nLeft);
    } catch (...) {
        Resum();
        throw;
    }
    --m_nCount;
    m_nTotal -= nLength;
    if (m_nCount <= kLineMergeLimit)
        Merge();
    else
        Balance();
    return nLength;
}

void CLineIndex::Split() {
    // Both allocations come first, so that running out of memory leaves the leaf as it was.
    std::unique_ptr<CLineBlock> pNewBlock(new CLineBlock);
    CLineIndex* pChildren = NewChildren();
    constexpr int32_t nHalf = kLineBlockCapacity / 2;
    CLineBlock* pOld = m_pBlock;
    const int32_t nMoved = m_nCount - nHalf;
    std::memcpy(pNewBlock->m_aLength, pOld->m_aLength + nHalf,
                static_cast<size_t>(nMoved) * sizeof(int32_t));
    pNewBlock->m_nCount = nMoved;
    pOld->m_nCount = nHalf;

    CLineIndex& right = pChildren[1];
    right.m_nCount = nMoved;
    for (int32_t i = 0; i < nMoved; ++i)
        right.m_nTotal += pNewBlock->m_aLength[i];
    right.m_pBlock = pNewBlock.release();

    CLineIndex& left = pChildren[0];
    left.m_pBlock = pOld;
    left.m_nCount = nHalf;
    left.m_nTotal = m_nTotal - right.m_nTotal;

    m_pBlock = nullptr;
    m_pChildren = pChildren;
}

void CLineIndex::Merge() noexcept {
    CLineIndex* pChildren = m_pChildren;
    CLineIndex& left = pChildren[0];
    CLineIndex& right = pChildren[1];
    assert(!left.m_pChildren && !right.m_pChildren);
    if (left.m_pBlock) {
        CLineBlock* pBlock = left.m_pBlock;
        if (right.m_pBlock) {
            std::memcpy(pBlock->m_aLength + pBlock->m_nCount, right.m_pBlock->m_aLength,
                        static_cast<size_t>(right.m_nCount) * sizeof(int32_t));
            pBlock->m_nCount += right.m_nCount;
        }
        m_pBlock = pBlock;
        left.m_pBlock = nullptr;
    } else {
        m_pBlock = right.m_pBlock;
        right.m_pBlock = nullptr;
    }
    m_pChildren = nullptr;
    FreeChildren(pChildren);  // frees a block still left in the right child
}

void CLineIndex::Balance() {
    const CLineIndex& left = m_pChildren[0];
    const CLineIndex& right = m_pChildren[1];
    // Once out of balance, move lines all the way to equal halves (or one past), so that the
    // next rebalance of this node is as far away as it can be. Because every node is kept this
    // close to even, lines added at one end keep crossing the boundaries of all nodes above
    // them: appending costs time that grows with the size of the table, random changes do not.
    if (left.m_nCount >= right.m_nCount + kLineBalanceLimit) {
        while (left.m_nCount > right.m_nCount)
            MoveLine(0, left.m_nCount - 1, 1, 0);
    } else if (right.m_nCount >= left.m_nCount + kLineBalanceLimit) {
        while (right.m_nCount > left.m_nCount)
            MoveLine(1, 0, 0, left.m_nCount);
    }
}

void CLineIndex::MoveLine(int nFrom, int32_t nFromIndex, int nTo, int32_t nToIndex) {
    CLineIndex& from = m_pChildren[nFrom];
    CLineIndex& to = m_pChildren[nTo];
    // On running out of memory the line in hand goes back where it came from, so that no byte
    // of the table is lost; this node's sums are then taken from its children again.
    const int32_t nFromTotal = from.m_nTotal;
    int32_t nLength = 0;
    try {
        nLength = from.Remove(nFromIndex);
    } catch (...) {
        if (from.m_nTotal != nFromTotal)
            from.GiveBack(nFromIndex, nFromTotal - from.m_nTotal);
        Resum();
        throw;
    }
    const int32_t nToTotal = to.m_nTotal;
    try {
        to.Insert(nToIndex, nLength);
    } catch (...) {
        if (to.m_nTotal == nToTotal && nLength != 0)
            from.GiveBack(nFromIndex, nLength);
        Resum();
        throw;
    }
}

void CLineIndex::GiveBack(int32_t nIndex, int32_t nLength) noexcept {
    const int32_t nTotal = m_nTotal;
    nIndex = std::min(nIndex, m_nCount);
    try {
        Insert(nIndex, nLength);
    } catch (...) {
        // Memory is gone for good; the bytes join the neighbouring line instead, which keeps
        // the total right for the line breaker to cut up again.
        if (m_nTotal == nTotal && m_nCount > 0)
            Add(std::min(nIndex, m_nCount - 1), nLength);
    }
}

// After a failure below an inner node its sums are taken from its children again. A node can
// lose a line that way only where lines were being moved, which needs far more lines than the
// merge limit, so no merge is ever due here.
void CLineIndex::Resum() noexcept {
    assert(m_pChildren);
    m_nCount = m_pChildren[0].m_nCount + m_pChildren[1].m_nCount;
    m_nTotal = m_pChildren[0].m_nTotal + m_pChildren[1].m_nTotal;
}

// ---- bulk build ----

void CLineIndex::Build(const int32_t* pLengths, long nCount) {
    if (nCount < 0)
        throw std::invalid_argument("CLineIndex::Build: negative line count");
    int64_t total = 0;
    for (long i = 0; i < nCount; ++i) {
        if (pLengths[i] < 0)
            throw std::invalid_argument("CLineIndex::Build: negative line length");
        total += pLengths[i];
    }
    if (total > kMaxLong32)
        throw std::invalid_argument("CLineIndex::Build: total above 2^31-1");
    CLineIndex built;
    built.BuildNode(pLengths, static_cast<int32_t>(nCount));
    RemoveAll();
    std::swap(m_pChildren, built.m_pChildren);
    std::swap(m_pBlock, built.m_pBlock);
    m_nCount = built.m_nCount;
    m_nTotal = built.m_nTotal;
}

// Halves differ by at most one line, so every node is balanced; a node of more than a block's
// capacity has more than the merge limit, so no inner node is too small.
void CLineIndex::BuildNode(const int32_t* pLengths, int32_t nCount) {
    m_nCount = nCount;
    if (nCount == 0)
        return;
    if (nCount <= kLineBlockCapacity) {
        m_pBlock = new CLineBlock;
        std::copy(pLengths, pLengths + nCount, m_pBlock->m_aLength);
        m_pBlock->m_nCount = nCount;
        int64_t total = 0;
        for (int32_t i = 0; i < nCount; ++i) total += pLengths[i];
        m_nTotal = static_cast<int32_t>(total);
        return;
    }
    m_pChildren = NewChildren();
    int32_t nLeft = nCount / 2;
    m_pChildren[0].BuildNode(pLengths, nLeft);
    m_pChildren[1].BuildNode(pLengths + nLeft, nCount - nLeft);
    m_nTotal = m_pChildren[0].m_nTotal + m_pChildren[1].m_nTotal;
}

void CLineIndex::CopyLengths(long nFrom, long nTo, std::vector<int32_t>* pOut) const {
    if (nFrom < 0 || nTo > m_nCount || nFrom > nTo)
        throw std::out_of_range("CLineIndex::CopyLengths: lines outside the table");
    CopyNode(static_cast<int32_t>(nFrom), static_cast<int32_t>(nTo), pOut);
}

// Lines nFrom to nTo of this node, in its own numbering; subtrees outside them are not entered.
void CLineIndex::CopyNode(int32_t nFrom, int32_t nTo, std::vector<int32_t>* pOut) const {
    if (nFrom >= nTo) return;
    if (!m_pChildren) {
        pOut->insert(pOut->end(), m_pBlock->m_aLength + nFrom, m_pBlock->m_aLength + nTo);
        return;
    }
    const int32_t nLeft = m_pChildren[0].m_nCount;
    m_pChildren[0].CopyNode(nFrom, std::min(nTo, nLeft), pOut);
    m_pChildren[1].CopyNode(std::max(nFrom, nLeft) - nLeft, nTo - nLeft, pOut);
}
