// The host and UCI of a replay: every answer comes from the record, every
// output is compared with it.
#pragma once
#include "platform/host.h"
#include "platform/uci_store.h"
#include "sim/desk/replay_tape.h"
#include "trace/trace_order.h"

namespace lynd {

class ReplayHost : public Host {
public:
    explicit ReplayHost(ReplayTape* tape) : tape_(tape) {}
    // What-if runs answer the first read, the configuration file's, with
    // another text.
    void set_config(const std::string& text);

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
    int64_t rc_of(TraceLine& l, int64_t def);

    ReplayTape* tape_;
    std::string config_;
    bool has_config_ = false;
    std::string config_path_;
    NlFamilies families_;
};

class ReplayUci : public UciStore {
public:
    explicit ReplayUci(ReplayTape* tape) : tape_(tape) {}
    UciResult get(char* path, char* value, size_t size) override;

private:
    ReplayTape* tape_;
};

}  // namespace lynd
