#include <string>

#include "sim/scenario/scenario.h"
#include "sim/node/sim_loop.h"
#include "sim/sim_node.h"
#include "sim/node/wlan_platform_sim.h"
#include "scenario_text.h"
#include "sim_fixture.h"

namespace {

using lynd::Scenario;

TEST(ScenarioRadios, LinksStationsCpuAndMesh) {
    Scenario sc = parsed(R"({"duration": 120,
        "links": {"ath12": {"up": false, "peer": "02:00:00:00:09:12", "txrate": 866, "rssi": -62, "util": 20,
                            "tx_mbps": 8, "stalled": true, "count_keepalive": false}},
        "stations": {"ath1": [{"mac": "02:00:00:00:0a:01", "txrate": 400, "idle": 7}]},
        "node": {"cpu": [{"at": 0, "percent": 10}, {"at": 60, "percent": 90}],
                 "mesh": {"controller": "02:00:00:00:00:aa", "eth_bh_if": "eth1"},
                 "tools": {"ubus -t 2 call map get_bh_eth": "fixed"}},
        "timeline": [{"at": 30, "link": "ath12", "set": {"up": true, "rssi": -88}}]})");
    const lynd::SimLink& l = sc.links["ath12"];
    EXPECT_FALSE(l.up);
    EXPECT_EQ(0x12, l.peer[5]);
    EXPECT_EQ(866, l.txrate);
    EXPECT_EQ(-95, l.noise);  // untouched fields keep their defaults
    EXPECT_TRUE(l.stalled);
    EXPECT_FALSE(l.count_keepalive);
    ASSERT_EQ(1u, sc.stations["ath1"].size());
    EXPECT_EQ(7, sc.stations["ath1"][0].idle);
    ASSERT_EQ(2u, sc.cpu.size());
    EXPECT_EQ(60000, sc.cpu[1].at_ms);
    ASSERT_EQ(2u, sc.tools.size());  // the scenario's own get_bh_eth reply wins
    EXPECT_EQ("ubus -t 2 call map meshd {\"action\":\"findcontroller\"}", sc.tools[1].cmdline);
    EXPECT_EQ("{\n\t\"ret\": 0,\n\t\"mac\": \"02:00:00:00:00:aa\"\n}\n", sc.tools[1].output);
    EXPECT_EQ("fixed", sc.tools[0].output);
    ASSERT_EQ(1u, sc.timeline.size());
    EXPECT_EQ(lynd::TimelineKind::LINK, sc.timeline[0].kind);
}

TEST(SimNodeRadios, TimelineChangesALinkAndKeepsItsCounters) {
    Scenario sc = parsed(R"({"duration": 20, "config": {"enable": true},
        "links": {"ath12": {"rssi": -60, "rx_mbps": 8}},
        "timeline": [{"at": 10, "link": "ath12", "set": {"rssi": -88, "rx_mbps": 0}},
                     {"at": 12, "link": "ath22", "set": {"up": false}}]})");
    lynd::SimNode node(sc);
    node.run("lynd", {});
    const lynd::SimLink* l = node.wlan().link("ath12");
    ASSERT_NE(nullptr, l);
    EXPECT_EQ(-88, l->rssi);
    EXPECT_EQ(10u * 8u * 125000u, l->rx_bytes);  // no growth once the load stopped
    ASSERT_NE(nullptr, node.wlan().link("ath22"));
    EXPECT_FALSE(node.wlan().link("ath22")->up);
}

// Keep-alive frames count per link as the scenario says.
TEST(SimWlanCounters, KeepAliveFramesCountUnlessTheLinkSaysNot) {
    lynd::SimLoop loop;
    lynd::SimWlan wlan(nullptr, &loop);
    lynd::SimLink quiet;
    wlan.set_link("ath02", quiet);
    quiet.count_keepalive = false;
    wlan.set_link("ath12", quiet);
    wlan.frame_sent("ath02", 1000);
    wlan.frame_sent("ath12", 1000);
    EXPECT_EQ(1000u, wlan.link("ath02")->tx_bytes);
    EXPECT_EQ(0u, wlan.link("ath12")->tx_bytes);
}

TEST(SimWlanCounters, AStalledLinkStandsStillWhateverIsSentAndResumesWithoutAJump) {
    lynd::SimLoop loop;
    lynd::SimWlan wlan(nullptr, &loop);
    lynd::SimLink l;
    l.tx_mbps = 8;
    l.rx_mbps = 8;
    wlan.set_link("ath12", l);
    wlan.set_client_load("ath12", 8);
    loop.advance(10000);
    const uint64_t tx = 10u * 16u * 125000u, rx = 10u * 8u * 125000u;
    ASSERT_EQ(tx, wlan.link("ath12")->tx_bytes);
    l = *wlan.link("ath12");
    l.stalled = true;
    wlan.set_link("ath12", l);
    loop.advance(10000);
    wlan.frame_sent("ath12", 1000);
    EXPECT_EQ(tx, wlan.link("ath12")->tx_bytes);
    EXPECT_EQ(rx, wlan.link("ath12")->rx_bytes);
    l = *wlan.link("ath12");
    l.stalled = false;
    wlan.set_link("ath12", l);
    loop.advance(1000);
    EXPECT_EQ(rx + 8u * 125000u, wlan.link("ath12")->rx_bytes);  // a second's worth, not eleven
}

}  // namespace
