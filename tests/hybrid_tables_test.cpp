#include <cstring>
#include <string>
#include <vector>

#include "bridge/hybrid_tables.h"
#include "conf_builder.h"
#include "sim_fixture.h"

namespace {

class HybridTablesTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        lynd_tables_reset();
        bridge.add_bridge("br-lan");
        host.add_interface({"ath1", 21, {}});
        host.add_interface({"ath12", 12, {}});
        host.add_interface({"ath0", 20, {}});
        add_bridge(conf, "br-lan");
    }
    void hc_entries(int n) {
        for (int i = 0; i < n; i++) {
            hc_entry e{};
            e.mac[4] = static_cast<uint8_t>(i >> 8);
            e.mac[5] = static_cast<uint8_t>(i);
            e.bytes = static_cast<uint64_t>(i);
            bridge.add_hc("br-lan", e);
        }
    }
    void fdb(uint8_t last, const char* port, bool local = false) {
        uint8_t mac[6] = {0x10, 0, 0, 0, 0, last};
        bridge.add_fdb("br-lan", mac, port, local);
    }
    lynd_config conf{};
    void* table = nullptr;
    int count = 0;
};

TEST_F(HybridTablesTest, LargeTableGrowsTheCapacityOnceAndForAll) {
    hc_entries(600);
    ASSERT_EQ(1, lynd_get_hyfi_bridge_hc_table("br-lan", &table, &count));
    EXPECT_EQ(600, count);
    hc_entry last;
    std::memcpy(&last, static_cast<const uint8_t*>(table) + 599 * sizeof last, sizeof last);
    EXPECT_EQ(599u, last.bytes);
    bridge.bridgeFreeTableBuf(table);
    EXPECT_EQ(600, g_hyfi_tables.hyfi_table_capacity);
    EXPECT_EQ((std::vector<std::string>{"bridgeAllocTableBuf 28000 br-lan", "bridgeAllocTableBuf 33600 br-lan"}),
              bridge.calls_matching("bridgeAllocTableBuf"));
    bridge.clear_calls();
    ASSERT_EQ(1, lynd_get_hyfi_bridge_table("br-lan", LYND_TABLE_HC, &table, &count));
    bridge.bridgeFreeTableBuf(table);
    EXPECT_EQ((std::vector<std::string>{"bridgeAllocTableBuf 33600 br-lan"}),
              bridge.calls_matching("bridgeAllocTableBuf"));
}

TEST_F(HybridTablesTest, FailureWithinTheCapacityIsQuietAndFinal) {
    hc_entries(3);
    bridge.set_result("bridgeTableAction", -1);
    EXPECT_EQ(0, lynd_get_hyfi_bridge_hc_table("br-lan", &table, &count));
    EXPECT_EQ(1u, bridge.count_calls("bridgeTableAction"));
    EXPECT_TRUE(host.console_lines().empty());
    EXPECT_EQ(bridge.count_calls("bridgeAllocTableBuf"), bridge.count_calls("bridgeFreeTableBuf"));
    EXPECT_EQ(0, lynd_get_hyfi_bridge_table("br-lan", 3, &table, &count));
}

// The bridge answers the first, small fetch with the size it needs, then
// lets the larger allocation or the second fetch fail.
class FailingRetry : public lynd::SimBridge {
public:
    bool fail_alloc = false;
    void* bridgeAllocTableBuf(int size, const char* bridge_name) override {
        bool retry = count_calls("bridgeAllocTableBuf") > 0;
        return fail_alloc && retry ? nullptr : SimBridge::bridgeAllocTableBuf(size, bridge_name);
    }
    int bridgeTableAction(const char* bridge_name, int table_type, int* count, void* buf, int flags) override {
        bool retry = count_calls("bridgeTableAction") > 0;
        int rc = SimBridge::bridgeTableAction(bridge_name, table_type, count, buf, flags);
        return retry ? -1 : rc;
    }
};

TEST_F(HybridTablesTest, AFailedRetryGivesNoTableAndLeaksNoBuffer) {
    for (bool fail_alloc : {true, false}) {
        FailingRetry br;
        br.fail_alloc = fail_alloc;
        br.set_host(&host);
        br.add_bridge("br-lan");
        for (int i = 0; i < 600; i++)
            br.add_hc("br-lan", hc_entry{});
        const lynd::Seams saved = lynd::install_seams({&loop, &host, &uci, &br, &bus});
        lynd_tables_reset();
        host.clear_console();
        EXPECT_EQ(0, lynd_get_hyfi_bridge_hc_table("br-lan", &table, &count));
        lynd::install_seams(saved);
        EXPECT_TRUE(host.logged(fail_alloc ? "] realloac buffer error" : "] get table failed again"));
        EXPECT_EQ(600, g_hyfi_tables.hyfi_table_capacity);  // the next fetch asks for enough at once
        EXPECT_EQ(br.count_calls("bridgeAllocTableBuf"), br.count_calls("bridgeFreeTableBuf"));
    }
}

TEST_F(HybridTablesTest, InactiveBridgeAndAbsurdSizesGiveNoTable) {
    hc_entries(501);
    bridge.find("br-lan")->active = false;  // every fetch fails, but says nothing of size
    EXPECT_EQ(0, lynd_get_hyfi_bridge_hc_table("br-lan", &table, &count));
    bridge.find("br-lan")->active = true;
    hc_entries(20000);
    EXPECT_EQ(0, lynd_get_hyfi_bridge_hc_table("br-lan", &table, &count));
    EXPECT_TRUE(host.logged("is over the limit"));
    EXPECT_EQ(HYFI_TABLE_INITIAL_CAPACITY, g_hyfi_tables.hyfi_table_capacity);
}

