#include "sim/node/sim_host.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace lynd {

int SimHost::nl_socket(int protocol) {
    auto err = nl_socket_errors_.find(protocol);
    if (err != nl_socket_errors_.end() && err->second != 0)
        return -err->second;
    nl_sockets_.push_back(NlSocket{protocol, 0, true, false, 0});
    return kFirstNlFd + static_cast<int>(nl_sockets_.size()) - 1;
}

bool SimHost::nl_port_taken(int protocol, uint32_t port) const {
    for (const NlSocket& s : nl_sockets_)
        if (s.open && s.bound && s.protocol == protocol && s.port == port)
            return true;
    return std::find(nl_squatters_.begin(), nl_squatters_.end(), std::make_pair(protocol, port)) != nl_squatters_.end();
}

bool SimHost::squat_nl_port(int protocol, uint32_t port) {
    if (port == 0 || nl_port_taken(protocol, port))
        return false;
    nl_squatters_.emplace_back(protocol, port);
    return true;
}

int SimHost::nl_bind(int fd, uint32_t groups, uint32_t* port) {
    size_t idx = static_cast<size_t>(fd - kFirstNlFd);
    if (fd < kFirstNlFd || idx >= nl_sockets_.size() || !nl_sockets_[idx].open)
        return -EBADF;
    NlSocket& sock = nl_sockets_[idx];
    auto err = nl_bind_errors_.find(sock.protocol);
    if (err != nl_bind_errors_.end() && err->second != 0)
        return -err->second;
    if (sock.bound)
        return -EINVAL;
    // The kernel's autobind: the process id first, then a count down.
    uint32_t id = static_cast<uint32_t>(pid());
    for (uint32_t rover = 0xFFFFF000u; nl_port_taken(sock.protocol, id); rover--)
        id = rover;
    sock.groups = groups;
    sock.bound = true;
    sock.port = id;
    *port = id;
    return 0;
}

uint32_t SimHost::nl_port(int fd) const {
    size_t idx = static_cast<size_t>(fd - kFirstNlFd);
    return fd < kFirstNlFd || idx >= nl_sockets_.size() ? 0 : nl_sockets_[idx].port;
}

int SimHost::nl_fd(int protocol) const {
    for (size_t i = nl_sockets_.size(); i-- > 0;)
        if (nl_sockets_[i].open && nl_sockets_[i].protocol == protocol)
            return kFirstNlFd + static_cast<int>(i);
    return -1;
}

int SimHost::nl_opened(int protocol) const {
    return static_cast<int>(std::count_if(nl_sockets_.begin(), nl_sockets_.end(),
                                          [&](const NlSocket& s) { return s.protocol == protocol; }));
}

void SimHost::queue_datagram(int protocol, const std::string& bytes, uint32_t sender) {
    nl_queues_[protocol].push_back(NlItem{0, bytes, sender});
}

void SimHost::queue_recv_error(int protocol, int error) { nl_queues_[protocol].push_back(NlItem{error, "", 0}); }

long SimHost::nl_recv(int fd, void* buf, size_t size, uint32_t* sender) {
    size_t idx = static_cast<size_t>(fd - kFirstNlFd);
    if (fd < kFirstNlFd || idx >= nl_sockets_.size() || !nl_sockets_[idx].open)
        return -EBADF;
    auto& q = nl_queues_[nl_sockets_[idx].protocol];
    if (q.empty())
        return -EAGAIN;
    NlItem item = q.front();
    q.erase(q.begin());
    if (item.error != 0)
        return -item.error;
    *sender = item.sender;
    size_t n = std::min(size, item.bytes.size());
    std::memcpy(buf, item.bytes.data(), n);
    return static_cast<long>(n);
}

}  // namespace lynd
