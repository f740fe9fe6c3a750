#include "sim/node/sim_host.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace lynd {

int SimHost::close_fd(int fd) {
    if (fd >= kFirstSocketFd) {
        size_t idx = static_cast<size_t>(fd - kFirstSocketFd);
        if (idx >= sockets_.size() || !sockets_[idx].open)
            return -EBADF;
        sockets_[idx].open = false;
        return 0;
    }
    size_t idx = static_cast<size_t>(fd - kFirstNlFd);
    if (fd >= kFirstNlFd && idx < nl_sockets_.size())
        nl_sockets_[idx].open = false;
    return 0;
}

int SimHost::open_socket(SockKind kind, int error) {
    if (error != 0)
        return -error;
    // The lowest free descriptor, as the kernel hands them out.
    for (size_t i = 0; i < sockets_.size(); i++) {
        if (!sockets_[i].open) {
            sockets_[i] = Socket{kind, true};
            return kFirstSocketFd + static_cast<int>(i);
        }
    }
    sockets_.push_back(Socket{kind, true});
    return kFirstSocketFd + static_cast<int>(sockets_.size()) - 1;
}

SimHost::Socket* SimHost::find_socket(int fd, SockKind kind) {
    size_t idx = static_cast<size_t>(fd - kFirstSocketFd);
    if (fd < kFirstSocketFd || idx >= sockets_.size() || !sockets_[idx].open || sockets_[idx].kind != kind)
        return nullptr;
    return &sockets_[idx];
}

int SimHost::open_sockets() const {
    return static_cast<int>(std::count_if(sockets_.begin(), sockets_.end(), [](const Socket& s) { return s.open; }));
}

int SimHost::dgram_socket() { return open_socket(SockKind::DGRAM, dgram_error_); }

int SimHost::dev_ioctl(int fd, unsigned long request, void* arg) {
    if (find_socket(fd, SockKind::DGRAM) == nullptr)
        return -EBADF;
    return driver_ != nullptr ? driver_->ioctl(request, arg) : -EOPNOTSUPP;
}

int SimHost::packet_socket(uint16_t) { return open_socket(SockKind::PACKET, packet_error_); }

long SimHost::packet_send(int fd, unsigned ifindex, uint16_t ethertype, const uint8_t* dst, const void* frame,
                          size_t len) {
    if (find_socket(fd, SockKind::PACKET) == nullptr)
        return -EBADF;
    SimFrame f{ifindex, ethertype, {}, std::string(static_cast<const char*>(frame), len)};
    std::memcpy(f.dst, dst, sizeof f.dst);
    frames_.push_back(f);
    long sent = has_send_result_ ? send_result_ : static_cast<long>(len);
    char name[IFNAME_LEN] = {};
    if (sent > 0 && driver_ != nullptr && if_indextoname(ifindex, name))
        driver_->frame_sent(name, static_cast<size_t>(sent));
    return sent;
}

}  // namespace lynd
