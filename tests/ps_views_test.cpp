// What path selection shows and how it reacts at once: the snapshot file,
// the console tables, debug requests, the emergency choice.
#include "modules/path_selection/debug_hc.h"
#include "modules/path_selection/dumps.h"
#include "modules/path_selection/emergency.h"
#include "ps_fixture.h"
#include "wlan/wlan.h"

namespace {

class PsViewsTest : public PathSelectionTest {};

TEST_F(PsViewsTest, SnapshotHoldsTheLivePathsInTypeOrder) {
    hc_paths[IF_TYPE_5G].rate = 866;
    hc_paths[IF_TYPE_5G].util = 20;
    hc_paths[IF_TYPE_2G].state = PATH_UNLINK;
    EXPECT_EQ(1, path_selection_dump_paths_info(&conf.bridges[0], hc_paths));
    EXPECT_EQ("[{\"name\":\"ath12\",\"rate\":866,\"utilization\":20}]", host.file("/tmp/lynd_paths_info"));
    hc_paths[IF_TYPE_5G].state = PATH_UNLINK;
    EXPECT_EQ(0, path_selection_dump_paths_info(&conf.bridges[0], hc_paths));
    EXPECT_EQ("[]", host.file("/tmp/lynd_paths_info"));
}

TEST_F(PsViewsTest, TablesShowLivePathsAndEveryClientWithItsAddresses) {
    hc_paths[IF_TYPE_5G].quota = -5;
    hc_paths[IF_TYPE_2G].state = PATH_UNLINK;
    hc_client* c = client(0xa1, IF_TYPE_2G);
    c->hc.bytes = 1234;
    c->hc.pkts = 5;
    const uint8_t ips[12] = {192, 168, 1, 9, 0, 0, 0, 0, 10, 0, 0, 1};
    std::memcpy(c->hc.reserved1 + 4, ips, sizeof ips);
    path_selection_dump_uplinks(hc_paths);
    path_selection_dump_clients(&conf, hc_paths);
    const auto& out = host.console_lines();
    EXPECT_TRUE(host.logged("------------dump uplink info----------------\nname            priority rate   util   quota"));
    EXPECT_TRUE(host.logged("[12]ath12       3        0      0      -5      0           NORMAL"));
    EXPECT_FALSE(host.logged("UNLINK"));  // no uplink line for a path that is not live
    EXPECT_TRUE(host.logged("10:00:00:00:00:a1    [21]ath1        [02]ath02       1234       5"));
    EXPECT_EQ(1u, host.count_logged("   IP[1]:192.168.001.009"));
    EXPECT_EQ(0u, host.count_logged("IP[3]"));  // the second address is 0: the list ends there
    EXPECT_EQ("------------dump client path end----------------\n", out.back());
}

TEST_F(PsViewsTest, DebugRequestsSwitchDumpsOverloadAndPathFigures) {
    g_lynd_dgb_lvl = LYND_LVL_LOG;
    debug_event ev{};
    ev.subtype = DBG_DUMP;
    ev.value = TRI_ON;
    path_selection_event_debug_hc(&ev);
    EXPECT_TRUE(conf.bridges[0].flags & BR_FLAG_DUMP);
    ev.value = 3;  // neither on nor keep: off
    path_selection_event_debug_hc(&ev);
    EXPECT_FALSE(conf.bridges[0].flags & BR_FLAG_DUMP);
    ev.subtype = DBG_OVERLOAD;
    ev.value = 33;
    path_selection_event_debug_hc(&ev);
    EXPECT_EQ(1, g_dbg_overload_mask);
    ev = debug_event{};
    ev.subtype = DBG_SET_PATH_INFO;
    std::memcpy(ev.path.ifname, "eth1", 4);
    path_selection_event_debug_hc(&ev);
    std::memcpy(ev.path.ifname, "ath12", 5);
    ev.path.rssi = -70;
    path_selection_event_debug_hc(&ev);
    EXPECT_EQ(-70, g_dbg_path_info[IF_TYPE_5G].rssi);
    EXPECT_EQ(1u, host.count_logged("] ath12[2] dbg path info"));
    EXPECT_EQ(1u, host.count_logged(" dbg path info"));  // none for eth1, not a path
    ev.subtype = 9;
    path_selection_event_debug_hc(&ev);
    EXPECT_TRUE(host.logged("] dbg subtype 9 not implemented yet"));
}

// "After a link change the preferred port goes to the linked path of
// highest priority; with nothing linked the table is flushed."
TEST_F(PsViewsTest, EmergencyPicksTheLinkedPathOfHighestPriority) {
    g_lynd_dgb_lvl = LYND_LVL_INFO;
    lynd::SimLink down;
    down.up = false;
    wlan.set_link("ath12", lynd::SimLink{});
    wlan.set_link("ath02", down);
    hc_client* c = client(1, IF_TYPE_2G);
    path_selection_event_link_state_hc(&conf);
    EXPECT_EQ(PATH_UNLINK, hc_paths[IF_TYPE_2G].state);
    EXPECT_TRUE(host.logged("] Emergently set preferred to ath12"));
    EXPECT_EQ(12u, bridge.find("br-lan")->preferred);
    EXPECT_TRUE(on(c, IF_TYPE_5G));
    EXPECT_EQ(0, lynd_get_link_state_changed());
    wlan.set_link("ath12", down);
    path_selection_event_link_state_hc(&conf);
    EXPECT_EQ(1u, bridge.count_calls("bridgeSetHcPreferred "));
    EXPECT_EQ(1u, bridge.count_calls("bridgeFlushHCTable br-lan"));
}

// "A path off the primary VLAN is no emergency choice; a bridge whose hc is
// off gets no preferred port and no flush."
TEST_F(PsViewsTest, EmergencySkipsPathsOffThePrimaryVlanAndBridgesWithoutHc) {
    g_lynd_dgb_lvl = LYND_LVL_INFO;
    conf.ts.enable = true;
    conf.ts.primary_vlan = 10;
    conf.ts.policy_count = 1;
    conf.ts.vlan_count = 1;
    add_iface(conf, "ath12", IF_TYPE_5G).ts_vlan_id = 20;
    add_iface(conf, "ath02", IF_TYPE_2G).ts_vlan_id = 10;
    wlan.set_link("ath12", lynd::SimLink{});
    wlan.set_link("ath02", lynd::SimLink{});
    conf.bridges[0].ps_flags = 0;
    path_selection_event_link_state_hc(&conf);
    path_selection_emergency_set_preferred(&conf.bridges[0]);
    EXPECT_EQ(0u, bridge.count_calls("bridgeSetHcPreferred"));
    EXPECT_EQ(0u, bridge.count_calls("bridgeFlushHCTable"));
    conf.bridges[0].ps_flags = PS_FLAG_HC;
    path_selection_event_link_state_hc(&conf);
    EXPECT_TRUE(host.logged("] Emergently set preferred to ath02"));
    EXPECT_FALSE(host.logged("] Emergently set preferred to ath12"));
}

}  // namespace
