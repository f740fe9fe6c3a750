#include <linux/netlink.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "conf_builder.h"
#include "core/counters.h"
#include "event/bridge_events.h"
#include "event/event_dispatch.h"
#include "event/event_hub.h"
#include "event/netlink_datagram.h"
#include "event/wifi_events.h"
#include "sim_fixture.h"

namespace {

std::string nlmsg(uint32_t len, uint16_t type, const std::string& body) {
    std::string m(16, '\0');
    std::memcpy(&m[0], &len, 4);
    std::memcpy(&m[4], &type, 2);
    return m + body;
}

std::string u16_bytes(uint16_t v) { return std::string(reinterpret_cast<const char*>(&v), 2); }

std::string iw_event(uint16_t len, uint16_t cmd) {
    std::string e = u16_bytes(len) + u16_bytes(cmd);
    return e + std::string(len > 4 ? len - 4 : 0, '\0');
}

// An RTM_NEWLINK for ifindex carrying one IFLA_WIRELESS attribute.
std::string newlink(uint32_t ifindex, const std::string& events, uint16_t type = NL_RTM_NEWLINK) {
    std::string ifi(16, '\0');
    std::memcpy(&ifi[4], &ifindex, 4);
    std::string attr = u16_bytes(static_cast<uint16_t>(4 + events.size())) + u16_bytes(NL_IFLA_WIRELESS) + events;
    attr.resize((attr.size() + 3) & ~size_t(3), '\0');
    std::string body = ifi + attr;
    return nlmsg(static_cast<uint32_t>(16 + body.size()), type, body);
}

std::vector<bridge_event> g_events;
std::vector<std::string> g_bodies;
void keep(lynd_config*, event_listener*, uint32_t type, void* data) {
    if (type != EVENT_BRIDGE)
        return;
    auto* be = static_cast<bridge_event*>(data);
    g_events.push_back(*be);
    g_bodies.emplace_back(reinterpret_cast<const char*>(be->data), be->data_len);
}

class NetlinkEventsTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        lynd_counters_reset();
        g_events.clear();
        g_bodies.clear();
        conf = lynd_config{};
        host.add_interface({"ath12", 12, {}});
        host.add_interface({"eth1", 3, {}});
        host.add_interface({"ath1", 21, {}});
        add_iface(conf, "ath12", IF_TYPE_5G);
        add_iface(conf, "eth1", IF_TYPE_ETH);
        add_iface(conf, "ath1", IF_TYPE_5G, false);
        add_bridge(conf, "br-lan");
        add_bridge(conf, "br-guest");
        add_bridge(conf, "br-off");
        for (const char* br : {"br-lan", "br-guest"}) {
            bridge.add_bridge(br);
            for (const char* p : {"ath12", "eth1", "ath1"})
                bridge.add_port(br, p);
        }
        bridge.add_bridge("br-off", false);
        event_init(&conf.ev);
        event_add_listener(&conf.ev, &listener);
        bridge.clear_calls();
    }
    void TearDown() override {
        event_free(&conf.ev);
        SimNodeTest::TearDown();
    }
    void hyfi(const std::string& datagram) {
        host.queue_datagram(HYFI_EVENT_PROTOCOL, datagram);
        ASSERT_TRUE(loop.fd_ready(host.nl_fd(HYFI_EVENT_PROTOCOL)));
    }
    void wifi(const std::string& datagram) {
        host.queue_datagram(0, datagram);
        ASSERT_TRUE(loop.fd_ready(host.nl_fd(0)));
    }
    lynd_config conf;
    event_listener listener{{nullptr, nullptr}, keep};
};

TEST_F(NetlinkEventsTest, RegistersWithActiveBridgesOnly) {
    lynd_config c{};
    add_bridge(c, "br-lan");
    add_bridge(c, "br-off");
    add_bridge(c, "br-guest");
    c.ev.hyfi_fd.fd = conf.ev.hyfi_fd.fd;
    c.ev.hyfi_port = conf.ev.hyfi_port;
    bridge.set_result("bridgeSetEventInfo", -1);
    event_bridge_set_event(&c);
    EXPECT_EQ(2u, bridge.count_calls("bridgeSetEventInfo"));
    EXPECT_EQ(1u, bridge.count_calls("bridgeSetEventInfo br-lan 4242 3 25"));
    EXPECT_EQ(2u, host.count_logged("] bridgeSetEventInfo"));
}

