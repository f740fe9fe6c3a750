#include "sim/sweep/sweep_alloc.h"

#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__)

size_t sweep_daemon_allocations() { return 0; }

#else

extern "C" void* __libc_malloc(size_t n);
extern "C" void* __libc_calloc(size_t n, size_t size);
extern "C" void* __libc_realloc(void* p, size_t n);

namespace {
size_t g_counted = 0;
int g_in_new = 0;  // inside a throwing new: the simulator's own

void* counted(void* p) {
    if (g_in_new == 0)
        g_counted++;
    return p;
}

void* sim_new(size_t n) {
    g_in_new++;
    void* p = __libc_malloc(n != 0 ? n : 1);
    g_in_new--;
    if (p == nullptr)
        std::abort();  // as a failed new would end the simulator
    return p;
}
}  // namespace

size_t sweep_daemon_allocations() { return g_counted; }

extern "C" void* malloc(size_t n) { return counted(__libc_malloc(n)); }
extern "C" void* calloc(size_t n, size_t size) { return counted(__libc_calloc(n, size)); }
extern "C" void* realloc(void* p, size_t n) { return counted(__libc_realloc(p, n)); }

void* operator new(size_t n) { return sim_new(n); }
void* operator new[](size_t n) { return sim_new(n); }
void* operator new(size_t n, const std::nothrow_t&) noexcept { return counted(__libc_malloc(n != 0 ? n : 1)); }
void* operator new[](size_t n, const std::nothrow_t&) noexcept { return counted(__libc_malloc(n != 0 ? n : 1)); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, size_t) noexcept { std::free(p); }
void operator delete[](void* p, size_t) noexcept { std::free(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { std::free(p); }

#endif
