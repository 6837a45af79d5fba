// Global memory blocks handed between a host and the control by handle. A handle is a small
// number, so that it travels in an automation long; the block stays until GlobalFree.
#pragma once
#include <cstddef>

#include "platform/com/types.h"

using HGLOBAL = uint32_t;

// A block of `size` bytes (flags are accepted and ignored: every block is fixed); 0 on failure.
HGLOBAL GlobalAlloc(UINT flags, size_t size);
// The block's bytes, or null for an unknown handle. Locks nest; the bytes stay where they are.
void* GlobalLock(HGLOBAL handle);
BOOL GlobalUnlock(HGLOBAL handle);
// 0 for an unknown handle.
size_t GlobalSize(HGLOBAL handle);
// 0 when freed; the handle itself for an unknown one.
HGLOBAL GlobalFree(HGLOBAL handle);
