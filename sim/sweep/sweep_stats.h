// The figures an operator asks of a sweep, gathered from the views of one
// run: how long clients stay on a broken path, how often they move and
// come back, how often the preferred port changes, whether the timer runs.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "sim/sweep/sweep_view.h"

namespace lynd {

struct SweepStats {
    bool guard = false;
    double hours = 0;
    double client_hours = 0;
    uint64_t moves = 0;
    uint64_t returns = 0;  // A to B and back to A within 5 minutes
    uint64_t steering_returns = 0;  // of which the way back was no evacuation
    uint64_t preferred_changes = 0;
    uint64_t runs = 0;
    // Periods from a path turning ABNORMAL or UNLINK to its last client
    // leaving it.
    std::vector<int64_t> evacuation_periods;
};

class SweepStatsBuilder {
public:
    explicit SweepStatsBuilder(const SweepFacts& f);
    void add(const PeriodView& v);
    SweepStats finish(int64_t end_ms);

private:
    struct LastMove {
        int64_t at_s;
        std::string from;
        std::string to;
    };
    void add_moves(const PeriodView& v);
    void add_evacuations(const PeriodView& v);

    SweepFacts facts_;
    SweepStats stats_;
    int64_t last_ms_ = 0;
    std::map<std::string, int64_t> bad_since_;  // path -> when it turned bad, ms
    std::map<std::string, LastMove> last_move_;
    std::map<std::string, size_t> previous_clients_;  // path -> clients at the previous view
};

}  // namespace lynd
