// The simulated CPU: occupancy figures over virtual time, read back as the
// counters of /proc/stat's first line (100 ticks a second).
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

namespace lynd {

struct CpuPoint {
    int64_t at_ms;
    uint32_t percent;  // 0..100 from at_ms on
};

class SimCpu {
public:
    // Points in time order; before the first one the CPU idles.
    void set_points(const std::vector<CpuPoint>& points) { points_ = points; }
    bool empty() const { return points_.empty(); }
    // The text of /proc/stat at now_ms into buf (at most size bytes); its length.
    size_t proc_stat(int64_t now_ms, char* buf, size_t size) const;

private:
    std::vector<CpuPoint> points_;
};

}  // namespace lynd
