#include <cstdio>
#include <string>
#include <vector>

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

std::string members(const char* prefix, int n, const char* value) {
    std::string s;
    for (int i = 0; i < n; i++)
        s += ",\"" + (prefix + std::to_string(i)) + "\":" + value;
    return s;
}

TEST_F(ConfigParseTest, TablesKeepFileOrderUpToTheirLimits) {
    g_lynd_dgb_lvl = 2;
    ASSERT_EQ(config_parse_result::OK,
              parse(R"({"enable": 1, "bridges": {"br-lan": {"path_selection": "yes", "hc_enable": true,
                        "follow_re": 1, "tcp_sp": 0, "loop_avoidance": ""})" + members("br", 8, "{}") +
                    R"(}, "interfaces": {"x": {"type": "5g"})" + members("ath", 128, R"({"type": "5g"})") + "}}"));
    EXPECT_TRUE(conf.enable);
    ASSERT_EQ(8u, conf.n_bridges);
    EXPECT_EQ(BR_FLAG_PATH_SELECTION, conf.bridges[0].flags);
    EXPECT_EQ(PS_FLAG_HC | PS_FLAG_FOLLOW_RE, conf.bridges[0].ps_flags);
    EXPECT_STREQ("br6", conf.bridges[7].name);
    ASSERT_EQ(128u, conf.n_interfaces);
    EXPECT_STREQ("ath126", iface(127).name);
    EXPECT_EQ(7u, host.count_logged("<LYND_WARN>["));
    EXPECT_TRUE(host.logged("] br br-lan ps mode set to HC"));
    EXPECT_TRUE(host.logged("] too many bridges"));
    EXPECT_TRUE(host.logged("] too many interfaces"));
    // The surplus is named, and so is every value of the wrong type.
    EXPECT_TRUE(host.logged("] bridges.br7: ignored with the 0 after it: at most 8 bridges"));
    EXPECT_TRUE(host.logged("] interfaces.ath127: ignored with the 0 after it: at most 128 interfaces"));
    EXPECT_TRUE(host.logged("] bridges.br-lan.path_selection: \"yes\" is a string, not true or false; read as true"));
    EXPECT_TRUE(host.logged("] bridges.br-lan.loop_avoidance: \"\" is a string, not true or false; read as false"));
}

TEST_F(ConfigParseTest, InterfaceDefaultsAndConversions) {
    ASSERT_EQ(config_parse_result::OK, parse(R"({"interfaces": {"ath22": {"type": "6g"},
        "eth1": {"type": "ethernet", "nonrelay": true, "priority": 300, "compat_group": 258, "eth_index": 2},
        "ath0": {"type": "2.4g", "priority": -1, "class": "7"}, "eth0": {"type": "ethernet", "priority": null}}})"));
    const conf_interface& r = iface(0);
    EXPECT_EQ((std::vector<int>{IF_TYPE_6G, 2, 255, 1, 0}), (std::vector<int>{int(r.type), r.priority,
                                                                          r.compat_group, r.relay, r.path}));
    EXPECT_FALSE(iface(1).relay);
    EXPECT_EQ(10, iface(1).priority);  // 300 is 44 in 8 bits, then clamped
    EXPECT_EQ(2, iface(1).compat_group);
    EXPECT_EQ(2u, iface(1).eth_index);
    EXPECT_EQ(10, iface(2).priority);
    EXPECT_EQ(7, iface(2).if_class);
    EXPECT_EQ(0, iface(3).priority);  // a null member is present and reads as 0
}

TEST_F(ConfigParseTest, MissingOrUnknownTypeStopsTheLoad) {
    for (const char* type : {R"("type": "5G")", R"("type": 5)", R"("nonrelay": 1)"}) {
        EXPECT_EQ(config_parse_result::BAD_INTERFACE_TYPE,
                  parse(std::string(R"({"interfaces": {"eth0": {"type": "ethernet"}, "ath1": {)") + type + "}}}"));
        EXPECT_EQ(1u, conf.n_interfaces);
    }
    EXPECT_EQ(config_parse_result::BAD_INTERFACE_TYPE, parse(R"({"interfaces": {"eth0": 7}})"));
}

