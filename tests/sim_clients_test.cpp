// The simulated node closes the loop: what the daemon writes into the hc
// table moves the clients' traffic, and the bridge refills what it flushes,
// each behaviour of its own only as far as the scenario lets it.
#include <cstring>
#include <string>

#include "bridge/table_entries.h"
#include "event/bridge_events.h"
#include "event/netlink_datagram.h"
#include "sim/node/sim_clients.h"
#include "sim/node/wlan_platform_sim.h"
#include "sim_fixture.h"
#include "wlan/wlan.h"

namespace {

class SimClientsTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        host.set_driver(&wlan);
        host.add_interface({"br-lan", 1, {0x02, 0, 0, 0, 0, 0x01}});
        host.add_interface({"ath02", 2, {}});
        host.add_interface({"ath12", 12, {}});
        host.add_interface({"ath1", 21, {}});
        bridge.add_bridge("br-lan");
        for (const char* p : {"ath1", "ath02", "ath12"})
            bridge.add_port("br-lan", p);
        lynd::SimLink l;
        l.txrate = 400;
        l.util = 20;
        wlan.set_link("ath02", l);
        wlan.set_link("ath12", l);
        phone.mac[5] = 0xa1;
        phone.port = "ath1";
        phone.mbps = 100;
        phone.join_ms = 5000;
        phone.leave_ms = 50000;
        model.paths = {"ath12", "ath02"};
    }
    const hc_entry* entry(uint8_t last) {
        for (const auto& e : bridge.find("br-lan")->hc)
            if (e.mac[5] == last)
                return &e;
        return nullptr;
    }
    uint64_t tx_bytes(const char* link) { return wlan.link(link)->tx_bytes; }
    // Type-3 messages waiting on fd, each checked for its size.
    int announcements(int fd) {
        int n = 0;
        uint8_t buf[256];
        uint32_t sender = 0;
        for (long len; (len = host.nl_recv(fd, buf, sizeof buf, &sender)) > 0; n++) {
            EXPECT_EQ(16 + HC_ENTRY_SIZE, len);
            EXPECT_EQ(3, nl_first_msg_type(buf, static_cast<size_t>(len)));
        }
        return n;
    }
    // Registered for events, with the phone on the table and its messages read.
    int joined_and_heard() {
        int fd = host.nl_socket(HYFI_EVENT_PROTOCOL);
        EXPECT_EQ(0, bridge.bridgeSetEventInfo("br-lan", 4242, 3, 25));
        clients.start({phone}, model);
        loop.advance(10000);
        EXPECT_EQ(2, announcements(fd)) << "the node's own entry and the join";
        return fd;
    }
    void flush_and_wait() {
        ASSERT_EQ(0, bridge.bridgeSetHcPreferredAndFlushHCTable("br-lan", 12));
        loop.advance(2000);
    }

    lynd::SimWlan wlan{&host, &loop};
    lynd::SimClients clients{&host, &bridge, &wlan, &loop};
    lynd::SimClient phone;
    lynd::SimHcModel model;
};

TEST_F(SimClientsTest, AJoinedClientRidesTheFirstPathAndMovesWithAWrite) {
    clients.start({phone}, model);
    ASSERT_NE(nullptr, entry(0x01));  // the node's own entry: the bridge is its source
    EXPECT_EQ(1u, entry(0x01)->src_port);
    EXPECT_EQ(2u, entry(0x01)->dst_port);  // the first configured path in port order
    EXPECT_EQ(nullptr, entry(0xa1));
    loop.advance(10000);
    ASSERT_NE(nullptr, entry(0xa1));
    EXPECT_EQ(21u, entry(0xa1)->src_port);
    EXPECT_EQ("ath02", clients.path_of(phone.mac));
    EXPECT_EQ(5u * 100u * 125000u, tx_bytes("ath02"));
    uint8_t util = 0;
    ASSERT_TRUE(wlan_get_channel_utilization("ath02", &util, 1));  // its own 20 % and a quarter of 400 Mbps
    EXPECT_EQ(45, util);

    ASSERT_EQ(0, bridge.bridgeSetHCTableEntries("br-lan", phone.mac, phone.mac, "ath1", "ath12"));
    EXPECT_EQ("ath12", clients.path_of(phone.mac));
    ASSERT_EQ(1u, clients.moves().size());
    EXPECT_EQ("ath02", clients.moves()[0].from);
    EXPECT_EQ("ath12", clients.moves()[0].to);
    loop.advance(2000);
    EXPECT_EQ(2u * 100u * 125000u, tx_bytes("ath12"));
    EXPECT_EQ(5u * 100u * 125000u, tx_bytes("ath02"));  // the old path carries nothing more
}

