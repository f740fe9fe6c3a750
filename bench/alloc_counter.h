// Counts heap allocations so a benchmark can show a path allocates nothing.
// A pause covers work done on the daemon's behalf by the simulated world
// (its call log, the vendor library's buffers), which is not the daemon's.
#pragma once
#include <cstddef>

size_t bench_allocations();

struct AllocPause {
    AllocPause();
    ~AllocPause();
    AllocPause(const AllocPause&) = delete;
    AllocPause& operator=(const AllocPause&) = delete;
};
