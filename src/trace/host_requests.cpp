#include "trace/host_requests.h"

#include <cstring>

#include "trace/trace_order.h"
#include "wlan/qca/qca_ioctl.h"

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

void req_ioctl(TraceLine& l, int fd, unsigned long request, const void* arg) {
    iw_request r;
    std::memcpy(&r, arg, sizeof r);
    l.num("fd", fd);
    l.num("req", static_cast<int64_t>(request));
    char name[sizeof r.name + 1] = {};
    std::memcpy(name, r.name, sizeof r.name);
    l.str("if", name);
    switch (request) {
    case QCA_IOCTL_GET_PARAM:
        l.num("param", r.u.value);
        break;
    case QCA_IOCTL_GENERIC:
        trace_hex_ordered(l, "cmd", TraceBytes::WDS_CMD, r.u.data.pointer, r.u.data.length);
        break;
    case QCA_IOCTL_STA_TABLE:
        l.num("len", r.u.data.length);
        break;
    default:
        break;
    }
}

void ioctl_answer(TraceLine& l, unsigned long request, const void* arg, int rc) {
    iw_request r;
    std::memcpy(&r, arg, sizeof r);
    l.num("rc", rc);
    if (rc < 0)
        return;
    switch (request) {
    case QCA_IOCTL_GET_PARAM:
        l.num("value", r.u.value);
        break;
    case IW_IOCTL_GET_MODE:
        l.num("mode", r.u.mode);
        break;
    case IW_IOCTL_GET_AP:
        l.num("family", r.u.addr.family);
        l.hex("addr", r.u.addr.bytes, sizeof r.u.addr.bytes);
        break;
    case QCA_IOCTL_STA_TABLE:
        l.num("got", r.u.data.length);
        trace_hex_ordered(l, "data", TraceBytes::STA_TABLE, r.u.data.pointer,
                          r.u.data.length < QCA_STA_TABLE_SIZE ? r.u.data.length : QCA_STA_TABLE_SIZE);
        break;
    default:
        break;
    }
}

}  // namespace lynd
