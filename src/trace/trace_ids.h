// Timers and fd watches named by the order the daemon first armed them, so a
// record and its replay name the same timer the same way.
#pragma once
#include <cstddef>

namespace lynd {

class TraceIds {
public:
    static constexpr int kMax = 128;
    // The id of p, given on first sight; -1 when the table is full.
    int id_of(const void* p);
    // -1 when p was never seen.
    int find(const void* p) const;
    const void* at(int id) const { return id >= 0 && id < n_ ? ptrs_[id] : nullptr; }
    int count() const { return n_; }
    void reset() { n_ = 0; }

private:
    const void* ptrs_[kMax] = {};
    int n_ = 0;
};

}  // namespace lynd
