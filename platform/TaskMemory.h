// The task allocator: blocks that one component allocates and another frees.
//
// Any thread may call these; a block may be freed by another thread than the one that got it.
#pragma once

#include "platform/Types.h"

#include <memory>

// A block of that many bytes, not cleared; null when there is no memory.
LPVOID CoTaskMemAlloc(std::size_t cb);

// Changes a block's size and may move it; the bytes that fit stay. A null block is allocated, a
// size of 0 frees and returns null. Null when there is no memory: the block is then as it was.
LPVOID CoTaskMemRealloc(LPVOID pv, std::size_t cb);

// Null is nothing to free.
void CoTaskMemFree(LPVOID pv);

struct CTaskMemoryFree {
    void operator()(void* block) const { CoTaskMemFree(block); }
};

// A record in a block of the task allocator, with an owner.
template <typename T> using CTaskMemory = std::unique_ptr<T, CTaskMemoryFree>;
