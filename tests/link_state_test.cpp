#include "wlan/link_state.h"
#include "qca_driver_fake.h"
#include "wlan/link_records.h"

namespace {

class LinkStateTest : public QcaDriverTest {
protected:
    void SetUp() override {
        QcaDriverTest::SetUp();
        lynd_link_state_reset();
        wlan_link_records_reset();
    }
};

TEST_F(LinkStateTest, EachWirelessTypeAsksItsStationInterface) {
    for (uint32_t type = IF_TYPE_ETH; type <= IF_TYPE_MAX; type++)
        EXPECT_EQ(type == IF_TYPE_2G || type == IF_TYPE_5G || type == IF_TYPE_6G, lynd_check_link_state(type) == 1);
    std::string asked;
    for (const auto& r : driver.requests)
        asked += r.number == IW_IOCTL_GET_AP ? r.ifname + " " : "";
    EXPECT_EQ("ath02 ath12 ath22 ", asked);
}

TEST_F(LinkStateTest, ALinkComingUpClearsOnlyItsOwnRecords) {
    g_wlan_link_records.util_record[IF_TYPE_5G][0] = 30;
    g_wlan_link_records.trinfo[IF_TYPE_6G].tx = 9;
    EXPECT_EQ(1, lynd_check_link_state_v2(IF_TYPE_5G));
    EXPECT_EQ(0, g_wlan_link_records.util_record[IF_TYPE_5G][0]);
    EXPECT_EQ(9u, g_wlan_link_records.trinfo[IF_TYPE_6G].tx);
    g_wlan_link_records.trinfo[IF_TYPE_5G].tx = 9;
    EXPECT_EQ(1, lynd_check_link_state_v2(IF_TYPE_5G));  // still up: kept
    EXPECT_EQ(9u, g_wlan_link_records.trinfo[IF_TYPE_5G].tx);
    driver.ap_rc = -19;
    EXPECT_EQ(0, lynd_check_link_state_v2(IF_TYPE_5G));
    driver.ap_rc = 0;
    EXPECT_EQ(1, lynd_check_link_state_v2(IF_TYPE_5G));  // up again: cleared
    EXPECT_EQ(0u, g_wlan_link_records.trinfo[IF_TYPE_5G].tx);
}

TEST_F(LinkStateTest, OnlyWirelessTypesAreSupported) {
    g_link_state.link_state[IF_TYPE_ETH] = 1;
    EXPECT_EQ(0, lynd_check_link_state_v2(IF_TYPE_ETH));
    EXPECT_EQ(0, lynd_check_link_state_v2(IF_TYPE_MAX));
    EXPECT_TRUE(host.logged("] interface type 0 not support") && host.logged("] interface type 5 not support"));
    EXPECT_EQ(1, g_link_state.link_state[IF_TYPE_ETH]);
    EXPECT_TRUE(driver.requests.empty());
}

}  // namespace
