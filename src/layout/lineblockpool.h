// A pool of fixed-size memory slots for the line table's blocks. It takes memory from the heap
// a chunk of several slots at a time and keeps every freed slot for reuse, so that splitting
// and merging blocks while typing does not go to the general allocator. The pool never hands
// memory back to the heap before it is destroyed. It is meant for one thread: the view's.
#pragma once
#include <cstddef>
#include <limits>
#include <vector>

class CLineBlockPool {
public:
    // nSlotSize: bytes per slot (at least a pointer); nGrowBy: slots added per trip to the heap.
    CLineBlockPool(size_t nSlotSize, size_t nGrowBy);
    ~CLineBlockPool();
    CLineBlockPool(const CLineBlockPool&) = delete;
    CLineBlockPool& operator=(const CLineBlockPool&) = delete;

    // A free slot. Throws std::bad_alloc when the heap has no memory left or the use limit is
    // reached; nothing changes in that case.
    void* Allocate();
    // Gives a slot from Allocate back to the pool.
    void Free(void* p) noexcept;

    // Slots the pool has taken from the heap, in use or free.
    size_t GetSlotCount() const { return m_aChunks.size() * m_nGrowBy; }
    // Slots handed out and not yet given back.
    size_t GetUsedCount() const { return m_nUsed; }
    size_t GetSlotSize() const { return m_nSlotSize; }

    // Caps the number of slots in use at once; Allocate beyond the cap throws std::bad_alloc.
    // Lets a host bound the memory of its tables, and lets tests run out of memory on purpose.
    void SetUseLimit(size_t nLimit) { m_nLimit = nLimit; }
    size_t GetUseLimit() const { return m_nLimit; }
    static constexpr size_t kNoLimit = std::numeric_limits<size_t>::max();

private:
    struct Slot {
        Slot* pNext;
    };
    void Grow();

    size_t m_nSlotSize;
    size_t m_nGrowBy;
    size_t m_nUsed = 0;
    size_t m_nLimit = kNoLimit;
    Slot* m_pFree = nullptr;
    std::vector<void*> m_aChunks;
};
