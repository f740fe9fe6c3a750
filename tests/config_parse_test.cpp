#include <cstdio>
#include <cstring>
#include <string>

#include "config/config.h"
#include "sim_fixture.h"

namespace {

class ConfigParseTest : public SimNodeTest {
protected:
    config_parse_result parse(const std::string& text) {
        conf = lynd_config{};
        return config_parse(&conf, text.data(), text.size());
    }
    const conf_interface& iface(int i) const { return conf.interfaces[i]; }
    lynd_config conf;
};

TEST_F(ConfigParseTest, BridgesKeepFileOrderAndStopAtEight) {
    std::string bridges;
    for (int i = 0; i < 9; i++)
        bridges += (i ? ", " : "") + std::string("\"br") + std::to_string(i) + "\": {\"loop_avoidance\": 1}";
    g_lynd_dgb_lvl = 2;
    ASSERT_EQ(config_parse_result::OK, parse("{\"enable\": true, \"bridges\": {" + bridges + "}}"));
    EXPECT_TRUE(conf.enable);
    ASSERT_EQ(8u, conf.n_bridges);
    EXPECT_STREQ("br0", conf.bridges[0].name);
    EXPECT_STREQ("br7", conf.bridges[7].name);
    EXPECT_EQ(BR_FLAG_LOOP_AVOIDANCE, conf.bridges[7].flags);
    EXPECT_EQ(1u, host.count_logged("] too many bridges"));
}

TEST_F(ConfigParseTest, BridgeSwitches) {
    g_lynd_dgb_lvl = 2;
    ASSERT_EQ(config_parse_result::OK,
              parse(R"({"bridges": {"br-lan": {"path_selection": "yes", "hc_enable": true, "follow_re": 1,
                        "tcp_sp": 0, "loop_avoidance": ""}}})"));
    EXPECT_FALSE(conf.enable);
    EXPECT_EQ(BR_FLAG_PATH_SELECTION, conf.bridges[0].flags);
    EXPECT_EQ(PS_FLAG_HC | PS_FLAG_FOLLOW_RE, conf.bridges[0].ps_flags);
    EXPECT_TRUE(host.logged("<LYND_WARN>[load_bridges, "));
    EXPECT_TRUE(host.logged("] br br-lan ps mode set to HC"));
}

TEST_F(ConfigParseTest, InterfaceDefaultsAndConversions) {
    ASSERT_EQ(config_parse_result::OK, parse(R"({"interfaces": {
        "ath22": {"type": "6g"},
        "eth1": {"type": "ethernet", "nonrelay": true, "priority": 300, "compat_group": 258,
                 "class": 1, "path": 1, "eth_index": 2},
        "ath0": {"type": "2.4g", "priority": -1, "ts_vap": true},
        "eth0": {"type": "ethernet", "priority": "4", "support_ts_vlan": 1, "switch_vlan_interface": true}}})"));
    ASSERT_EQ(4u, conf.n_interfaces);
    EXPECT_EQ(IF_TYPE_6G, iface(0).type);
    EXPECT_EQ(2, iface(0).priority);
    EXPECT_TRUE(iface(0).relay);
    EXPECT_EQ(255, iface(0).compat_group);
    EXPECT_FALSE(iface(0).path);
    EXPECT_FALSE(iface(1).relay);
    EXPECT_EQ(10, iface(1).priority);
    EXPECT_EQ(2, iface(1).compat_group);
    EXPECT_EQ(1, iface(1).if_class);
    EXPECT_EQ(2u, iface(1).eth_index);
    EXPECT_EQ(10, iface(2).priority);
    EXPECT_TRUE(iface(2).ts_vap);
    EXPECT_EQ(4, iface(3).priority);
    EXPECT_TRUE(iface(3).support_ts_vlan);
    EXPECT_TRUE(iface(3).switch_vlan_interface);
    EXPECT_EQ(0u, iface(3).ts_vlan_id);
}

TEST_F(ConfigParseTest, UnknownTypeStopsTheLoad) {
    for (const char* type : {R"("5G")", R"("wifi")", "5", "null"}) {
        std::string text = std::string(R"({"interfaces": {"eth0": {"type": "ethernet"}, "ath1": {"type": )") + type +
                           "}}}";
        EXPECT_EQ(config_parse_result::BAD_INTERFACE_TYPE, parse(text)) << type;
        EXPECT_EQ(1u, conf.n_interfaces);
    }
    EXPECT_EQ(config_parse_result::BAD_INTERFACE_TYPE, parse(R"({"interfaces": {"eth0": 7}})"));
}

