#include <cstring>
#include <string>
#include <vector>

#include "conf_builder.h"
#include "daemon/lynd_main.h"
#include "event/event_dispatch.h"
#include "event/ubus_receive.h"
#include "sim_fixture.h"
#include "wlan/traffic_separation.h"

namespace {

uint64_t g_seen_interfaces;  // the table the modules saw with EVENT_TS

void heard_ts(lynd_config* conf, event_listener*, uint32_t type, void* data) {
    if (type == EVENT_TS && *static_cast<uint32_t*>(data) == 1)
        g_seen_interfaces = conf->n_interfaces;
}

class TrafficSeparationTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        uci.set("traffic_separation.traffic_separation.primary_vlan", "10");
    }
    void policy(int i, const std::string& vid, const char* ssid = nullptr) {
        std::string at = "traffic_separation.@ts_policy[" + std::to_string(i) + "].";
        uci.set(at + "vlan_id", vid);
        if (ssid != nullptr)
            uci.set(at + "ssid", ssid);
        uci.set("traffic_separation.traffic_separation.ts_policy_count", std::to_string(i + 1));
    }
    uint32_t vid(int i) const { return conf.interfaces[i].ts_vlan_id; }
    lynd_config conf{};
};

TEST_F(TrafficSeparationTest, VlansOfThePoliciesBecomeSubInterfacesOfTheTsPorts) {
    add_iface(conf, "eth1", IF_TYPE_ETH).support_ts_vlan = true;
    add_iface(conf, "ath0", IF_TYPE_2G);
    add_iface(conf, "ath1", IF_TYPE_5G).ts_vap = true;
    uci.set("wireless.ath1.ssid", "guest");
    policy(0, "20", "home");
    policy(1, "20", "home-5g");
    policy(2, "30", "guest");
    policy(3, "0", "zero");
    policy(4, "4096", "too-big");
    policy(5, "40");  // no SSID: its VLAN still counts
    traffic_separation_config_load(&conf);
    const conf_ts& ts = conf.ts;
    EXPECT_TRUE(ts.enable);
    EXPECT_EQ(3u, ts.policy_count);
    EXPECT_EQ((std::vector<uint32_t>{20, 30, 40}), std::vector<uint32_t>(ts.vlan_ids, ts.vlan_ids + ts.vlan_count));
    ASSERT_EQ(6u, conf.n_interfaces);
    EXPECT_TRUE(vid(0) == 10 && vid(1) == 10 && vid(2) == 30);
    for (int i = 3; i < 6; i++) {
        const conf_interface& r = conf.interfaces[i];
        EXPECT_EQ("eth1." + std::to_string(ts.vlan_ids[i - 3]), r.name);
        EXPECT_TRUE(r.ts_vlan_id == ts.vlan_ids[i - 3] && r.is_ts_vlan && !r.support_ts_vlan);
    }
    lynd_config first = conf;
    traffic_separation_config_load(&conf);
    EXPECT_EQ(first.n_interfaces, conf.n_interfaces);
    EXPECT_EQ(0, std::memcmp(first.interfaces, conf.interfaces, sizeof conf.interfaces));
}

// Switched off, only enable goes false: the block keeps what was read (the
// dump and loop avoidance's primary VLAN rule see it); the VLAN records go.
TEST_F(TrafficSeparationTest, TurningItOffKeepsTheBlockButDropsTheRecordsBeforeTheModulesHear) {
    add_iface(conf, "eth1", IF_TYPE_ETH).support_ts_vlan = true;
    policy(0, "20", "home");
    lynd_list_init(&conf.ev.listeners);
    event_listener l{{nullptr, nullptr}, heard_ts};
    event_add_listener(&conf.ev, &l);
    const conf_interface blank{};
    for (const char* off : {"traffic_separation.traffic_separation.enable", "wificommonCfg.settings.mesh_enable"}) {
        traffic_separation_config_load(&conf);
        ASSERT_EQ(2u, conf.n_interfaces);
        uci.set(off, "off");
        event_ubus_receive_traffic_separation(&conf.ev, lynd::BusMessage{nullptr, 0, false});
        EXPECT_EQ(1u, g_seen_interfaces);
        EXPECT_TRUE(vid(0) == 0 && std::memcmp(&blank, &conf.interfaces[1], sizeof blank) == 0);
        EXPECT_FALSE(conf.ts.enable);
        EXPECT_EQ(10u, conf.ts.primary_vlan);
        EXPECT_TRUE(conf.ts.policy_count == 1 && conf.ts.vlan_count == 1 && conf.ts.vlan_ids[0] == 20);
        uci.erase(off);
    }
    uci.erase("traffic_separation.traffic_separation.primary_vlan");
    traffic_separation_config_load(&conf);
    EXPECT_TRUE(conf.n_interfaces == 1 && !conf.ts.enable);
    EXPECT_TRUE(conf.ts.primary_vlan == 0 && conf.ts.policy_count == 1 && conf.ts.vlan_count == 1);
}

TEST_F(TrafficSeparationTest, AFullTableStopsTheLoadWithTheRecordsSoFar) {
    for (int i = 0; i < LYND_MAX_INTERFACES - 1; i++)
        add_iface(conf, ("p" + std::to_string(i)).c_str(), IF_TYPE_ETH);
    conf.interfaces[1].support_ts_vlan = true;
    policy(0, "20", "a");
    policy(1, "30", "b");
    traffic_separation_config_load(&conf);
    EXPECT_TRUE(host.logged("] can't find an empty entry to add ts port"));
    EXPECT_TRUE(conf.ts.enable && conf.n_interfaces == 127);
    EXPECT_TRUE(vid(0) == 10 && vid(1) == 0 && vid(2) == 0);  // stopped among port 1's VLANs
    EXPECT_STREQ("", conf.interfaces[127].name);               // written, never counted
}

TEST_F(TrafficSeparationTest, TablesHoldSixtyFourEntriesAndTheWalkIsBounded) {
    g_lynd_dgb_lvl = 2;
    policy(0, "100");
    for (int i = 1; i < 70; i++)
        policy(i, std::to_string(100 + i), "s");
    policy(70, "100", "s");
    traffic_separation_config_load(&conf);
    EXPECT_TRUE(conf.ts.vlan_count == 64 && conf.ts.vlan_ids[63] == 163);
    EXPECT_TRUE(conf.ts.policy_count == 64 && conf.ts.policies[63].vlan_id == 100);  // 64..69 left with their VLANs
    EXPECT_EQ(1u, host.count_logged("] more than 64 ts vlans, the policies of the others are ignored"));
    uci.set("traffic_separation.traffic_separation.ts_policy_count", "-1");  // as unsigned, 4294967295
    traffic_separation_config_load(&conf);  // unbounded, this would read UCI for hours
    EXPECT_TRUE(host.logged("] ts policy count 4294967295, only the first 1024 policies are read"));
    EXPECT_TRUE(host.logged("] ts tables full, policies from index 71 on are ignored"));
}

TEST_F(TrafficSeparationTest, StartUpLoadsTheSettingsBeforeTheDump) {
    host.set_file("/etc/lynd.json",
                  R"({"enable": true, "interfaces": {"eth1": {"type": "ethernet", "support_ts_vlan": true}}})");
    policy(0, "20", "home");
    loop.set_stop_time(1000);
    char prog[] = "lynd", opt[] = "-l", lvl[] = "3";
    char* argv[] = {prog, opt, lvl, nullptr};
    EXPECT_EQ(0, lynd_main_with(3, argv, lynd_module_table{nullptr, 0}));
    EXPECT_TRUE(host.logged("] eth1.20 ==>type: 0"));
}

}  // namespace
