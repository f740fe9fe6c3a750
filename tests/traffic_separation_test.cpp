#include <cstring>
#include <string>
#include <vector>

#include "conf_builder.h"
#include "config/traffic_separation.h"
#include "core/lynd_main.h"
#include "event/ubus_receive.h"
#include "sim_fixture.h"

namespace {

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
    std::string name(int i) const { return conf.interfaces[i].name; }
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
    uci.set("traffic_separation.@ts_policy[2].is_primary", "1");
    policy(3, "0", "zero");
    policy(4, "4096", "too-big");
    policy(5, "40");  // no SSID: its VLAN still counts
    traffic_separation_config_load(&conf);

    const conf_ts& ts = conf.ts;
    EXPECT_TRUE(ts.enable);
    EXPECT_EQ(3u, ts.policy_count);
    EXPECT_EQ((std::vector<uint32_t>{20, 30, 40}), std::vector<uint32_t>(ts.vlan_ids, ts.vlan_ids + ts.vlan_count));
    EXPECT_TRUE(ts.policies[2].is_primary && !ts.policies[0].is_primary);
    ASSERT_EQ(6u, conf.n_interfaces);
    EXPECT_EQ((std::vector<uint32_t>{10, 10, 30}), (std::vector<uint32_t>{conf.interfaces[0].ts_vlan_id,
                                                                         conf.interfaces[1].ts_vlan_id,
                                                                         conf.interfaces[2].ts_vlan_id}));
    for (int i = 3; i < 6; i++) {
        const conf_interface& r = conf.interfaces[i];
        EXPECT_EQ("eth1." + std::to_string(ts.vlan_ids[i - 3]), name(i));
        EXPECT_EQ(ts.vlan_ids[i - 3], r.ts_vlan_id);
        EXPECT_TRUE(r.is_ts_vlan && !r.support_ts_vlan && r.type == IF_TYPE_ETH);
    }

    // A reload with the same settings rebuilds the very same table.
    lynd_config first = conf;
    traffic_separation_config_load(&conf);
    EXPECT_EQ(first.n_interfaces, conf.n_interfaces);
    EXPECT_EQ(0, std::memcmp(first.interfaces, conf.interfaces, sizeof conf.interfaces));
    EXPECT_EQ(0, std::memcmp(&first.ts, &conf.ts, sizeof conf.ts));
}

TEST_F(TrafficSeparationTest, SsidsAreDataAndAnUnreadableOneLeavesTheVapOut) {
    g_lynd_dgb_lvl = 5;
    add_iface(conf, "ath0", IF_TYPE_2G).ts_vap = true;
    add_iface(conf, "ath1", IF_TYPE_5G).ts_vap = true;
    add_iface(conf, "ath2", IF_TYPE_5G).ts_vap = true;
    uci.set("wireless.ath0.ssid", "$(reboot)");
    uci.set("wireless.ath1.ssid", "\"; rm -rf /;\"");
    policy(0, "20", "\"; rm -rf /;\"");
    policy(1, "30", "$(reboot)");
    traffic_separation_config_load(&conf);
    EXPECT_EQ(30u, conf.interfaces[0].ts_vlan_id);
    EXPECT_EQ(20u, conf.interfaces[1].ts_vlan_id);
    EXPECT_EQ(0u, conf.interfaces[2].ts_vlan_id);
    EXPECT_TRUE(host.logged("] ts_vap_interface:ath0, ssid:$(reboot)"));
    EXPECT_TRUE(host.logged("] ts_vap_interface:ath1, ssid:\"; rm -rf /;\""));
    EXPECT_TRUE(host.logged("<LYND_ERR>[assign_vap_vlan, "));
    EXPECT_TRUE(host.logged("] get ssid faild"));
    EXPECT_FALSE(host.logged("interface:ath2 ts_vlan_id"));  // no summary for it
    EXPECT_TRUE(host.runs().empty());
}

TEST_F(TrafficSeparationTest, SwitchedOffOrIncompleteSettingsClearEverything) {
    add_iface(conf, "eth1", IF_TYPE_ETH).support_ts_vlan = true;
    policy(0, "20", "home");
    traffic_separation_config_load(&conf);
    ASSERT_EQ(2u, conf.n_interfaces);

    g_lynd_dgb_lvl = 3;
    uci.set("traffic_separation.traffic_separation.enable", "off");
    traffic_separation_config_load(&conf);
    EXPECT_TRUE(host.logged("] TS is off,exit TS mode"));
    EXPECT_EQ(1u, conf.n_interfaces);
    EXPECT_EQ(0u, conf.interfaces[0].ts_vlan_id);
    const conf_interface blank{};
    EXPECT_EQ(0, std::memcmp(&blank, &conf.interfaces[1], sizeof blank));
    const conf_ts zero{};
    EXPECT_EQ(0, std::memcmp(&zero, &conf.ts, sizeof zero));

    uci.set("traffic_separation.traffic_separation.enable", "on");
    uci.set("wificommonCfg.settings.mesh_enable", "off");  // an extender outside the mesh
    traffic_separation_config_load(&conf);
    EXPECT_FALSE(conf.ts.enable);
    uci.erase("wificommonCfg.settings.mesh_enable");

    uci.erase("traffic_separation.traffic_separation.primary_vlan");
    traffic_separation_config_load(&conf);
    EXPECT_TRUE(host.logged("] LYND exit TS mode"));
    EXPECT_EQ(1u, conf.n_interfaces);
    EXPECT_EQ(0, std::memcmp(&zero, &conf.ts, sizeof zero));
}

