// An invariant a fuzz target holds the code to: a broken one aborts, so the
// fuzzer keeps the input that broke it.
#pragma once
#include <cstdio>
#include <cstdlib>

inline void fuzz_check(bool ok, const char* what) {
    if (!ok) {
        std::fprintf(stderr, "invariant broken: %s\n", what);
        std::abort();
    }
}
