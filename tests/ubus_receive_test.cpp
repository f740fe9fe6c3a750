#include <string>
#include <vector>

#include "conf_builder.h"
#include "event/bridge_events.h"
#include "event/event_dispatch.h"
#include "event/event_hub.h"
#include "event/ubus_receive.h"
#include "event/wifi_events.h"
#include "sim_fixture.h"

namespace {

// What the bus handed on; the decoding of each kind, and the lines each logs,
// are pinned by the bus_and_netlink_events scenario and ubus_decode_test.
struct Heard {
    uint32_t type;
    size_t bridge_calls;  // how many bridge calls had been made by then
    configure_event cfg;
};
std::vector<Heard> g_heard;
lynd::SimBridge* g_bridge;

void hear(lynd_config*, event_listener*, uint32_t type, void* data) {
    Heard h{type, g_bridge->calls().size(), {}};
    if (type == EVENT_CONFIGURE)
        h.cfg = *static_cast<configure_event*>(data);
    g_heard.push_back(h);
}

class UbusReceiveTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        g_heard.clear();
        g_bridge = &bridge;
        add_bridge(conf, "br-lan");
        bridge.add_bridge("br-lan");
        event_init(&conf.ev);
        event_add_listener(&conf.ev, &listener);
        bridge.clear_calls();
    }
    void TearDown() override {
        event_free(&conf.ev);
        SimNodeTest::TearDown();
    }
    lynd_config conf{};
    event_listener listener{{nullptr, nullptr}, hear};
};

TEST_F(UbusReceiveTest, ConfigureReRegistersTheBridgesBeforeDelivery) {
    ASSERT_TRUE(bus.send("lynd.configure", R"({"mode": "AP", "hc_enable": 0})"));
    ASSERT_EQ(1u, g_heard.size());
    EXPECT_EQ(EVENT_CONFIGURE, g_heard[0].type);
    EXPECT_EQ(WORK_MODE_FAP, g_heard[0].cfg.mode);
    EXPECT_EQ(TRI_OFF, g_heard[0].cfg.hc_enable);
    EXPECT_EQ(1u, bridge.count_calls("bridgeSetEventInfo br-lan"));
    EXPECT_EQ(bridge.calls().size(), g_heard[0].bridge_calls);
}

TEST_F(UbusReceiveTest, UnknownAndForeignEventsAreLoggedAndDropped) {
    g_lynd_dgb_lvl = 2;
    bus.send("lynd.foo", R"({"a": 1})");
    EXPECT_TRUE(host.logged("<LYND_WARN>[event_ubus_receive_cb, "));
    EXPECT_TRUE(host.logged("] unknown subtype"));
    EXPECT_FALSE(bus.send("other.configure", "{}"));  // the pattern keeps it away
    lynd::BusMessage empty{nullptr, 0, false};
    event_ubus_receive_cb(&conf.ev, "lynX.configure", empty);
    EXPECT_TRUE(host.logged("] wrong type"));
    EXPECT_TRUE(g_heard.empty());
}

TEST_F(UbusReceiveTest, ConnectionFailuresAreFatal) {
    event_free(&conf.ev);
    event_wifi_free(&conf.ev);
    EXPECT_EQ(1, bus.free_count());
    bus.set_connect_result(10);
    EXPECT_FALSE(event_init(&conf.ev));
    EXPECT_TRUE(host.logged("<LYND_FATAL>[event_ubus_init, "));
    EXPECT_TRUE(host.logged("] ubus_connect"));
    EXPECT_EQ(-1, host.nl_fd(HYFI_EVENT_PROTOCOL));  // nothing after the bus started
    event_free(&conf.ev);
    bus.set_connect_result(0);
    bus.set_register_result(6);
    EXPECT_FALSE(event_init(&conf.ev));
    EXPECT_TRUE(host.logged("] ubus_register_event_handler: Permission denied"));
    event_free(&conf.ev);
    EXPECT_FALSE(bus.connected());
    bus.set_register_result(0);
    EXPECT_TRUE(event_init(&conf.ev));
}

}  // namespace
