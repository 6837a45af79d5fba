#include "platform/com/globalmemory.h"

#include <map>
#include <memory>
#include <new>

namespace {

struct Block {
    std::unique_ptr<unsigned char[]> bytes;
    size_t size = 0;
    int locks = 0;
};

struct Blocks {
    std::map<HGLOBAL, Block> byHandle;
    HGLOBAL next = 1;
};

Blocks& AllBlocks() {
    static Blocks blocks;
    return blocks;
}

Block* Find(HGLOBAL handle) {
    auto& map = AllBlocks().byHandle;
    auto it = map.find(handle);
    return it == map.end() ? nullptr : &it->second;
}

}  // namespace

HGLOBAL GlobalAlloc(UINT, size_t size) {
    Blocks& blocks = AllBlocks();
    std::unique_ptr<unsigned char[]> bytes(new (std::nothrow) unsigned char[size ? size : 1]);
    if (!bytes) return 0;
    HGLOBAL handle = blocks.next++;
    if (handle == 0) handle = blocks.next++;
    blocks.byHandle[handle] = Block{std::move(bytes), size, 0};
    return handle;
}

void* GlobalLock(HGLOBAL handle) {
    Block* block = Find(handle);
    if (!block) return nullptr;
    ++block->locks;
    return block->bytes.get();
}

BOOL GlobalUnlock(HGLOBAL handle) {
    Block* block = Find(handle);
    if (!block || block->locks == 0) return FALSE;
    return --block->locks > 0 ? TRUE : FALSE;
}

size_t GlobalSize(HGLOBAL handle) {
    const Block* block = Find(handle);
    return block ? block->size : 0;
}

HGLOBAL GlobalFree(HGLOBAL handle) { return AllBlocks().byHandle.erase(handle) ? 0 : handle; }
