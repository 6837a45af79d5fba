// The line table: one 32-bit byte length per display line, in line order, and the index that
// maps positions to lines and lines to positions. Lengths stand in fixed blocks that are the
// leaves of a binary tree whose inner nodes keep the number of lines and bytes below them, so
// that a lookup or a change of one length walks one path from the root.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class CLineBlockPool;

// Lengths per block. Bigger blocks need fewer nodes and less memory per line; smaller ones move
// fewer entries when a line is inserted or removed inside a block.
constexpr int32_t kLineBlockCapacity = 600;
// An inner node that falls to this many lines folds its two leaves back into one block. Higher
// saves blocks on sparse trees; lower splits and merges less often near the limit.
constexpr int32_t kLineMergeLimit = 150;
// The two children of a node must differ by fewer lines than this. Smaller keeps the tree
// shallower; larger rebalances (moving lines one at a time) less often.
constexpr int32_t kLineBalanceLimit = 300;

static_assert(kLineBlockCapacity % 2 == 0, "a split gives each half the same count");
static_assert(kLineMergeLimit <= kLineBlockCapacity / 2, "two merged leaves fit one block");
static_assert(kLineBalanceLimit <= kLineBlockCapacity, "a split never unbalances its node");

// The storage of one leaf. Blocks come from one process-wide pool of fixed-size objects.
class CLineBlock final {
public:
    CLineBlock() : m_nCount(0) {}
    virtual ~CLineBlock() = default;
    CLineBlock(const CLineBlock&) = delete;
    CLineBlock& operator=(const CLineBlock&) = delete;

    // Throws std::bad_alloc when the pool cannot grow.
    static void* operator new(size_t nSize);
    static void operator delete(void* p) noexcept;
    static void* operator new[](size_t) = delete;
    static void operator delete[](void*) = delete;

    // The pool that every block comes from; it grows 10 blocks at a time.
    static CLineBlockPool& Pool();

    int32_t m_nCount;                       // lengths in use, 0 to kLineBlockCapacity
    int32_t m_aLength[kLineBlockCapacity];  // the lengths in line order; the first m_nCount count
};

// One node of the tree; the table as a whole is the root node.
//
// Invariants, true between operations:
//  1. A node is a leaf (m_pChildren null) or inner (m_pChildren set and m_pBlock null).
//  2. An inner node's m_nCount and m_nTotal are the sums of its two children's.
//  3. A leaf holds at most kLineBlockCapacity lines, its m_nCount is its block's m_nCount and its
//     m_nTotal the sum of the block's lengths; a leaf without lines has no block.
//  4. Every inner node holds more than kLineMergeLimit lines, so the children of a node that
//     falls to that many or fewer are always leaves.
//  5. The two children of an inner node differ by fewer than kLineBalanceLimit lines. Balance is
//     by line count only.
// Lengths are never negative. The rest of the system keeps the table at one line at least.
//
// Failures: an index or length outside the table's range throws std::out_of_range or
// std::invalid_argument and changes nothing. When memory runs out an operation throws
// std::bad_alloc and the table still meets invariants 1 to 4 with all sums right. It then holds
// what it held before the call or what it would hold after it, except that a line caught half
// way through a rebalance may have been folded into its neighbour: the bytes are always kept.
// A node left out of balance is balanced again by the next change that passes through it.
class CLineIndex {
public:
    CLineIndex() = default;
    virtual ~CLineIndex();
    CLineIndex(const CLineIndex&) = delete;
    CLineIndex& operator=(const CLineIndex&) = delete;

    // A new line of nLength bytes stands at nIndex (0 to the count).
    void InsertAt(long nIndex, long nLength);
    // Removes line nIndex and gives back its length.
    long RemoveAt(long nIndex);
    // The length of line nIndex (below the count).
    long GetAt(long nIndex) const;
    // Adds nDelta (may be negative, but the length stays 0 or more) to the length of line nIndex.
    void AddAt(long nIndex, long nDelta);
    // Position of the first byte of line nIndex; nIndex equal to the count gives the total.
    long GetLineStart(long nIndex) const;
    // The line that holds the byte at nPos (0 or more). Lines of length 0 in front of it are
    // passed over; a position at or beyond the total gives the last line.
    long FindLine(long nPos) const;
    // FindLine that also stores the start of the line found into *pnStart (when not null).
    long FindLineAndStart(long nPos, long* pnStart) const;
    // Frees everything: the node is an empty leaf again.
    void RemoveAll() noexcept;
    // Replaces the table by these lengths in one pass, as a balanced tree: the fast way to lay
    // out a whole text, where inserting line by line would rebalance at every step. Throws
    // std::invalid_argument (table unchanged) for a negative length or a total above 2^31-1.
    void Build(const int32_t* pLengths, long nCount);

    long GetCount() const { return m_nCount; }
    // Appends the lengths of lines nFrom up to, not including, nTo to *pOut, in order.
    void CopyLengths(long nFrom, long nTo, std::vector<int32_t>* pOut) const;

    // Checks invariants 1 to 5 and all sums over the whole tree; on a fault, describes the first
    // one found in *pWhy. bBalanced false skips invariant 5.
    bool CheckInvariants(std::string* pWhy = nullptr, bool bBalanced = true) const;

    // Child arrays alive in the process, for accounting of memory.
    static long GetChildArrayCount();

    int32_t m_nTotal = 0;               // bytes below this node
    CLineIndex* m_pChildren = nullptr;  // left and right child, one array of two; null in a leaf
    int32_t m_nCount = 0;               // lines below this node
    CLineBlock* m_pBlock = nullptr;     // a leaf's lengths; null in an inner node or empty leaf

private:
    void Insert(int32_t nIndex, int32_t nLength);
    int32_t Remove(int32_t nIndex);
    void Add(int32_t nIndex, int32_t nDelta) noexcept;
    int32_t Locate(int32_t nPos, int32_t* pnStart) const noexcept;
    int32_t Get(int32_t nIndex) const noexcept;

    void InsertInLeaf(int32_t nIndex, int32_t nLength);
    int32_t RemoveFromLeaf(int32_t nIndex) noexcept;
    int32_t LeafLineStart(int32_t nIndex) const noexcept;
    int32_t LeafFindLine(int32_t nPos, int32_t* pnStart) const noexcept;

    void BuildNode(const int32_t* pLengths, int32_t nCount);
    void CopyNode(int32_t nFrom, int32_t nTo, std::vector<int32_t>* pOut) const;
    void Split();
    void Merge() noexcept;
    void Balance();
    void MoveLine(int nFrom, int32_t nFromIndex, int nTo, int32_t nToIndex);
    void GiveBack(int32_t nIndex, int32_t nLength) noexcept;
    void Resum() noexcept;

    bool CheckNode(bool bBalanced, std::string* pWhy) const;
};
