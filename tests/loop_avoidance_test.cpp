#include <cstring>
#include <string>

#include "conf_builder.h"
#include "event/event_dispatch.h"
#include "event/event_hub.h"
#include "modules/loop_avoidance/bcast_port.h"
#include "modules/loop_avoidance/bridge_config.h"
#include "modules/loop_avoidance/loop_avoidance.h"
#include "sim/node/wlan_platform_sim.h"
#include "sim_fixture.h"

namespace {

// An extender: a wired uplink, two wireless uplinks and two access points.
class LoopAvoidanceTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        host.set_driver(&wlan);
        loop_avoidance_state_reset();
        const std::pair<const char*, unsigned> ifs[] = {{"br-lan", 2}, {"eth1", 3}, {"ath02", 11},
                                                        {"ath12", 12}, {"ath0", 20}, {"ath1", 21}};
        bridge.add_bridge("br-lan");
        for (const auto& i : ifs) {
            host.add_interface({i.first, i.second, {}});
            if (i.second != 2)
                bridge.add_port("br-lan", i.first);
        }
        add_bridge(conf, "br-lan");
        add_iface(conf, "eth1", IF_TYPE_ETH, true, false).compat_group = 2;
        add_iface(conf, "ath02", IF_TYPE_2G, true, false).priority = 1;
        add_iface(conf, "ath12", IF_TYPE_5G, true, false).priority = 3;
        add_iface(conf, "ath0", IF_TYPE_2G, false, true);
        add_iface(conf, "ath1", IF_TYPE_5G, false, true);
        conf.interfaces[0].priority = 6;
        wlan.set_link("ath02", lynd::SimLink{});
        wlan.set_link("ath12", lynd::SimLink{});
    }
    int setting(const char* port, int lynd::SimPortState::*field) {
        return bridge.find("br-lan")->port_state[port].*field;
    }
    std::string file() { return host.file(BCAST_PORT_FILE); }
    void link(const char* name, bool up) {
        lynd::SimLink l;
        l.up = up;
        wlan.set_link(name, l);
    }

    lynd_config conf{};
    lynd::SimWlan wlan{&host, &loop};
};

TEST_F(LoopAvoidanceTest, ModesProgramTheSwitchesAndHapActsAsFap) {
    conf.bridges[0].ps_flags = PS_FLAG_HC | PS_FLAG_FOLLOW_RE | PS_FLAG_TCP_SP;
    const struct {
        uint32_t mode;
        const char* name;
        int bridge_mode, hc, forwarding;
    } rows[] = {{WORK_MODE_RE, "RE", 0, 1, 0}, {WORK_MODE_FAP, "FAP", 1, 0, 1}, {WORK_MODE_HAP, "HAP", 1, 0, 1}};
    for (const auto& r : rows) {
        loop_avoidance_configure_bridge_with_mode(&conf, r.mode);
        const lynd::SimBridgeState& b = *bridge.find("br-lan");
        EXPECT_EQ(r.bridge_mode, b.bridge_mode) << r.name;
        EXPECT_EQ(r.hc, b.hc_enable) << r.name;
        EXPECT_EQ(r.forwarding, b.forwarding_mode) << r.name;
        EXPECT_EQ(1, b.tcp_sp);
        EXPECT_EQ(0, b.follow_re);  // follow-RE needs path selection on the bridge too
    }
    conf.bridges[0].flags |= BR_FLAG_PATH_SELECTION;
    loop_avoidance_configure_bridge_with_mode(&conf, WORK_MODE_RE);
    EXPECT_EQ(1, bridge.find("br-lan")->follow_re);
}

TEST_F(LoopAvoidanceTest, ThePickTakesTheBestLinkThenTheEarlierPortAndOnlyItsClass) {
    conf_interface* ports[] = {&conf.interfaces[0], &conf.interfaces[1], &conf.interfaces[2]};
    EXPECT_EQ(&conf.interfaces[2], loop_avoidance_pick_bcast_nonrelay_port(ports, 3, 0, &conf, 0));  // 13 > 11 > -4
    conf.interfaces[1].priority = 3;
    EXPECT_EQ(&conf.interfaces[1], loop_avoidance_pick_bcast_nonrelay_port(ports, 3, 0, &conf, 0));  // a tie
    link("ath02", false);
    link("ath12", false);
    EXPECT_EQ(&conf.interfaces[0], loop_avoidance_pick_bcast_nonrelay_port(ports, 3, 0, &conf, 0));  // all down
    conf.interfaces[0].if_class = 2;
    conf.interfaces[1].if_class = 2;
    conf.interfaces[2].if_class = 2;
    EXPECT_EQ(nullptr, loop_avoidance_pick_bcast_nonrelay_port(ports, 3, 0, &conf, 0));
    EXPECT_EQ(nullptr, loop_avoidance_pick_bcast_nonrelay_port(ports, 3, 1, &conf, 0));
    EXPECT_EQ(nullptr, loop_avoidance_pick_bcast_nonrelay_port(ports, 0, 0, &conf, 0));
    EXPECT_EQ(-10, lynd_get_link_prio(IF_TYPE_ETH));
    EXPECT_EQ(-10, lynd_get_link_prio(IF_TYPE_2G));
    link("ath12", true);
    EXPECT_EQ(10, lynd_get_link_prio(IF_TYPE_5G));
}

