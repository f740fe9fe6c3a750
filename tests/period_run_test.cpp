// The period run's order and its stops, seen from the bridge and the log.
#include "bridge/hybrid_tables.h"
#include "modules/path_selection/client_moves.h"
#include "modules/path_selection/period_drive.h"
#include "modules/path_selection/uplink_drive.h"
#include "ps_fixture.h"
#include "wlan/link_state.h"

namespace {

class PeriodRunTest : public PathSelectionTest {
protected:
    void SetUp() override {
        PathSelectionTest::SetUp();
        conf.param.high_threshold = 90;
        hc_paths[IF_TYPE_2G].rate = 144;
        hc_paths[IF_TYPE_2G].util = 50;
        hc_paths[IF_TYPE_5G].rate = 866;
        hc_paths[IF_TYPE_5G].util = 20;
        lynd_set_link_state_changed(0);
    }
    void TearDown() override {
        lynd_set_link_state_changed(0);
        PathSelectionTest::TearDown();
    }
    // The node's own entry: what the best path is chosen for.
    void node_entry() { client(0xee, IF_TYPE_2G, 3)->sta_type = PATH_NONE; }
    // A wireless client on 2.4G that moves to 5G in the first run it may.
    hc_client* newcomer(uint8_t last = 1, uint32_t src = 21) {
        hc_client* c = client(last, IF_TYPE_2G, src);
        c->flags = HC_FLAG_ASSOC_NEWLY;
        return c;
    }
    void drive() { path_selection_update_uplink_path_for_hc_v2(&conf.bridges[0], hc_paths); }
    size_t moves() const { return bridge.count_calls("bridgeSetHCTableEntries"); }
};

TEST_F(PeriodRunTest, AfterALinkChangeTheRunFlushesWithThePreferredPortAndMovesNobody) {
    node_entry();
    hc_client* c = newcomer();
    conf.bridges[0].flags |= BR_FLAG_DUMP;
    lynd_set_link_state_changed(1);
    drive();
    EXPECT_EQ(1u, bridge.count_calls("bridgeSetHcPreferredAndFlushHCTable br-lan 12"));
    EXPECT_EQ(0u, moves());
    EXPECT_FALSE(host.logged("dump client path"));  // the run ends at the flush
    EXPECT_EQ(0, lynd_get_link_state_changed());
    drive();
    EXPECT_TRUE(on(c, IF_TYPE_5G));
    EXPECT_EQ(1u, moves());
    // The port is already there: the cached call writes nothing.
    EXPECT_EQ(0u, bridge.count_calls("bridgeSetHcPreferred "));
    EXPECT_TRUE(host.logged("dump client path"));
}

TEST_F(PeriodRunTest, ThePreferredPortIsWrittenOnlyWhenItChanges) {
    node_entry();
    drive();
    drive();
    EXPECT_EQ(1u, bridge.count_calls("bridgeSetHcPreferred br-lan 12"));
    EXPECT_EQ(0u, bridge.count_calls("bridgeSetHcPreferredAndFlushHCTable"));
}

TEST_F(PeriodRunTest, WithNoBestPathNothingIsSetButTheClientsAreStillDumped) {
    g_lynd_dgb_lvl = LYND_LVL_WARN;
    hc_client* c = newcomer();
    conf.bridges[0].flags |= BR_FLAG_DUMP;
    drive();
    EXPECT_TRUE(host.logged("] not find best path"));
    EXPECT_TRUE(on(c, IF_TYPE_2G));
    EXPECT_EQ(0u, bridge.count_calls("bridgeSetHcPreferred"));
    EXPECT_TRUE(host.logged("dump client path"));
}

struct BcastCase {
    const char* rule;
    uint8_t bcast_type;
    bool five_best;
    bool moved;
};

const BcastCase kBcastCases[] = {
    {"a broadcast port on 2.4G follows a best path elsewhere", IF_TYPE_2G, true, true},
    {"a broadcast port on 2.4G stays while 2.4G is best", IF_TYPE_2G, false, false},
    {"a broadcast port elsewhere is left to loop avoidance", IF_TYPE_5G, true, false},
};

TEST_F(PeriodRunTest, TheBroadcastPortLeaves24GOnlyForABestPathElsewhere) {
    g_lynd_dgb_lvl = LYND_LVL_INFO;
    for (const BcastCase& k : kBcastCases) {
        SCOPED_TRACE(k.rule);
        host.clear_console();
        path_selection_state_reset();
        g_ps_conf = &conf;
        path(IF_TYPE_2G, "ath02", 1);
        path(IF_TYPE_5G, "ath12", 3);
        hc_paths[IF_TYPE_2G].rate = k.five_best ? 144 : 866;
        hc_paths[IF_TYPE_5G].rate = k.five_best ? 866 : 144;
        hc_paths[IF_TYPE_2G].util = hc_paths[IF_TYPE_5G].util = 20;
        node_entry();
        conf.bridges[0].bcast_type = k.bcast_type;
        drive();
        EXPECT_EQ(k.moved, host.logged("] set bcast port:ath12"));
        EXPECT_EQ(k.moved, host.logged("] update bcask port:ath12"));  // loop avoidance was asked
        EXPECT_FALSE(host.logged("] set bcast port:ath02"));
    }
}

TEST_F(PeriodRunTest, TheVlanCheckMeetsAMovedClientOnItsNewPath) {
    host.add_interface({"ath1.20", 40, {}});
    host.add_interface({"ath12.20", 42, {}});
    conf.ts.enable = true;
    conf.ts.policy_count = 1;
    conf.ts.vlan_count = 1;
    conf.ts.vlan_ids[0] = 20;
    add_iface(conf, "ath1.20", IF_TYPE_5G).ts_vlan_id = 20;
    g_lynd_dgb_lvl = LYND_LVL_INFO;
    node_entry();
    hc_client* c = newcomer(1, 40);
    drive();
    ASSERT_TRUE(on(c, IF_TYPE_5G));
    // The move writes the entry, then the check finds its old port and writes it again.
    std::string to_vlan = "bridgeSetHCTableEntries br-lan " + mac_of(1) + " " + mac_of(1) + " ath1.20 ath12.20";
    EXPECT_EQ(std::vector<std::string>({to_vlan, to_vlan}), bridge.calls_matching("bridgeSetHCTableEntries"));
    EXPECT_EQ(42u, c->hc.dst_port);
    EXPECT_TRUE(host.logged("] adjust_hc->src_port:40, src_ifname:ath1.20, home_name:ath12"));
    // A downed path's clients go the same way, and say so.
    hc_paths[IF_TYPE_5G].state = PATH_UNLINK;
    path_selection_pre_update_uplink_path_for_hc_v2(&conf.bridges[0], hc_paths, IF_TYPE_2G);
    EXPECT_TRUE(on(c, IF_TYPE_2G));
    EXPECT_TRUE(host.logged("] src_ifname:ath1.20, dst_ifname:ath02.20, home_name:ath02, vlan_id:20"));
}

// A bridge with the two backhaul paths and the two access points as ports.
class PeriodDriveTest : public PeriodRunTest {
protected:
    void SetUp() override {
        PeriodRunTest::SetUp();
        for (const char* port : {"ath02", "ath12", "ath0", "ath1"})
            bridge.add_port("br-lan", port);
        add_iface(conf, "ath02", IF_TYPE_2G, true, false);
        add_iface(conf, "ath12", IF_TYPE_5G, true, false);
        add_iface(conf, "ath0", IF_TYPE_2G, false, true);
        add_iface(conf, "ath1", IF_TYPE_5G, false, true);
    }
    hc_entry entry(uint8_t last, uint32_t dst) {
        hc_entry e{};
        e.mac[0] = 0x10;
        e.mac[5] = last;
        std::memcpy(e.id, e.mac, 6);
        e.dst_port = dst;
        e.src_port = 21;
        return e;
    }
};

TEST_F(PeriodDriveTest, KeepAliveFramesGoOutBeforeTheSyncFilesTheClients) {
    g_lynd_dgb_lvl = LYND_LVL_DEBUG;
    bridge.add_hc("br-lan", entry(1, 12));
    path_selection_while_hc_enabled(&conf.bridges[0]);
    EXPECT_TRUE(host.logged("] No sta in path ath12, send pkts to keep alive"));  // its client was not filed yet
    ASSERT_NE(nullptr, hc_find_client(&hc_paths[IF_TYPE_5G].clients, entry(1, 12).mac));
    host.clear_console();
    path_selection_while_hc_enabled(&conf.bridges[0]);
    EXPECT_FALSE(host.logged("] No sta in path ath12"));
    EXPECT_TRUE(host.logged("] No sta in path ath02"));
}

TEST_F(PeriodDriveTest, OnAControllerThePeriodRunDoesNothing) {
    uci.set("sysmode.sysmode.mode", "router");
    uci.set("meshd.meshd.role", "controller");
    conf.bridges[0].flags |= BR_FLAG_PATH_SELECTION;
    g_lynd_dgb_lvl = LYND_LVL_DEBUG;
    path_selection_timer_period_hc(&conf);
    EXPECT_TRUE(bridge.calls().empty());
    EXPECT_TRUE(host.logged("[path_selection_timer_period_hc, "));  // it says it started all the same
    uci.set("meshd.meshd.role", "agent");
    path_selection_timer_period_hc(&conf);
    EXPECT_FALSE(bridge.calls().empty());
}

TEST_F(PeriodDriveTest, AFailedSyncLeavesTheRunToGoOnWithTheRecordsItHas) {
    g_lynd_dgb_lvl = LYND_LVL_ERR;
    node_entry();
    hc_client* c = newcomer();
    bridge.set_result("bridgeTableAction", -1);
    path_selection_while_hc_enabled(&conf.bridges[0]);
    EXPECT_TRUE(host.logged("] get hc table"));
    EXPECT_TRUE(on(c, IF_TYPE_5G));
    EXPECT_EQ(1u, moves());
}

}  // namespace
