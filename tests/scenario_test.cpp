#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "sim/node/netlink_craft.h"
#include "sim/report.h"
#include "sim/scenario/scenario.h"
#include "sim/sim_node.h"
#include "sim/node/state_dir.h"
#include "files_under.h"
#include "scenario_text.h"
#include "sim_fixture.h"
#include "temp_dir.h"

namespace {

using lynd::Scenario;


TEST(ScenarioParse, DefaultsAndNode) {
    Scenario sc = parsed(R"({"node": {"uci": {"a.b.c": "x", "a.b.n": 5, "a.b.t": true},
        "tools": {"iwpriv wifi0 dbdc_enable 0": "", "wpa_cli x": {"output": "OK", "status": 2}},
        "interfaces": [{"name": "ath12", "ifindex": 12, "mac": "02:00:00:00:01:12"}],
        "bridges": [{"name": "br-lan", "active": false, "ports": ["ath12"]}]},
        "expect": [{"run": "wpa_cli x", "count": 2}]})");
    EXPECT_EQ(60, sc.duration_s);
    EXPECT_FALSE(sc.has_config);
    EXPECT_EQ("5", sc.uci["a.b.n"]);
    EXPECT_EQ("true", sc.uci["a.b.t"]);
    ASSERT_EQ(2u, sc.tools.size());
    EXPECT_EQ(2, sc.tools[1].status);
    EXPECT_EQ(0x12, sc.interfaces[0].mac[5]);
    EXPECT_FALSE(sc.bridges[0].active);
    ASSERT_EQ(1u, sc.expect.size());
    EXPECT_EQ(lynd::ExpectKind::RUN, sc.expect[0].kind);
    EXPECT_EQ(-1, sc.expect[0].at_ms);
    EXPECT_EQ("run \"wpa_cli x\" count 2", lynd::describe(sc.expect[0]));
}

TEST(ScenarioParse, BadInputIsNamed) {
    const std::pair<const char*, const char*> cases[] = {
        {"[1]", "not a JSON object"},
        {R"({"duration": -1})", "\"duration\""},
        {R"({"args": ["-l", 4]})", "\"args\" must be strings"},
        {R"({"timeline": [{"at": 5, "reboot": true}]})", "unknown kind"},
        {R"({"duration": 10, "timeline": [{"at": 50, "ubus": "lynd.debug"}]})", "from 0 to 10"},
        {R"({"timeline": [{"at": 1, "station_expired": "ath9"}]})", "does not have: ath9"},
        {R"({"node": {"interfaces": [{"name": "a-name-of-16-chr", "ifindex": 3}]}})", "is too long"},
        {R"({"node": {"interfaces": [{"name": "a", "ifindex": 3, "mac": "02:00"}]}})", "bad \"mac\""},
        {R"({"expect": [{"exit": 0, "at": 3}]})", "has no \"at\""},
        {R"({"expect": [{"file": "/tmp/x"}]})", "needs \"equals\""},
        {R"({"expect": [{"uci_write": "a.b.c"}]})", "unknown kind"},
        {R"({"node": {"uci": {"a.b.c": {"x": 1}}}})", "string, number or boolean"},
        {R"({"node": {"tools": {"apstats": 3}}})", "needs an output string"},
        {R"({"node": {"tools": {"": ""}}})", "command line must have"},
        {R"({"node": {"interfaces": [{"name": "a", "ifindex": 0}]}})", "\"ifindex\""},
        {R"({"node": {"files": {"etc/lynd.json": ""}}})", "absolute path"},
        {R"({"node": {"files": {"/tmp/../etc/passwd": ""}}})", "absolute path"},
        {R"({"node": {"files": {"/tmp/x": 3}}})", "content as a string"},
    };
    for (const auto& c : cases) {
        Scenario sc;
        std::string error;
        EXPECT_FALSE(parse(c.first, &sc, &error)) << c.first;
        EXPECT_NE(std::string::npos, error.find(c.second)) << c.first << " -> " << error;
    }
}

