#include <string>

#include "wlan/link_activation.h"
#include "sim_fixture.h"

namespace {

class LinkActivationTest : public SimNodeTest {
protected:
    const uint8_t peer[6] = {2, 9, 9, 9, 9, 1};
};

TEST_F(LinkActivationTest, OneFrameOf1905WithTheInterfacesAddress) {
    host.add_interface({"ath02", 11, {2, 0, 0, 0, 0xab, 0xcd}});
    EXPECT_EQ(1, lynd_activate_link("ath02", peer));
    ASSERT_EQ(1u, host.frames().size());
    EXPECT_EQ(11u, host.frames()[0].ifindex);
    EXPECT_EQ(DUMMY_ETHERTYPE, host.frames()[0].ethertype);
    std::string want = std::string(reinterpret_cast<const char*>(peer), 6) +
                       std::string("\x02\x00\x00\x00\xab\xcd\x89\x3a", 8);
    want.resize(DUMMY_FRAME_LEN, '\0');
    EXPECT_EQ(want, host.frames()[0].bytes);
}

TEST_F(LinkActivationTest, FailedSendsAreTriedExactlyThreeTimes) {
    host.set_send_result(-11);
    g_lynd_dgb_lvl = LYND_LVL_DEBUG;
    EXPECT_EQ(1, lynd_activate_link("ath9", peer));  // unknown interface: zero source
    EXPECT_EQ(3u, host.frames().size());
    EXPECT_EQ(3u, host.count_logged("] send dummy packet, ifname: ath9, if_mac: 00-00 len: -1"));
    EXPECT_EQ(0u, host.count_logged("len: -11"));  // the send result, not -errno
    EXPECT_EQ(3u, host.count_logged("] send dummy packet on ath9: Resource temporarily unavailable"));
    host.set_packet_socket_error(1);
    EXPECT_EQ(0, lynd_activate_link("ath02", peer));
    EXPECT_TRUE(host.logged("] create socket failed"));
    EXPECT_EQ(3u, host.frames().size());
    EXPECT_EQ(0, host.open_sockets());
}

}  // namespace