TEST_F(ConfigParseTest, ExchangeInterfacesAreNamedAfterTheirVlanOrSkipped) {
    ASSERT_EQ(config_parse_result::OK, parse(R"({"param": {"adjusted_ratio": 200}, "interfaces": {
        "ath0x": {"type": "2.4g", "exchange": 3}, "ath1x": {"type": "5g", "exchange": 2, "eth_index": 7},
        "ath2": {"type": "6g"}, "a-long-exchange-name": {"type": "5g", "exchange": 3}}})"));
    ASSERT_EQ(3u, conf.n_interfaces);
    EXPECT_STREQ("ath0200", iface(0).name);
    EXPECT_STREQ("ath2", iface(1).name);  // nothing of the skipped member is carried over
    EXPECT_EQ(0u, iface(1).eth_index);
    EXPECT_STREQ("a-long-exchange", iface(2).name);
    ASSERT_EQ(config_parse_result::OK, parse(R"({"interfaces": {"ath0x": {"type": "2.4g", "exchange": 3}}})"));
    EXPECT_EQ(0u, conf.n_interfaces);  // without "param" no exchange VLAN is in use
}

TEST_F(ConfigParseTest, LongNamesAreCutAndLookupFindsTheFirstOfTwins) {
    g_lynd_dgb_lvl = 2;
    ASSERT_EQ(config_parse_result::OK, parse(R"({"bridges": {"br-a-very-long-bridge-name": {}},
        "interfaces": {"ath1": {"type": "5g"}, "eth0": {"type": "ethernet"},
        "ath1-long-name-one": {"type": "5g"}, "ath1-long-name-two": {"type": "2.4g"}}})"));
    EXPECT_STREQ("br-a-very-long-", conf.bridges[0].name);
    EXPECT_STREQ("ath1-long-name-", iface(3).name);
    EXPECT_EQ(3u, host.count_logged("cut to"));
    EXPECT_EQ(&conf.interfaces[2], config_find_interface_by_name(&conf, "ath1-long-name-"));
    EXPECT_EQ(nullptr, config_find_interface_by_name(&conf, "ath"));
    host.add_interface({"eth0", 3, {}});
    EXPECT_EQ(&conf.interfaces[1], config_find_interface_by_index(&conf, 3));
    EXPECT_EQ(nullptr, config_find_interface_by_index(&conf, 4));
    EXPECT_TRUE(host.logged("<LYND_ERR>[config_find_interface_by_index, "));
    EXPECT_TRUE(host.logged("] if_indextoname"));
}

TEST_F(ConfigParseTest, BadDocumentsAndSectionsNeverCrash) {
    for (std::string text : {"", "{\"enable\": ", "null"})
        EXPECT_EQ(config_parse_result::BAD_JSON, parse(text)) << text;
    EXPECT_EQ(config_parse_result::BAD_JSON, parse(std::string(40, '[') + std::string(40, ']')));
    ASSERT_EQ(config_parse_result::OK, parse(R"({"enable": 1, "bridges": 5, "interfaces": "eth0", "param": [1]})"));
    EXPECT_TRUE(conf.enable);
    EXPECT_EQ(70u, conf.param.high_threshold);
    EXPECT_EQ(2u, host.count_logged("is not an object, ignored"));
}

// A document or a "param" that is valid JSON of another kind has no members:
// every lookup fails, so the daemon is off and every parameter its default.
TEST_F(ConfigParseTest, ValuesOfAnotherKindReadAsHavingNoMembers) {
    for (const char* top : {"[1, 2]", "7\n", "\"x\"", "true\n"}) {
        conf.enable = true;
        EXPECT_EQ(config_parse_result::OK, parse(top)) << top;
        EXPECT_FALSE(conf.enable) << top;
    }
    g_lynd_dgb_lvl = LYND_LVL_ERR;
    for (const char* param : {"null", "[]", "[60]", "\"x\"", "5"}) {
        ASSERT_EQ(config_parse_result::OK,
                  parse(std::string(R"({"enable": true, "interfaces": {"ath1x": {"type": "5g", "exchange": 3}},)") +
                        R"("param": )" + param + "}"))
            << param;
        const conf_param& p = conf.param;
        EXPECT_TRUE(p.low_threshold == 60 && p.high_threshold == 70 && p.busy_count_threshold == 3 &&
                    p.handle_count == 1 && p.idle_threshold == 10 && p.activate_pkts == 1)
            << param;
        EXPECT_TRUE(p.exchange_vid[2] == 50 && p.weaklink_threshold_rssi[1] == -85 && p.weaklink_threshold_rate[2] == 100)
            << param;
        ASSERT_EQ(1u, conf.n_interfaces) << param;
        EXPECT_STREQ("ath150", iface(0).name) << param;
    }
    EXPECT_TRUE(host.console_lines().empty());  // no ERR at the default level
}

}  // namespace
