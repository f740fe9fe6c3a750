// The host seam: everything the daemon asks of the operating system.
#pragma once
#include <cstddef>
#include <cstdint>
#include <ctime>

namespace lynd {

constexpr size_t IFNAME_LEN = 16;  // 15 characters and the terminator

enum class HwAddrResult { OK, SOCKET_FAILED, IOCTL_FAILED };

// How long a tool may run: a tool that hangs or prints without end must not
// hold the single loop longer than this.
constexpr int TOOL_DEADLINE_MS = 3000;
// A run's result when the tool was killed at its deadline.
constexpr int TOOL_TIMED_OUT = -2;
// A filesystem's room, in bytes.
struct FsSpace {
    uint64_t avail = 0;  // free to this user
    uint64_t total = 0;
};

class Host {
public:
    virtual ~Host() = default;

    // Runs argv[0] with argv (null-terminated), no shell. Reads at most
    // size bytes of its standard output into out. -1 when it could not run,
    // TOOL_TIMED_OUT when it was still running at its deadline.
    virtual int run_capture(const char* const argv[], char* out, size_t size) = 0;
    // Runs argv and waits; the exit status, -1 when it could not run (or
    // died of a signal), TOOL_TIMED_OUT when killed at its deadline.
    virtual int run_status(const char* const argv[]) = 0;

    // The log sink: one formatted line, newline included.
    virtual void console_write(const char* line, size_t len) = 0;
    // The system log instead: one line without its newline, at a syslog
    // priority (LOG_ERR, ...).
    virtual void syslog_write(int priority, const char* line, size_t len) = 0;

    virtual unsigned if_nametoindex(const char* name) = 0;
    virtual HwAddrResult get_hwaddr(const char* ifname, uint8_t* mac) = 0;
    // name is a 16-byte buffer; false when the kernel does not know ifindex.
    virtual bool if_indextoname(unsigned ifindex, char* name) = 0;

    // Reads at most size bytes of path into buf; -1 when it cannot be opened.
    virtual long read_file(const char* path, char* buf, size_t size) = 0;
    // The size of path in bytes; -1 when it cannot be looked at.
    virtual long file_size(const char* path) = 0;
    // Replaces path with data (written whole, then renamed into place). When
    // it cannot, err (unless null) gets why, as an errno value.
    virtual bool write_file(const char* path, const char* data, size_t len, int* err) = 0;

    // The room of the filesystem holding path (statvfs): 0, or -errno. The
    // recorder's own question about its trace directory, never recorded.
    virtual int fs_space(const char* path, FsSpace* out) = 0;

    // 0 on success.
    virtual int close_fd(int fd) = 0;

    // An AF_INET datagram socket for driver requests: its descriptor, or -errno.
    virtual int dgram_socket() = 0;
    // One driver request (ioctl) on fd: its result (>= 0), or -errno. arg
    // is an iw_request; what it carries, the wireless back-end describes
    // (driver_requests.h).
    virtual int dev_ioctl(int fd, unsigned long request, void* arg) = 0;
    // A raw packet socket for one ethertype: its descriptor, or -errno.
    virtual int packet_socket(uint16_t ethertype) = 0;
    // Sends a whole frame out of ifindex: the bytes sent, or -errno. The
    // link-layer address carries only the family, ethertype, index and dst.
    virtual long packet_send(int fd, unsigned ifindex, uint16_t ethertype, const uint8_t* dst, const void* frame,
                             size_t len) = 0;

    // A raw netlink socket of protocol: its descriptor, or -errno.
    virtual int nl_socket(int protocol) = 0;
    // Binds it to groups under a port id the kernel picks (a fixed one could
    // be taken first by anyone): 0 with that id in *port, or -errno.
    virtual int nl_bind(int fd, uint32_t groups, uint32_t* port) = 0;
    // One datagram, without waiting: its length, or -errno (-EAGAIN: none).
    // *sender is the port id it came from, 0 for the kernel.
    virtual long nl_recv(int fd, void* buf, size_t size, uint32_t* sender) = 0;

    virtual timespec monotonic_now() = 0;
    virtual time_t wall_now() = 0;
    virtual int pid() = 0;
    virtual void ignore_sigpipe() = 0;
};

}  // namespace lynd
