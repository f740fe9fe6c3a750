#include <string>
#include <vector>

#include "conf_builder.h"
#include "config/config.h"
#include "daemon/lynd_main.h"
#include "sim_fixture.h"
#include "wlan/wlan_platform.h"

namespace {

class ConfigDumpTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        add_bridge(conf, "br-lan", BR_FLAG_LOOP_AVOIDANCE | BR_FLAG_PATH_SELECTION);
        add_bridge(conf, "br-guest", 0);
        add_iface(conf, "eth1", IF_TYPE_ETH).ts_vlan_id = 20;
        conf.param.period = 6000;
        conf.param.low_threshold = 60;
        conf.ts = conf_ts{true, 3, 1, {}, 1, {20}};
        conf.ts.policies[0] = ts_policy{20, "guest $(reboot)", true};
    }
    lynd_config conf{};
};

TEST_F(ConfigDumpTest, DumpShowsEverySectionAtInfoOnly) {
    g_lynd_dgb_lvl = 2;
    config_dump(&conf);
    EXPECT_TRUE(host.console_lines().empty());
    g_lynd_dgb_lvl = 3;
    config_dump(&conf);
    const std::vector<std::string> want = {
        "Bridges:",
        "br-lan ==> flags: 3, loop_avoidance: 1, path_selection: 1",
        "br-guest ==> flags: 0, loop_avoidance: 0, path_selection: 0",
        "Interfaces:",
        "eth1 ==>type: 0, compat_group: 255, relay: 1, ts_vap:0, ts_vlan:0, ts_vid:20, support_ts:0 if_class:0",
        "Param:",
        "\tperiod: 6000, low_threhold: 60",
        "-----------dump TS info--------------------------------------",
        "TS enable:1, \tprimary_vlan:3, \tpolicy_count:1, \tvlan_count:1",
        "policy[0].vlan_id:20, is_primary:1, ssid:guest $(reboot)",
        "-----------dump TS info end-----------------------------------",
    };
    ASSERT_EQ(want.size(), host.console_lines().size());
    for (size_t i = 0; i < want.size(); i++) {
        const std::string& line = host.console_lines()[i];
        EXPECT_EQ(0u, line.find("<LYND_INFO>[")) << line;
        EXPECT_EQ(want[i], line.substr(line.find("] ") + 2)) << i;
    }
}

TEST_F(ConfigDumpTest, LoadReadsTheFileAndEveryBadFileIsFatal) {
    host.set_file("/etc/lynd.json", R"({"enable": true, "bridges": {"br0": {}}})");
    lynd_config c{};
    EXPECT_TRUE(config_load(&c, "/etc/lynd.json"));
    EXPECT_TRUE(c.enable && c.n_bridges == 1);
    host.set_file("/full.json", std::string(LYND_CONFIG_MAX_SIZE - 3, ' ') + "{}");
    EXPECT_TRUE(config_load(&c, "/full.json"));  // one byte under the limit
    host.set_file("/bad.json", R"({"interfaces": {"a": {"type": "5G"}}})");
    host.set_file("/big.json", std::string(LYND_CONFIG_MAX_SIZE - 2, ' ') + "{}");
    host.set_file("/text.json", "enable=1");
    for (const char* path : {"/bad.json", "/big.json", "/text.json", "/missing.json"}) {
        host.clear_console();
        EXPECT_FALSE(config_load(&c, path)) << path;
        EXPECT_EQ(2u, host.count_logged("<LYND_FATAL>[config_load, ")) << path;
    }
}

// The platform's hooks, as seen against the bridge calls made so far.
std::vector<std::string> g_hooks;
lynd::SimBridge* g_bridge;
int fake_init() {
    g_hooks.push_back("init");
    return 0;
}
int fake_finit() {
    g_hooks.push_back("finit after " + std::to_string(g_bridge->calls().size()));
    return 0;
}

TEST_F(ConfigDumpTest, RevertStopsEveryBridgeInOrderAfterThePlatform) {
    wlan_platform table{};
    table.platform_init = fake_init;
    table.platform_finit = fake_finit;
    const wlan_platform* saved = wlan_platform_ops;
    wlan_platform_ops = &table;
    g_bridge = &bridge;
    bridge.set_result("bridgeStopAPS", -1);  // a failure does not stop the others
    config_bridge(&conf);
    config_bridge_revert(&conf);
    wlan_platform_ops = saved;
    EXPECT_EQ((std::vector<std::string>{"init", "finit after 0"}), g_hooks);
    EXPECT_EQ((std::vector<std::string>{"bridgeStopAPS br-lan", "bridgeStopAPS br-guest"}), bridge.calls());
    config_free(&conf);
    EXPECT_EQ(0u, conf.n_bridges + conf.n_interfaces);
}

}  // namespace
