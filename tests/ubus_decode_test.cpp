#include <json-c/json.h>

#include <string>
#include <vector>

#include "event/ubus_decode.h"
#include "event/ubus_policy.h"
#include "sim/node/bus_json.h"
#include "sim_fixture.h"

namespace {

using lynd::BusAttr;

// Parses text the way `ubus send` would build the message, then with policy.
class UbusDecodeTest : public SimNodeTest {
protected:
    void TearDown() override {
        if (obj_ != nullptr)
            json_object_put(obj_);
        SimNodeTest::TearDown();
    }
    int parse(const char* text, const lynd::bus_policy* policy, int n, const BusAttr** tb) {
        if (obj_ != nullptr)
            json_object_put(obj_);
        obj_ = json_tokener_parse(text);
        EXPECT_TRUE(lynd::bus_message_from_json(obj_, &m_)) << text;
        return lynd::bus_parse(policy, n, tb, found_, m_.msg);
    }
    configure_event configure(const char* text) {
        const BusAttr* tb[__CONFIGURE_MAX];
        EXPECT_EQ(0, parse(text, configure_policy, __CONFIGURE_MAX, tb));
        configure_event out;
        ubus_configure_from(tb, &out);
        return out;
    }
    link_state_event link_state(const char* text) {
        const BusAttr* tb[__LINK_STATE_MAX];
        EXPECT_EQ(0, parse(text, link_state_policy, __LINK_STATE_MAX, tb));
        link_state_event out;
        ubus_link_state_from(tb[LINK_STATE_LINK_STATE], hub_, &out);
        return out;
    }
    bool debug(const char* text, debug_event* out) {
        const BusAttr* tb[__DEBUG_MAX];
        EXPECT_EQ(0, parse(text, debug_policy, __DEBUG_MAX, tb));
        return ubus_debug_from(tb, out);
    }

