// The daemon's counters on the bus: they survive a bus reconnect and a
// traffic-separation reload, and count what happened, by kind.
#include <string>

#include <gtest/gtest.h>

#include "core/counters.h"
#include "platform/seams.h"
#include "sim/sim_node.h"
#include "tests/scenario_text.h"

namespace {

const char* const kNode = R"("duration": 40, "args": ["-l", "1"],
    "config": {"enable": true, "bridges": {"br-lan": {"loop_avoidance": true}},
               "interfaces": {"ath12": {"type": "5g", "path": true, "nonrelay": true}, "ath1": {"type": "5g"}}},
    "node": {"uci": {"sysmode.sysmode.mode": "repeater"},
             "tools": {"iwpriv wifi0 dbdc_enable 0": "", "iwpriv wifi0 dbdc_enable 1": ""},
             "interfaces": [{"name": "ath12", "ifindex": 12}, {"name": "ath1", "ifindex": 21}],
             "bridges": [{"name": "br-lan", "ports": ["ath12", "ath1"]}]},
    "links": {"ath12": {"txrate": 866, "rxrate": 780}},)";

std::string verdicts(const std::string& timeline_and_expect) {
    lynd::Scenario sc;
    std::string error;
    if (!parse(std::string("{") + kNode + timeline_and_expect + "}", &sc, &error))
        return "parse: " + error;
    const lynd::Seams saved = lynd::installed_seams();
    lynd::SimNode node(sc);
    lynd::RunOutcome o = node.run("lynd", {});
    lynd::install_seams(saved);
    std::string v;
    for (const auto& r : o.results)
        v += r.passed ? "P" : "F";
    return v;
}

TEST(Counters, EventsAndReconnectsAreCountedAndSurviveAReconnectAndAReload) {
    std::string v = verdicts(R"(
        "timeline": [{"at": 3, "ubus": "lynd.link_state", "data": {"link_state": 0}},
                     {"at": 5, "ubus": "lynd.traffic_separation", "data": {}},
                     {"at": 8, "ubus_call": "lynd", "method": "counters", "data": {}},
                     {"at": 10, "bus": "down"}, {"at": 12, "bus": "up"},
                     {"at": 20, "ubus_call": "lynd", "method": "counters", "data": {}},
                     {"at": 20, "ubus_call": "lynd", "method": "status", "data": {}},
                     {"at": 22, "netlink": {"raw_hex": "0102"}},
                     {"at": 30, "ubus_call": "lynd", "method": "counters", "data": {}}],
        "expect": [{"at": 8, "ubus_reply": "counters", "path": "bus_reconnects", "equals": 0},
                   {"at": 8, "ubus_reply": "counters", "path": "events.ts", "equals": 1},
                   {"at": 8, "ubus_reply": "counters", "path": "events.startup", "equals": 1},
                   {"at": 21, "ubus_reply": "counters", "path": "bus_reconnects", "equals": 1},
                   {"at": 21, "ubus_reply": "counters", "path": "events.ts", "equals": 2},
                   {"at": 21, "ubus_reply": "counters", "path": "events.link_state", "equals": 1},
                   {"at": 21, "ubus_reply": "status", "path": "counters.bus_reconnects", "equals": 1},
                   {"at": 21, "ubus_reply": "status", "path": "counters.moves", "equals": 0},
                   {"at": 31, "ubus_reply": "counters", "path": "malformed_datagrams", "equals": 1}])");
    EXPECT_EQ("PPPPPPPPP", v);
}

TEST(Counters, MovesAreCountedByReasonAndEvacuationsApart) {
    lynd_counters_reset();
    lynd_count_move(MOVE_BETTER_PATH);
    lynd_count_move(MOVE_PATH_ABNORMAL);
    lynd_count_move(MOVE_PATH_UNLINKED);
    lynd_count_move(MOVE_REASON_COUNT);  // out of range: counted as a move only
    EXPECT_EQ(4u, g_counters.moves);
    EXPECT_EQ(2u, g_counters.evacuations);
    EXPECT_EQ(1u, g_counters.moves_by_reason[MOVE_BETTER_PATH]);
    lynd_count_state_change(COUNTER_STATES);  // out of range: ignored
    lynd_count_event(COUNTER_EVENT_TYPES);
    for (int i = 0; i < COUNTER_STATES; i++)
        EXPECT_EQ(0u, g_counters.state_changes[i] + g_counters.events[i]);
    EXPECT_EQ(-1, lynd_count_tool_run(-1));
    EXPECT_EQ(1u, g_counters.tool_run_failures);
    EXPECT_EQ(0, lynd_count_tool_run(0));
    EXPECT_EQ(1u, g_counters.tool_run_failures);
}

}  // namespace
