#include <cstring>
#include <string>
#include <vector>

#include "bridge/port_inventory.h"
#include "conf_builder.h"
#include "core/queries.h"
#include "event/event_dispatch.h"
#include "event/event_hub.h"
#include "modules/module.h"
#include "sim_fixture.h"
#include "wlan/link_activation.h"

namespace {

class PortInventoryTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        bridge.add_bridge("br-lan");
    }
    void port(const std::string& name, unsigned ifindex, bool configured = true, bool path = true) {
        host.add_interface({name, ifindex, {2, 0, 0, 0, 0, static_cast<uint8_t>(ifindex)}});
        bridge.add_port("br-lan", name);
        if (configured)
            add_iface(conf, name.c_str(), IF_TYPE_5G, path);
    }
    lynd_config conf{};
    conf_interface* ports[LYND_MAX_PORTS] = {};
};

TEST_F(PortInventoryTest, WorkModeNeedsRouterAndController) {
    EXPECT_EQ(WORK_MODE_RE, lynd_get_work_mode());
    uci.set("sysmode.sysmode.mode", "router");
    uci.set("meshd.meshd.role", "agent");
    EXPECT_EQ(WORK_MODE_RE, lynd_get_work_mode());
    uci.set("meshd.meshd.role", "controller");
    EXPECT_EQ(WORK_MODE_FAP, lynd_get_work_mode());
    uci.set("sysmode.sysmode.mode", "repeater");
    EXPECT_EQ(WORK_MODE_RE, lynd_get_work_mode());
}

TEST_F(PortInventoryTest, ActiveBridgeAsksTheBridgeItself) {
    EXPECT_EQ(0, lynd_check_active_bridge(""));
    EXPECT_EQ(0, lynd_check_active_bridge(nullptr));
    EXPECT_TRUE(bridge.calls().empty());
    EXPECT_EQ(1, lynd_check_active_bridge("br-lan"));
    EXPECT_EQ(0, lynd_check_active_bridge("br-none"));
    bridge.find("br-lan")->active = false;
    EXPECT_EQ(0, lynd_check_active_bridge("br-lan"));
    EXPECT_EQ(bridge.count_calls("bridgeAllocTableBuf 12 "), bridge.count_calls("bridgeFreeTableBuf"));
    bridge.set_result("bridgeAllocTableBuf", -1);
    EXPECT_EQ(0, lynd_check_active_bridge("br-lan"));
    EXPECT_TRUE(host.logged("] bridgeAllocTableBuf"));
}

TEST_F(PortInventoryTest, UnknownPortsAreReportedAndLeftOutInBridgeOrder) {
    port("eth1", 3);
    port("veth9", 40, false);
    port("ath12", 12, true, false);
    port("ath02", 11);
    ASSERT_EQ(3, lynd_get_active_ports(&conf, "br-lan", ports));
    EXPECT_STREQ("eth1", ports[0]->name);
    EXPECT_STREQ("ath12", ports[1]->name);
    EXPECT_STREQ("ath02", ports[2]->name);
    EXPECT_TRUE(host.logged("] No such interface 40, name:veth9"));
    EXPECT_EQ(2, lynd_get_path_ports(&conf, "br-lan", ports));
    EXPECT_STREQ("ath02", ports[1]->name);
}

TEST_F(PortInventoryTest, PortListStopsAtTheQueryRoom) {
    for (unsigned i = 0; i < 130; i++)
        port("p" + std::to_string(i), 100 + i, i < LYND_MAX_INTERFACES);
    EXPECT_EQ(LYND_MAX_PORTS, lynd_get_active_ports(&conf, "br-lan", ports));
    EXPECT_STREQ("p127", ports[127]->name);
}

TEST_F(PortInventoryTest, FailedQueryGivesNoPorts) {
    port("eth1", 3);
    bridge.set_result("netlink_msg", 1);
    EXPECT_EQ(0, lynd_get_active_ports(&conf, "br-lan", ports));
    EXPECT_TRUE(host.logged("] netlink_msg"));
    EXPECT_EQ(bridge.count_calls("bridgeAllocTableBuf"), bridge.count_calls("bridgeFreeTableBuf"));
}

TEST_F(PortInventoryTest, ReplyLengthIsNeverTrusted) {
    uint8_t reply[KREL_MSG_HEADER + 2 * PORT_ENTRY_SIZE] = {};
    uint32_t claimed = 100 * PORT_ENTRY_SIZE, out[8];
    std::memcpy(reply + KREL_PAYLOAD_LEN_OFFSET, &claimed, 4);
    EXPECT_EQ(2u, lynd_read_port_entries(reply, sizeof reply, out, 8));
    EXPECT_EQ(1u, lynd_read_port_entries(reply, sizeof reply, out, 1));
    EXPECT_EQ(0u, lynd_read_port_entries(reply, KREL_MSG_HEADER - 1, out, 8));
}

TEST_F(PortInventoryTest, NorelayCheckSkipsRelayMatches) {
    port("ath12", 12);
    port("ath12b", 12);  // same index, configured non-relay
    conf.interfaces[1].relay = false;
    conf_interface* list[] = {&conf.interfaces[0], &conf.interfaces[1]};
    EXPECT_EQ(1, lynd_check_norelay_port(12, 2, list));
    EXPECT_EQ(0, lynd_check_norelay_port(12, 1, list));
    EXPECT_EQ(0, lynd_check_norelay_port(5, 2, list));
}

TEST_F(PortInventoryTest, HardwareAddressAndModuleLookup) {
    port("ath12", 12);
    uint8_t mac[6] = {};
    EXPECT_EQ(1, lynd_get_bridge_mac("ath12", mac));
    EXPECT_EQ(12, mac[5]);
    EXPECT_EQ(0, lynd_get_bridge_mac("nope0", mac));
    EXPECT_TRUE(host.logged("] ioctl"));

    lynd_list modules;
    lynd_list_init(&modules);
    lynd_module la{}, ps{};
    la.id = 0;
    ps.id = 1;
    lynd_list_add(&la.list, &modules);
    lynd_list_add(&ps.list, &modules);
    EXPECT_EQ(&la, lynd_get_mod_contex(&modules, 0));
    EXPECT_EQ(&ps, lynd_get_mod_contex(&modules, 1));
    EXPECT_EQ(nullptr, lynd_get_mod_contex(&modules, 2));
}

configure_event g_cfg;
int g_cfg_count;
void keep_configure(lynd_config*, event_listener*, uint32_t type, void* data) {
    if (type == EVENT_CONFIGURE) {
        g_cfg = *static_cast<configure_event*>(data);
        g_cfg_count++;
    }
}

TEST_F(PortInventoryTest, ConfigureRequestKeepsEverySwitch) {
    lynd_run_configure_bridge();  // no hub yet: nothing to reach
    event_init(&conf.ev);
    event_listener l{{nullptr, nullptr}, keep_configure};
    event_add_listener(&conf.ev, &l);
    l_ev = &conf.ev;
    g_cfg = configure_event{9, 9, 9, 9};
    g_cfg_count = 0;
    lynd_run_configure_bridge();
    l_ev = nullptr;
    event_free(&conf.ev);
    EXPECT_EQ(1, g_cfg_count);
    EXPECT_EQ(WORK_MODE_INVALID, g_cfg.mode);
    EXPECT_EQ(TRI_KEEP, g_cfg.hc_enable);
    EXPECT_EQ(TRI_KEEP, g_cfg.follow_re);
    EXPECT_EQ(TRI_KEEP, g_cfg.tcp_sp);
}

}  // namespace