// A repeated event, or list of events, lands at each round's time and no later than "until".
TEST(ScenarioParse, RepeatUnrollsOnTheTimeline) {
    Scenario sc = parsed(R"({"duration": 100, "timeline": [
        {"at": 10, "repeat": {"every": 30}, "ubus": "lynd.debug"},
        {"at": 5, "repeat": {"every": 40, "until": 60},
         "events": [{"after": 0, "bus": "down"}, {"after": 20, "bus": "up"}]}]})");
    std::vector<std::pair<int64_t, std::string>> got;
    for (const auto& e : sc.timeline)
        got.emplace_back(e.at_ms / 1000, e.name);
    const std::vector<std::pair<int64_t, std::string>> want = {
        {10, "lynd.debug"}, {40, "lynd.debug"}, {70, "lynd.debug"}, {100, "lynd.debug"},
        {5, "down"},        {25, "up"},         {45, "down"}};
    EXPECT_EQ(want, got);

    const std::pair<const char*, const char*> bad[] = {
        {R"({"timeline": [{"at": 1, "repeat": {"every": 0}, "bus": "up"}]})", "\"every\""},
        {R"({"timeline": [{"at": 1, "repeat": {"every": 5, "times": 2}, "bus": "up"}]})", "unknown key \"times\""},
        {R"({"timeline": [{"at": 9, "repeat": {"every": 5, "until": 3}, "bus": "up"}]})", "\"until\""},
        {R"({"timeline": [{"at": 1, "repeat": {"every": 5}, "events": [{"bus": "up"}]}]})", "needs an \"after\""},
        {R"({"timeline": [{"at": 1, "repeat": {"every": 5}, "events": [{"after": 5, "bus": "up"}]}]})", "from 0 to 4"},
        {R"({"timeline": [{"at": 1, "repeat": {"every": 5}, "bus": "up", "events": []}]})", "unknown key \"bus\""},
        {R"({"timeline": [{"at": 1, "repeat": {"every": 5}, "bus": "sideways"}]})", "\"bus\" is"},
        {R"({"duration": 604800, "timeline": [{"at": 0, "repeat": {"every": 1}, "bus": "up"}]})", "more than 100000"},
    };
    for (const auto& c : bad) {
        Scenario sc2;
        std::string error;
        EXPECT_FALSE(parse(c.first, &sc2, &error)) << c.first;
        EXPECT_NE(std::string::npos, error.find(c.second)) << c.first << " -> " << error;
    }
}

// A newcomer reads what a bundled scenario shows before its log scrolls by.
TEST(BundledScenarios, EachSaysWhatItShows) {
    std::vector<std::string> paths;
    files_under(LYND_SOURCE_DIR "/scenarios", {".json"}, &paths);
    EXPECT_GT(paths.size(), 20u);
    for (const auto& path : paths) {
        Scenario sc;
        std::string error;
        ASSERT_TRUE(parse(slurp(path), &sc, &error)) << path << ": " << error;
        EXPECT_GE(sc.description.size(), 20u) << path << " has no \"description\"";
    }
}

TEST(ScenarioParse, ClientsJoinAndLeaveOnTheTimeline) {
    Scenario sc = parsed(R"({"duration": 100, "clients": [{"mac": "02:00:00:00:0a:01", "port": "ath1", "mbps": 5}],
        "timeline": [{"at": 10, "client_join": {"mac": "02:00:00:00:0a:02", "port": "ath0", "path": "ath02"}},
                     {"at": 20, "client_leave": "02:00:00:00:0a:02"},
                     {"at": 30, "client_leave": "02:00:00:00:0a:01"}]})");
    ASSERT_EQ(2u, sc.clients.size());
    EXPECT_EQ(30000, sc.clients[0].leave_ms);
    EXPECT_EQ(10000, sc.clients[1].join_ms);
    EXPECT_EQ(20000, sc.clients[1].leave_ms);
    EXPECT_EQ("ath02", sc.clients[1].path);
    std::string error;
    EXPECT_FALSE(parse(R"({"timeline": [{"at": 5, "client_leave": "02:00:00:00:0a:09"}]})", &sc, &error));
}

