// The host seam, recorded: each question with its answer, each output whole.
#pragma once
#include "platform/host.h"
#include "trace/trace_order.h"

namespace lynd {

class RecHost : public Host {
public:
    void set_inner(Host* inner) { in_ = inner; }
    Host* inner() const { return in_; }

    int run_capture(const char* const argv[], char* out, size_t size) override;
    int run_status(const char* const argv[]) override;
    void console_write(const char* line, size_t len) override;
    void syslog_write(int priority, const char* line, size_t len) override;
    unsigned if_nametoindex(const char* name) override;
    HwAddrResult get_hwaddr(const char* ifname, uint8_t* mac) override;
    bool if_indextoname(unsigned ifindex, char* name) override;
    long read_file(const char* path, char* buf, size_t size) override;
    long file_size(const char* path) override;
    int fs_space(const char* path, FsSpace* out) override;
    bool write_file(const char* path, const char* data, size_t len, int* err) override;
    int close_fd(int fd) override;
    int dgram_socket() override;
    int dev_ioctl(int fd, unsigned long request, void* arg) override;
    int packet_socket(uint16_t ethertype) override;
    long packet_send(int fd, unsigned ifindex, uint16_t ethertype, const uint8_t* dst, const void* frame,
                     size_t len) override;
    int nl_socket(int protocol) override;
    int nl_bind(int fd, uint32_t groups, uint32_t* port) override;
    long nl_recv(int fd, void* buf, size_t size, uint32_t* sender) override;
    timespec monotonic_now() override;
    time_t wall_now() override;
    int pid() override;
    void ignore_sigpipe() override;

private:
    Host* in_ = nullptr;
    NlFamilies families_;
};

}  // namespace lynd
