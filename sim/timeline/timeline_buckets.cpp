#include "sim/timeline/timeline_buckets.h"

#include <algorithm>
#include <cmath>

#include "sim/timeline/timeline_draw.h"

namespace lynd {

namespace {

size_t index_of(double t, double size, size_t n) {
    if (!std::isfinite(t) || t <= 0 || n == 0)
        return 0;
    return std::min(static_cast<size_t>(t / size), n - 1);
}

void add_path(std::vector<Bucket>& b, size_t lane, const TracePath& p, double size) {
    for (size_t k = 0; k < p.states.size(); k++) {
        const TraceStateSpan& s = p.states[k];
        int st = s.state >= 0 && s.state < 6 ? s.state : 0;
        if (k > 0)
            b[index_of(s.from, size, b.size())].paths[lane].state_changes++;
        for (size_t i = index_of(s.from, size, b.size()); i < b.size() && b[i].from < s.to; i++)
            b[i].paths[lane].state_secs[st] += std::max(0.0, std::min(s.to, b[i].to) - std::max(s.from, b[i].from));
    }
    for (const auto& r : rate_series(p)) {
        PathBucket& pb = b[index_of(r.first, size, b.size())].paths[lane];
        double v = std::isfinite(r.second) ? r.second : 0;
        pb.rate_min = pb.samples == 0 ? v : std::min(pb.rate_min, v);
        pb.rate_max = pb.samples == 0 ? v : std::max(pb.rate_max, v);
        pb.rate_sum += v;
        pb.samples++;
    }
    for (const auto& u : util_series(p)) {
        double v = std::isfinite(u.second) ? u.second : 0;
        b[index_of(u.first, size, b.size())].paths[lane].util_sum += v;
    }
}

}  // namespace

double bucket_seconds(double duration) {
    const double sizes[] = {60, 120, 300, 600, 900, 1800, 3600, 7200, 10800, 21600, 43200, 86400};
    for (double s : sizes)
        if (duration / s <= kMaxBuckets)
            return s;
    return std::max(86400.0, std::ceil(duration / kMaxBuckets));
}

std::vector<Bucket> make_buckets(const TimelineTrace& tr, double size) {
    double duration = std::isfinite(tr.duration) && tr.duration > 0 ? tr.duration : 0;
    size_t n = std::max<size_t>(1, static_cast<size_t>(std::ceil(duration / size)));
    std::vector<Bucket> b(n);
    for (size_t i = 0; i < n; i++) {
        b[i].from = static_cast<double>(i) * size;
        b[i].to = std::min(duration, b[i].from + size);
        b[i].paths.resize(tr.paths.size());
    }
    for (size_t lane = 0; lane < tr.paths.size(); lane++)
        add_path(b, lane, tr.paths[lane], size);
    for (const TraceCpuPoint& c : tr.cpu) {
        Bucket& x = b[index_of(c.t, size, n)];
        x.cpu_max = std::max(x.cpu_max, std::isfinite(c.percent) ? c.percent : 0);
    }
    for (const TraceMove& m : tr.moves) {
        Bucket& x = b[index_of(m.t, size, n)];
        x.moves++;
        x.reasons[m.reason]++;
    }
    for (const TraceTick& t : tr.ticks)
        b[index_of(t.t, size, n)].events++;
    for (const TraceMarker& m : tr.markers) {
        int k = m.kind == "bcast" ? 0 : 1;
        Bucket& x = b[index_of(m.t, size, n)];
        x.port_changes[k]++;
        x.last_port[k] = m.port.empty() ? "none" : m.port;
    }
    return b;
}

}  // namespace lynd
