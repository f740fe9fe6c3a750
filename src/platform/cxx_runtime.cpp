// The few pieces of the C++ runtime the daemon uses, over the C library, so
// that lynd and lynd-check need no libstdc++ on the router (it costs about
// 0.4 MB of flash on an image that does not carry it already). Only the two
// executables link this file: the simulator, the tests and the sanitizers keep
// their own runtime. The daemon is built without exceptions, so an allocation
// that must not fail and fails ends the process, as an uncaught bad_alloc would.
#include <cstdio>
#include <cstdlib>
#include <new>

namespace std {
const nothrow_t nothrow{};
}

namespace {

void* allocate(std::size_t n) { return std::malloc(n != 0 ? n : 1); }

void* allocate_or_die(std::size_t n) {
    void* p = allocate(n);
    if (p == nullptr) {
        std::fputs("lynd: out of memory\n", stderr);
        std::abort();
    }
    return p;
}

}  // namespace

void* operator new(std::size_t n) { return allocate_or_die(n); }
void* operator new[](std::size_t n) { return allocate_or_die(n); }
void* operator new(std::size_t n, const std::nothrow_t&) noexcept { return allocate(n); }
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept { return allocate(n); }

void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { std::free(p); }

// A call through a vtable slot that is still pure: a destructor or constructor
// called a virtual function, a bug the process cannot go on from.
extern "C" void __cxa_pure_virtual() {
    std::fputs("lynd: pure virtual function called\n", stderr);
    std::abort();
}
