#include "modules/path_selection/add_entry.h"
#include "modules/path_selection/client_sync.h"
#include "ps_fixture.h"
#include "wlan/wlan.h"

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
    // The two paths again, with no records, for the next case of a table.
    void fresh() {
        path_selection_state_reset();
        g_ps_conf = &conf;
        path(IF_TYPE_2G, "ath02", 1);
        path(IF_TYPE_5G, "ath12", 3);
        for (uint32_t t = 0; t < IF_TYPE_MAX; t++)
            lynd_list_init(&hc_paths[t].clients);
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
    for (uint8_t m : {1, 2})
        in_fdb(m);
    bridge.add_hc("br-lan", entry(1, 12));
    bridge.add_hc("br-lan", entry(2, 2));
    EXPECT_EQ(2, sync());
    ASSERT_NE(nullptr, find(1, IF_TYPE_5G));
    EXPECT_EQ(IF_TYPE_5G, find(1, IF_TYPE_5G)->sta_type);
    bridge.find("br-lan")->hc.pop_back();  // 2 is gone from the table: swept at once
    EXPECT_EQ(1, sync());
    EXPECT_EQ(nullptr, find(2, IF_TYPE_2G));

    bridge.find("br-lan")->hc.clear();  // an empty table leaves every record
    EXPECT_EQ(0, sync());
    EXPECT_NE(nullptr, find(1, IF_TYPE_5G));
    bridge.set_result("bridgeTableAction", -1);
    EXPECT_EQ(-1, sync());
}

struct EntryCase {
    const char* rule;
    bool in_fdb;
    bool own_id;        // the entry's id is the client's own MAC
    uint32_t dst;       // 12: 5G, 2: 2.4G, 99: no port, 3: an Ethernet port that is no path
    bool had_record;    // on 5G from an earlier run, busy 2 and idle 1
    bool deleted;       // from the bridge
    int recorded_on;    // the slot of the record afterwards, -1: none
    uint8_t busy, idle; // of the record afterwards
    const char* log;
};

const EntryCase kEntryCases[] = {
    {"a client that left the fdb is deleted, whatever its destination", false, false, 99, false, true, -1, 0, 0,
     "] delete hc_entry(10:00:00:00:00:01) sport(21) dport(99)"},
    {"a client that left the fdb is deleted and its record dropped", false, false, 12, true, true, -1, 0, 0,
     "] delete hc_entry(10:00:00:00:00:01)"},
    {"an entry of the client's own id is kept though it is not in the fdb", false, true, 12, false, false,
     IF_TYPE_5G, 0, 0, "] hc item: client(10:00:00:00:00:01)"},
    {"an unknown destination is passed over and left in the bridge", true, false, 99, false, false, -1, 0, 0,
     "] client dstport[99] can not dst_type"},
    {"a destination that is no path is passed over", true, false, 3, false, false, -1, 0, 0,
     "] path is error, because port[3] is not uplink path"},
    {"a client whose entry points elsewhere is re-filed there with both counts restarted", true, false, 2, true,
     false, IF_TYPE_2G, 0, 0, "] hc item: client(10:00:00:00:00:01) sport(21) dport(2)"},
    {"a client whose entry points where it is keeps its counts", true, false, 12, true, false, IF_TYPE_5G, 2, 1,
     "] hc item: client(10:00:00:00:00:01) sport(21) dport(12)"},
};

TEST_F(ClientSyncTest, EachEntryMeetsTheFdbCheckThenItsDestination) {
    for (const EntryCase& k : kEntryCases) {
        SCOPED_TRACE(k.rule);
        fresh();
        g_lynd_dgb_lvl = LYND_LVL_DEBUG;
        n_fdb = 0;
        bridge.clear_calls();
        host.clear_console();
        if (k.had_record) {
            hc_client* old = client(1, IF_TYPE_5G);
            old->busy_count = 2;
            old->idle_count = 1;
        }
        if (k.in_fdb)
            in_fdb(1);
        hc_entry e = entry(1, k.dst);
        if (k.own_id)
            std::memcpy(e.id, e.mac, 6);
        bridge.find("br-lan")->hc.clear();
        bridge.add_hc("br-lan", e);
        EXPECT_EQ(k.recorded_on >= 0 ? 1 : 0, sync());
        EXPECT_EQ(k.deleted ? 1u : 0u, bridge.count_calls("bridgeDelHCTableEntriesByMAC br-lan 10:00:00:00:00:01"));
        EXPECT_TRUE(host.logged(k.log));
        if (k.dst == 99) {
            EXPECT_FALSE(host.logged("] path is error"));  // an unknown destination ends there
        }
        for (uint32_t t = 0; t < IF_TYPE_MAX; t++) {
            hc_client* c = find(1, t);
            EXPECT_EQ(static_cast<int>(t) == k.recorded_on, c != nullptr) << "slot " << t;
            if (c != nullptr) {
                EXPECT_EQ(k.busy, c->busy_count);
                EXPECT_EQ(k.idle, c->idle_count);
            }
        }
    }
}

TEST_F(ClientSyncTest, ASlotWhoseInterfaceIsMissingIsPassedOverWithAWarning) {
    g_lynd_dgb_lvl = LYND_LVL_WARN;
    path(IF_TYPE_5G_2, "ath22", 6);  // configured, but the node has no ath22
    in_fdb(1);
    bridge.add_hc("br-lan", entry(1, 12));
    EXPECT_EQ(1, sync());
    EXPECT_EQ(1u, host.count_logged("] if_nametoindex failed: ath22"));
    EXPECT_EQ(0u, host.count_logged("] if_nametoindex failed: ath12"));
}

TEST_F(ClientSyncTest, AClientThatChangedItsAccessPortStartsOverThere) {
    uint32_t sub0 = wlan_get_subunit_by_ifname("ath0"), sub1 = wlan_get_subunit_by_ifname("ath1");
    ASSERT_LT(sub0, 10u);
    ASSERT_LT(sub1, 10u);
    ap_iface& ap2 = hc_paths[IF_TYPE_2G].ap_ifaces[sub0];
    ap_iface& ap5 = hc_paths[IF_TYPE_5G].ap_ifaces[sub1];
    std::snprintf(ap2.name, sizeof ap2.name, "ath0");
    std::snprintf(ap5.name, sizeof ap5.name, "ath1");
    lynd_list_init(&ap2.clients);
    lynd_list_init(&ap5.clients);
    in_fdb(1);
    bridge.add_hc("br-lan", entry(1, 12, 21));  // on the 5G access point
    EXPECT_EQ(1, sync());
    hc_client* c = find(1, IF_TYPE_5G);
    ASSERT_NE(nullptr, c);
    EXPECT_EQ(&ap5.clients, c->ap_node.next);
    c->sta_history.num = 3;
    bridge.find("br-lan")->hc[0].src_port = 20;  // it joined the 2.4G access point
    EXPECT_EQ(1, sync());
    EXPECT_EQ(c, find(1, IF_TYPE_5G));  // same uplink: same path list
    EXPECT_EQ(IF_TYPE_2G, c->sta_type);
    EXPECT_EQ(0, c->sta_history.num);  // the old radio's samples say nothing of the new one
    EXPECT_EQ(&ap2.clients, c->ap_node.next);
    EXPECT_TRUE(lynd_list_empty(&ap5.clients));
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