TEST_F(TrafficSeparationTest, AFullTableStopsTheLoadWithTheRecordsSoFar) {
    for (int i = 0; i < LYND_MAX_INTERFACES - 1; i++)
        add_iface(conf, ("p" + std::to_string(i)).c_str(), IF_TYPE_ETH);
    conf.interfaces[1].support_ts_vlan = true;
    policy(0, "20", "a");
    policy(1, "30", "b");
    traffic_separation_config_load(&conf);
    EXPECT_TRUE(host.logged("] can't find an empty entry to add ts port"));
    EXPECT_TRUE(conf.ts.enable);
    EXPECT_EQ(127u, conf.n_interfaces);
    EXPECT_EQ(10u, conf.interfaces[0].ts_vlan_id);
    EXPECT_EQ(0u, conf.interfaces[1].ts_vlan_id);  // stopped among its VLANs
    EXPECT_EQ("", name(127));                        // written, not counted, cleared
}

TEST_F(TrafficSeparationTest, TablesHoldSixtyFourEntriesAndTheWalkIsBounded) {
    g_lynd_dgb_lvl = 2;
    add_iface(conf, "ath0", IF_TYPE_2G);
    policy(0, "100");
    for (int i = 1; i < 70; i++)
        policy(i, std::to_string(100 + i), "s");
    policy(70, "100", "s");
    traffic_separation_config_load(&conf);
    EXPECT_EQ(64u, conf.ts.vlan_count);
    EXPECT_EQ(163u, conf.ts.vlan_ids[63]);
    EXPECT_EQ(64u, conf.ts.policy_count);  // 65 to 69 went with their VLANs
    EXPECT_EQ(100u, conf.ts.policies[63].vlan_id);
    EXPECT_EQ(1u, host.count_logged("] more than 64 ts vlans, the policies of the others are ignored"));

    uci.set("traffic_separation.traffic_separation.ts_policy_count", "4294967295");
    traffic_separation_config_load(&conf);  // would read UCI for hours unbounded
    EXPECT_TRUE(host.logged("] ts policy count 4294967295, only the first 1024 policies are read"));
    EXPECT_TRUE(host.logged("] ts tables full, policies from index 71 on are ignored"));
}

uint64_t g_seen_interfaces;  // what the modules saw with EVENT_TS

void heard_ts(lynd_config* conf, event_listener*, uint32_t type, void* data) {
    if (type == EVENT_TS && *static_cast<uint32_t*>(data) == 1)
        g_seen_interfaces = conf->n_interfaces;
}

TEST_F(TrafficSeparationTest, TheReloadEventRebuildsBeforeTheModulesHearIt) {
    g_seen_interfaces = 0;
    add_iface(conf, "eth1", IF_TYPE_ETH).support_ts_vlan = true;
    lynd_list_init(&conf.ev.listeners);
    event_listener l{{nullptr, nullptr}, heard_ts};
    event_add_listener(&conf.ev, &l);
    policy(0, "20", "home");
    event_ubus_receive_traffic_separation(&conf.ev, lynd::BusMessage{nullptr, 0, false});
    EXPECT_EQ(2u, g_seen_interfaces);
}

TEST_F(TrafficSeparationTest, StartUpLoadsTheSettingsBeforeTheDump) {
    host.set_file("/etc/lynd.json", R"({"enable": true, "interfaces": {"eth1": {"type": "ethernet",
                                       "support_ts_vlan": true}}})");
    policy(0, "20", "home");
    loop.set_stop_time(1000);
    char prog[] = "lynd", opt[] = "-l", lvl[] = "3";
    char* argv[] = {prog, opt, lvl, nullptr};
    EXPECT_EQ(0, lynd_main_with(3, argv, lynd_module_table{nullptr, 0}));
    EXPECT_TRUE(host.logged("] TS enable:1, \tprimary_vlan:10, \tpolicy_count:1, \tvlan_count:1"));
    EXPECT_TRUE(host.logged("] eth1.20 ==>type: 0"));
}

}  // namespace
