#include "sim/desk/replay_host.h"

#include <cctype>
#include <cerrno>
#include <cstring>

#include "platform/iw_request.h"
#include "platform/seams.h"
#include "trace/host_requests.h"
#include "trace/trace_order.h"

namespace lynd {

namespace {

// Copies a recorded answer into the daemon's buffer, never past size.
size_t copy_out(const std::string& s, void* buf, size_t size) {
    size_t n = s.size() < size ? s.size() : size;
    std::memcpy(buf, s.data(), n);
    return n;
}

// A log line with its addresses (0x...) blanked: where a list lives in
// memory differs from run to run and is no decision.
std::string without_addresses(const std::string& line) {
    std::string out;
    for (size_t i = 0; i < line.size(); i++) {
        out.push_back(line[i]);
        if (line[i] == '0' && i + 1 < line.size() && line[i + 1] == 'x') {
            out.push_back('x');
            i++;
            while (i + 1 < line.size() && std::isxdigit(static_cast<unsigned char>(line[i + 1])))
                i++;
        }
    }
    return out;
}

// The recorded answer, written where the driver wrote it.
void answer_ioctl(const TraceRecord& r, const DriverRequest& d, iw_request* req) {
    switch (d.out) {
    case DriverOut::VALUE:
        req->u.value = static_cast<int32_t>(r.num("value"));
        break;
    case DriverOut::MODE:
        req->u.mode = static_cast<uint32_t>(r.num("mode"));
        break;
    case DriverOut::ADDRESS:
        req->u.addr.family = static_cast<uint16_t>(r.num("family"));
        (void)copy_out(r.bytes("addr", sizeof req->u.addr.bytes), req->u.addr.bytes, sizeof req->u.addr.bytes);
        break;
    case DriverOut::TABLE: {
        // Room is what the daemon offered; the length what was copied.
        size_t room = req->u.data.length < d.most ? req->u.data.length : d.most;
        size_t n = copy_out(r.bytes("data", room), req->u.data.pointer, room);
        int64_t got = r.num("got");
        req->u.data.length = static_cast<uint16_t>(got >= 0 && static_cast<size_t>(got) < n ? got : n);
        trace_bytes_to_host(d.layout, req->u.data.pointer, n);
        break;
    }
    case DriverOut::NOTHING:
        break;
    }
}

}  // namespace

void ReplayHost::set_config(const std::string& text) {
    config_ = text;
    has_config_ = true;
}

int64_t ReplayHost::rc_of(TraceLine& l, int64_t def) {
    const TraceRecord* r = tape_->take(l);
    return r != nullptr ? r->num("rc", def) : def;
}

int ReplayHost::run_capture(const char* const argv[], char* out, size_t size) {
    TraceLine& l = tape_->begin("run");
    req_run(l, argv, size);
    const TraceRecord* r = tape_->take(l);
    if (r == nullptr)
        return -1;
    // The length is what was copied: a recorded count is no length.
    int64_t rc = r->num("rc", -1);
    if (rc <= 0)
        return rc == 0 ? 0 : -1;
    return static_cast<int>(copy_out(r->text("out", size), out, size));
}

int ReplayHost::run_status(const char* const argv[]) {
    TraceLine& l = tape_->begin("status");
    req_run(l, argv, 0);
    return static_cast<int>(rc_of(l, -1));
}

void ReplayHost::console_write(const char* line, size_t len) {
    std::string text(line, len);
    const TraceRecord* next = tape_->peek();
    if (next != nullptr && next->kind == "log") {
        std::string recorded = next->text("line", TRACE_LINE_MAX);
        if (recorded != text && without_addresses(recorded) == without_addresses(text))
            text = recorded;
    }
    TraceLine& l = tape_->begin("log");
    l.text("line", text.data(), text.size());
    (void)tape_->take(l);
}

void ReplayHost::syslog_write(int priority, const char* line, size_t len) {
    TraceLine& l = tape_->begin("syslog");
    l.num("prio", priority);
    l.text("line", line, len);
    (void)tape_->take(l);
}

unsigned ReplayHost::if_nametoindex(const char* name) {
    TraceLine& l = tape_->begin("ifindex");
    req_ifname(l, name);
    return static_cast<unsigned>(rc_of(l, 0));
}

HwAddrResult ReplayHost::get_hwaddr(const char* ifname, uint8_t* mac) {
    TraceLine& l = tape_->begin("hwaddr");
    req_ifname(l, ifname);
    const TraceRecord* r = tape_->take(l);
    if (r == nullptr)
        return HwAddrResult::SOCKET_FAILED;
    auto rc = static_cast<HwAddrResult>(r->num("rc", 1));
    if (rc == HwAddrResult::OK)
        (void)copy_out(r->bytes("mac", 6), mac, 6);
    return rc;
}

bool ReplayHost::if_indextoname(unsigned ifindex, char* name) {
    TraceLine& l = tape_->begin("ifname");
    l.num("index", ifindex);
    const TraceRecord* r = tape_->take(l);
    if (r == nullptr || r->num("rc") == 0)
        return false;
    size_t n = copy_out(r->str("name"), name, IFNAME_LEN - 1);
    name[n] = '\0';
    return true;
}

long ReplayHost::read_file(const char* path, char* buf, size_t size) {
    TraceLine& l = tape_->begin("read");
    req_read(l, path, size);
    const TraceRecord* r = tape_->take(l);
    // The other configuration answers every read of the file the daemon
    // read first, in place of the recorded one.
    if (has_config_ && config_path_.empty())
        config_path_ = path;
    if (has_config_ && config_path_ == path)
        return static_cast<long>(copy_out(config_, buf, size));
    if (r == nullptr)
        return -1;
    int64_t rc = r->num("rc", -1);
    if (rc <= 0)
        return rc == 0 ? 0 : -1;
    return static_cast<long>(copy_out(r->text("data", size), buf, size));
}

long ReplayHost::file_size(const char* path) {
    TraceLine& l = tape_->begin("fsize");
    l.str("path", path);
    return static_cast<long>(rc_of(l, -1));
}

int ReplayHost::fs_space(const char*, FsSpace* out) {
    TraceLine& l = tape_->begin("fs");
    const TraceRecord* r = tape_->take(l);
    if (r == nullptr)
        return -EIO;
    out->avail = static_cast<uint64_t>(r->num("avail", 0));
    out->total = static_cast<uint64_t>(r->num("total", 0));
    return static_cast<int>(r->num("rc", -EIO));
}

bool ReplayHost::write_file(const char* path, const char* data, size_t len, int* err) {
    TraceLine& l = tape_->begin("write");
    req_write(l, path, data, len);
    const TraceRecord* r = tape_->take(l);
    bool ok = r == nullptr || r->num("rc", 1) != 0;
    if (err != nullptr)
        *err = ok ? 0 : static_cast<int>(r->num("err", EIO));
    return ok;
}

int ReplayHost::close_fd(int fd) {
    TraceLine& l = tape_->begin("close");
    l.num("fd", fd);
    return static_cast<int>(rc_of(l, 0));
}

int ReplayHost::dgram_socket() { return static_cast<int>(rc_of(tape_->begin("dgram"), -EBADF)); }

int ReplayHost::dev_ioctl(int fd, unsigned long request, void* arg) {
    const DriverRequest* d = find_driver_request(installed_seams().driver, request);
    TraceLine& l = tape_->begin("ioctl");
    req_ioctl(l, fd, request, arg, d);
    const TraceRecord* r = tape_->take(l);
    if (r == nullptr)
        return -EIO;
    int rc = static_cast<int>(r->num("rc", -EIO));
    if (rc >= 0 && d != nullptr)
        answer_ioctl(*r, *d, static_cast<iw_request*>(arg));
    return rc;
}

int ReplayHost::packet_socket(uint16_t ethertype) {
    TraceLine& l = tape_->begin("packet");
    l.num("etype", ethertype);
    return static_cast<int>(rc_of(l, -EBADF));
}

long ReplayHost::packet_send(int fd, unsigned ifindex, uint16_t ethertype, const uint8_t* dst, const void* frame,
                             size_t len) {
    TraceLine& l = tape_->begin("send");
    req_send(l, fd, ifindex, ethertype, dst, frame, len);
    return static_cast<long>(rc_of(l, static_cast<int64_t>(len)));
}

int ReplayHost::nl_socket(int protocol) {
    TraceLine& l = tape_->begin("nl_socket");
    l.num("proto", protocol);
    int fd = static_cast<int>(rc_of(l, -EBADF));
    families_.note(fd, protocol);
    return fd;
}

int ReplayHost::nl_bind(int fd, uint32_t groups, uint32_t* port) {
    TraceLine& l = tape_->begin("nl_bind");
    l.num("fd", fd);
    l.num("groups", groups);
    const TraceRecord* r = tape_->take(l);
    if (r == nullptr)
        return -EBADF;
    *port = static_cast<uint32_t>(r->num("nl_port", 0));
    return static_cast<int>(r->num("rc", -EBADF));
}

long ReplayHost::nl_recv(int fd, void* buf, size_t size, uint32_t* sender) {
    TraceLine& l = tape_->begin("nl_recv");
    l.num("fd", fd);
    l.num("size", static_cast<int64_t>(size));
    const TraceRecord* r = tape_->take(l);
    if (r == nullptr)
        return -EAGAIN;
    int64_t rc = r->num("rc", -EAGAIN);
    *sender = static_cast<uint32_t>(r->num("nl_from", 0));
    if (rc <= 0)
        return rc < -4095 ? -EIO : static_cast<long>(rc);
    size_t n = copy_out(r->bytes("data", size), buf, size);
    trace_bytes_to_host(families_.of(fd), buf, n);
    return static_cast<long>(n);
}

timespec ReplayHost::monotonic_now() {
    const TraceRecord* r = tape_->what_if() ? nullptr : tape_->take(tape_->begin("mono"));
    timespec ts{};
    if (r != nullptr && !trace_clock_in_range(r->num("s"), r->num("ns")))
        tape_->refuse(*r, "a monotonic clock reading out of range");
    if (r != nullptr && trace_clock_in_range(r->num("s"), r->num("ns"))) {
        ts.tv_sec = static_cast<time_t>(r->num("s"));
        ts.tv_nsec = static_cast<long>(r->num("ns"));
    } else {
        ts.tv_sec = static_cast<time_t>(tape_->now_ms() / 1000);
        ts.tv_nsec = static_cast<long>(tape_->now_ms() % 1000) * 1000000L;
    }
    return ts;
}

time_t ReplayHost::wall_now() {
    if (tape_->what_if())
        return static_cast<time_t>(tape_->wall_now());
    const TraceRecord* r = tape_->take(tape_->begin("wall"));
    if (r == nullptr)
        return 0;
    if (!trace_clock_in_range(r->num("s"), 0)) {
        tape_->refuse(*r, "a wall clock reading out of range");
        return 0;
    }
    return static_cast<time_t>(r->num("s"));
}

int ReplayHost::pid() { return static_cast<int>(rc_of(tape_->begin("pid"), 1)); }

void ReplayHost::ignore_sigpipe() { (void)tape_->take(tape_->begin("sigpipe")); }

UciResult ReplayUci::get(char* path, char* value, size_t size) {
    TraceLine& l = tape_->begin("uci");
    l.str("path", path);
    l.num("size", static_cast<int64_t>(size));
    const TraceRecord* r = tape_->take(l);
    if (r == nullptr)
        return UciResult::NOT_FOUND;
    auto rc = static_cast<UciResult>(r->num("rc", 1));
    if (rc == UciResult::FOUND && size > 0) {
        size_t n = copy_out(r->text("value", size - 1), value, size - 1);
        value[n] = '\0';
    }
    return rc;
}

}  // namespace lynd
