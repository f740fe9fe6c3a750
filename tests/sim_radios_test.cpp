#include <string>

#include "bridge/host_stats.h"
#include "sim/scenario.h"
#include "sim/sim_cpu.h"
#include "sim/sim_node.h"
#include "sim/wlan_platform_sim.h"
#include "scenario_text.h"
#include "sim_fixture.h"

namespace {

using lynd::Scenario;

TEST(ScenarioRadios, LinksStationsCpuAndMesh) {
    Scenario sc;
    std::string error;
    ASSERT_TRUE(parse(R"({"duration": 120,
        "links": {"ath12": {"up": false, "peer": "02:00:00:00:09:12", "txrate": 866, "rssi": -62, "util": 20,
                            "tx_mbps": 8}},
        "stations": {"ath1": [{"mac": "02:00:00:00:0a:01", "txrate": 400, "idle": 7}]},
        "node": {"cpu": [{"at": 0, "percent": 10}, {"at": 60, "percent": 90}],
                 "mesh": {"controller": "02:00:00:00:00:aa", "eth_bh_if": "eth1"},
                 "tools": {"ubus call map get_bh_eth": "fixed"}},
        "timeline": [{"at": 30, "link": "ath12", "set": {"up": true, "rssi": -88}}]})",
                      &sc, &error))
        << error;
    const lynd::SimLink& l = sc.links["ath12"];
    EXPECT_FALSE(l.up);
    EXPECT_EQ(0x12, l.peer[5]);
    EXPECT_EQ(866, l.txrate);
    EXPECT_EQ(-95, l.noise);  // untouched fields keep their defaults
    ASSERT_EQ(1u, sc.stations["ath1"].size());
    EXPECT_EQ(7, sc.stations["ath1"][0].idle);
    ASSERT_EQ(2u, sc.cpu.size());
    EXPECT_EQ(60000, sc.cpu[1].at_ms);
    ASSERT_EQ(2u, sc.tools.size());  // the scenario's own get_bh_eth reply wins
    EXPECT_EQ("ubus call map meshd {\"action\":\"findcontroller\"}", sc.tools[1].cmdline);
    EXPECT_EQ("{\n\t\"ret\": 0,\n\t\"mac\": \"02:00:00:00:00:aa\"\n}\n", sc.tools[1].output);
    EXPECT_EQ("fixed", sc.tools[0].output);
    ASSERT_EQ(1u, sc.timeline.size());
    EXPECT_EQ(lynd::TimelineKind::LINK, sc.timeline[0].kind);
}

TEST(ScenarioRadios, BadRadiosAreNamed) {
    const std::pair<const char*, const char*> cases[] = {
        {R"({"links": {"ath12": {"rssi": -62, "snr": 3}}})", "unknown key \"snr\""},
        {R"({"links": {"ath12": {"rssi": -300}}})", "\"rssi\" must be a whole number"},
        {R"({"links": {"ath12": {"peer": "02:00"}}})", "\"peer\" must be a MAC"},
        {R"({"links": {"ath12": 5}})", "a link must be an object"},
        {R"({"stations": {"ath1": [{"txrate": 4}]}})", "needs a \"mac\""},
        {R"({"stations": {"ath1": {}}})", "must be an array"},
        {R"({"node": {"cpu": [{"at": 9, "percent": 1}, {"at": 3, "percent": 2}]}})", "time order"},
        {R"({"node": {"cpu": [{"at": 1, "percent": 101}]}})", "from 0 to 100"},
        {R"({"node": {"mesh": {"controller": "zz"}}})", "must be a MAC"},
        {R"({"timeline": [{"at": 1, "link": "ath12", "set": {"util": 250}}]})", "\"util\""},
        {R"({"timeline": [{"at": 1, "link": "ath12"}]})", "a link must be an object"},
    };
    for (const auto& c : cases) {
        Scenario sc;
        std::string error;
        EXPECT_FALSE(parse(c.first, &sc, &error)) << c.first;
        EXPECT_NE(std::string::npos, error.find(c.second)) << c.first << " -> " << error;
    }
}

class SimRadiosTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        lynd_cpu_sampler_reset();
        host.set_driver(&wlan);
        host.set_cpu(&cpu);
    }
    lynd::SimWlan wlan{&host, &loop};
    lynd::SimCpu cpu;
};

TEST_F(SimRadiosTest, CpuFiguresComeBackAsOccupancy) {
    cpu.set_points({{0, 20}, {10000, 50}, {20000, 100}});
    (void)lynd_calculate_cpu_occupy();
    loop.advance(10000);
    EXPECT_EQ(20u, lynd_calculate_cpu_occupy());
    loop.advance(5000);
    EXPECT_EQ(50u, lynd_calculate_cpu_occupy());
    loop.advance(10000);  // half at 50, half at 100
    EXPECT_EQ(75u, lynd_calculate_cpu_occupy());
}

TEST_F(SimRadiosTest, CountersGrowWithTheLinkLoad) {
    host.add_interface({"eth1", 3, {}});
    host.add_interface({"ath12", 12, {}});
    lynd::SimLink l;
    l.tx_bytes = 1000;
    l.tx_mbps = 8;
    l.rx_mbps = 1;
    wlan.set_link("ath12", l);
    loop.advance(10000);
    if_stat s{};
    ASSERT_EQ(1, lynd_get_if_stat("ath12", &s));
    EXPECT_EQ(1000u + 10u * 8u * 125000u, s.tx_bytes);
    EXPECT_EQ(10u * 125000u, s.rx_bytes);
    ASSERT_EQ(1, lynd_get_if_stat("eth1", &s));
    EXPECT_EQ(0u, s.tx_bytes);
    EXPECT_EQ(0, lynd_get_if_stat("ath02", &s));
}

TEST(SimNodeRadios, TimelineChangesALinkAndKeepsItsCounters) {
    Scenario sc;
    std::string error;
    ASSERT_TRUE(parse(R"({"duration": 20, "config": {"enable": true},
        "links": {"ath12": {"rssi": -60, "rx_mbps": 8}},
        "timeline": [{"at": 10, "link": "ath12", "set": {"rssi": -88, "rx_mbps": 0}},
                     {"at": 12, "link": "ath22", "set": {"up": false}}]})",
                      &sc, &error))
        << error;
    lynd::SimNode node(sc);
    node.run("lynd", {});
    const lynd::SimLink* l = node.wlan().link("ath12");
    ASSERT_NE(nullptr, l);
    EXPECT_EQ(-88, l->rssi);
    EXPECT_EQ(10u * 8u * 125000u, l->rx_bytes);  // no growth once the load stopped
    ASSERT_NE(nullptr, node.wlan().link("ath22"));
    EXPECT_FALSE(node.wlan().link("ath22")->up);
}

}  // namespace
