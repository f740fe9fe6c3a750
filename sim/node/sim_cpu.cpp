#include "sim/node/sim_cpu.h"

#include <cinttypes>
#include <cstdio>

namespace lynd {

namespace {

constexpr int64_t kTicksPerSecond = 100;
// Counters as after some uptime, so the first sample is not all zeros.
constexpr uint64_t kBootBusy = 12000;
constexpr uint64_t kBootIdle = 88000;

}  // namespace

size_t SimCpu::proc_stat(int64_t now_ms, char* buf, size_t size) const {
    // Busy ticks grow by each figure over the stretch it holds, in ms * percent.
    uint64_t busy_ms_pct = 0;
    for (size_t i = 0; i < points_.size() && points_[i].at_ms < now_ms; i++) {
        int64_t end = i + 1 < points_.size() && points_[i + 1].at_ms < now_ms ? points_[i + 1].at_ms : now_ms;
        busy_ms_pct += static_cast<uint64_t>(end - points_[i].at_ms) * points_[i].percent;
    }
    uint64_t total = static_cast<uint64_t>(now_ms) * kTicksPerSecond / 1000;
    uint64_t busy = busy_ms_pct * kTicksPerSecond / 1000 / 100;
    if (busy > total)
        busy = total;
    int n = std::snprintf(buf, size,
                          "cpu  %" PRIu64 " 0 0 %" PRIu64 " 0 0 0 0 0 0\ncpu0 %" PRIu64 " 0 0 %" PRIu64
                          " 0 0 0 0 0 0\n",
                          kBootBusy + busy, kBootIdle + total - busy, kBootBusy + busy, kBootIdle + total - busy);
    if (n < 0 || size == 0)
        return 0;
    return static_cast<size_t>(n) < size ? static_cast<size_t>(n) : size - 1;
}

}  // namespace lynd
