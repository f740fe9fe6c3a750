// Counts heap allocations so a benchmark can show a path allocates nothing.
#pragma once
#include <cstddef>

size_t bench_allocations();
