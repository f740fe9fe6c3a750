// Heap allocations made by the daemon's code, for the sweep's allocation
// invariant. Linked into lynd-sim only: it replaces the process's
// allocator, which the tests and the sanitizers keep for themselves.
#pragma once
#include <cstddef>

// Allocations so far that did not come from a throwing operator new (the
// simulated world's containers); the daemon allocates with malloc or the
// no-throw new only. Always 0 in a sanitized build, which keeps its own.
size_t sweep_daemon_allocations();
