#include <cstring>
#include <string>

#include "node/controller.h"
#include "node/mesh_reply.h"
#include "bridge/switch_vlan.h"
#include "conf_builder.h"
#include "sim_fixture.h"

namespace {

const char* const kFind = "ubus -t 2 call map meshd {\"action\":\"findcontroller\"}";
const char* const kBhEth = "ubus -t 2 call map get_bh_eth";

std::string mac_of(const uint8_t* m) { return lynd_mac(m).s; }

std::string found(const std::string& reply) {
    uint8_t mac[6] = {9, 9, 9, 9, 9, 9};
    return lynd_parse_findcontroller_reply(reply.data(), reply.size(), mac) ? mac_of(mac) : "none";
}

bh_eth_reply bh_eth(const std::string& reply, char* name) {
    return lynd_parse_bh_eth_reply(reply.data(), reply.size(), name);
}

TEST(MeshReply, FindControllerNeedsRetZeroThenAMac) {
    EXPECT_EQ("a0:b1:02:03:04:f5", found("{\n\t\"ret\": 0,\n\t\"mac\": \"A0:b1:02:03:04:F5\"\n}"));
    EXPECT_EQ("a0:b1:00:00:00:00", found("\"ret\": 0, \"mac\": \"A0:B1:zz:03:04:05\""));
    EXPECT_EQ("00:00:00:00:00:00", found("\"ret\": 0, \"mac\":"));
    EXPECT_EQ("none", found("\"ret\": 1, \"mac\": \"A0:B1:02:03:04:05\""));
    EXPECT_EQ("none", found("\"mac\": \"A0:B1:02:03:04:05\", \"ret\": 0"));
    EXPECT_EQ("none", found(std::string(LYND_MESH_REPLY_MAX - 6, ' ') + "\"ret\": 0"));  // cut before the 0
    uint8_t mac[6];
    EXPECT_EQ(6, lynd_parse_mac_text("0a-0B-0c-0d-0e-0f", '-', mac));
    EXPECT_EQ(1, lynd_parse_mac_text("0a-0B-0c-0d-0e-0f", ':', mac));
}

TEST(MacText, EachLogLineKeepsItsSeparatorAndCase) {
    const uint8_t m[6] = {0x0a, 0xb1, 0x02, 0xf3, 0x04, 0xff};
    EXPECT_STREQ("0a:b1:02:f3:04:ff", lynd_mac(m).s);
    EXPECT_STREQ("0a-b1-02-f3-04-ff", lynd_mac(m, '-').s);
    EXPECT_STREQ("0A:B1:02:F3:04:FF", lynd_mac(m, ':', true).s);
    char text[LYND_MAC_TEXT_LEN];
    lynd_mac_text(m, text);
    EXPECT_STREQ("0a:b1:02:f3:04:ff", text);
}

TEST(MeshReply, BackhaulEthernetNeedsSuccessZero) {
    char name[LYND_BH_ETH_NAME_LEN] = {};
    for (const char* r : {"{ \"success\": 1 }", "{ \"success\": 99999999999999999999 }", "{\"success\": 0}", ""})
        EXPECT_EQ(bh_eth_reply::FAILED, bh_eth(r, name)) << r;
    EXPECT_EQ(bh_eth_reply::NO_NAME, bh_eth("{ \"success\": -00, \"eth_bh_if\": \"\" }", name));
    EXPECT_EQ(bh_eth_reply::NAME, bh_eth("{ \"success\": 0, \"eth_bh_if\": \"" + std::string(40, 'e') + "\" }", name));
    EXPECT_EQ(std::string(32, 'e'), name);
}

class ControllerTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        lynd_cap_mac_reset();
    }
    void TearDown() override {
        lynd_cap_mac_reset();
        SimNodeTest::TearDown();
    }
    void answer(const char* mac) { host.set_tool(kFind, std::string("{ \"ret\": 0, \"mac\": \"") + mac + "\" }"); }
    uint8_t mac[6] = {7, 7, 7, 7, 7, 7};
};

TEST_F(ControllerTest, TheControllerIsAskedUntilItAnswersAndThenRemembered) {
    host.set_tool(kFind, "{ \"ret\": 1 }");
    EXPECT_EQ(0, lynd_get_cap_mac(mac));
    EXPECT_EQ("07:07:07:07:07:07/00:00:00:00:00:00", mac_of(mac) + "/" + mac_of(g_cap_mac));
    answer("02:00:00:00:00:01");
    EXPECT_EQ(1, lynd_get_cap_mac(mac));
    answer("02:00:00:00:00:99");
    EXPECT_EQ(1, lynd_get_cap_mac(mac));
    EXPECT_EQ("02:00:00:00:00:01/02:00:00:00:00:01", mac_of(mac) + "/" + mac_of(g_cap_mac));
    EXPECT_EQ(2u, host.runs().size());
}

TEST_F(ControllerTest, OnlyLevelOneWithAKnownControllerHasItAsParent) {
    g_lynd_dgb_lvl = 5;
    answer("02:00:00:00:00:01");
    EXPECT_EQ(0, lynd_get_parent_mac(mac));  // no level at all
    for (const char* level : {"2", "", "21"}) {
        uci.set("tessel.tessel.level", level);
        EXPECT_EQ(0, lynd_get_parent_mac(mac)) << level;
    }
    EXPECT_TRUE(host.logged("] call: uci get tessel.tessel.level fail"));
    EXPECT_TRUE(host.runs().empty());  // never asked below level 1
    uci.set("tessel.tessel.level", "11");
    answer("xx");  // answers, but with no address
    EXPECT_EQ(0, lynd_get_parent_mac(mac));
    EXPECT_EQ("07:07:07:07:07:07", mac_of(mac));
    answer("02:00:00:00:00:01");
    EXPECT_EQ(1, lynd_get_parent_mac(mac));
    EXPECT_EQ("02:00:00:00:00:01", mac_of(mac));
    EXPECT_TRUE(host.logged("] call: ubus call map meshd '{\"action\":\"findcontroller\"}'"));
}

TEST_F(ControllerTest, TheBackhaulNameGoesToTheEthernetVlanRecordsOnly) {
    lynd_config conf{};
    conf.ts.enable = true;
    add_iface(conf, "eth1", IF_TYPE_ETH).switch_vlan_interface = true;
    conf_interface& v = add_iface(conf, "eth1.20", IF_TYPE_ETH);
    v.is_ts_vlan = v.switch_vlan_interface = true;
    add_iface(conf, "ath0.20", IF_TYPE_2G).is_ts_vlan = true;
    auto reply = [&](const std::string& body) { host.set_tool(kBhEth, "{\n\t\"success\": " + body + "\n}"); };
    reply("0,\n\t\"eth_bh_if\": \"eth1.4000-with-a-long-tail\"");
    EXPECT_EQ(1, lynd_update_switch_vlan_interface_primary_name(&conf));
    EXPECT_STREQ("eth1.4000-with-", v.primary_name);
    EXPECT_TRUE(!conf.interfaces[0].primary_name[0] && !conf.interfaces[2].primary_name[0]);
    for (const char* body : {"0,\n\t\"eth_bh_if\": \"eth5\"", "1,\n\t\"eth_bh_if\": \"eth1\""}) {
        reply(body);
        EXPECT_EQ(0, lynd_update_switch_vlan_interface_primary_name(&conf));
    }
    EXPECT_STREQ("eth1.4000-with-", v.primary_name);
    reply("0");
    EXPECT_EQ(1, lynd_update_switch_vlan_interface_primary_name(&conf));
    EXPECT_STREQ("", v.primary_name);
}

}  // namespace
