#include <algorithm>

#include "qca_driver_fake.h"
#include "wlan/qca/link_stats_qca.h"
#include "wlan/qca/sta_table_parse.h"
#include "wlan/wlan_platform.h"

namespace {

class StaTableTest : public QcaDriverTest {
protected:
    size_t read(const std::string& reply, size_t max = 16) {
        return qca_read_sta_table(reinterpret_cast<const uint8_t*>(reply.data()), reply.size(), links, max);
    }
    std::string records(int n, uint16_t len = QCA_STA_RECORD_MIN) {
        std::string r;
        for (int i = 0; i < n; i++)
            r += sta_record({static_cast<uint8_t>(i), 0, 0, -95, 40, 0, 0, len});
        return r;
    }
    wlan_link_info links[64] = {};
};

TEST_F(StaTableTest, RecordFieldsConvertToRatesAndSignal) {
    ASSERT_EQ(2u, read(sta_record({7, 866999, 780000, -95, 40, 33, 0}) + sta_record({8, 0, 0, -100, -100, 0, 0x8c})));
    EXPECT_EQ(866, links[0].txrate);
    EXPECT_EQ(780, links[0].rxrate);
    EXPECT_EQ(-55, links[0].rssi);
    EXPECT_EQ(33, links[0].idle);
    EXPECT_EQ(6, links[1].txrate);  // legacy rate byte 0x8c: basic flag, 12 x 500 kbit/s
    EXPECT_EQ(56, links[1].rssi);   // -200 keeps its low byte
}

TEST_F(StaTableTest, WalkNeedsAWholeRecordAndStopsAtABadLength) {
    EXPECT_EQ(0u, read(records(1).substr(0, 463)));
    EXPECT_EQ(3u, read(records(3) + std::string(463, 'x')));
    EXPECT_EQ(2u, read(records(3), 2));
    EXPECT_EQ(1u, read(records(3, 0)));    // a zero length ends after its record
    EXPECT_EQ(1u, read(records(2, 929)));  // so does one past the bytes left
}

TEST_F(StaTableTest, RequestAsksForTheWholeBufferAndTakesSixteen) {
    driver.sta_reply = sta_record({9, 433000, 390000, -90, 30, 0, 0}) + records(19);
    EXPECT_EQ(16, wlan_get_links("ath12", links));
    ASSERT_EQ(1u, driver.requests.size());
    EXPECT_EQ(QCA_IOCTL_STA_TABLE, driver.requests[0].number);
    EXPECT_EQ("ath12", driver.requests[0].ifname);
    EXPECT_EQ(QCA_STA_TABLE_SIZE, driver.requests[0].length);
    wlan_rate rate{};
    int8_t rssi = 0;
    ASSERT_TRUE(wlan_get_uplink_rate("ath12", &rate, &rssi));  // the first peer's
    EXPECT_EQ((std::vector<int>{433, 390, -60}), (std::vector<int>{rate.tx, rate.rx, rssi}));
    // A driver claiming more than the buffer is read only up to it.
    driver.sta_reply = records(QCA_STA_TABLE_SIZE / QCA_STA_RECORD_MIN + 1);
    driver.sta_reported = 65535;
    EXPECT_EQ(52, wlan_get_sta_links("ath1", links, 64));
    EXPECT_EQ(0, host.open_sockets());
}

TEST_F(StaTableTest, FailuresAreLoggedAtTheirLevels) {
    g_lynd_dgb_lvl = LYND_LVL_DEBUG;
    driver.sta_reply = records(1).substr(0, 463);
    EXPECT_EQ(0, wlan_get_links_v2("ath12", links));
    EXPECT_TRUE(host.logged("<LYND_WARN>[wlan_get_links_v2, ") && host.logged("] ioctl get failed"));
    driver.rc = -5;
    EXPECT_EQ(0, wlan_get_links_qca("ath12", links, true));
    EXPECT_TRUE(host.logged("<LYND_ERR>[wlan_get_links_qca, ") && host.logged("] ioctl"));
    EXPECT_EQ(0, wlan_get_sta_links("ath1", links, 16));
    EXPECT_TRUE(host.logged("<LYND_WARN>[wlan_get_sta_links, ") && host.logged("] fail to get ioctl, ath1 maybe"));
    driver.ap_rc = -19;  // not associated: the table is not asked for
    EXPECT_EQ(0, wlan_get_sta_links("ath1", links, 16));
    EXPECT_TRUE(host.logged("] ath1 not linked"));
    host.set_dgram_socket_error(24);
    EXPECT_EQ(0, wlan_get_links_qca("ath12", links, true));
    EXPECT_TRUE(host.logged("] socket"));
    EXPECT_EQ(3, std::count_if(driver.requests.begin(), driver.requests.end(),
                               [](const auto& r) { return r.number == QCA_IOCTL_STA_TABLE; }));
    EXPECT_EQ(0, host.open_sockets());
}

}  // namespace
