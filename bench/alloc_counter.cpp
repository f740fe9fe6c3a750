#include "bench/alloc_counter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<size_t> g_allocations{0};
int g_paused = 0;
}  // namespace

size_t bench_allocations() { return g_allocations.load(); }

AllocPause::AllocPause() { g_paused++; }
AllocPause::~AllocPause() { g_paused--; }

void* operator new(size_t n) {
    if (g_paused == 0)
        g_allocations++;
    if (void* p = std::malloc(n ? n : 1))
        return p;
    std::abort();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, size_t) noexcept { std::free(p); }
