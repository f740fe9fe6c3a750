#include "trace/rec_host.h"

#include <cstring>

#include "platform/seams.h"
#include "trace/host_requests.h"
#include "trace/trace_sink.h"

namespace lynd {

namespace {

int simple(const char* kind, int rc) {
    TraceLine& l = trace_begin(kind);
    l.num("rc", rc);
    trace_emit();
    return rc;
}

// A call whose one argument is a number.
int with_number(const char* kind, const char* key, int64_t value, int rc) {
    TraceLine& l = trace_begin(kind);
    l.num(key, value);
    l.num("rc", rc);
    trace_emit();
    return rc;
}

}  // namespace

int RecHost::run_capture(const char* const argv[], char* out, size_t size) {
    int rc = in_->run_capture(argv, out, size);
    TraceLine& l = trace_begin("run");
    req_run(l, argv, size);
    l.num("rc", rc);
    if (rc > 0)
        l.text("out", out, static_cast<size_t>(rc) < size ? static_cast<size_t>(rc) : size);
    trace_emit();
    return rc;
}

int RecHost::run_status(const char* const argv[]) {
    int rc = in_->run_status(argv);
    TraceLine& l = trace_begin("status");
    req_run(l, argv, 0);
    l.num("rc", rc);
    trace_emit();
    return rc;
}

void RecHost::console_write(const char* line, size_t len) {
    TraceLine& l = trace_begin("log");
    l.text("line", line, len);
    trace_emit();
    in_->console_write(line, len);
}

void RecHost::syslog_write(int priority, const char* line, size_t len) {
    TraceLine& l = trace_begin("syslog");
    l.num("prio", priority);
    l.text("line", line, len);
    trace_emit();
    in_->syslog_write(priority, line, len);
}

unsigned RecHost::if_nametoindex(const char* name) {
    unsigned rc = in_->if_nametoindex(name);
    TraceLine& l = trace_begin("ifindex");
    req_ifname(l, name);
    l.num("rc", rc);
    trace_emit();
    return rc;
}

HwAddrResult RecHost::get_hwaddr(const char* ifname, uint8_t* mac) {
    HwAddrResult rc = in_->get_hwaddr(ifname, mac);
    TraceLine& l = trace_begin("hwaddr");
    req_ifname(l, ifname);
    l.num("rc", static_cast<int>(rc));
    if (rc == HwAddrResult::OK)
        l.hex("mac", mac, 6);
    trace_emit();
    return rc;
}

bool RecHost::if_indextoname(unsigned ifindex, char* name) {
    bool ok = in_->if_indextoname(ifindex, name);
    TraceLine& l = trace_begin("ifname");
    l.num("index", ifindex);
    l.num("rc", ok ? 1 : 0);
    if (ok)
        l.str("name", name);
    trace_emit();
    return ok;
}

long RecHost::read_file(const char* path, char* buf, size_t size) {
    long rc = in_->read_file(path, buf, size);
    TraceLine& l = trace_begin("read");
    req_read(l, path, size);
    l.num("rc", rc);
    size_t n = rc > 0 ? (static_cast<size_t>(rc) < size ? static_cast<size_t>(rc) : size) : 0;
    if (rc > 0)
        l.text("data", buf, n);
    trace_emit();
    return rc;
}

long RecHost::file_size(const char* path) {
    long rc = in_->file_size(path);
    TraceLine& l = trace_begin("fsize");
    l.str("path", path);
    l.num("rc", rc);
    trace_emit();
    return rc;
}

// The path is the daemon's own trace directory, not an input: left out, so
// a replay with the directory elsewhere asks the same question.
int RecHost::fs_space(const char* path, FsSpace* out) {
    int rc = in_->fs_space(path, out);
    TraceLine& l = trace_begin("fs");
    l.num("rc", rc);
    if (rc == 0) {
        l.num("avail", static_cast<int64_t>(out->avail));
        l.num("total", static_cast<int64_t>(out->total));
    }
    trace_emit();
    return rc;
}

bool RecHost::write_file(const char* path, const char* data, size_t len, int* err) {
    int why = 0;
    bool ok = in_->write_file(path, data, len, &why);
    if (err != nullptr)
        *err = why;
    TraceLine& l = trace_begin("write");
    req_write(l, path, data, len);
    l.num("rc", ok ? 1 : 0);
    if (!ok)
        l.num("err", why);
    trace_emit();
    return ok;
}

int RecHost::close_fd(int fd) { return with_number("close", "fd", fd, in_->close_fd(fd)); }

int RecHost::dgram_socket() { return simple("dgram", in_->dgram_socket()); }

int RecHost::dev_ioctl(int fd, unsigned long request, void* arg) {
    // The request as the daemon filled it, before the driver writes over it.
    const DriverRequest* d = find_driver_request(installed_seams().driver, request);
    TraceLine& l = trace_begin("ioctl");
    req_ioctl(l, fd, request, arg, d);
    int rc = in_->dev_ioctl(fd, request, arg);
    ioctl_answer(l, arg, rc, d);
    trace_emit();
    return rc;
}

int RecHost::packet_socket(uint16_t ethertype) {
    return with_number("packet", "etype", ethertype, in_->packet_socket(ethertype));
}

long RecHost::packet_send(int fd, unsigned ifindex, uint16_t ethertype, const uint8_t* dst, const void* frame,
                          size_t len) {
    long rc = in_->packet_send(fd, ifindex, ethertype, dst, frame, len);
    TraceLine& l = trace_begin("send");
    req_send(l, fd, ifindex, ethertype, dst, frame, len);
    l.num("rc", rc);
    trace_emit();
    return rc;
}

int RecHost::nl_socket(int protocol) {
    int fd = with_number("nl_socket", "proto", protocol, in_->nl_socket(protocol));
    families_.note(fd, protocol);
    return fd;
}

int RecHost::nl_bind(int fd, uint32_t groups, uint32_t* port) {
    int rc = in_->nl_bind(fd, groups, port);
    TraceLine& l = trace_begin("nl_bind");
    l.num("fd", fd);
    l.num("groups", groups);
    l.num("rc", rc);
    if (rc == 0)
        l.num("nl_port", *port);
    trace_emit();
    return rc;
}

long RecHost::nl_recv(int fd, void* buf, size_t size, uint32_t* sender) {
    long rc = in_->nl_recv(fd, buf, size, sender);
    TraceLine& l = trace_begin("nl_recv");
    l.num("fd", fd);
    l.num("size", static_cast<int64_t>(size));
    l.num("rc", rc);
    // Only a sender other than the kernel is written: older traces read on.
    if (rc >= 0 && *sender != 0)
        l.num("nl_from", *sender);
    if (rc > 0)
        trace_hex_ordered(l, "data", families_.of(fd), buf, static_cast<size_t>(rc) < size ? static_cast<size_t>(rc) : size);
    trace_emit();
    return rc;
}

timespec RecHost::monotonic_now() {
    timespec ts = in_->monotonic_now();
    TraceLine& l = trace_begin("mono");
    l.num("s", ts.tv_sec);
    l.num("ns", ts.tv_nsec);
    trace_emit();
    return ts;
}

time_t RecHost::wall_now() {
    time_t w = in_->wall_now();
    TraceLine& l = trace_begin("wall");
    l.num("s", w);
    trace_emit();
    return w;
}

int RecHost::pid() { return simple("pid", in_->pid()); }

void RecHost::ignore_sigpipe() {
    in_->ignore_sigpipe();
    trace_begin("sigpipe");
    trace_emit();
}

}  // namespace lynd
