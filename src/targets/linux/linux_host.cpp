#include "targets/linux/linux_host.h"

#include <fcntl.h>
#include <arpa/inet.h>
#include <linux/if_packet.h>
#include <linux/netlink.h>
#include <net/if.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <syslog.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "targets/linux/tool_run.h"
#include "core/counters.h"

namespace lynd {

namespace {

// Whole or not at all; false after a short write.
bool write_all(int fd, const char* data, size_t len) {
    while (len > 0) {
        ssize_t n = ::write(fd, data, len);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        data += n;
        len -= static_cast<size_t>(n);
    }
    return true;
}

// The state files live in /tmp, where anyone may plant a file or a link: the
// temporary file gets a name of its own, created only if new, and is then
// renamed over the final name, which replaces whatever entry stood there.
// 0, or the errno of the step that failed.
int replace_file(const char* path, char* tmp, const char* data, size_t len) {
    // mkostemp adds O_CREAT|O_EXCL; O_NOFOLLOW says outright that no link is followed.
    int fd = ::mkostemp(tmp, O_CLOEXEC | O_NOFOLLOW);
    if (fd < 0)
        return errno;
    int why = 0;
    errno = 0;
    // Other programs read these files.
    if (::fchmod(fd, 0644) != 0 || !write_all(fd, data, len))
        why = errno != 0 ? errno : ENOSPC;  // a write of nothing: no room
    if (::close(fd) != 0 && why == 0)
        why = errno;
    if (why == 0 && ::rename(tmp, path) == 0)
        return 0;
    if (why == 0)
        why = errno;
    ::unlink(tmp);
    return why;
}

}  // namespace

LinuxHost::LinuxHost(const char* console) : console_path_(console) {}

LinuxHost::~LinuxHost() {
    if (console_fd_ >= 0)
        ::close(console_fd_);
}

int LinuxHost::run_capture(const char* const argv[], char* out, size_t size) {
    return tool_run_capture(argv, out, size, TOOL_DEADLINE_MS);
}

int LinuxHost::run_status(const char* const argv[]) { return tool_run_status(argv, TOOL_DEADLINE_MS); }

// A console that does not drain (a stalled serial line) must not hold the
// loop: the line is dropped and counted instead of waited for. One that
// fails outright gives way to standard error, which procd hands to the
// system log; its flags are shared with whoever else holds it, so it is
// only polled.
void LinuxHost::console_write(const char* line, size_t len) {
    if (console_path_ != nullptr) {
        if (console_fd_ < 0) {
            console_fd_ = ::open(console_path_, O_WRONLY | O_APPEND | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
            console_tail_len_ = 0;
        }
        if (console_fd_ >= 0) {
            int rc = console_put(line, len);
            if (rc == 0)
                g_counters.console_lines_dropped++;
            if (rc >= 0)
                return;
            ::close(console_fd_);
            console_fd_ = -1;
        }
    }
    pollfd p{STDERR_FILENO, POLLOUT, 0};
    if (::poll(&p, 1, 0) != 1 || (p.revents & POLLOUT) == 0 || !write_all(STDERR_FILENO, line, len))
        g_counters.console_lines_dropped++;
}

// 1 when written whole or with the rest kept, 0 when it would block, -1 on
// an error.
int LinuxHost::console_try(const char* data, size_t len, size_t* done) {
    ssize_t n;
    do
        n = ::write(console_fd_, data, len);
    while (n < 0 && errno == EINTR);
    if (n < 0)
        return errno == EAGAIN || errno == EWOULDBLOCK ? 0 : -1;
    *done = static_cast<size_t>(n);
    return 1;
}

// What a short write left goes out first, so that lines stay whole; the new
// line waits for nothing: all of it, part of it with the rest kept, or none.
int LinuxHost::console_put(const char* line, size_t len) {
    size_t done = 0;
    if (console_tail_len_ > 0) {
        int rc = console_try(console_tail_, console_tail_len_, &done);
        if (rc <= 0)
            return rc;
        console_tail_len_ -= done;
        std::memmove(console_tail_, console_tail_ + done, console_tail_len_);
        if (console_tail_len_ > 0)
            return 0;
    }
    int rc = console_try(line, len, &done);
    if (rc <= 0)
        return rc;
    size_t rest = len - done;
    console_tail_len_ = rest < sizeof console_tail_ ? rest : sizeof console_tail_;
    std::memcpy(console_tail_, line + done, console_tail_len_);
    return 1;
}

void LinuxHost::syslog_write(int priority, const char* line, size_t len) {
    if (!syslog_open_) {
        ::openlog("lynd", LOG_PID, LOG_DAEMON);
        syslog_open_ = true;
    }
    ::syslog(priority, "%.*s", static_cast<int>(len), line);
}

unsigned LinuxHost::if_nametoindex(const char* name) { return ::if_nametoindex(name); }

bool LinuxHost::if_indextoname(unsigned ifindex, char* name) {
    return ::if_indextoname(ifindex, name) != nullptr;
}

long LinuxHost::file_size(const char* path) {
    struct stat st;
    if (::stat(path, &st) != 0)
        return -1;
    return static_cast<long>(st.st_size);
}

int LinuxHost::fs_space(const char* path, FsSpace* out) {
    struct statvfs st {};
    if (::statvfs(path, &st) != 0)
        return -errno;
    out->avail = static_cast<uint64_t>(st.f_bavail) * st.f_frsize;
    out->total = static_cast<uint64_t>(st.f_blocks) * st.f_frsize;
    return 0;
}

long LinuxHost::read_file(const char* path, char* buf, size_t size) {
    int fd = ::open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return -1;
    size_t got = 0;
    while (got < size) {
        ssize_t n = ::read(fd, buf + got, size - got);
        if (n > 0)
            got += static_cast<size_t>(n);
        else if (n == 0 || errno != EINTR)
            break;
    }
    ::close(fd);
    return static_cast<long>(got);
}

bool LinuxHost::write_file(const char* path, const char* data, size_t len, int* err) {
    char tmp[256];
    int why = ENAMETOOLONG;
    if (std::snprintf(tmp, sizeof tmp, "%s.XXXXXX", path) < static_cast<int>(sizeof tmp))
        why = replace_file(path, tmp, data, len);
    if (err != nullptr)
        *err = why;
    return why == 0;
}

HwAddrResult LinuxHost::get_hwaddr(const char* ifname, uint8_t* mac) {
    int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return HwAddrResult::SOCKET_FAILED;
    ifreq ifr{};
    std::strncpy(ifr.ifr_name, ifname, sizeof ifr.ifr_name);
    int rc = ::ioctl(fd, SIOCGIFHWADDR, &ifr);
    ::close(fd);
    if (rc < 0)
        return HwAddrResult::IOCTL_FAILED;
    std::memcpy(mac, ifr.ifr_hwaddr.sa_data, 6);
    return HwAddrResult::OK;
}

int LinuxHost::nl_socket(int protocol) {
    int fd = ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, protocol);
    return fd < 0 ? -errno : fd;
}

int LinuxHost::nl_bind(int fd, uint32_t groups, uint32_t* port) {
    sockaddr_nl addr{};
    addr.nl_family = AF_NETLINK;
    addr.nl_groups = groups;
    if (::bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) < 0)
        return -errno;
    socklen_t alen = sizeof addr;
    if (::getsockname(fd, reinterpret_cast<sockaddr*>(&addr), &alen) < 0)
        return -errno;
    *port = addr.nl_pid;
    return 0;
}

