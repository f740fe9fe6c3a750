// What a run decided, read from its outputs: client moves, preferred ports
// and broadcast ports (path states come from the daemon's decisions); and
// how two runs' decisions differ.
#pragma once
#include <cstdint>
#include <map>
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

// A run's decisions as its outputs come: only changes of what its outputs
// decide, and every path state it tells; at most a bound of them all.
class DecisionLog {
public:
    void output(int64_t at_ms, const char* kind, const std::string& record);
    void state(const Decision& d);
    // The outputs' decisions, then the states.
    std::vector<Decision> all() const;
    size_t dropped() const { return dropped_; }

private:
    bool room();

    std::vector<Decision> outputs_;
    std::vector<Decision> states_;
    std::map<std::pair<std::string, std::string>, std::string> last_;
    size_t dropped_ = 0;
};
// The differences as a timeline and the totals of each run.
std::string what_if_report(const std::vector<Decision>& base, const std::vector<Decision>& other, int64_t end_ms);

}  // namespace lynd
