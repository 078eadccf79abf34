#include "property/node_pool.h"

#include <mutex>
#include <new>
#include <vector>

namespace ts {

#if defined(TS_NO_NODE_POOL)

void* AllocateNodeBlock(std::size_t size) { return ::operator new(size); }
void FreeNodeBlock(void* block, std::size_t) { ::operator delete(block); }

#else

namespace {

constexpr std::size_t kBlocksPerSlab = 4096;

struct FreeBlock {
    FreeBlock* next;
};

// Slabs are never released; the list keeps them reachable for leak checkers.
struct Slabs {
    std::mutex mutex;
    std::vector<void*> all;
};
Slabs& TheSlabs() {
    static auto* slabs = new Slabs;
    return *slabs;
}

// Initial-exec: the framework is loaded with the host, and the general TLS model would cost a
// call per node allocated.
__attribute__((tls_model("initial-exec"))) thread_local FreeBlock* tFree = nullptr;

void Refill(std::size_t size) {
    void* slab = ::operator new(size * kBlocksPerSlab);
    {
        auto& s = TheSlabs();
        std::lock_guard lock(s.mutex);
        s.all.push_back(slab);
    }
    auto* bytes = static_cast<char*>(slab);
    for (std::size_t i = kBlocksPerSlab; i-- > 0;) {
        auto* block = reinterpret_cast<FreeBlock*>(bytes + i * size);
        block->next = tFree;
        tFree = block;
    }
}

}  // namespace

// Every caller asks for the same size (the node's), so blocks are interchangeable.
void* AllocateNodeBlock(std::size_t size) {
    if (!tFree) Refill(size);
    FreeBlock* block = tFree;
    tFree = block->next;
    return block;
}

void FreeNodeBlock(void* block, std::size_t) {
    if (!block) return;
    auto* b = static_cast<FreeBlock*>(block);
    b->next = tFree;
    tFree = b;
}

#endif

}  // namespace ts
