// The fixed-slot pool behind the line table's blocks.
#include "src/layout/lineblockpool.h"

#include <new>

#ifdef __SANITIZE_ADDRESS__
// Free slots are marked unaddressable under AddressSanitizer, so that a use of a freed block is
// caught although its memory stays inside the pool.
extern "C" void __asan_poison_memory_region(void const volatile* addr, size_t size);
extern "C" void __asan_unpoison_memory_region(void const volatile* addr, size_t size);
#define ZENTREL_POISON(p, n) __asan_poison_memory_region((p), (n))
#define ZENTREL_UNPOISON(p, n) __asan_unpoison_memory_region((p), (n))
#else
#define ZENTREL_POISON(p, n) ((void)(p), (void)(n))
#define ZENTREL_UNPOISON(p, n) ((void)(p), (void)(n))
#endif

CLineBlockPool::CLineBlockPool(size_t nSlotSize, size_t nGrowBy)
    : m_nSlotSize(nSlotSize < sizeof(Slot) ? sizeof(Slot) : nSlotSize),
      m_nGrowBy(nGrowBy == 0 ? 1 : nGrowBy) {
    // Keep every slot aligned for any object when the chunk is.
    const size_t nAlign = alignof(std::max_align_t);
    m_nSlotSize = (m_nSlotSize + nAlign - 1) / nAlign * nAlign;
}

CLineBlockPool::~CLineBlockPool() {
    for (void* pChunk : m_aChunks) {
        ZENTREL_UNPOISON(pChunk, m_nSlotSize * m_nGrowBy);
        ::operator delete(pChunk);
    }
}

void CLineBlockPool::Grow() {
    // Room in the chunk list first, so that a failure cannot strand a chunk.
    m_aChunks.reserve(m_aChunks.size() + 1);
    const size_t nChunkBytes = m_nSlotSize * m_nGrowBy;
    char* pChunk = static_cast<char*>(::operator new(nChunkBytes));
    m_aChunks.push_back(pChunk);
    // Link the new slots so that the lowest address is handed out first.
    for (size_t i = m_nGrowBy; i-- > 0;) {
        Slot* pSlot = reinterpret_cast<Slot*>(pChunk + i * m_nSlotSize);
        pSlot->pNext = m_pFree;
        m_pFree = pSlot;
        ZENTREL_POISON(pChunk + i * m_nSlotSize + sizeof(Slot), m_nSlotSize - sizeof(Slot));
    }
}

void* CLineBlockPool::Allocate() {
    if (m_nUsed >= m_nLimit)
        throw std::bad_alloc();
    if (!m_pFree)
        Grow();
    Slot* pSlot = m_pFree;
    m_pFree = pSlot->pNext;
    ++m_nUsed;
    ZENTREL_UNPOISON(pSlot, m_nSlotSize);
    return pSlot;
}

void CLineBlockPool::Free(void* p) noexcept {
    if (!p)
        return;
    Slot* pSlot = static_cast<Slot*>(p);
    pSlot->pNext = m_pFree;
    m_pFree = pSlot;
    --m_nUsed;
    ZENTREL_POISON(static_cast<char*>(p) + sizeof(Slot), m_nSlotSize - sizeof(Slot));
}
