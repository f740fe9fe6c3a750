// ubusd goes away and comes back while the daemon runs on a simulated node:
// events before, during and after, the retry times, the reload once back.
#include <string>

#include <gtest/gtest.h>

#include "sim/sim_node.h"
#include "tests/scenario_text.h"

namespace {

const char* const kNode = R"("duration": 60, "args": ["-l", "3"],
    "config": {"enable": true, "bridges": {"br-lan": {"loop_avoidance": true}},
               "interfaces": {"ath12": {"type": "5g", "path": true, "nonrelay": true}, "ath1": {"type": "5g"}}},
    "node": {"uci": {"sysmode.sysmode.mode": "repeater"},
             "tools": {"iwpriv wifi0 dbdc_enable 0": "", "iwpriv wifi0 dbdc_enable 1": ""},
             "interfaces": [{"name": "ath12", "ifindex": 12}, {"name": "ath1", "ifindex": 21}],
             "bridges": [{"name": "br-lan", "ports": ["ath12", "ath1"]}]},
    "links": {"ath12": {"txrate": 866, "rxrate": 780}},)";

// One letter per expectation, P or F, in the scenario's order.
std::string verdicts(const std::string& timeline_and_expect) {
    lynd::Scenario sc;
    std::string error;
    if (!parse(std::string("{") + kNode + timeline_and_expect + "}", &sc, &error))
        return "parse: " + error;
    lynd::SimNode node(sc);
    lynd::RunOutcome o = run_kept(node);
    std::string v;
    for (const auto& r : o.results)
        v += r.passed ? "P" : "F";
    return v;
}

// Tries at 1, 2, 4 and then every 8 seconds: lost at 10, tried at 11, 13,
// 17, 25, 33 and 41, so ubusd back at 34 is found at 41. An expectation at
// N is judged before what falls due at N.
TEST(BusRestart, TheRetryDelayDoublesUpToEightSeconds) {
    std::string v = verdicts(R"(
        "timeline": [{"at": 10, "bus": "down"}, {"at": 34, "bus": "up"}],
        "expect": [{"at": 41, "log_contains": "] ubus connection is back", "count": 0},
                   {"at": 42, "log_contains": "] ubus connection is back", "count": 1},
                   {"log_contains": "] ubus connection lost, reconnecting", "count": 1}])");
    EXPECT_EQ("PPP", v);
}

// A second loss starts again from the first delay.
TEST(BusRestart, EachLossStartsFromTheFirstDelay) {
    std::string v = verdicts(R"(
        "timeline": [{"at": 10, "bus": "down"}, {"at": 10, "bus": "up"},
                     {"at": 30, "bus": "down"}, {"at": 30, "bus": "up"}],
        "expect": [{"at": 11, "log_contains": "] ubus connection is back", "count": 0},
                   {"at": 12, "log_contains": "] ubus connection is back", "count": 1},
                   {"at": 31, "log_contains": "] ubus connection is back", "count": 1},
                   {"at": 32, "log_contains": "] ubus connection is back", "count": 2},
                   {"log_contains": "] ubus connection lost, reconnecting", "count": 2}])");
    EXPECT_EQ("PPPPP", v);
}

// What the missed events would have changed is read again: traffic
// separation loads at start and once more when the bus is back.
TEST(BusRestart, TrafficSeparationIsReloadedOnceBack) {
    std::string v = verdicts(R"(
        "timeline": [{"at": 10, "bus": "down"}, {"at": 12, "bus": "up"}],
        "expect": [{"at": 9, "log_contains": "exit TS mode", "count": 1},
                   {"at": 14, "log_contains": "exit TS mode", "count": 2}])");
    EXPECT_EQ("PP", v);
}

// The counters on the bus count the reconnect and the reload it brings, and
// neither resets them.
TEST(BusRestart, CountersCountTheReconnectAndSurviveItAndAReload) {
    std::string v = verdicts(R"(
        "timeline": [{"at": 3, "ubus": "lynd.link_state", "data": {"link_state": 0}},
                     {"at": 5, "ubus": "lynd.traffic_separation", "data": {}},
                     {"at": 8, "ubus_call": "lynd", "method": "counters", "data": {}},
                     {"at": 10, "bus": "down"}, {"at": 12, "bus": "up"},
                     {"at": 20, "ubus_call": "lynd", "method": "counters", "data": {}},
                     {"at": 22, "netlink": {"raw_hex": "0102"}},
                     {"at": 30, "ubus_call": "lynd", "method": "counters", "data": {}}],
        "expect": [{"at": 8, "ubus_reply": "counters", "path": "bus_reconnects", "equals": 0},
                   {"at": 8, "ubus_reply": "counters", "path": "events.ts", "equals": 1},
                   {"at": 8, "ubus_reply": "counters", "path": "events.startup", "equals": 1},
                   {"at": 21, "ubus_reply": "counters", "path": "bus_reconnects", "equals": 1},
                   {"at": 21, "ubus_reply": "counters", "path": "events.ts", "equals": 2},
                   {"at": 21, "ubus_reply": "counters", "path": "events.link_state", "equals": 1},
                   {"at": 21, "ubus_reply": "counters", "path": "moves", "equals": 0},
                   {"at": 31, "ubus_reply": "counters", "path": "malformed_datagrams", "equals": 1}])");
    EXPECT_EQ("PPPPPPPP", v);
}

}  // namespace
