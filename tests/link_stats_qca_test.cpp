#include "qca_driver_fake.h"
#include "wlan/qca/link_stats_qca.h"
#include "wlan/wlan.h"
#include "wlan/wlan_platform.h"

namespace {

class LinkStatsQcaTest : public QcaDriverTest {};

TEST_F(LinkStatsQcaTest, UtilisationAboveAByteIsRejectedSilently) {
    uint8_t util = 7;
    driver.util = 255;
    EXPECT_TRUE(wlan_get_channel_utilization("ath12", &util, IF_TYPE_5G));
    EXPECT_EQ(QCA_IOCTL_GET_PARAM, driver.requests[0].number);
    driver.util = 256;
    EXPECT_FALSE(wlan_get_channel_utilization("ath12", &util, IF_TYPE_5G));
    EXPECT_TRUE(host.console_lines().empty());
    driver.rc = -5;
    EXPECT_FALSE(wlan_get_channel_utilization("ath12", &util, IF_TYPE_5G));
    EXPECT_TRUE(host.logged("] ioctl"));
    EXPECT_EQ(255, util);
}

TEST_F(LinkStatsQcaTest, AssociatedMeansAnAccessPointAddressOutsideAdHoc) {
    g_lynd_dgb_lvl = LYND_LVL_DEBUG;
    driver.mode_rc = -95;  // no mode: not ad-hoc either
    EXPECT_EQ(1, lynd_get_wireless_link_state("ath02"));
    driver.mode_rc = 0;
    driver.mode = IW_MODE_AD_HOC;
    EXPECT_EQ(0, lynd_get_wireless_link_state("ath02"));
    driver.ap_rc = -19;
    EXPECT_EQ(0, lynd_get_wireless_link_state("ath02"));
    EXPECT_TRUE(host.console_lines().empty());
    driver.ap_rc = 0;
    driver.mode = 2;  // managed
    std::memset(driver.bssid, 0, 6);
    EXPECT_EQ(0, lynd_get_wireless_link_state("ath02"));
    EXPECT_TRUE(host.logged("] ath02 not Associa"));
}

TEST_F(LinkStatsQcaTest, CountersComeFromApstatsDataBytesLines) {
    g_lynd_dgb_lvl = LYND_LVL_LOG;
    // The name stays one argument; only "x Data Bytes" lines count, up to both found.
    host.set_tool("apstats -v -i $(reboot)", "Tx Data Packets = 1\nRx Data Bytes = 20\nTx Data Bytes = 10\n"
                                             "Tx Data Bytes = 9\n");
    wlan_link_counters c{};
    EXPECT_EQ(1, wlan_get_link_counters("$(reboot)", &c));
    EXPECT_TRUE(host.logged("] uplink count  $(reboot) txbyte:10, rxbyte:20, valid"));
    // Lines are read 511 bytes at a time, which cuts this Rx key.
    host.set_tool("apstats -v -i ath12", "Tx Data Bytes = 7\n" + std::string(500, ' ') + "Rx Data Bytes = 8\n");
    EXPECT_EQ(0, wlan_get_link_counters("ath12", &c));
    EXPECT_TRUE(host.logged("] uplink count  ath12 txbyte:7, rxbyte:20, invalid"));
    EXPECT_EQ(0, wlan_get_link_counters("ath02", &c));
    EXPECT_TRUE(host.logged("] popen apstats -v -i ath02|grep 'x Data Bytes' faild"));
}

TEST_F(LinkStatsQcaTest, TypeAndSubunitFollowTheName) {
    g_lynd_dgb_lvl = LYND_LVL_WARN;
    const struct {
        const char* name;
        uint32_t type, subunit;
    } cases[] = {{"ath05", IF_TYPE_2G, 5},  {"ath1", IF_TYPE_5G, 0},  {"ath021", IF_TYPE_2G, 1},
                 {"ath22", IF_TYPE_6G, 2},  {"ath0x", IF_TYPE_2G, UINT32_MAX}, {"eth0", IF_TYPE_ETH, UINT32_MAX},
                 {"ath3", IF_TYPE_MAX, UINT32_MAX}, {"wlan0", IF_TYPE_MAX, UINT32_MAX}};
    for (const auto& c : cases) {
        EXPECT_EQ(c.type, wlan_get_type_by_ifname(c.name)) << c.name;
        EXPECT_EQ(c.subunit, wlan_get_subunit_by_ifname(c.name)) << c.name;
    }
    EXPECT_TRUE(host.logged("<LYND_ERR>[_ifname2type, ") && host.logged("] not get src iface[ath3] type"));
    EXPECT_TRUE(host.logged("<LYND_WARN>[_ifname2type, ") && host.logged("] not get src iface[wlan0] type"));
    host.add_interface({"ath12", 12, {}});
    EXPECT_EQ(IF_TYPE_5G, wlan_get_type_by_ifindex(12));
    EXPECT_EQ(IF_TYPE_MAX, wlan_get_type_by_ifindex(99));
    EXPECT_TRUE(host.logged("] not get interface name"));
}

}  // namespace
