#include "modules/path_selection/add_entry.h"
#include "modules/path_selection/client_sync.h"
#include "ps_fixture.h"

namespace {

class ClientSyncTest : public PathSelectionTest {
protected:
    hc_entry entry(uint8_t last, uint32_t dst, uint32_t src = 21) {
        hc_entry e{};
        e.mac[0] = 0x10;
        e.mac[5] = last;
        std::memcpy(e.id, e.mac, 6);
        e.id[0] = 0x20;
        e.dst_port = dst;
        e.src_port = src;
        return e;
    }
    void in_fdb(uint8_t last) {
        client_entry c{};
        c.mac[0] = 0x10;
        c.mac[5] = last;
        fdb[n_fdb++] = c;
    }
    int sync() { return path_selection_update_hc_clients(&conf.bridges[0], hc_paths, fdb, n_fdb); }
    hc_client* find(uint8_t last, uint32_t type) {
        uint8_t mac[6] = {0x10, 0, 0, 0, 0, last};
        return hc_find_client(&hc_paths[type].clients, mac);
    }
    client_entry fdb[8] = {};
    int n_fdb = 0;
};

TEST_F(ClientSyncTest, RecordsFollowTheTableAndVanishWithIt) {
    g_lynd_dgb_lvl = LYND_LVL_LOG;
    for (uint8_t m : {1, 2, 4, 5})
        in_fdb(m);
    bridge.add_hc("br-lan", entry(1, 12));
    bridge.add_hc("br-lan", entry(2, 2));
    bridge.add_hc("br-lan", entry(3, 12));  // left the fdb
    bridge.add_hc("br-lan", entry(4, 99));  // no such port
    bridge.add_hc("br-lan", entry(5, 3));   // an Ethernet port that is no path
    EXPECT_EQ(2, sync());
    ASSERT_NE(nullptr, find(1, IF_TYPE_5G));
    ASSERT_NE(nullptr, find(2, IF_TYPE_2G));
    EXPECT_EQ(IF_TYPE_5G, find(1, IF_TYPE_5G)->sta_type);
    EXPECT_EQ(1u, bridge.count_calls("bridgeDelHCTableEntriesByMAC br-lan 10:00:00:00:00:03"));
    EXPECT_TRUE(host.logged("] delete hc_entry(10:00:00:00:00:03) sport(21) dport(12)"));
    EXPECT_TRUE(host.logged("] client dstport[99] can not dst_type"));
    EXPECT_TRUE(host.logged("] path is error, because port[3] is not uplink path"));  // filed there it would never be seen

    hc_client* one = find(1, IF_TYPE_5G);
    one->busy_count = 2;
    bridge.find("br-lan")->hc[0].dst_port = 2;  // the bridge moved it
    EXPECT_EQ(2, sync());
    EXPECT_EQ(one, find(1, IF_TYPE_2G));
    EXPECT_EQ(0, one->busy_count);

    bridge.find("br-lan")->hc.clear();  // an empty table leaves every record
    EXPECT_EQ(0, sync());
    EXPECT_NE(nullptr, find(2, IF_TYPE_2G));
    bridge.add_hc("br-lan", entry(1, 2));  // 2 is gone from the table: swept
    EXPECT_EQ(1, sync());
    EXPECT_EQ(nullptr, find(2, IF_TYPE_2G));
    EXPECT_NE(nullptr, find(1, IF_TYPE_2G));
    bridge.set_result("bridgeTableAction", -1);
    EXPECT_EQ(-1, sync());
}

TEST_F(ClientSyncTest, NewEntriesJoinTheRecordsUnlessRefused) {
    g_lynd_dgb_lvl = LYND_LVL_ERR;
    hc_entry fresh = entry(1, 12);
    path_selection_event_add_entry_hc(&fresh);
    hc_client* c = find(1, IF_TYPE_5G);
    ASSERT_NE(nullptr, c);
    EXPECT_TRUE(c->flags & HC_FLAG_ASSOC_NEWLY);  // a new wireless client
    hc_entry again = entry(1, 2);
    path_selection_event_add_entry_hc(&again);
    EXPECT_EQ(c, find(1, IF_TYPE_2G));
    EXPECT_FALSE(c->flags & HC_FLAG_ASSOC_NEWLY);  // known already

    hc_entry unknown = entry(2, 99), no_path = entry(3, 3);
    path_selection_event_add_entry_hc(&unknown);
    EXPECT_TRUE(host.logged("] can not find dst_port[99] type"));
    path_selection_event_add_entry_hc(&no_path);
    EXPECT_TRUE(host.logged("] path is error, because port[3] is not uplink path"));
    for (int i = 0; i < HC_MAX_CLIENTS; i++) {
        hc_entry e = entry(static_cast<uint8_t>(i), 12);
        e.mac[4] = 1;
        path_selection_event_add_entry_hc(&e);
    }
    EXPECT_EQ(1u, host.count_logged("] hc_entrys list pool is full"));
    size_t on_five = 0;
    for (lynd_list* n = hc_paths[IF_TYPE_5G].clients.next; n != &hc_paths[IF_TYPE_5G].clients; n = n->next)
        on_five++;
    EXPECT_EQ(static_cast<size_t>(HC_MAX_CLIENTS - 1), on_five);  // the refused one left no trace
    EXPECT_EQ(c, find(1, IF_TYPE_2G));
    EXPECT_EQ(nullptr, hc_pool_alloc());
}

}  // namespace
