// The QCA back-end against the simulated radios: what a scenario's links and
// stations say must come back through the real requests and tools.
#include <cstring>
#include <string>

#include "wlan/link_activation.h"
#include "wlan/link_state.h"
#include "sim/node/wlan_platform_sim.h"
#include "sim_fixture.h"
#include "wlan/qca/link_control_qca.h"
#include "wlan/link_records.h"
#include "wlan/qca/link_stats_qca.h"
#include "wlan/qca/wlan_platform_qca.h"
#include "wlan/wlan_platform.h"

namespace {

class QcaOnSimTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        host.set_driver(&wlan);
        saved_ = wlan_platform_ops;
        wlan_platform_ops = &wlan_platform_qca;
        lynd_link_state_reset();
        wlan_link_records_reset();
        host.add_interface({"ath12", 12, {0x02, 0, 0, 0, 0x01, 0x12}});
        host.add_interface({"ath1", 21, {0x02, 0, 0, 0, 0, 0x21}});
        backhaul.peer[5] = 0x99;
        backhaul.txrate = 866;
        backhaul.rxrate = 780;
        backhaul.rssi = -62;
        backhaul.util = 35;
        wlan.set_link("ath12", backhaul);
        lynd::SimStation a, b;
        a.mac[5] = 0xa1;
        a.txrate = 400;
        a.idle = 10;
        b.mac[5] = 0xb2;
        b.idle = 11;
        wlan.set_stations("ath1", {a, b});
    }
    void TearDown() override {
        wlan_platform_ops = saved_;
        SimNodeTest::TearDown();
    }
    lynd::SimWlan wlan{&host, &loop};
    lynd::SimLink backhaul;

private:
    const wlan_platform* saved_ = nullptr;
};

TEST_F(QcaOnSimTest, BackhaulFiguresComeBackThroughTheDriver) {
    wlan_link_info l{};
    ASSERT_EQ(1, wlan_get_links_v2("ath12", &l));
    EXPECT_EQ(0x99, l.mac[5]);
    EXPECT_EQ(866, l.txrate);
    EXPECT_EQ(780, l.rxrate);
    EXPECT_EQ(-62, l.rssi);
    EXPECT_EQ(-95, l.noise);
    EXPECT_EQ(33, l.snr);
    wlan_rate rate{};
    int8_t rssi = 0;
    ASSERT_TRUE(wlan_get_uplink_rate("ath12", &rate, &rssi));
    EXPECT_EQ(866, rate.tx);
    uint8_t util = 0;
    ASSERT_TRUE(wlan_get_channel_utilization("ath12", &util, IF_TYPE_5G));
    EXPECT_EQ(35, util);
    util = 0;  // the access point shares radio 1's channel
    ASSERT_TRUE(wlan_get_client_channel_utilization("ath1", &util, IF_TYPE_5G));
    EXPECT_EQ(35, util);
    EXPECT_EQ(0, host.open_sockets());
}

// The stations' records as the driver gives them: only the one idle above
// the threshold is woken.
TEST_F(QcaOnSimTest, AccessPointStationsAndActivation) {
    wlan_link_info links[16] = {};
    ASSERT_EQ(2, wlan_get_sta_links("ath1", links, 16));
    EXPECT_EQ(400, links[0].txrate);
    conf_param p{};
    p.idle_threshold = 10;
    EXPECT_EQ(2, wlan_activate_links_for_ap("ath1", &p));
    ASSERT_EQ(1u, host.frames().size());
    EXPECT_EQ(0xb2, host.frames()[0].dst[5]);
    EXPECT_EQ(21u, host.frames()[0].ifindex);
    EXPECT_EQ(0, host.open_sockets());
}

TEST_F(QcaOnSimTest, CountersReconnectAndWdsDeletion) {
    backhaul.tx_mbps = 8;
    wlan.set_link("ath12", backhaul);
    loop.advance(5000);
    wlan_link_counters c{};
    ASSERT_EQ(1, wlan_get_link_counters("ath12", &c));
    EXPECT_EQ(5u * 8u * 125000u, c.tx_bytes);
    EXPECT_EQ(0u, c.rx_bytes);
    EXPECT_EQ(0, wlan_restart_link(IF_TYPE_5G));
    EXPECT_EQ(1, wlan.reconnects("ath12"));
    const uint8_t mac[6] = {0x02, 0, 0, 0, 0x0a, 0x01};
    wlan_delete_wds_entry("ath1", mac);
    ASSERT_EQ(1u, wlan.actions().size());
    EXPECT_EQ("wds_delete ath1 02:00:00:00:0a:01", wlan.actions()[0]);
    EXPECT_EQ(0, host.open_sockets());
}

}  // namespace
