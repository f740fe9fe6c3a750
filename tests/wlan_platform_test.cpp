#include <cstring>

#include "sim_fixture.h"
#include "wlan/qca/wlan_platform_qca.h"
#include "wlan/wlan_platform.h"

namespace {

class WlanPlatformTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        saved_ = wlan_platform_ops;
    }
    void TearDown() override {
        wlan_platform_ops = saved_;
        SimNodeTest::TearDown();
    }

private:
    const wlan_platform* saved_ = nullptr;
};

int g_calls;
bool g_last_uplink;
bool util_probe(const char*, uint8_t* util, uint32_t, bool uplink) {
    g_calls++;
    g_last_uplink = uplink;
    *util = 42;
    return true;
}
uint8_t links_probe(const char*, wlan_link_info*, bool uplink) {
    g_calls++;
    g_last_uplink = uplink;
    return 3;
}
bool low_byte_only(uint16_t, uint8_t) {
    g_calls++;
    return true;
}

TEST_F(WlanPlatformTest, NoTableMeansEveryDispatcherReturnsZero) {
    wlan_platform_ops = nullptr;
    uint8_t u = 9, mac_a[6] = {2}, mac_b[6] = {6};
    wlan_rate rate{};
    int8_t rssi = 0;
    EXPECT_FALSE(wlan_get_uplink_rate("ath12", &rate, &rssi));
    EXPECT_FALSE(wlan_get_channel_utilization("ath12", &u, IF_TYPE_5G));
    EXPECT_FALSE(wlan_get_util_adjustment("ath12", 0, &u));
    EXPECT_EQ(0, wlan_get_links("ath12", nullptr));
    EXPECT_EQ(0, wlan_activate_links_for_ap("ath1", nullptr));
    EXPECT_EQ(0, lynd_platform_init());
    EXPECT_EQ(0, lynd_platform_test());
    lynd_mac_check(mac_a, mac_b);
    EXPECT_EQ(6, mac_b[0]);
    EXPECT_EQ(9, u);
    EXPECT_TRUE(host.runs().empty());
}

TEST_F(WlanPlatformTest, DispatchersPassTheUplinkSide) {
    wlan_platform table{};
    table.get_channel_utilization = util_probe;
    table.get_links = links_probe;
    table.is_5g_low_noise = low_byte_only;
    wlan_platform_ops = &table;
    g_calls = 0;
    uint8_t u = 0;
    EXPECT_TRUE(wlan_get_channel_utilization("ath12", &u, IF_TYPE_5G));
    EXPECT_TRUE(g_last_uplink);
    EXPECT_TRUE(wlan_get_client_channel_utilization("ath1", &u, IF_TYPE_5G));
    EXPECT_FALSE(g_last_uplink);
    EXPECT_EQ(3, wlan_get_links("ath12", nullptr));
    EXPECT_TRUE(g_last_uplink);
    EXPECT_EQ(3, wlan_get_client_links("ath1", nullptr));
    EXPECT_FALSE(g_last_uplink);
    EXPECT_TRUE(wlan_is_5g_low_noise(1, 2));
    EXPECT_EQ(5, g_calls);
    // Empty slots in a set table are still "not supported".
    EXPECT_FALSE(wlan_get_util_adjustment("ath12", 0, &u));
}

TEST_F(WlanPlatformTest, QcaMacCheckFollowsTheFirstOctetDistance) {
    wlan_platform_ops = &wlan_platform_qca;
    const uint8_t a[6] = {0x02, 1, 2, 3, 4, 5};
    const std::pair<uint8_t, uint8_t> cases[] = {{0x0e, 0x02}, {0x12, 0x12}, {0x06, 0x02},
                                                 {0x0a, 0x02}, {0x03, 0x03}, {0x02, 0x02}};
    for (const auto& c : cases) {
        uint8_t b[6] = {c.first, 9, 9, 9, 9, 9};
        lynd_mac_check(a, b);
        EXPECT_EQ(c.second, b[0]) << int(c.first);
        EXPECT_EQ(9, b[1]);
    }
    // The distance does not depend on which address is larger.
    const uint8_t high[6] = {0x0e};
    uint8_t low[6] = {0x02};
    lynd_mac_check(high, low);
    EXPECT_EQ(0x0e, low[0]);
}

}  // namespace
