// Builds the view of each period run from the daemon's bus answers and
// the simulated bridge.
#pragma once
#include <cstddef>
#include <cstdint>

#include "sim/sim_node.h"
#include "sim/sweep/sweep_view.h"

namespace lynd {

class SweepObserver {
public:
    SweepObserver(SimNode* node, const std::vector<std::string>& bridges) : node_(node), bridges_(bridges) {}
    // Around one period run.
    void before_run(size_t allocations);
    PeriodView after_run(size_t allocations);

private:
    bool ask(const char* method, std::string* reply);
    bool read_answers(PeriodView* v);
    void read_decisions(const std::string& reply, PeriodView* v);
    void read_bridge(PeriodView* v);
    void read_entries(const SimBridgeState& b, PeriodView* v);
    std::vector<SweepEntry> writes_since(size_t from, bool* flushed) const;

    SimNode* node_;
    std::vector<std::string> bridges_;
    bool flushed_between_ = false;
    size_t calls_seen_ = 0;
    size_t calls_at_start_ = 0;
    size_t allocations_at_start_ = 0;
    std::vector<SweepEntry> between_;
    uint64_t last_seq_ = 0;
    uint64_t last_moves_ = 0;
};

}  // namespace lynd
