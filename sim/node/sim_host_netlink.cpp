#include "sim/node/sim_host.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace lynd {

int SimHost::nl_socket(int protocol) {
    auto err = nl_socket_errors_.find(protocol);
    if (err != nl_socket_errors_.end() && err->second != 0)
        return -err->second;
    nl_sockets_.push_back(NlSocket{protocol, 0, true, false});
    return kFirstNlFd + static_cast<int>(nl_sockets_.size()) - 1;
}

int SimHost::nl_bind(int fd, uint32_t groups) {
    size_t idx = static_cast<size_t>(fd - kFirstNlFd);
    if (fd < kFirstNlFd || idx >= nl_sockets_.size())
        return -EBADF;
    auto err = nl_bind_errors_.find(nl_sockets_[idx].protocol);
    if (err != nl_bind_errors_.end() && err->second != 0)
        return -err->second;
    // Bound by the process id, as the daemon binds: one per protocol.
    for (const NlSocket& s : nl_sockets_)
        if (s.open && s.bound && s.protocol == nl_sockets_[idx].protocol && &s != &nl_sockets_[idx])
            return -EADDRINUSE;
    nl_sockets_[idx].groups = groups;
    nl_sockets_[idx].bound = true;
    return 0;
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

void SimHost::queue_datagram(int protocol, const std::string& bytes) { nl_queues_[protocol].emplace_back(0, bytes); }

void SimHost::queue_recv_error(int protocol, int error) { nl_queues_[protocol].emplace_back(error, std::string()); }

long SimHost::nl_recv(int fd, void* buf, size_t size) {
    size_t idx = static_cast<size_t>(fd - kFirstNlFd);
    if (fd < kFirstNlFd || idx >= nl_sockets_.size() || !nl_sockets_[idx].open)
        return -EBADF;
    auto& q = nl_queues_[nl_sockets_[idx].protocol];
    if (q.empty())
        return -EAGAIN;
    auto item = q.front();
    q.erase(q.begin());
    if (item.first != 0)
        return -item.first;
    size_t n = std::min(size, item.second.size());
    std::memcpy(buf, item.second.data(), n);
    return static_cast<long>(n);
}

}  // namespace lynd
