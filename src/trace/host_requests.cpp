#include "trace/host_requests.h"

#include <cstring>

#include "trace/trace_order.h"
#include "platform/iw_request.h"

namespace lynd {

void req_run(TraceLine& l, const char* const argv[], size_t size) {
    l.argv("argv", argv);
    if (size > 0)
        l.num("size", static_cast<int64_t>(size));
}

void req_ifname(TraceLine& l, const char* name) {
    l.str("name", name);
}

void req_read(TraceLine& l, const char* path, size_t size) {
    l.str("path", path);
    l.num("size", static_cast<int64_t>(size));
}

void req_write(TraceLine& l, const char* path, const char* data, size_t len) {
    l.str("path", path);
    l.text("data", data, len);
}

void req_send(TraceLine& l, int fd, unsigned ifindex, uint16_t ethertype, const uint8_t* dst, const void* frame,
              size_t len) {
    l.num("fd", fd);
    l.num("ifindex", ifindex);
    l.num("etype", ethertype);
    l.hex("dst", dst, 6);
    l.hex("frame", frame, len);
}

void req_ioctl(TraceLine& l, int fd, unsigned long request, const void* arg, const DriverRequest* d) {
    iw_request r;
    std::memcpy(&r, arg, sizeof r);
    l.num("fd", fd);
    l.num("req", static_cast<int64_t>(request));
    char name[sizeof r.name + 1] = {};
    std::memcpy(name, r.name, sizeof r.name);
    l.str("if", name);
    switch (d != nullptr ? d->in : DriverIn::NOTHING) {
    case DriverIn::VALUE:
        l.num("param", r.u.value);
        break;
    case DriverIn::COMMAND:
        trace_hex_ordered(l, "cmd", d->layout, r.u.data.pointer, r.u.data.length);
        break;
    case DriverIn::ROOM:
        l.num("len", r.u.data.length);
        break;
    case DriverIn::NOTHING:
        break;
    }
}

void ioctl_answer(TraceLine& l, const void* arg, int rc, const DriverRequest* d) {
    iw_request r;
    std::memcpy(&r, arg, sizeof r);
    l.num("rc", rc);
    if (rc < 0 || d == nullptr)
        return;
    switch (d->out) {
    case DriverOut::VALUE:
        l.num("value", r.u.value);
        break;
    case DriverOut::MODE:
        l.num("mode", r.u.mode);
        break;
    case DriverOut::ADDRESS:
        l.num("family", r.u.addr.family);
        l.hex("addr", r.u.addr.bytes, sizeof r.u.addr.bytes);
        break;
    case DriverOut::TABLE:
        l.num("got", r.u.data.length);
        trace_hex_ordered(l, "data", d->layout, r.u.data.pointer,
                          r.u.data.length < d->most ? r.u.data.length : d->most);
        break;
    case DriverOut::NOTHING:
        break;
    }
}

}  // namespace lynd