TEST_F(NetlinkEventsTest, CompleteFirstMessageIsDelivered) {
    std::string first = nlmsg(20, 3, "ABCD");
    hyfi(first + nlmsg(20, 7, "WXYZ"));
    ASSERT_EQ(1u, g_events.size());
    EXPECT_EQ(3u, g_events[0].msg_type);
    EXPECT_EQ(4u, g_events[0].data_len);
    EXPECT_EQ("ABCD", g_bodies[0]);
}

// The type is a field of its own beside the flags, on either byte order.
TEST_F(NetlinkEventsTest, TheTypeIsReadWhateverTheFlags) {
    nlmsghdr h{};
    h.nlmsg_len = 20;
    h.nlmsg_type = 3;
    h.nlmsg_flags = NLM_F_MULTI | NLM_F_ACK;  // 6: reading the wrong half shows
    h.nlmsg_seq = 0x01020304;
    h.nlmsg_pid = 4242;
    hyfi(std::string(reinterpret_cast<const char*>(&h), sizeof h) + "ABCD");
    ASSERT_EQ(1u, g_events.size());
    EXPECT_EQ(3u, g_events[0].msg_type);
    EXPECT_EQ("ABCD", g_bodies[0]);
}

TEST_F(NetlinkEventsTest, ShortOrLyingDatagramsAreDroppedWithALine) {
    hyfi(nlmsg(10, 0, "").substr(0, 10));
    EXPECT_TRUE(host.logged("] NLMSG_OK(nlh[10], len[10])"));
    hyfi(nlmsg(200, 3, std::string(84, 'x')));
    EXPECT_TRUE(host.logged("] NLMSG_OK(nlh[200], len[100])"));
    hyfi(nlmsg(8, 3, ""));
    EXPECT_TRUE(host.logged("] NLMSG_OK(nlh[8], len[16])"));
    EXPECT_TRUE(g_events.empty());
}

TEST_F(NetlinkEventsTest, ReceiveErrorRebuildsTheSocketAndRegistersAgain) {
    host.queue_recv_error(HYFI_EVENT_PROTOCOL, ENOBUFS);
    int old_fd = host.nl_fd(HYFI_EVENT_PROTOCOL);
    ASSERT_TRUE(loop.fd_ready(old_fd));
    EXPECT_TRUE(host.logged("] recvfrom: No buffer space available, reinit event bridge"));
    EXPECT_EQ(2, host.nl_opened(HYFI_EVENT_PROTOCOL));
    EXPECT_NE(old_fd, host.nl_fd(HYFI_EVENT_PROTOCOL));
    EXPECT_FALSE(loop.fd_ready(old_fd));
    EXPECT_EQ(2u, bridge.count_calls("bridgeSetEventInfo"));
    hyfi(nlmsg(16, 11, ""));
    EXPECT_EQ(1u, g_events.size());
}

TEST_F(NetlinkEventsTest, TearDownClosesTheBridgeSocketAndKeepsTheWirelessOne) {
    int wifi_fd = host.nl_fd(0);
    ASSERT_GE(wifi_fd, 0);
    event_free(&conf.ev);
    EXPECT_EQ(-1, host.nl_fd(HYFI_EVENT_PROTOCOL));
    EXPECT_EQ(wifi_fd, host.nl_fd(0));
    // A run that restarts closes it: the next one binds the same port id.
    event_wifi_free(&conf.ev);
    EXPECT_EQ(-1, host.nl_fd(0));
    event_init(&conf.ev);  // for the fixture's own tear-down
    EXPECT_GE(host.nl_fd(0), 0);
}

// A socket that cannot be had ends the start with its line, and what did
// start comes down with event_free: no socket of the run is left open.
TEST_F(NetlinkEventsTest, SocketFailuresAreFatalAndLeaveNothingOpen) {
    event_free(&conf.ev);
    event_wifi_free(&conf.ev);
    struct Case {
        int protocol;
        bool socket;  // else bind
        int err;
        const char* line;
    } cases[] = {
        {HYFI_EVENT_PROTOCOL, false, EADDRINUSE, "<LYND_FATAL>[event_bridge_init, "},
        {0, true, EPROTONOSUPPORT, "] Fatal(Protocol not supported): socket"},
        {0, false, EADDRINUSE, "<LYND_FATAL>[event_wifi_init, "},
    };
    for (const Case& c : cases) {
        host.clear_console();
        if (c.socket)
            host.set_nl_socket_error(c.protocol, c.err);
        else
            host.set_nl_bind_error(c.protocol, c.err);
        EXPECT_FALSE(event_init(&conf.ev)) << c.line;
        EXPECT_EQ(1u, host.count_logged(c.line)) << c.line;
        event_free(&conf.ev);
        EXPECT_EQ(-1, host.nl_fd(HYFI_EVENT_PROTOCOL)) << c.line;
        EXPECT_EQ(-1, host.nl_fd(0)) << c.line;
        host.set_nl_socket_error(c.protocol, 0);
        host.set_nl_bind_error(c.protocol, 0);
    }
    EXPECT_TRUE(event_init(&conf.ev));
}

