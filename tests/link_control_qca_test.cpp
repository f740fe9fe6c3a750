#include "qca_driver_fake.h"
#include "wlan/qca/link_control_qca.h"
#include "wlan/wlan_platform.h"

namespace {

class LinkControlQcaTest : public QcaDriverTest {
protected:
    void SetUp() override {
        QcaDriverTest::SetUp();
        driver.sta_reply = sta_record({1, 0, 0, -95, 40, 10, 0}) + sta_record({2, 0, 0, -95, 40, 11, 0});
    }
    conf_param param{};
};

TEST_F(LinkControlQcaTest, StationsGetActivatePktsFramesAndIdleClientsOne) {
    EXPECT_EQ(2, wlan_activate_links_qca("ath02", &param));  // activate_pkts 0: counted, nothing sent
    EXPECT_TRUE(host.frames().empty());
    param.activate_pkts = 2;
    wlan_activate_links("ath02", &param);
    EXPECT_EQ(4u, host.frames().size());
    host.clear_frames();
    param.idle_threshold = 10;  // peer 1 sits exactly at it
    EXPECT_EQ(2, wlan_activate_links_for_ap("ath1", &param));
    ASSERT_EQ(1u, host.frames().size());
    EXPECT_EQ(2, host.frames()[0].dst[5]);
}

TEST_F(LinkControlQcaTest, WdsDeleteCarriesCommandAndMacInItsBlock) {
    const uint8_t mac[6] = {2, 1, 2, 3, 4, 5};
    wlan_delete_wds_entry("ath1", mac);
    ASSERT_EQ(1u, driver.requests.size());
    EXPECT_EQ(QCA_IOCTL_GENERIC, driver.requests[0].number);
    std::string want(QCA_WDS_CMD_SIZE, '\0');
    put(want, 0, &QCA_CMD_WDS_DELETE, 4);
    put(want, QCA_WDS_CMD_MAC_OFFSET, mac, 6);
    EXPECT_EQ(want, driver.requests[0].data);
    driver.rc = -1;
    wlan_delete_wds_entry("ath1", mac);
    EXPECT_TRUE(host.logged("] ioctl"));
}

TEST_F(LinkControlQcaTest, RestartRunsTheSupplicantOfTheTypesStation) {
    g_lynd_dgb_lvl = LYND_LVL_DEBUG;
    EXPECT_EQ(-1, wlan_restart_link(IF_TYPE_5G_2));
    EXPECT_EQ(-1, wlan_restart_link(IF_TYPE_ETH));
    EXPECT_TRUE(host.logged("] Error type: 3") && host.logged("] Error type: 0"));
    EXPECT_TRUE(host.runs().empty());
    host.set_tool("wpa_cli -p /var/run/wpa_supplicant-ath12 -i ath12 reconnect", "", 4);
    EXPECT_EQ(4, wlan_restart_link(IF_TYPE_5G));
    EXPECT_TRUE(host.logged("] call: wpa_cli -p /var/run/wpa_supplicant-ath12 -i ath12 reconnect"));
}

}  // namespace
