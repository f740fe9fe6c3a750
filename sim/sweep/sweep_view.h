// What a sweep sees after each period run: the daemon's own answers
// (status, paths, clients, decisions, counters) and the simulated bridge.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace lynd {

// Names of paths are path interfaces: a VLAN interface PATH.VID is PATH.
struct SweepPathView {
    std::string name;
    std::string state;
};

struct SweepClientView {
    std::string mac;
    std::string path;
};

struct SweepDecision {
    int64_t at_s = 0;
    std::string kind;
    std::string subject;
    std::string from;
    std::string to;
    std::string reason;
};

// An hc entry in the bridge's table, or a write of one: client and the
// destination interface by name.
struct SweepEntry {
    std::string mac;
    std::string port;
};

struct PeriodView {
    int64_t at_ms = 0;
    bool answered = false;  // the bus answered every question
    std::vector<SweepPathView> paths;
    std::vector<SweepClientView> clients;
    std::vector<SweepDecision> decisions;  // made since the previous view
    bool decisions_lost = false;            // more than the ring holds
    uint64_t moves = 0;                     // the moves counter's growth since the previous view
    int pool_used = 0;
    int pool_size = 0;
    std::string preferred;                  // the bridge's, "" for none
    std::vector<SweepEntry> hc;             // the bridges' tables after the run
    std::vector<SweepEntry> writes;         // hc writes of this run
    std::vector<SweepEntry> writes_between;  // hc writes between the last answered view and this run
    bool flushed = false;                   // a table was flushed since the last answered view
    size_t allocations = 0;                 // by the daemon, in this run
};

// What the drawn configuration promises.
struct SweepFacts {
    std::vector<std::string> paths;  // configured path interfaces
    int64_t period_ms = 10000;
    int64_t duration_ms = 0;
    bool guard = false;
    int moves_per_hour = 0;
    int64_t guard_hold_ms = 0;  // the longest a flap-guard hold lasts
    std::vector<std::string> excluded;
    std::vector<std::pair<std::string, std::string>> pinned;  // MAC -> path interface
};

struct SweepViolation {
    std::string invariant;
    int64_t at_ms = 0;
    std::string what;
};

}  // namespace lynd
