#include <linux/netlink.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

#include "targets/linux/netlink_msg.h"
#include "sim_fixture.h"

namespace {

using NetlinkMsgTest = SimNodeTest;

TEST_F(NetlinkMsgTest, UnknownProtocolFailsAtTheSocket) {
    uint8_t buf[64] = {};
    EXPECT_EQ(0, lynd_netlink_msg(0, buf, 12, 31));
    EXPECT_TRUE(host.logged("] netlink socket create failed\n"));
}

// The kernel ignores a routing message that is not a request: no answer,
// no complaint, and the header was filled as promised.
TEST_F(NetlinkMsgTest, SilentKernelIsAQuietFailure) {
    uint8_t buf[64] = {};
    EXPECT_EQ(0, lynd_netlink_msg(18, buf, 13, NETLINK_ROUTE));
    nlmsghdr hdr;
    std::memcpy(&hdr, buf, sizeof hdr);
    EXPECT_EQ(32u, hdr.nlmsg_len);  // 13 + 19, rounded down to a multiple of 4
    EXPECT_EQ(18, hdr.nlmsg_type);
    EXPECT_EQ(0, hdr.nlmsg_flags);
    EXPECT_TRUE(host.console_lines().empty());
}

// Another process bound the process id first: the request goes out under
// the id the kernel picks, and the header names that id.
TEST_F(NetlinkMsgTest, APortIdTakenFirstIsNoObstacle) {
    int squatter = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE);
    ASSERT_GE(squatter, 0);
    sockaddr_nl at{};
    at.nl_family = AF_NETLINK;
    at.nl_pid = static_cast<uint32_t>(getpid());
    bool squatted = bind(squatter, reinterpret_cast<sockaddr*>(&at), sizeof at) == 0;
    uint8_t buf[64] = {};
    EXPECT_EQ(0, lynd_netlink_msg(18, buf, 13, NETLINK_ROUTE));
    close(squatter);
    EXPECT_FALSE(host.logged("netlink socket create failed"));
    nlmsghdr hdr;
    std::memcpy(&hdr, buf, sizeof hdr);
    if (squatted) {
        EXPECT_NE(static_cast<uint32_t>(getpid()), hdr.nlmsg_pid);
    }
    EXPECT_NE(0u, hdr.nlmsg_pid);
}

}  // namespace
