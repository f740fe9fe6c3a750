// Seams for measuring the daemon alone: the simulated host and UCI with
// their own bookkeeping left out of the allocation count, and a bridge that
// answers from fixed tables and records nothing.
#pragma once
#include <cstdlib>
#include <cstring>
#include <vector>

#include "bench/alloc_counter.h"
#include "bench/bench_seams.h"
#include "bridge/table_entries.h"
#include "platform/krel_args.h"

class QuietHost : public lynd::Host {
public:
    explicit QuietHost(lynd::SimHost* h) : h_(h) {}
    int run_capture(const char* const argv[], char* out, size_t size) override {
        AllocPause p;
        return h_->run_capture(argv, out, size);
    }
    int run_status(const char* const argv[]) override {
        AllocPause p;
        return h_->run_status(argv);
    }
    void console_write(const char* line, size_t len) override {
        AllocPause p;
        h_->console_write(line, len);
    }
    void syslog_write(int priority, const char* line, size_t len) override {
        AllocPause p;
        h_->syslog_write(priority, line, len);
    }
    long file_size(const char* path) override { return h_->file_size(path); }
    int fs_space(const char* path, lynd::FsSpace* out) override { return h_->fs_space(path, out); }
    unsigned if_nametoindex(const char* name) override { return h_->if_nametoindex(name); }
    lynd::HwAddrResult get_hwaddr(const char* ifname, uint8_t* mac) override { return h_->get_hwaddr(ifname, mac); }
    bool if_indextoname(unsigned ifindex, char* name) override { return h_->if_indextoname(ifindex, name); }
    long read_file(const char* path, char* buf, size_t size) override {
        AllocPause p;
        return h_->read_file(path, buf, size);
    }
    bool write_file(const char* path, const char* data, size_t len, int* err) override {
        AllocPause p;
        return h_->write_file(path, data, len, err);
    }
    int close_fd(int fd) override { return h_->close_fd(fd); }
    int dgram_socket() override {
        AllocPause p;
        return h_->dgram_socket();
    }
    int dev_ioctl(int fd, unsigned long request, void* arg) override {
        AllocPause p;
        return h_->dev_ioctl(fd, request, arg);
    }
    int packet_socket(uint16_t ethertype) override {
        AllocPause p;
        return h_->packet_socket(ethertype);
    }
    long packet_send(int fd, unsigned ifindex, uint16_t ethertype, const uint8_t* dst, const void* frame,
                     size_t len) override {
        AllocPause p;
        return h_->packet_send(fd, ifindex, ethertype, dst, frame, len);
    }
    int nl_socket(int protocol) override { return h_->nl_socket(protocol); }
    int nl_bind(int fd, uint32_t groups, uint32_t* port) override { return h_->nl_bind(fd, groups, port); }
    long nl_recv(int fd, void* buf, size_t size, uint32_t* sender) override {
        return h_->nl_recv(fd, buf, size, sender);
    }
    timespec monotonic_now() override { return h_->monotonic_now(); }
    time_t wall_now() override { return h_->wall_now(); }
    int pid() override { return h_->pid(); }
    void ignore_sigpipe() override {}

private:
    lynd::SimHost* h_;
};

class QuietUci : public lynd::UciStore {
public:
    explicit QuietUci(lynd::SimUci* u) : u_(u) {}
    lynd::UciResult get(char* path, char* value, size_t size) override {
        AllocPause p;
        return u_->get(path, value, size);
    }

private:
    lynd::SimUci* u_;
};

// One bridge: its ports (by index), its hc and fdb tables.
class QuietBridge : public lynd::KrelApi {
public:
    std::vector<uint32_t> ports;
    std::vector<hc_entry> hc;
    std::vector<fdb_entry> fdb;

    void* bridgeAllocTableBuf(int size, const char*) override {
        AllocPause p;
        auto* area = static_cast<unsigned char*>(std::malloc(static_cast<size_t>(size) + kHeader));
        return area != nullptr ? area + kHeader : nullptr;
    }
    void bridgeFreeTableBuf(void* payload) override {
        if (payload != nullptr)
            std::free(static_cast<unsigned char*>(payload) - kHeader);
    }
    int bridgeTableAction(const char*, int type, int* count, void* buf, int) override {
        bool is_hc = type == LYND_TABLE_HC;
        size_t n = is_hc ? hc.size() : fdb.size();
        if (static_cast<size_t>(*count) < n) {
            *count = static_cast<int>(n);
            return -1;
        }
        std::memcpy(buf, is_hc ? static_cast<const void*>(hc.data()) : fdb.data(), n * (is_hc ? sizeof(hc_entry) : sizeof(fdb_entry)));
        *count = static_cast<int>(n);
        return 0;
    }
    int netlink_msg(int type, unsigned char* buf, int size, int) override {
        if (type != 256)
            return 0;
        uint32_t len = 0;
        for (size_t i = 0; i < ports.size() && (i + 1) * kPortEntry <= static_cast<size_t>(size); i++) {
            std::memcpy(buf + kHeader + i * kPortEntry, &ports[i], sizeof(uint32_t));
            len += kPortEntry;
        }
        std::memcpy(buf + kLenOffset, &len, sizeof len);
        return 0;
    }
// Every write succeeds and changes nothing.
#define LYND_KREL_QUIET(name, params, args, steers) \
    int name params override {                     \
        (void)lynd::krel_args{#name} args;             \
        return 0;                                  \
    }
    LYND_KREL_WRITES(LYND_KREL_QUIET)
#undef LYND_KREL_QUIET

private:
    static constexpr size_t kHeader = 52;
    static constexpr size_t kLenOffset = 44;
    static constexpr size_t kPortEntry = 52;
};
