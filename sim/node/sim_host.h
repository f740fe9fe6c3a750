// The simulated host: tool replies, interfaces and files come from the
// scenario (or a test); log lines are kept so expectations can read them.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/host.h"
#include "sim/node/sim_driver.h"

namespace lynd {

class SimCpu;
class SimLoop;

// How a simulated tool behaves. A hanging tool holds the daemon until its
// deadline and is killed; an endless one prints its output over and over:
// a capture reads a buffer full and the tool dies as its pipe closes, while
// a tool whose output is not read runs into the deadline.
enum class SimToolMode : uint8_t { ANSWERS, HANGS, ENDLESS };

// One raw frame the daemon sent.
struct SimFrame {
    unsigned ifindex;
    uint16_t ethertype;
    uint8_t dst[6];
    std::string bytes;
};

struct SimInterface {
    std::string name;
    unsigned ifindex = 0;
    uint8_t mac[6] = {};
};

class SimHost : public Host {
public:
    // Tools are keyed by their argument vector joined with single blanks. A
    // tool that was never set cannot run.
    void set_tool(const std::string& cmdline, const std::string& output, int status = 0,
                  SimToolMode mode = SimToolMode::ANSWERS);
    void add_interface(const SimInterface& iface);
    const SimInterface* find_interface(const std::string& name) const;
    const std::vector<SimInterface>& interfaces() const { return interfaces_; }
    void set_file(const std::string& path, const std::string& content);
    bool has_file(const std::string& path) const;
    std::string file(const std::string& path) const;
    const std::map<std::string, std::string>& files() const { return files_; }
    // How often the daemon wrote path (writes that failed aside).
    int writes(const std::string& path) const;
    // Writes of path fail with error (an errno value) until it is 0 again:
    // a directory, a foreign file or a full disk in its place.
    void set_file_obstacle(const std::string& path, int error);
    // Virtual time for the clocks; without a loop they stand at zero.
    void set_clock(SimLoop* loop) { clock_ = loop; }
    // Log lines are also copied to standard error when echo is on.
    void set_echo(bool on) { echo_ = on; }

    const std::vector<std::string>& console_lines() const { return console_; }
    // Lines sent to the system log, each as "<priority>line".
    const std::vector<std::string>& syslog_lines() const { return syslog_; }
    const std::vector<std::string>& runs() const { return runs_; }
    size_t count_logged(const std::string& needle) const;
    bool logged(const std::string& needle) const { return count_logged(needle) > 0; }
    void clear_console() {
        console_.clear();
        syslog_.clear();
    }
    void clear_runs() { runs_.clear(); }

    // Netlink: sockets of a protocol get descriptors from 100 on; datagrams
    // queued for a protocol are read by its newest socket, from sender (0:
    // the kernel). A receive error (-errno) can be queued too.
    void queue_datagram(int protocol, const std::string& bytes, uint32_t sender = 0);
    void queue_recv_error(int protocol, int error);
    void set_nl_socket_error(int protocol, int error) { nl_socket_errors_[protocol] = error; }
    void set_nl_bind_error(int protocol, int error) { nl_bind_errors_[protocol] = error; }
    // Another process binds port on protocol: false when it is taken. A
    // bind asks the kernel for a port id as the daemon's does: the process
    // id when free, else one counted down from -4096, never one in use.
    bool squat_nl_port(int protocol, uint32_t port);
    // The descriptor of protocol's open socket, or -1.
    int nl_fd(int protocol) const;
    // The port id fd is bound to, 0 when unbound.
    uint32_t nl_port(int fd) const;
    int nl_opened(int protocol) const;

    // /proc/stat comes from cpu unless a file was set for it.
    void set_cpu(const SimCpu* cpu) { cpu_ = cpu; }
    // Driver requests go to driver; without one they fail with -EOPNOTSUPP.
    // Tools and files the scenario did not fix are asked of it too.
    void set_driver(SimDriver* driver) { driver_ = driver; }
    // Errors (errno values) for the next datagram or packet sockets; 0 clears.
    void set_dgram_socket_error(int error) { dgram_error_ = error; }
    void set_packet_socket_error(int error) { packet_error_ = error; }
    // Every send is recorded; it reports send_result when one is set, else
    // the whole length.
    void set_send_result(long result) { send_result_ = result; has_send_result_ = true; }
    const std::vector<SimFrame>& frames() const { return frames_; }
    void clear_frames() { frames_.clear(); }
    // Datagram and packet sockets not yet closed.
    int open_sockets() const;

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
    void set_fs_space(uint64_t avail, uint64_t total) {
        fs_.avail = avail;
        fs_.total = total;
    }
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
    int pid() override { return 4242; }
    void ignore_sigpipe() override {}

private:
    FsSpace fs_{uint64_t{1} << 30, uint64_t{2} << 30};
    static constexpr int kFirstNlFd = 100;
    static constexpr int kFirstSocketFd = 1000;

    struct Tool {
        std::string output;
        int status = 0;
        SimToolMode mode = SimToolMode::ANSWERS;
    };
    const Tool* lookup_tool(const char* const argv[]);
    // The loop stands still while a tool holds it, then the run fails.
    int run_into_deadline();

    struct NlSocket {
        int protocol;
        uint32_t groups;
        bool open;
        bool bound;
        uint32_t port;
    };
    struct NlItem {
        int error;
        std::string bytes;
        uint32_t sender;
    };
    bool nl_port_taken(int protocol, uint32_t port) const;
    std::vector<NlSocket> nl_sockets_;  // index + 100 is the descriptor
    std::map<int, std::vector<NlItem>> nl_queues_;
    std::vector<std::pair<int, uint32_t>> nl_squatters_;  // protocol, port
    std::map<int, int> nl_socket_errors_;
    std::map<int, int> nl_bind_errors_;

    // Datagram and packet sockets: index + kFirstSocketFd is the descriptor.
    enum class SockKind : uint8_t { DGRAM, PACKET };
    struct Socket {
        SockKind kind;
        bool open;
    };
    int open_socket(SockKind kind, int error);
    Socket* find_socket(int fd, SockKind kind);
    std::vector<Socket> sockets_;
    SimDriver* driver_ = nullptr;
    const SimCpu* cpu_ = nullptr;
    Tool driven_;  // the driver's reply to the tool being run
    int dgram_error_ = 0;
    int packet_error_ = 0;
    long send_result_ = 0;
    bool has_send_result_ = false;
    std::vector<SimFrame> frames_;

    std::map<std::string, Tool> tools_;
    std::vector<SimInterface> interfaces_;
    std::map<std::string, std::string> files_;
    std::map<std::string, int> writes_;
    std::map<std::string, int> obstacles_;
    std::vector<std::string> console_;
    std::vector<std::string> syslog_;
    std::vector<std::string> runs_;
    SimLoop* clock_ = nullptr;
    bool echo_ = false;
};

}  // namespace lynd