TEST_F(ConfigParseTest, ExchangeInterfacesTakeTheirVlanName) {
    ASSERT_EQ(config_parse_result::OK, parse(R"({"param": {"adjusted_ratio": 200}, "interfaces": {
        "ath0x": {"type": "2.4g", "exchange": 3, "eth_index": 9},
        "ath1x": {"type": "5g", "exchange": 2, "eth_index": 7, "nonrelay": true},
        "ath2": {"type": "6g"}}})"));
    ASSERT_EQ(2u, conf.n_interfaces);
    EXPECT_STREQ("ath0200", iface(0).name);
    EXPECT_EQ(100, conf.param.adjusted_ratio);  // the ratio is clamped, the VLAN keeps the raw value
    EXPECT_EQ(200u, conf.param.exchange_vid[2]);
    EXPECT_EQ(9u, iface(0).eth_index);
    // The skipped member leaves nothing behind for the next one.
    EXPECT_STREQ("ath2", iface(1).name);
    EXPECT_EQ(0u, iface(1).eth_index);
    EXPECT_TRUE(iface(1).relay);
    // Without "param" no exchange VLAN is in use at all.
    ASSERT_EQ(config_parse_result::OK, parse(R"({"interfaces": {"ath0x": {"type": "2.4g", "exchange": 3}}})"));
    EXPECT_EQ(0u, conf.n_interfaces);
}

TEST_F(ConfigParseTest, LongNamesAreCutAndTerminated) {
    g_lynd_dgb_lvl = 2;
    ASSERT_EQ(config_parse_result::OK, parse(R"({"bridges": {"br-a-very-long-bridge-name": {}},
        "interfaces": {"an-interface-name-of-30-chars": {"type": "5g"}},
        "param": {"adjusted_ratio": 4094}})"));
    EXPECT_STREQ("br-a-very-long-", conf.bridges[0].name);
    EXPECT_STREQ("an-interface-na", iface(0).name);
    EXPECT_EQ(2u, host.count_logged("cut to"));
    ASSERT_EQ(config_parse_result::OK,
              parse(R"({"param": {"adjusted_ratio": 4094},
                        "interfaces": {"exchange-name-of-some-length": {"type": "5g", "exchange": 3}}})"));
    EXPECT_STREQ("exchange-name-o", iface(0).name);
    EXPECT_EQ('\0', iface(0).name[15]);
}

TEST_F(ConfigParseTest, LookupByNameFindsTheEarlierTwin) {
    ASSERT_EQ(config_parse_result::OK, parse(R"({"interfaces": {"ath1": {"type": "5g"}, "eth0": {"type": "ethernet"},
        "ath1-long-name-one": {"type": "5g"}, "ath1-long-name-two": {"type": "2.4g"}}})"));
    EXPECT_EQ(&conf.interfaces[2], config_find_interface_by_name(&conf, "ath1-long-name-"));
    EXPECT_EQ(&conf.interfaces[0], config_find_interface_by_name(&conf, "ath1"));
    EXPECT_EQ(nullptr, config_find_interface_by_name(&conf, "ath"));
    host.add_interface({"eth0", 3, {}});
    EXPECT_EQ(&conf.interfaces[1], config_find_interface_by_index(&conf, 3));
    EXPECT_EQ(nullptr, config_find_interface_by_index(&conf, 4));
    EXPECT_TRUE(host.logged("] if_indextoname"));
}

TEST_F(ConfigParseTest, BadDocumentsNeverCrash) {
    EXPECT_EQ(config_parse_result::BAD_JSON, parse(""));
    EXPECT_EQ(config_parse_result::BAD_JSON, parse("{\"enable\": "));
    EXPECT_EQ(config_parse_result::BAD_JSON, parse("[1, 2]"));
    EXPECT_EQ(config_parse_result::BAD_JSON, parse(std::string(100, '[')));
    ASSERT_EQ(config_parse_result::OK,
              parse(R"({"enable": 1, "bridges": 5, "interfaces": "eth0", "param": [1], "extra": {}})"));
    EXPECT_TRUE(conf.enable);
    EXPECT_EQ(0u, conf.n_bridges);
    EXPECT_EQ(0u, conf.param.period);
    EXPECT_EQ(3u, host.count_logged("is not an object, ignored"));
}

}  // namespace

namespace {

// The configuration the package installs must load as it stands.
TEST(ConfigShipped, PackagedDefaultLoads) {
    std::FILE* f = std::fopen(LYND_SOURCE_DIR "/openwrt/files/lynd.json", "rb");
    ASSERT_NE(nullptr, f);
    std::string text(LYND_CONFIG_MAX_SIZE, '\0');
    text.resize(std::fread(&text[0], 1, text.size(), f));
    std::fclose(f);
    static lynd_config conf;
    ASSERT_EQ(config_parse_result::OK, config_parse(&conf, text.data(), text.size()));
    EXPECT_TRUE(conf.enable);
    EXPECT_EQ(1u, conf.n_bridges);
    EXPECT_EQ(8u, conf.n_interfaces);
    EXPECT_EQ(conf.param.period % conf.param.short_period, 0u);
}

}  // namespace
