#pragma once

#include <cstddef>

namespace ts {

// Fixed-size blocks for property nodes. A conversation holds millions of nodes; carving them
// from large slabs saves the allocator's per-block header and keeps siblings close in memory.
// Freed blocks go to the calling thread's free list; slabs are kept for the process's life.
// Sanitizer builds bypass the pool so that use-after-free of a node is caught.
// `size` is the same on every call.
void* AllocateNodeBlock(std::size_t size);
void FreeNodeBlock(void* block, std::size_t size);

}  // namespace ts
