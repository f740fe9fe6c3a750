// The timeline's bus calls and their replies as one JSON document, for a
// look after a run (`lynd-sim run --out DIR`).
#pragma once
#include <string>
#include <vector>

#include "sim/sim_node.h"

namespace lynd {

// "[]" when there were none.
std::string bus_calls_json(const std::vector<BusCallRecord>& calls);

}  // namespace lynd
