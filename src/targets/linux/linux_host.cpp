#include "targets/linux/linux_host.h"

#include <fcntl.h>
#include <arpa/inet.h>
#include <linux/if_packet.h>
#include <linux/netlink.h>
#include <net/if.h>
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

void LinuxHost::console_write(const char* line, size_t len) {
    if (console_path_ != nullptr) {
        if (console_fd_ < 0)
            console_fd_ = ::open(console_path_, O_WRONLY | O_APPEND | O_NOCTTY | O_CLOEXEC);
        if (console_fd_ >= 0 && write_all(console_fd_, line, len))
            return;
        // No console: standard error, which procd hands to the system log.
        if (console_fd_ >= 0)
            ::close(console_fd_);
        console_fd_ = -1;
    }
    (void)write_all(STDERR_FILENO, line, len);
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

// The state files live in /tmp, where anyone may plant a file or a link: the
// temporary file gets a name of its own, created only if new, and is then
// renamed over the final name, which replaces whatever entry stood there.
bool LinuxHost::write_file(const char* path, const char* data, size_t len) {
    char tmp[256];
    if (std::snprintf(tmp, sizeof tmp, "%s.XXXXXX", path) >= static_cast<int>(sizeof tmp))
        return false;
    // mkostemp adds O_CREAT|O_EXCL; O_NOFOLLOW says outright that no link is followed.
    int fd = ::mkostemp(tmp, O_CLOEXEC | O_NOFOLLOW);
    if (fd < 0)
        return false;
    // Other programs read these files.
    bool ok = ::fchmod(fd, 0644) == 0 && write_all(fd, data, len);
    ok = (::close(fd) == 0) && ok;
    if (ok && ::rename(tmp, path) == 0)
        return true;
    ::unlink(tmp);
    return false;
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

int LinuxHost::nl_bind(int fd, uint32_t groups) {
    sockaddr_nl addr{};
    addr.nl_family = AF_NETLINK;
    addr.nl_pid = static_cast<uint32_t>(pid());
    addr.nl_groups = groups;
    return ::bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) < 0 ? -errno : 0;
}

long LinuxHost::nl_recv(int fd, void* buf, size_t size) {
    ssize_t n;
    do {
        n = ::recv(fd, buf, size, MSG_DONTWAIT);
    } while (n < 0 && errno == EINTR);
    return n < 0 ? -errno : static_cast<long>(n);
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