TEST_F(NetlinkEventsTest, ExpiredStationFlushesItsPortOnEveryActiveBridge) {
    wifi(newlink(12, iw_event(20, 0x8C03) + iw_event(20, NL_IWEVEXPIRED)));
    EXPECT_EQ((std::vector<std::string>{"bridgeDelFdbByName br-lan ath12", "bridgeDelFdbByName br-guest ath12"}),
              bridge.calls_matching("bridgeDelFdbByName"));
    EXPECT_TRUE(g_events.empty());
}

TEST_F(NetlinkEventsTest, OnlyExpiriesOnConfiguredRelayPathsFlush) {
    wifi(newlink(12, iw_event(20, 0x8C03)));                 // a station registered
    wifi(newlink(21, iw_event(20, NL_IWEVEXPIRED)));         // not a path
    wifi(newlink(12, iw_event(20, NL_IWEVEXPIRED), 17));     // RTM_DELLINK
    conf.interfaces[0].relay = false;
    wifi(newlink(12, iw_event(20, NL_IWEVEXPIRED)));         // not a relay port
    EXPECT_TRUE(bridge.calls_matching("bridgeDelFdbByName").empty());
    EXPECT_FALSE(host.logged("<LYND_ERR>"));
    wifi(newlink(99, iw_event(20, NL_IWEVEXPIRED)));         // unknown index
    EXPECT_TRUE(host.logged("] config_index_to_name fail"));
}

TEST_F(NetlinkEventsTest, BadEventLengthEndsTheWalkKeepingWhatCameBefore) {
    wifi(newlink(12, iw_event(20, NL_IWEVEXPIRED) + iw_event(4, 0x8C03) + std::string(4, '\0')));
    EXPECT_TRUE(host.logged("] Event len is not available"));
    EXPECT_EQ(2u, bridge.calls_matching("bridgeDelFdbByName").size());
}

TEST_F(NetlinkEventsTest, WalksStopAtTheEndOfWhatArrived) {
    std::string ev = iw_event(20, NL_IWEVEXPIRED);
    auto* p = reinterpret_cast<const uint8_t*>(ev.data());
    EXPECT_TRUE(__isDisassociateEvent(p, ev.size()));
    EXPECT_FALSE(__isDisassociateEvent(p, ev.size() - 1));  // record runs past the end
    EXPECT_FALSE(__isDisassociateEvent(p, 7));
    // Attributes: zero length, length past the end, a later one replacing.
    std::string zero = u16_bytes(0) + u16_bytes(NL_IFLA_WIRELESS) + ev;
    EXPECT_FALSE(nl_wifi_parse_attrs(reinterpret_cast<const uint8_t*>(zero.data()), zero.size()));
    std::string two = u16_bytes(24) + u16_bytes(NL_IFLA_WIRELESS) + ev + u16_bytes(24) + u16_bytes(NL_IFLA_WIRELESS) + iw_event(20, 1);
    EXPECT_FALSE(nl_wifi_parse_attrs(reinterpret_cast<const uint8_t*>(two.data()), two.size()));
    EXPECT_TRUE(nl_wifi_parse_attrs(reinterpret_cast<const uint8_t*>(two.data()), two.size() - 1));
}

}  // namespace

