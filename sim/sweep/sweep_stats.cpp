#include "sim/sweep/sweep_stats.h"

#include "sim/sweep/sweep_invariants.h"

#include <algorithm>

namespace lynd {

namespace {

constexpr int64_t kReturnWindowS = 300;

bool bad(const std::string& state) { return state == "ABNORMAL" || state == "UNLINK"; }

size_t clients_on(const PeriodView& v, const std::string& path) {
    return static_cast<size_t>(
        std::count_if(v.clients.begin(), v.clients.end(), [&](const SweepClientView& c) { return sweep_base_port(c.path) == path; }));
}

}  // namespace

SweepStatsBuilder::SweepStatsBuilder(const SweepFacts& f) : facts_(f) { stats_.guard = f.guard; }

void SweepStatsBuilder::add(const PeriodView& v) {
    stats_.runs++;
    if (v.answered) {
        stats_.client_hours += static_cast<double>(v.clients.size()) * static_cast<double>(v.at_ms - last_ms_) / 3.6e6;
        add_moves(v);
        add_evacuations(v);
    }
    last_ms_ = v.at_ms;
}

void SweepStatsBuilder::add_moves(const PeriodView& v) {
    for (const auto& d : v.decisions) {
        if (d.kind == "preferred_port")
            stats_.preferred_changes++;
        if (d.kind != "client")
            continue;
        stats_.moves++;
        auto it = last_move_.find(d.subject);
        if (it != last_move_.end() && it->second.from == d.to && it->second.to == d.from &&
            d.at_s - it->second.at_s <= kReturnWindowS) {
            stats_.returns++;
            stats_.steering_returns += d.reason != "path weak" && d.reason != "path abnormal" && d.reason != "path unlinked";
        }
        last_move_[d.subject] = LastMove{d.at_s, d.from, d.to};
    }
}

// A path that turns bad with clients on it starts a clock (in the run
// that found it bad); its last client leaving stops it. A path that
// recovers first drops its clock.
void SweepStatsBuilder::add_evacuations(const PeriodView& v) {
    for (const auto& p : v.paths) {
        auto it = bad_since_.find(p.name);
        size_t now = clients_on(v, p.name);
        if (!bad(p.state)) {
            if (it != bad_since_.end())
                bad_since_.erase(it);
        } else if (it == bad_since_.end()) {
            bool had = previous_clients_[p.name] > 0;
            if (had && now == 0)
                stats_.evacuation_periods.push_back(0);
            bad_since_[p.name] = had && now > 0 ? v.at_ms : -1;
        } else if (it->second >= 0 && now == 0) {
            stats_.evacuation_periods.push_back((v.at_ms - it->second + facts_.period_ms / 2) / facts_.period_ms);
            it->second = -1;
        }
        previous_clients_[p.name] = now;
    }
}

SweepStats SweepStatsBuilder::finish(int64_t end_ms) {
    stats_.hours = static_cast<double>(end_ms) / 3.6e6;
    return stats_;
}

}  // namespace lynd
