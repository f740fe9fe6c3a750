// The simulated host: tool replies, interfaces and files come from the
// scenario (or a test); log lines are kept so expectations can read them.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/host.h"

namespace lynd {

class SimLoop;

struct SimInterface {
    std::string name;
    unsigned ifindex = 0;
    uint8_t mac[6] = {};
};

class SimHost : public Host {
public:
    // Tools are keyed by their argument vector joined with single blanks. A
    // tool that was never set cannot run.
    void set_tool(const std::string& cmdline, const std::string& output, int status = 0);
    void add_interface(const SimInterface& iface);
    const SimInterface* find_interface(const std::string& name) const;
    void set_file(const std::string& path, const std::string& content);
    bool has_file(const std::string& path) const;
    std::string file(const std::string& path) const;
    const std::map<std::string, std::string>& files() const { return files_; }
    // Virtual time for the clocks; without a loop they stand at zero.
    void set_clock(SimLoop* loop) { clock_ = loop; }
    // Log lines are also copied to standard error when echo is on.
    void set_echo(bool on) { echo_ = on; }

    const std::vector<std::string>& console_lines() const { return console_; }
    const std::vector<std::string>& runs() const { return runs_; }
    size_t count_logged(const std::string& needle) const;
    bool logged(const std::string& needle) const { return count_logged(needle) > 0; }
    void clear_console() { console_.clear(); }
    void clear_runs() { runs_.clear(); }

    // Netlink: sockets of a protocol get descriptors from 100 on; datagrams
    // queued for a protocol are read by its newest socket. A receive error
    // (-errno) can be queued too.
    void queue_datagram(int protocol, const std::string& bytes);
    void queue_recv_error(int protocol, int error);
    void set_nl_socket_error(int protocol, int error) { nl_socket_errors_[protocol] = error; }
    void set_nl_bind_error(int protocol, int error) { nl_bind_errors_[protocol] = error; }
    // The descriptor of protocol's open socket, or -1.
    int nl_fd(int protocol) const;
    int nl_opened(int protocol) const;

    int run_capture(const char* const argv[], char* out, size_t size) override;
    int run_status(const char* const argv[]) override;
    void console_write(const char* line, size_t len) override;
    unsigned if_nametoindex(const char* name) override;
    HwAddrResult get_hwaddr(const char* ifname, uint8_t* mac) override;
    bool if_indextoname(unsigned ifindex, char* name) override;
    long read_file(const char* path, char* buf, size_t size) override;
    bool write_file(const char* path, const char* data, size_t len) override;
    int close_fd(int fd) override;
    int nl_socket(int protocol) override;
    int nl_bind(int fd, uint32_t groups) override;
    long nl_recv(int fd, void* buf, size_t size) override;
    timespec monotonic_now() override;
    time_t wall_now() override;
    int pid() override { return 4242; }
    void ignore_sigpipe() override {}

private:
    struct Tool {
        std::string output;
        int status = 0;
    };
    const Tool* lookup_tool(const char* const argv[]);

    struct NlSocket {
        int protocol;
        uint32_t groups;
        bool open;
    };
    std::vector<NlSocket> nl_sockets_;  // index + 100 is the descriptor
    std::map<int, std::vector<std::pair<int, std::string>>> nl_queues_;  // error or datagram
    std::map<int, int> nl_socket_errors_;
    std::map<int, int> nl_bind_errors_;

    std::map<std::string, Tool> tools_;
    std::vector<SimInterface> interfaces_;
    std::map<std::string, std::string> files_;
    std::vector<std::string> console_;
    std::vector<std::string> runs_;
    SimLoop* clock_ = nullptr;
    bool echo_ = false;
};

}  // namespace lynd
