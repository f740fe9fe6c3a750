#include <gtest/gtest.h>

#include <cstring>

#include "conf_builder.h"
#include "config/ts_vlan.h"
#include "core/vlan_name.h"

namespace {

TEST(VlanName, DottedUndottedAndPlain) {
    char out[LYND_NAME_LEN];
    std::memset(out, 'x', sizeof out);
    EXPECT_EQ(1, lynd_get_vlan_name(out, "eth1", 20, true));
    EXPECT_STREQ("eth1.20", out);
    lynd_get_vlan_name(out, "eth1", 20, false);
    EXPECT_STREQ("eth120", out);
    lynd_get_vlan_name(out, "eth1", 0, true);
    EXPECT_STREQ("eth1", out);
    lynd_get_vlan_name(out, "a-long-interface", 4094, true);
    EXPECT_STREQ("a-long-interfac", out);
}

TEST(VlanName, HomeNameIsThePartBeforeTheLastDot) {
    char out[LYND_NAME_LEN];
    lynd_get_home_name(out, "br-lan.3");
    EXPECT_STREQ("br-lan", out);
    lynd_get_home_name(out, "eth0");
    EXPECT_STREQ("eth0", out);
    lynd_get_home_name(out, "a.b.c");
    EXPECT_STREQ("a.b", out);
    lynd_get_home_name(out, "a-name-of-twenty-chars.5");  // dot past the field: whole name, cut
    EXPECT_STREQ("a-name-of-twent", out);
}

TEST(VlanName, IdAfterTheLastDot) {
    const std::pair<const char*, uint32_t> cases[] = {
        {"eth0.100", 100}, {"eth0.4095", 4095}, {"eth0.4096", 0}, {"eth0.0", 0}, {"eth0", 0},
        {"eth0.1a", 0},    {"eth0.", 0},        {".7", 7},        {"eth0.99999999999", 0}, {"", 0},
        {"eth0.00100", 100},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.second, lynd_get_vlan_id(c.first)) << c.first;
}

TEST(VlanName, TrafficSeparationVlanOfAnInterface) {
    lynd_config conf{};
    add_iface(conf, "eth1.20", IF_TYPE_ETH).ts_vlan_id = 30;
    EXPECT_EQ(0u, lynd_get_ts_vlan(&conf, "eth1.20"));  // separation off
    conf.ts.enable = true;
    EXPECT_EQ(20u, lynd_get_ts_vlan(&conf, "eth1.20"));  // no policies: the name tells
    conf.ts.policy_count = 1;
    conf.ts.vlan_count = 1;
    conf.ts.vlan_ids[0] = 30;
    EXPECT_EQ(30u, lynd_get_ts_vlan(&conf, "eth1.20"));
    EXPECT_EQ(7u, lynd_get_ts_vlan(&conf, "ath0.7"));
    EXPECT_EQ(1, lynd_is_ts_vlan(&conf, 30));
    EXPECT_EQ(0, lynd_is_ts_vlan(&conf, 20));
}

}  // namespace