// Any process may send to a netlink port: the source address says whether
// the kernel did. An address that is not netlink's counts as foreign.
long LinuxHost::nl_recv(int fd, void* buf, size_t size, uint32_t* sender) {
    sockaddr_nl from{};
    socklen_t flen;
    ssize_t n;
    do {
        flen = sizeof from;
        n = ::recvfrom(fd, buf, size, MSG_DONTWAIT, reinterpret_cast<sockaddr*>(&from), &flen);
    } while (n < 0 && errno == EINTR);
    if (n < 0)
        return -errno;
    *sender = flen >= sizeof from && from.nl_family == AF_NETLINK ? from.nl_pid : UINT32_MAX;
    return static_cast<long>(n);
}

int LinuxHost::close_fd(int fd) { return ::close(fd); }

int LinuxHost::dgram_socket() {
    int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    return fd < 0 ? -errno : fd;
}

int LinuxHost::dev_ioctl(int fd, unsigned long request, void* arg) {
    int rc = ::ioctl(fd, request, arg);
    return rc < 0 ? -errno : rc;
}

int LinuxHost::packet_socket(uint16_t ethertype) {
    int fd = ::socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, htons(ethertype));
    return fd < 0 ? -errno : fd;
}

long LinuxHost::packet_send(int fd, unsigned ifindex, uint16_t ethertype, const uint8_t* dst, const void* frame,
                            size_t len) {
    sockaddr_ll to{};
    to.sll_family = AF_PACKET;
    to.sll_protocol = htons(ethertype);
    to.sll_ifindex = static_cast<int>(ifindex);
    std::memcpy(to.sll_addr, dst, 6);
    ssize_t n;
    do {
        n = ::sendto(fd, frame, len, 0, reinterpret_cast<sockaddr*>(&to), sizeof to);
    } while (n < 0 && errno == EINTR);
    return n < 0 ? -errno : static_cast<long>(n);
}

timespec LinuxHost::monotonic_now() {
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts;
}

time_t LinuxHost::wall_now() { return ::time(nullptr); }

int LinuxHost::pid() { return static_cast<int>(::getpid()); }

void LinuxHost::ignore_sigpipe() { ::signal(SIGPIPE, SIG_IGN); }

}  // namespace lynd
