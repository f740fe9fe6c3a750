#include <string>

#include "config/config.h"
#include "conf_builder.h"
#include "sim_fixture.h"

namespace {

class ConfigDumpTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        add_bridge(conf, "br-lan", BR_FLAG_LOOP_AVOIDANCE | BR_FLAG_PATH_SELECTION);
        conf_interface& eth = add_iface(conf, "eth1", IF_TYPE_ETH);
        eth.ts_vlan_id = 20;
        conf.param.period = 6000;
        conf.param.low_threshold = 60;
        conf.ts.enable = true;
        conf.ts.primary_vlan = 3;
        conf.ts.policy_count = 1;
        conf.ts.vlan_count = 1;
        conf.ts.policies[0] = ts_policy{20, "guest $(reboot)", true};
    }
    lynd_config conf{};
};

TEST_F(ConfigDumpTest, DumpShowsEverySectionAtInfo) {
    g_lynd_dgb_lvl = 3;
    config_dump(&conf);
    const std::vector<std::string> want = {
        "Bridges:",
        "br-lan ==> flags: 3, loop_avoidance: 1, path_selection: 1",
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
    EXPECT_TRUE(host.runs().empty());
}

TEST_F(ConfigDumpTest, NothingBelowInfo) {
    g_lynd_dgb_lvl = 2;
    config_dump(&conf);
    EXPECT_TRUE(host.console_lines().empty());
}

TEST_F(ConfigDumpTest, LoadReadsTheFileAndFailsFatally) {
    host.set_file("/etc/lynd.json", R"({"enable": true, "bridges": {"br0": {}}})");
    lynd_config c{};
    config_load(&c, "/etc/lynd.json");
    EXPECT_EQ(1u, c.n_bridges);
    config_free(&c);
    EXPECT_EQ(0u, c.n_bridges);
    host.set_file("/bad.json", R"({"interfaces": {"a": {"type": "5G"}}})");
    host.set_file("/big.json", std::string(LYND_CONFIG_MAX_SIZE + 1, ' ') + "{}");
    for (const char* path : {"/bad.json", "/big.json", "/missing.json"}) {
        EXPECT_EXIT(
            {
                host.set_echo(true);
                config_load(&c, path);
            },
            ::testing::ExitedWithCode(1), "<LYND_FATAL>\\[config_load, [0-9]+\\] (invalid interface type|parse config)")
            << path;
    }
}

}  // namespace