TEST(ScenarioParse, PathExpectationsNameTheirWantedValue) {
    Scenario sc = parsed(R"({"duration": 10, "expect": [{"at": 1, "preferred": "ath12"}, {"pool": 3},
        {"at": 2, "samples": {"ath12": 5}}, {"path_state": {"ath02": "WEAKLINK"}}]})");
    ASSERT_EQ(4u, sc.expect.size());
    EXPECT_EQ("preferred \"ath12\" at 1 s", lynd::describe(sc.expect[0]));
    EXPECT_EQ("pool 3", lynd::describe(sc.expect[1]));
    EXPECT_EQ("samples ath12=5 at 2 s", lynd::describe(sc.expect[2]));
    EXPECT_EQ("path_state ath02=WEAKLINK", lynd::describe(sc.expect[3]));
}

TEST(ScenarioParse, TheBridgesOwnDoingsAndTheConfiguredPaths) {
    Scenario sc = parsed(R"({"config": {"interfaces": {"eth1": {"path": false}, "ath12": {"path": true},
                                                    "ath02": {"path": 1}, "ath1": {}}},
        "node": {"hc_table": {"own_entry": false, "announce_refills": false}}})");
    EXPECT_FALSE(sc.hc_model.own_entry);
    EXPECT_TRUE(sc.hc_model.refill);
    EXPECT_FALSE(sc.hc_model.announce_refills);
    EXPECT_EQ((std::vector<std::string>{"ath12", "ath02"}), sc.hc_model.paths);
    // The file the daemon reads wins over "config".
    sc = parsed(R"({"config": {"interfaces": {"ath12": {"path": true}}},
        "node": {"files": {"/etc/lynd.json": "{\"interfaces\": {\"eth1\": {\"path\": true}}}"}}})");
    EXPECT_EQ(std::vector<std::string>{"eth1"}, sc.hc_model.paths);
    std::string error;
    EXPECT_FALSE(parse(R"({"node": {"hc_table": {"refil": false}}})", &sc, &error));
    EXPECT_NE(std::string::npos, error.find("unknown key \"refil\"")) << error;
    EXPECT_FALSE(parse(R"({"links": {"ath12": {"stalled": 1}}})", &sc, &error));
}

TEST(NetlinkCraft, AnAnnouncedEntryIsReadOnlyFromAWholeTypeThreeMessage) {
    hc_entry e{};
    e.mac[5] = 0xb1;
    e.dst_port = 12;
    hc_entry got{};
    ASSERT_TRUE(lynd::announced_hc_entry(lynd::craft_bridge_message(3, &e, sizeof e), &got));
    EXPECT_EQ(0xb1, got.mac[5]);
    EXPECT_EQ(12u, got.dst_port);
    EXPECT_FALSE(lynd::announced_hc_entry(lynd::craft_bridge_message(4, &e, sizeof e), &got));
    EXPECT_FALSE(lynd::announced_hc_entry(lynd::craft_bridge_message(3, &e, sizeof e - 1), &got));
    hc_entry zero{};
    EXPECT_FALSE(lynd::announced_hc_entry(lynd::craft_bridge_message(3, &zero, sizeof zero), &got));
    std::string lying = lynd::craft_bridge_message(3, &e, sizeof e);
    uint32_t len = static_cast<uint32_t>(lying.size() + 1);
    std::memcpy(&lying[0], &len, sizeof len);
    EXPECT_FALSE(lynd::announced_hc_entry(lying, &got));
    EXPECT_FALSE(lynd::announced_hc_entry(std::string(8, '\0'), &got));
}

// A client the timeline announces is one the bridge holds.
TEST(SimNodeRun, ATimelineAnnouncementFillsTheTable) {
    const uint8_t mac[6] = {0x02, 0, 0, 0, 0x0b, 0x01}, other[6] = {0x02, 0, 0, 0, 0x0b, 0x02};
    Scenario sc = parsed(R"({"duration": 20, "config": {"enable": true},
        "node": {"interfaces": [{"name": "ath12", "ifindex": 12}, {"name": "ath0", "ifindex": 20}],
                 "bridges": [{"name": "br-lan", "ports": ["ath12", "ath0"]}]},
        "timeline": [{"at": 5, "netlink": {"hc_entry": [{"mac": "02:00:00:00:0b:01", "dst": "ath12", "src": "ath0"},
                                                        {"mac": "02:00:00:00:0b:02", "dst": 20, "src": 12}]}}]})");
    lynd::SimNode node(sc);
    run_kept(node);
    EXPECT_EQ("ath12", node.clients().path_of(mac));
    EXPECT_EQ("ath0", node.clients().path_of(other));
}

