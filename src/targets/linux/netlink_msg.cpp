#include "targets/linux/netlink_msg.h"

#include <fcntl.h>
#include <linux/netlink.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

#include "core/log.h"

namespace {

constexpr int kReplyWaitMs = 1000;
// The steps log for the exchange as a whole.
constexpr const char* kFn = "lynd_netlink_msg";

uint32_t port_id() {
    static const uint32_t pid = static_cast<uint32_t>(getpid());
    return pid;
}

int open_socket(int protocol) {
    int fd = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, protocol);
    if (fd < 0) {
        LYND_ERR_AS(kFn, "netlink socket create failed\n");
        return -1;
    }
    if (fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK) < 0) {
        LYND_ERR_AS(kFn, "fcntl():");
        close(fd);
        return -1;
    }
    sockaddr_nl local{};
    local.nl_family = AF_NETLINK;
    local.nl_pid = port_id();
    if (bind(fd, reinterpret_cast<sockaddr*>(&local), sizeof local) < 0) {
        LYND_ERR_AS(kFn, "netlink socket create failed\n");
        close(fd);
        return -1;
    }
    return fd;
}

bool size_buffers(int fd, int len) {
    if (setsockopt(fd, SOL_SOCKET, SO_SNDBUFFORCE, &len, sizeof len) < 0) {
        LYND_ERR_AS(kFn, "Setsockopt SO_SNDBUF: ");
        return false;
    }
    if (setsockopt(fd, SOL_SOCKET, SO_RCVBUFFORCE, &len, sizeof len) < 0) {
        LYND_ERR_AS(kFn, "Setsockopt SO_RCVBUF: ");
        return false;
    }
    return true;
}

bool exchange(int fd, uint8_t* buf, int len) {
    sockaddr_nl kernel{};
    kernel.nl_family = AF_NETLINK;
    if (sendto(fd, buf, static_cast<size_t>(len), 0, reinterpret_cast<sockaddr*>(&kernel), sizeof kernel) < 0) {
        LYND_ERR_AS(kFn, "netlink socket send failed\n");
        return false;
    }
    pollfd p{fd, POLLIN, 0};
    if (poll(&p, 1, kReplyWaitMs) <= 0)
        return false;  // no answer in time: quietly a failure
    if (recv(fd, buf, static_cast<size_t>(len), MSG_WAITALL) < 1) {
        LYND_ERR_AS(kFn, "netlink socket receive failed\n");
        return false;
    }
    return true;
}

}  // namespace

int lynd_netlink_msg(int msg_type, uint8_t* buf, int size, int protocol) {
    LYND_DEBUG("msg_type %d(0x%x), netlink_key %d", msg_type, msg_type, protocol);
    if (buf == nullptr || size < 0)
        return 0;
    int fd = open_socket(protocol);
    if (fd < 0)
        return 0;
    // The netlink header goes first; the length covers it and size bytes.
    int len = (size + 19) & ~3;
    nlmsghdr hdr{};
    std::memcpy(&hdr, buf, sizeof hdr);
    hdr.nlmsg_len = static_cast<uint32_t>(len);
    hdr.nlmsg_type = static_cast<uint16_t>(msg_type);
    hdr.nlmsg_flags = 0;
    hdr.nlmsg_pid = port_id();
    std::memcpy(buf, &hdr, sizeof hdr);
    bool ok = size_buffers(fd, len) && exchange(fd, buf, len);
    close(fd);
    return ok ? 1 : 0;
}