TEST_F(SimClientsTest, TableReadsCountBytesSinceTheLastRead) {
    clients.start({phone}, model);
    loop.advance(8000);
    int count = LYND_MAX_CLIENTS;
    hc_entry table[LYND_MAX_CLIENTS];
    ASSERT_EQ(0, bridge.bridgeTableAction("br-lan", LYND_TABLE_HC, &count, table, 0));
    ASSERT_EQ(2, count);
    EXPECT_EQ(8u * 100u * 125000u, table[1].bytes);  // the whole run so far: no earlier read
    EXPECT_EQ(0u, table[0].bytes);
    loop.advance(60000);  // gone at 50 s: it sent for 42 s more
    count = LYND_MAX_CLIENTS;
    ASSERT_EQ(0, bridge.bridgeTableAction("br-lan", LYND_TABLE_HC, &count, table, 0));
    EXPECT_EQ(0u, table[1].bytes);  // after leaving it sends nothing, yet keeps its entry
    EXPECT_TRUE(bridge.find("br-lan")->fdb.empty());
}

TEST_F(SimClientsTest, AFlushedTableRefillsTowardsThePreferredPortAndIsAnnounced) {
    int fd = joined_and_heard();
    ASSERT_EQ(0, bridge.bridgeSetHcPreferredAndFlushHCTable("br-lan", 12));
    EXPECT_TRUE(bridge.find("br-lan")->hc.empty());
    loop.advance(1000);
    ASSERT_NE(nullptr, entry(0xa1));
    EXPECT_EQ(12u, entry(0xa1)->dst_port);
    EXPECT_EQ(12u, entry(0x01)->dst_port);
    EXPECT_EQ(2, announcements(fd));  // both entries again at the refill
}

TEST_F(SimClientsTest, TheOwnEntryWaitsForAPathThenFollowsThePreferredPort) {
    model.paths.clear();
    clients.start({}, model);
    EXPECT_EQ(nullptr, entry(0x01));  // nowhere to go yet
    ASSERT_EQ(0, bridge.bridgeSetHcPreferred("br-lan", 12));
    ASSERT_NE(nullptr, entry(0x01));
    EXPECT_EQ(12u, entry(0x01)->dst_port);
    ASSERT_EQ(0, bridge.bridgeSetHcPreferred("br-lan", 2));
    EXPECT_EQ(2u, entry(0x01)->dst_port);
    EXPECT_TRUE(clients.moves().empty());  // the bridge's doing, not a write of the daemon
}

TEST_F(SimClientsTest, SwitchedOffTheOwnEntryNeverAppears) {
    model.own_entry = false;
    clients.start({phone}, model);
    EXPECT_EQ(nullptr, entry(0x01));
    ASSERT_EQ(0, bridge.bridgeSetHcPreferred("br-lan", 12));
    EXPECT_EQ(nullptr, entry(0x01));
    loop.advance(10000);
    flush_and_wait();
    EXPECT_NE(nullptr, entry(0xa1));  // the refill still brings the client back
    EXPECT_EQ(nullptr, entry(0x01));
}

TEST_F(SimClientsTest, SwitchedOffRefillsLeaveAFlushedTableEmpty) {
    model.refill = false;
    clients.start({phone}, model);
    loop.advance(10000);
    flush_and_wait();
    EXPECT_TRUE(bridge.find("br-lan")->hc.empty());
    loop.advance(1000);
    EXPECT_EQ(0u, tx_bytes("ath12"));  // with no entry the phone's load rides nowhere
}

TEST_F(SimClientsTest, SwitchedOffAnnouncementsRefillQuietly) {
    model.announce_refills = false;
    int fd = joined_and_heard();
    flush_and_wait();
    EXPECT_NE(nullptr, entry(0xa1));
    EXPECT_NE(nullptr, entry(0x01));
    EXPECT_EQ(0, announcements(fd));
}

TEST_F(SimClientsTest, ABridgeWithHcOffNeitherRefillsNorAnnounces) {
    int fd = host.nl_socket(HYFI_EVENT_PROTOCOL);
    ASSERT_EQ(0, bridge.bridgeSetEventInfo("br-lan", 4242, 3, 25));
    ASSERT_EQ(0, bridge.bridgeSetHcEnable("br-lan", 0));
    clients.start({phone}, model);
    loop.advance(10000);
    ASSERT_NE(nullptr, entry(0xa1));  // filed, so its traffic still has a path
    EXPECT_EQ(0, announcements(fd));
    flush_and_wait();
    EXPECT_TRUE(bridge.find("br-lan")->hc.empty());
    EXPECT_EQ(0, announcements(fd));
}

TEST_F(SimClientsTest, AnAnnouncedEntryIsHeldAndReplacesTheOldOne) {
    clients.start({}, model);
    hc_entry e{};
    e.mac[5] = 0xb1;
    e.dst_port = 12;
    e.src_port = 21;
    clients.announced(e);
    ASSERT_NE(nullptr, entry(0xb1));
    EXPECT_EQ(12u, entry(0xb1)->dst_port);
    e.dst_port = 2;
    clients.announced(e);
    EXPECT_EQ(2u, entry(0xb1)->dst_port);
    EXPECT_EQ(2u, bridge.find("br-lan")->hc.size());  // with the node's own
}

}  // namespace