// Expectations must be able to fail, or a scenario proves nothing.
TEST(SimNodeRun, ExpectationsJudgeWhatHappened) {
    Scenario sc = parsed(R"({"duration": 30, "args": ["-l", "4"], "config": {"enable": true, "bridges": {"br0": {}}},
        "node": {"bridges": [{"name": "br0", "ports": []}]},
        "timeline": [{"at": 10, "ubus": "lynd.configure", "data": {"mode": "RE"}}],
        "expect": [{"at": 5, "call": "bridgeSetEventInfo br0 4242 3 25", "count": 1},
                   {"at": 15, "call": "bridgeSetEventInfo br0 4242 3 25", "count": 1},
                   {"log_contains": "never said"}, {"log_absent": "init done"},
                   {"file": "/etc/lynd.json", "equals": "{}"}, {"exit": 1},
                   {"run": "iwpriv wifi0 dbdc_enable 0", "count": 1}]})");
    lynd::SimNode node(sc);
    lynd::RunOutcome o = run_kept(node);
    EXPECT_EQ(0, o.exit_status);
    EXPECT_EQ(30000, o.virtual_ms);
    ASSERT_EQ(7u, o.results.size());
    std::string verdicts;
    for (const auto& r : o.results)
        verdicts += r.passed ? "P" : "F";
    EXPECT_EQ("PFFFFFP", verdicts);
    EXPECT_EQ(5u, o.failed());
}

// The node's files land below the chosen directory and nowhere else.
TEST(StateDir, PathsStayBelowTheDirectory) {
    EXPECT_EQ("out/tmp/hybr_broadcast_port", lynd::state_path("out", "/tmp/hybr_broadcast_port"));
    EXPECT_EQ("out/tmp/x", lynd::state_path("out", "//tmp/./x"));
    EXPECT_EQ("", lynd::state_path("out", "/tmp/../../etc/passwd"));
    EXPECT_EQ("", lynd::state_path("out", "/"));
}

TEST(StateDir, WritesTheNodesFilesAndRefusesAnEscape) {
    TempDir dir;
    const std::string out = dir.path + "/out";
    lynd::SimHost host;
    host.set_file("/tmp/hybr_broadcast_port", "ath02\n");
    std::string error;
    ASSERT_TRUE(lynd::write_state_dir(host, out, &error)) << error;
    EXPECT_EQ("ath02\n", slurp(out + "/tmp/hybr_broadcast_port"));

    host.set_file("/../escape", "x");
    EXPECT_FALSE(lynd::write_state_dir(host, out, &error));
    EXPECT_NE(std::string::npos, error.find("/../escape")) << error;
    std::remove((out + "/tmp/hybr_broadcast_port").c_str());
    rmdir((out + "/tmp").c_str());
    rmdir(out.c_str());
}

std::string report_of(const Scenario& sc) {
    lynd::SimNode node(sc);
    lynd::RunOutcome o = run_kept(node);
    char* text = nullptr;
    size_t len = 0;
    std::FILE* out = open_memstream(&text, &len);
    lynd::print_report(out, sc, o, node);
    for (const auto& line : node.host().console_lines())
        std::fprintf(out, "%s", line.c_str());
    std::fclose(out);
    std::string report(text, len);
    std::free(text);
    return report;
}

// Process-wide records left over from one run must not steer the next.
TEST(SimNodeRun, ARunRepeatedInOneProcessGivesTheSameReport) {
    for (const char* name : {"demo", "bus_and_netlink_events", "traffic_separation", "loop_avoidance", "ps_weak_5g"}) {
        Scenario sc = bundled(name);
        const std::string first = report_of(sc);
        EXPECT_EQ(first, report_of(sc)) << name;
        EXPECT_NE(std::string::npos, first.find("0 failed")) << first;
    }
}

}  // namespace