TEST_F(HybridTablesTest, FdbClientsFollowTheListedPorts) {
    add_iface(conf, "ath1", IF_TYPE_5G, false);
    add_iface(conf, "ath0", IF_TYPE_2G, false, false);
    fdb(1, "ath1");
    fdb(2, "ath1", true);  // the bridge's own address
    fdb(3, "ath12");        // not listed
    fdb(4, "ath0");
    conf_interface* ports[] = {&conf.interfaces[0], &conf.interfaces[1], &conf.interfaces[0]};
    client_entry clients[LYND_MAX_CLIENTS];
    ASSERT_EQ(3, lynd_get_client_list("br-lan", 3, ports, clients));
    EXPECT_EQ(1, clients[0].mac[5]);
    EXPECT_EQ(21u, clients[0].fdb_port);
    EXPECT_EQ(HD_PORT_NONE, clients[0].hd_port);
    EXPECT_EQ(1, clients[1].mac[5]);  // the port is listed twice
    EXPECT_EQ(4, clients[2].mac[5]);
    EXPECT_EQ(IF_TYPE_2G, static_cast<uint32_t>(clients[2].type));
    EXPECT_EQ(0, clients[2].relay);
    EXPECT_EQ(0, lynd_check_ha_entry_valid(&clients[2].ha[0]));
}

TEST_F(HybridTablesTest, OnlyTheFirst256FdbEntriesCount) {
    add_iface(conf, "ath1", IF_TYPE_5G, false);
    for (int i = 0; i < 300; i++)
        fdb(static_cast<uint8_t>(i), "ath1");
    conf_interface* ports[] = {&conf.interfaces[0]};
    client_entry clients[LYND_MAX_CLIENTS];
    EXPECT_EQ(256, lynd_get_fdb_client_list("br-lan", 1, ports, clients));
    bridge.set_result("bridgeTableAction", -1);
    EXPECT_EQ(0, lynd_get_fdb_client_list("br-lan", 1, ports, clients));
    EXPECT_TRUE(host.logged("] get fdb table"));
}

TEST_F(HybridTablesTest, PreferredPortIsCachedUntilAWriteFails) {
    conf_bridge& br = conf.bridges[0];
    EXPECT_EQ(1, lynd_set_hc_preferred(&br, "ath12"));
    EXPECT_EQ(1, lynd_set_hc_preferred(&br, "ath12"));
    EXPECT_EQ(1u, bridge.count_calls("bridgeSetHcPreferred br-lan 12"));
    EXPECT_EQ(12u, bridge.find("br-lan")->preferred);
    bridge.set_result("bridgeSetHcPreferred", 1);
    EXPECT_EQ(0, lynd_set_hc_preferred(&br, "ath1"));
    EXPECT_EQ(12u, br.preferred_ifindex);
    EXPECT_TRUE(host.logged("] bridgeSetHcPreferred"));
    bridge.set_result("bridgeSetHcPreferred", 0);
    lynd_flush_preferred(&conf);
    EXPECT_EQ(0u, br.preferred_ifindex);
    hc_entries(2);
    EXPECT_EQ(1, lynd_set_hc_preferred_and_flush_hc_table(&br, nullptr));
    EXPECT_EQ(1u, bridge.count_calls("bridgeSetHcPreferredAndFlushHCTable br-lan 0"));
    EXPECT_TRUE(bridge.find("br-lan")->hc.empty());
}

TEST_F(HybridTablesTest, HcEntryWritesAndValidity) {
    uint8_t mac[6] = {0x10, 0, 0, 0, 0, 1}, id[6] = {};
    EXPECT_EQ(0, lynd_set_hc_entry("br-lan", mac, id, "ath12", nullptr));
    EXPECT_EQ(1, lynd_set_hc_entry("br-lan", mac, id, "ath12", "ath12"));
    ASSERT_EQ(1u, bridge.find("br-lan")->hc.size());
    EXPECT_EQ(1, lynd_check_hc_entry_valid(&bridge.find("br-lan")->hc[0]));
    EXPECT_EQ(1, lynd_delete_hc_entry("br-lan", mac));
    EXPECT_EQ(0, lynd_delete_hc_entry("br-none", mac));
    hc_entry zero{};
    EXPECT_EQ(0, lynd_check_hc_entry_valid(&zero));
    EXPECT_EQ(0, lynd_check_hc_entry_valid(nullptr));
}

TEST_F(HybridTablesTest, FlushesReachActiveLoopAvoidanceBridgesOnly) {
    add_bridge(conf, "br-ps", BR_FLAG_PATH_SELECTION);
    add_bridge(conf, "br-off");
    add_bridge(conf, "br-2");
    bridge.add_bridge("br-ps");
    bridge.add_bridge("br-off", false);
    bridge.add_bridge("br-2");
    bridge.set_result("bridgeFlushHCTable", 1);
    lynd_flush_hc_table(&conf);
    EXPECT_EQ((std::vector<std::string>{"bridgeFlushHCTable br-lan", "bridgeFlushHCTable br-2"}),
              bridge.calls_matching("bridgeFlushHCTable"));
    EXPECT_EQ(2u, host.count_logged("] bridgeFlushHCTable"));
    lynd_flush_hip_table(&conf);
    EXPECT_EQ(1, bridge.find("br-2")->hip_flushes);
    lynd_flush_hybr_table(&conf, 7);
    EXPECT_EQ(2u, host.count_logged("] unknown enum_hybr_table_type: 7"));
}

}  // namespace
