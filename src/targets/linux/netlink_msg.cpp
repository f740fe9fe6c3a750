#include "targets/linux/netlink_msg.h"

#include <fcntl.h>
#include <linux/netlink.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>

#include "core/counters.h"
#include "core/log.h"

namespace {

constexpr int kReplyWaitMs = 1000;
// The steps log for the exchange as a whole.
constexpr const char* kFn = "lynd_netlink_msg";

// The port id is the kernel's choice: a fixed one (the process id) could be
// bound first by anyone.
int open_socket(int protocol, uint32_t* port) {
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
    socklen_t llen = sizeof local;
    if (bind(fd, reinterpret_cast<sockaddr*>(&local), sizeof local) < 0 ||
        getsockname(fd, reinterpret_cast<sockaddr*>(&local), &llen) < 0) {
        LYND_ERR_AS(kFn, "netlink socket create failed\n");
        close(fd);
        return -1;
    }
    *port = local.nl_pid;
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

int64_t now_ms() {
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<int64_t>(ts.tv_sec) * 1000 + ts.tv_nsec / 1000000;
}

// The kernel's answer within the wait; what another process sent to the
// port meanwhile is dropped.
bool exchange(int fd, uint8_t* buf, int len) {
    sockaddr_nl kernel{};
    kernel.nl_family = AF_NETLINK;
    if (sendto(fd, buf, static_cast<size_t>(len), 0, reinterpret_cast<sockaddr*>(&kernel), sizeof kernel) < 0) {
        LYND_ERR_AS(kFn, "netlink socket send failed\n");
        return false;
    }
    int64_t deadline = now_ms() + kReplyWaitMs;
    for (;;) {
        int64_t left = deadline - now_ms();
        pollfd p{fd, POLLIN, 0};
        if (left <= 0 || poll(&p, 1, static_cast<int>(left)) <= 0)
            return false;  // no answer in time: quietly a failure
        sockaddr_nl from{};
        socklen_t flen = sizeof from;
        ssize_t n = recvfrom(fd, buf, static_cast<size_t>(len), MSG_DONTWAIT, reinterpret_cast<sockaddr*>(&from), &flen);
        if (n < 0 && (errno == EAGAIN || errno == EINTR))
            continue;
        if (n < 1) {
            LYND_ERR_AS(kFn, "netlink socket receive failed\n");
            return false;
        }
        if (flen >= sizeof from && from.nl_family == AF_NETLINK && from.nl_pid == 0)
            return true;
        g_counters.foreign_datagrams++;
    }
}

}  // namespace

int lynd_netlink_msg(int msg_type, uint8_t* buf, int size, int protocol) {
    LYND_DEBUG("msg_type %d(0x%x), netlink_key %d", msg_type, msg_type, protocol);
    if (buf == nullptr || size < 0)
        return 0;
    uint32_t port = 0;
    int fd = open_socket(protocol, &port);
    if (fd < 0)
        return 0;
    // The netlink header goes first; the length covers it and size bytes.
    int len = (size + 19) & ~3;
    nlmsghdr hdr{};
    std::memcpy(&hdr, buf, sizeof hdr);
    hdr.nlmsg_len = static_cast<uint32_t>(len);
    hdr.nlmsg_type = static_cast<uint16_t>(msg_type);
    hdr.nlmsg_flags = 0;
    hdr.nlmsg_pid = port;
    std::memcpy(buf, &hdr, sizeof hdr);
    bool ok = size_buffers(fd, len) && exchange(fd, buf, len);
    close(fd);
    return ok ? 1 : 0;
}
