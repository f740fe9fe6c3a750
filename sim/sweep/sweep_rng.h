// The sweep's random numbers: splitmix64, so a seed draws the same
// scenario on every CPU and with every standard library.
#pragma once
#include <cstdint>

namespace lynd {

class SweepRng {
public:
    explicit SweepRng(uint64_t seed) : state_(seed) {}
    uint64_t next() {
        uint64_t z = (state_ += 0x9e3779b97f4a7c15ULL);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return z ^ (z >> 31);
    }
    // lo..hi, both included.
    int64_t range(int64_t lo, int64_t hi) {
        return lo + static_cast<int64_t>(next() % static_cast<uint64_t>(hi - lo + 1));
    }
    // True percent times in a hundred.
    bool chance(int percent) { return range(0, 99) < percent; }

private:
    uint64_t state_;
};

}  // namespace lynd
