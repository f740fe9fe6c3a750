// What a run prints: the short report of `run` and the line of `check`.
#pragma once
#include <cstdio>

#include "sim/scenario/scenario.h"
#include "sim/sim_node.h"

namespace lynd {

void print_report(std::FILE* out, const Scenario& sc, const RunOutcome& o, SimNode& node);
// "PASS name" or "FAIL name: what failed"; true when it passed.
bool print_check_line(std::FILE* out, const Scenario& sc, const RunOutcome& o);

}  // namespace lynd
