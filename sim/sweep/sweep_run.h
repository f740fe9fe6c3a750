// One scenario document through the real daemon on a simulated node, with
// the invariants checked after every period run.
#pragma once
#include <cstddef>
#include <vector>

#include <json-c/json.h>

#include "sim/sweep/sweep_stats.h"
#include "sim/sweep/sweep_view.h"

namespace lynd {

// Heap allocations made so far by the daemon's code; null: not counted.
using SweepAllocCounter = size_t (*)();

struct SweepOutcome {
    std::vector<SweepViolation> violations;  // the first of each invariant
    std::vector<size_t> counts;              // how often each was broken, in step
    SweepStats stats;
    std::string error;  // the document did not parse
};

SweepOutcome sweep_run(json_object* doc, SweepAllocCounter count);

}  // namespace lynd