    uint32_t hub_[4] = {};

private:
    json_object* obj_ = nullptr;
    lynd::BusJsonMessage m_;
    BusAttr found_[__DEBUG_MAX + __CONFIGURE_MAX + __LINK_STATE_MAX];
};

TEST_F(UbusDecodeTest, ConfigureModesAndSwitches) {
    g_lynd_dgb_lvl = 2;
    configure_event c = configure(R"({"mode": "AP", "hc_enable": 0})");
    EXPECT_EQ(WORK_MODE_FAP, c.mode);
    EXPECT_EQ(TRI_OFF, c.hc_enable);
    EXPECT_EQ(TRI_KEEP, c.follow_re);
    EXPECT_EQ(TRI_KEEP, c.tcp_sp);
    EXPECT_TRUE(host.logged("] work mode: 1"));

    host.clear_console();
    c = configure(R"({"hc_enable": 5, "follow_re": 1, "tcp_sp": true})");
    EXPECT_EQ(WORK_MODE_INVALID, c.mode);
    EXPECT_EQ(TRI_KEEP, c.hc_enable);
    EXPECT_EQ(TRI_ON, c.follow_re);
    EXPECT_EQ(TRI_KEEP, c.tcp_sp);  // a boolean is not an int32
    EXPECT_FALSE(host.logged("work mode"));

    const std::pair<const char*, uint32_t> modes[] = {
        {R"({"mode": "RE"})", WORK_MODE_RE}, {R"({"mode": "FAP"})", WORK_MODE_FAP},
        {R"({"mode": "HAP"})", WORK_MODE_HAP}, {R"({"mode": "re"})", WORK_MODE_INVALID},
        {R"({"mode": 1})", WORK_MODE_INVALID}};
    for (const auto& m : modes)
        EXPECT_EQ(m.second, configure(m.first).mode) << m.first;
}

// Bits 4 to 7 are the four ports; a change from what the hub holds asks
// for a reconfiguration. An absent attribute: nothing known, nothing changed.
TEST_F(UbusDecodeTest, LinkStateBitsAndChanges) {
    const std::pair<const char*, std::vector<uint32_t>> cases[] = {
        {R"({"link_state": 48})", {1, 1, 1, 0, 0}}, {R"({"link_state": 48})", {0, 1, 1, 0, 0}},
        {R"({"link_state": 1})", {1, 0, 0, 0, 0}},  {R"({"link_state": 128})", {1, 0, 0, 0, 1}},
        {R"({"other": 1})", {0, 0, 0, 0, 0}},
    };
    for (const auto& c : cases) {
        link_state_event ls = link_state(c.first);
        EXPECT_EQ(c.second, (std::vector<uint32_t>{ls.need_reconfig, ls.eth_state[0], ls.eth_state[1],
                                                   ls.eth_state[2], ls.eth_state[3]}))
            << c.first;
    }
    EXPECT_EQ(1u, hub_[3]);
}

TEST_F(UbusDecodeTest, EmptyOrMalformedMessagesFailToParse) {
    const BusAttr* tb[__LINK_STATE_MAX];
    EXPECT_EQ(-1, parse("{}", link_state_policy, __LINK_STATE_MAX, tb));
    BusAttr a{"link_state", lynd::BusType::INT32, nullptr, 48, 0};
    BusAttr found[__LINK_STATE_MAX];
    EXPECT_EQ(-1, lynd::bus_parse(link_state_policy, 1, tb, found, lynd::BusMessage{&a, 1, true}));
    EXPECT_EQ(nullptr, tb[0]);
}

TEST_F(UbusDecodeTest, FirstAttributeOfTheRightTypeWins) {
    BusAttr attrs[] = {{"link_state", lynd::BusType::STRING, "48", 0, 0},
                       {"link_state", lynd::BusType::INT32, nullptr, 16, 0},
                       {"link_state", lynd::BusType::INT32, nullptr, 32, 0}};
    const BusAttr* tb[__LINK_STATE_MAX];
    BusAttr found[__LINK_STATE_MAX];
    ASSERT_EQ(0, lynd::bus_parse(link_state_policy, 1, tb, found, lynd::BusMessage{attrs, 3, false}));
    ASSERT_NE(nullptr, tb[0]);
    EXPECT_EQ(16, tb[0]->i);
}

TEST_F(UbusDecodeTest, DebugPrecedenceAndClamps) {
    const struct {
        const char* text;
        uint32_t subtype, value;  // the value, or the mode of the two mode requests
    } cases[] = {
        {R"({"dbg_level": 9})", DBG_LEVEL, 6},           {R"({"dbg_level": -1})", DBG_LEVEL, 6},
        {R"({"dump": 1, "dbg_level": 3})", DBG_LEVEL, 3}, {R"({"dump": 0, "overload": 7})", DBG_DUMP, TRI_OFF},
        {R"({"overload": 7, "brconf": 1})", DBG_OVERLOAD, 7},
        {R"({"brconf": 257, "pathsel": 1})", DBG_PATHSEL_MODE, 1}, {R"({"brconf": 257})", DBG_BRCONF_MODE, 1},
    };
    g_lynd_dgb_lvl = 4;
    for (const auto& c : cases) {
        debug_event d;
        ASSERT_TRUE(debug(c.text, &d)) << c.text;
        EXPECT_EQ(c.subtype, d.subtype) << c.text;
        bool mode = c.subtype == DBG_PATHSEL_MODE || c.subtype == DBG_BRCONF_MODE;
        EXPECT_EQ(c.value, mode ? static_cast<uint32_t>(d.mode) : d.value) << c.text;
    }
    EXPECT_TRUE(host.logged("] Set pathsel_mode to 1"));
}

TEST_F(UbusDecodeTest, DebugPathInfo) {
    debug_event d;
    ASSERT_TRUE(debug(R"({"path": 1, "ifname": "ath12", "txrate": 300})", &d));
    EXPECT_EQ(DBG_SET_PATH_INFO, d.subtype);
    EXPECT_STREQ("ath12", d.path.ifname);
    EXPECT_EQ(300, d.path.txrate);
    EXPECT_EQ(0, d.path.rxrate);
    EXPECT_EQ(0, d.path.rssi);
    EXPECT_EQ(0u, d.path.txbytes);

    ASSERT_TRUE(debug(R"({"path": 1, "ifname": "a-name-longer-than-15", "rssi": 65535, "noise": -95,
                         "rxrate": 70000, "txbytes": -1})",
                      &d));
    EXPECT_STREQ("a-name-longer-t", d.path.ifname);
    EXPECT_EQ(-1, d.path.rssi);
    EXPECT_EQ(-95, d.path.noise);
    EXPECT_EQ(70000 & 0xffff, d.path.rxrate);
    EXPECT_EQ(0xffffffffu, d.path.txbytes);

    ASSERT_TRUE(debug(R"({"path": 0, "ifname": "ath02"})", &d));
    EXPECT_EQ(DBG_CLEAN_PATH_INFO, d.subtype);
    EXPECT_STREQ("ath02", d.path.ifname);
}

TEST_F(UbusDecodeTest, DebugWithoutAKnownRequestIsDropped) {
    debug_event d;
    g_lynd_dgb_lvl = 2;
    EXPECT_FALSE(debug(R"({"path": 2, "ifname": "ath12"})", &d));
    EXPECT_FALSE(debug(R"({"ifname": "ath12", "level": 3})", &d));
    EXPECT_EQ(2u, host.count_logged("<LYND_WARN>"));
}

}  // namespace