namespace {

// Another process bound the daemon's process id as its port first: the
// daemon binds under the id the kernel picks and tells the bridges that one.
TEST_F(NetlinkEventsTest, APortIdTakenFirstIsNoObstacle) {
    event_free(&conf.ev);
    event_wifi_free(&conf.ev);
    ASSERT_TRUE(host.squat_nl_port(HYFI_EVENT_PROTOCOL, 4242));
    ASSERT_TRUE(host.squat_nl_port(0, 4242));
    EXPECT_FALSE(host.squat_nl_port(0, 4242));  // one holder per id
    bridge.clear_calls();
    event_init(&conf.ev);
    event_add_listener(&conf.ev, &listener);
    uint32_t port = host.nl_port(host.nl_fd(HYFI_EVENT_PROTOCOL));
    EXPECT_NE(4242u, port);
    EXPECT_NE(0u, port);
    EXPECT_EQ(port, conf.ev.hyfi_port);
    EXPECT_EQ(1u, bridge.count_calls("bridgeSetEventInfo br-lan " + std::to_string(static_cast<int>(port)) + " 3 25"));
    EXPECT_NE(4242u, host.nl_port(host.nl_fd(0)));
    hyfi(nlmsg(20, 3, "ABCD"));
    EXPECT_EQ(1u, g_events.size());
}

TEST_F(NetlinkEventsTest, DatagramsNotFromTheKernelAreDroppedAndCounted) {
    host.queue_datagram(HYFI_EVENT_PROTOCOL, nlmsg(20, 3, "ABCD"), 31337);
    host.queue_datagram(HYFI_EVENT_PROTOCOL, nlmsg(20, 3, "WXYZ"));
    ASSERT_TRUE(loop.fd_ready(host.nl_fd(HYFI_EVENT_PROTOCOL)));
    ASSERT_EQ(1u, g_events.size());
    EXPECT_EQ("WXYZ", g_bodies[0]);
    host.queue_datagram(0, newlink(12, iw_event(20, NL_IWEVEXPIRED)), 0x80000001u);
    ASSERT_TRUE(loop.fd_ready(host.nl_fd(0)));
    EXPECT_TRUE(bridge.calls_matching("bridgeDelFdbByName").empty());
    EXPECT_EQ(2u, g_counters.foreign_datagrams);
    EXPECT_EQ(0u, g_counters.malformed_datagrams);
    // The first and then every power of two: a flood does not flood the log.
    EXPECT_EQ(1u, host.count_logged("netlink 26: dropped a datagram from port 31337, not the kernel (1 so far)"));
    for (int i = 0; i < 6; i++)
        host.queue_datagram(HYFI_EVENT_PROTOCOL, nlmsg(20, 3, "ABCD"), 31337);
    ASSERT_TRUE(loop.fd_ready(host.nl_fd(HYFI_EVENT_PROTOCOL)));
    EXPECT_EQ(4u, host.count_logged("dropped a datagram from port"));  // 1, 2, 4 and 8 of 8
    EXPECT_EQ(8u, g_counters.foreign_datagrams);
}

// A rebuild that fails at run time leaves the daemon running and tries
// again, each pause twice the last, up to a minute.
TEST_F(NetlinkEventsTest, AFailedRebuildIsRetriedWithGrowingPauses) {
    host.set_nl_socket_error(HYFI_EVENT_PROTOCOL, EMFILE);
    host.queue_recv_error(HYFI_EVENT_PROTOCOL, ENOBUFS);
    ASSERT_TRUE(loop.fd_ready(host.nl_fd(HYFI_EVENT_PROTOCOL)));
    EXPECT_TRUE(host.logged("] socket: Too many open files, netlink 26 rebuilt again in 1000 ms"));
    EXPECT_EQ(-1, host.nl_fd(HYFI_EVENT_PROTOCOL));
    event_bridge_set_event(&conf);  // a "configure" meanwhile: no socket to name
    EXPECT_EQ(0u, bridge.count_calls("bridgeSetEventInfo"));
    loop.advance(1000);
    EXPECT_TRUE(host.logged("rebuilt again in 2000 ms"));
    loop.advance(2000);
    EXPECT_TRUE(host.logged("rebuilt again in 4000 ms"));
    EXPECT_EQ(3u, g_counters.netlink_rebuild_failures);
    host.set_nl_socket_error(HYFI_EVENT_PROTOCOL, 0);
    loop.advance(4000);
    ASSERT_GE(host.nl_fd(HYFI_EVENT_PROTOCOL), 0);
    EXPECT_EQ(2u, bridge.count_calls("bridgeSetEventInfo"));
    hyfi(nlmsg(16, 11, ""));
    EXPECT_EQ(1u, g_events.size());
    loop.advance(120000);
    EXPECT_EQ(3u, g_counters.netlink_rebuild_failures);
}

}  // namespace
