#include "sim/sim_host.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "sim/sim_cpu.h"
#include "sim/sim_loop.h"

namespace lynd {

void SimHost::set_tool(const std::string& cmdline, const std::string& output, int status) {
    tools_[cmdline] = Tool{output, status};
}

void SimHost::add_interface(const SimInterface& iface) { interfaces_.push_back(iface); }

const SimInterface* SimHost::find_interface(const std::string& name) const {
    for (const auto& i : interfaces_)
        if (i.name == name)
            return &i;
    return nullptr;
}

void SimHost::set_file(const std::string& path, const std::string& content) { files_[path] = content; }

bool SimHost::has_file(const std::string& path) const { return files_.count(path) != 0; }

std::string SimHost::file(const std::string& path) const {
    auto it = files_.find(path);
    return it == files_.end() ? std::string() : it->second;
}

size_t SimHost::count_logged(const std::string& needle) const {
    return static_cast<size_t>(std::count_if(console_.begin(), console_.end(), [&](const std::string& l) {
        return l.find(needle) != std::string::npos;
    }));
}

const SimHost::Tool* SimHost::lookup_tool(const char* const argv[]) {
    std::string cmdline;
    for (int i = 0; argv[i] != nullptr; i++) {
        if (i > 0)
            cmdline += ' ';
        cmdline += argv[i];
    }
    runs_.push_back(cmdline);
    auto it = tools_.find(cmdline);
    if (it != tools_.end())
        return &it->second;
    if (driver_ != nullptr && driver_->tool(cmdline, &driven_.output, &driven_.status))
        return &driven_;
    return nullptr;
}

int SimHost::run_capture(const char* const argv[], char* out, size_t size) {
    const Tool* t = lookup_tool(argv);
    if (t == nullptr)
        return -1;
    size_t n = std::min(size, t->output.size());
    std::memcpy(out, t->output.data(), n);
    return static_cast<int>(n);
}

int SimHost::run_status(const char* const argv[]) {
    const Tool* t = lookup_tool(argv);
    return t == nullptr ? -1 : t->status;
}

void SimHost::console_write(const char* line, size_t len) {
    if (echo_)
        (void)!::write(STDERR_FILENO, line, len);
    if (len > 0 && line[len - 1] == '\n')
        len--;
    console_.emplace_back(line, len);
}

unsigned SimHost::if_nametoindex(const char* name) {
    const SimInterface* i = find_interface(name);
    return i == nullptr ? 0 : i->ifindex;
}

bool SimHost::if_indextoname(unsigned ifindex, char* name) {
    for (const auto& i : interfaces_) {
        if (i.ifindex == ifindex && ifindex != 0) {
            std::snprintf(name, IFNAME_LEN, "%s", i.name.c_str());
            return true;
        }
    }
    return false;
}

long SimHost::read_file(const char* path, char* buf, size_t size) {
    auto it = files_.find(path);
    if (it == files_.end()) {
        if (cpu_ != nullptr && std::strcmp(path, "/proc/stat") == 0)
            return static_cast<long>(cpu_->proc_stat(clock_ != nullptr ? clock_->now_ms() : 0, buf, size));
        return driver_ != nullptr ? driver_->file(path, buf, size) : -1;
    }
    size_t n = std::min(size, it->second.size());
    std::memcpy(buf, it->second.data(), n);
    return static_cast<long>(n);
}

bool SimHost::write_file(const char* path, const char* data, size_t len) {
    files_[path] = std::string(data, len);
    return true;
}

HwAddrResult SimHost::get_hwaddr(const char* ifname, uint8_t* mac) {
    const SimInterface* i = find_interface(ifname);
    if (i == nullptr)
        return HwAddrResult::IOCTL_FAILED;
    std::memcpy(mac, i->mac, sizeof i->mac);
    return HwAddrResult::OK;
}

constexpr int kFirstNlFd = 100;

int SimHost::nl_socket(int protocol) {
    auto err = nl_socket_errors_.find(protocol);
    if (err != nl_socket_errors_.end() && err->second != 0)
        return -err->second;
    nl_sockets_.push_back(NlSocket{protocol, 0, true});
    return kFirstNlFd + static_cast<int>(nl_sockets_.size()) - 1;
}

int SimHost::nl_bind(int fd, uint32_t groups) {
    size_t idx = static_cast<size_t>(fd - kFirstNlFd);
    if (fd < kFirstNlFd || idx >= nl_sockets_.size())
        return -EBADF;
    auto err = nl_bind_errors_.find(nl_sockets_[idx].protocol);
    if (err != nl_bind_errors_.end() && err->second != 0)
        return -err->second;
    nl_sockets_[idx].groups = groups;
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

constexpr int kFirstSocketFd = 1000;

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
    return has_send_result_ ? send_result_ : static_cast<long>(len);
}

timespec SimHost::monotonic_now() {
    int64_t ms = clock_ != nullptr ? clock_->now_ms() : 0;
    timespec ts{};
    ts.tv_sec = static_cast<time_t>(ms / 1000);
    ts.tv_nsec = static_cast<long>((ms % 1000) * 1000000);
    return ts;
}

time_t SimHost::wall_now() {
    // A fixed epoch keeps runs repeatable.
    return static_cast<time_t>(1700000000 + (clock_ != nullptr ? clock_->now_ms() / 1000 : 0));
}

}  // namespace lynd
