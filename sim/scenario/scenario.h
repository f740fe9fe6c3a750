// A scenario: the daemon's configuration and command line, the simulated
// node, a timeline of events and the expectations a run must meet.
#pragma once
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "sim/node/sim_cpu.h"
#include "sim/node/sim_bridge.h"
#include "sim/node/sim_clients.h"
#include "sim/node/sim_host.h"
#include "sim/node/wlan_platform_sim.h"

namespace lynd {

struct ScenarioTool {
    std::string cmdline;
    std::string output;
    int status = 0;
    SimToolMode mode = SimToolMode::ANSWERS;
};

struct ScenarioBridge {
    std::string name;
    bool active = true;
    std::vector<std::string> ports;
};

// CLIENT: kept by the client model; UBUS_CALL: a method call on an object;
// FILE: a file of the node is written anew (name its path, data its content);
// SQUAT: an obstacle put in the way of a state file (or taken away);
// NETLINK: a bridge message; KERNEL_LINK: the kernel's link message.
enum class TimelineKind { UBUS, NETLINK, STATION_EXPIRED, LINK, UCI, BUS, CLIENT, UBUS_CALL, FILE, SQUAT, KERNEL_LINK };

struct TimelineEntry {
    int64_t at_ms = 0;
    TimelineKind kind = TimelineKind::UBUS;
    std::string name;   // ubus event name, or the interface that lost a station or changes its link
    std::string data;   // ubus payload, link fields or UCI values (JSON text), the raw netlink
                        // datagram, or the expired station's 6 bytes (none: an unnamed one)
    std::string method;  // of a ubus call
    uint32_t from = 0;   // the netlink sender's port id, 0 for the kernel
    std::string label;   // a datagram given by fields, in words; empty: worded from its bytes
    std::string detail;  // all of its fields
};

enum class ExpectKind {
    LOG_CONTAINS,
    LOG_ABSENT,
    EXIT,
    CALL,
    FILE_EQUALS,
    RUN,
    CLIENT_PATH,
    CLIENT_MOVES,
    BRIDGE_STATE,  // text: bridge, port: one port or none, settings
    WDS_DELETED,   // text: MAC, equals: interface or any
    PATH_STATE,    // settings: path name -> state name
    PREFERRED,     // equals: port name, "" for none
    SAMPLES,       // settings: path name -> samples held
    POOL,          // value: client records in use
    UBUS_REPLY,    // text: method; port: JSON path in the reply; equals: JSON value; value: status or -1
    STEERING,      // value: steering actions the node saw
};

struct Expectation {
    int64_t at_ms = -1;  // -1: at the end of the run
    ExpectKind kind = ExpectKind::LOG_CONTAINS;
    std::string text;    // log text, bridge call, tool command line, file path, or client MAC
    std::string equals;  // file content, or the client's path
    int value = 0;       // exit status
    int count = -1;      // how many log lines, calls, runs or moves; -1: at least one
    int64_t from_ms = 0;  // moves or calls counted from here
    int64_t to_ms = -1;   // up to here; -1: the end of the run
    std::string port;
    std::vector<std::pair<std::string, std::string>> settings;  // name -> expected value, as text
    bool absent = false;  // a file that must not exist
    int writes = -1;      // how often a file was written; -1: not asked
    bool json = false;    // a file that must hold one JSON document
};

struct Scenario {
    std::string name;
    std::string description;  // what the scenario shows, printed by a run
    int64_t duration_s = 60;
    int64_t seed = 1;
    bool has_config = false;
    std::string config_text;
    std::vector<std::string> args;
    std::map<std::string, std::string> uci;
    std::vector<ScenarioTool> tools;
    std::vector<SimInterface> interfaces;
    std::vector<ScenarioBridge> bridges;
    std::map<std::string, int> bridge_failures;  // library call -> its result
    std::vector<SimFailure> failure_rules;        // calls failing for a port or a span of time
    std::map<std::string, std::string> files;    // path -> raw content; wins over config
    std::vector<CpuPoint> cpu;
    // node.trace_fs: the room of the filesystem the daemon's traces go to.
    int64_t fs_avail = int64_t{1} << 30;
    int64_t fs_total = int64_t{2} << 30;
    std::map<std::string, SimLink> links;
    std::map<std::string, std::vector<SimStation>> stations;
    std::vector<SimClient> clients;
    SimHcModel hc_model;  // node.hc_table, and the configuration's paths
    std::vector<int> netlink_squat;  // protocols whose pid port another process holds
    std::vector<std::pair<std::string, int>> file_squats;  // state file -> errno its writes meet
    std::vector<TimelineEntry> timeline;
    std::vector<Expectation> expect;
};

// Pure. False with a message naming the first problem.
bool scenario_parse(const char* text, size_t len, Scenario* out, std::string* error);

// A readable summary of one expectation, for reports.
std::string describe(const Expectation& e);

}  // namespace lynd
