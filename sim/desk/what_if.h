// What a run decided, read from its outputs: client moves, preferred ports
// and broadcast ports (path states come from the daemon's decisions); and
// how two runs' decisions differ.
#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "sim/desk/trace_reader.h"

namespace lynd {

struct Decision {
    int64_t at_ms;
    std::string what;     // "move", "preferred", "broadcast", "path"
    std::string subject;  // client MAC, bridge, file or path
    std::string value;    // port, ifindex, port or state
    bool operator<(const Decision& o) const;
    bool operator==(const Decision& o) const;
};

// One output record's decision, if it is one.
bool decision_of(int64_t at_ms, const std::string& record, Decision* out);
std::vector<Decision> decisions_of(const std::vector<std::pair<int64_t, std::string>>& outputs);
// The differences as a timeline and the totals of each run.
std::string what_if_report(const std::vector<Decision>& base, const std::vector<Decision>& other, int64_t end_ms);

}  // namespace lynd