TEST_F(LoopAvoidanceTest, PathSelectionMovesTheBroadcastPortAndTakesOthersAway) {
    g_lynd_dgb_lvl = LYND_LVL_ERR;
    conf.interfaces[1].if_class = 1;  // ath02 broadcasts as class 1
    loop_avoidance_set_bcast_port(&conf);
    EXPECT_EQ(1, setting("ath02", &lynd::SimPortState::broadcast));
    loop_avoidance_set_bcast_port_by_ps(&conf, &conf.bridges[0], "ath12");
    EXPECT_EQ(0, setting("ath02", &lynd::SimPortState::broadcast));
    EXPECT_EQ(1, setting("ath12", &lynd::SimPortState::broadcast));
    loop_avoidance_set_bcast_port_by_ps(&conf, &conf.bridges[0], "ath1");  // a relay port
    EXPECT_TRUE(host.logged("] can not find ath1 for bcast_port"));
    lynd_config other{};
    add_bridge(other, "br-lan");
    loop_avoidance_set_bcast_port_by_ps(&conf, &other.bridges[0], "ath12");
    EXPECT_TRUE(host.logged("] not find bridge[br-lan]"));
    // The configuration writes the file and remembers it: a later pick of
    // the same port leaves it, a pick of another rewrites it.
    loop_avoidance_configure_bridge(&conf);
    EXPECT_EQ("ath12\n", file());
    int writes = host.writes(BCAST_PORT_FILE);
    loop_avoidance_set_bcast_port_by_ps(&conf, &conf.bridges[0], "ath12");
    EXPECT_EQ(writes, host.writes(BCAST_PORT_FILE));
}

class LoopAvoidanceEventsTest : public LoopAvoidanceTest {
protected:
    void SetUp() override {
        LoopAvoidanceTest::SetUp();
        uci.set("sysmode.sysmode.mode", "repeater");
        event_init(&conf.ev);
        module = loop_avoidance_init(&conf);
    }
    void TearDown() override {
        loop_avoidance_finit(module);
        event_free(&conf.ev);
        LoopAvoidanceTest::TearDown();
    }
    void bridge_msg(uint32_t type, const std::string& body = "") {
        bridge_event ev{type, body.size(), reinterpret_cast<const uint8_t*>(body.data())};
        event_run_cb(&conf.ev, EVENT_BRIDGE, &ev);
    }
    lynd_module* module = nullptr;
};

TEST_F(LoopAvoidanceEventsTest, ConfigureSwitchesStayForLaterEvents) {
    configure_event ev{WORK_MODE_HAP, TRI_ON, TRI_KEEP, TRI_OFF};
    conf.bridges[0].ps_flags = PS_FLAG_TCP_SP | PS_FLAG_FOLLOW_RE;
    event_run_cb(&conf.ev, EVENT_CONFIGURE, &ev);
    EXPECT_EQ(PS_FLAG_HC | PS_FLAG_FOLLOW_RE, conf.bridges[0].ps_flags);
    EXPECT_EQ(1, bridge.find("br-lan")->bridge_mode);
    link_state_event ls{1, {1, 0, 0, 0}};
    event_run_cb(&conf.ev, EVENT_LINK_STATE, &ls);  // back to the node's own mode, switches kept
    EXPECT_EQ(0, bridge.find("br-lan")->bridge_mode);
    EXPECT_EQ(1, bridge.find("br-lan")->hc_enable);
    ls.need_reconfig = 0;
    conf.bridges[0].preferred_ifindex = 12;
    bridge.clear_calls();
    event_run_cb(&conf.ev, EVENT_LINK_STATE, &ls);
    EXPECT_EQ(0u, bridge.count_calls("bridgeSetBridgeMode"));
    EXPECT_EQ((std::vector<std::string>{"bridgeSetHcPreferred br-lan 0"}), bridge.calls_matching("bridgeSetHcPreferred"));
    EXPECT_EQ(1u, bridge.count_calls("bridgeFlushHCTable"));
    EXPECT_EQ(1u, bridge.count_calls("bridgeFlushHipTable"));
}

TEST_F(LoopAvoidanceEventsTest, EachBridgeMessageTypeHasItsAction) {
    g_lynd_dgb_lvl = LYND_LVL_ERR;
    bridge_msg(5);
    EXPECT_EQ(5u, bridge.count_calls("bridgeSetIFBroadcast"));
    EXPECT_EQ(0u, bridge.count_calls("bridgeSetIFCompat"));
    bridge.clear_calls();
    bridge_msg(11);
    EXPECT_EQ(5u, bridge.count_calls("bridgeSetIFCompat"));
    EXPECT_EQ(1u, bridge.count_calls("bridgeFlushHCTable"));
    bridge.clear_calls();
    conf.brconf_mode = 1;
    bridge_msg(12);
    bridge_msg(3);
    EXPECT_TRUE(bridge.calls().empty());
    bridge_msg(7, "short");
    EXPECT_TRUE(host.logged("] fdb update of 5 bytes, 13 needed: dropped"));
    EXPECT_TRUE(wlan.actions().empty());
}

}  // namespace
