#include "event/netlink_datagram.h"

#include <linux/netlink.h>

#include <cstddef>
#include <cstring>

#include "core/log.h"
#include "core/wire.h"

namespace {

// Reads as much of a field as arrived; the rest reads as zero, as in the
// zeroed receive buffer.
void read_padded(const uint8_t* buf, size_t n, size_t off, void* field, size_t width) {
    if (off < n)
        std::memcpy(field, buf + off, n - off < width ? n - off : width);
}

size_t align4(size_t len) { return (len + 3) & ~static_cast<size_t>(3); }

}  // namespace

uint32_t nl_first_msg_len(const uint8_t* buf, size_t n) {
    uint32_t len = 0;
    read_padded(buf, n, offsetof(nlmsghdr, nlmsg_len), &len, sizeof len);
    return len;
}

uint16_t nl_first_msg_type(const uint8_t* buf, size_t n) {
    uint16_t type = 0;
    read_padded(buf, n, offsetof(nlmsghdr, nlmsg_type), &type, sizeof type);
    return type;
}

bool nl_first_msg_ok(const uint8_t* buf, size_t n) {
    uint32_t len = nl_first_msg_len(buf, n);
    return n >= NLMSG_HEADER_LEN && len >= NLMSG_HEADER_LEN && len <= n;
}

bool event_hyfi_datagram(const uint8_t* buf, size_t n, bridge_event* out) {
    if (!nl_first_msg_ok(buf, n)) {
        // Logged for the socket handler that drains the datagrams.
        LYND_ERR_AS("event_hyfi_nl_cb", "NLMSG_OK(nlh[%d], len[%d])", static_cast<int>(nl_first_msg_len(buf, n)),
                    static_cast<int>(n));
        return false;
    }
    uint32_t len = nl_first_msg_len(buf, n);
    out->msg_type = nl_first_msg_type(buf, n);
    out->data_len = len - NLMSG_HEADER_LEN;
    out->data = buf + NLMSG_HEADER_LEN;
    return true;
}

bool __isDisassociateEvent(const uint8_t* events, size_t len) {
    bool expired = false;
    size_t off = 0;
    while (len - off >= IW_EVENT_MIN_LEN) {
        uint16_t ev_len = load_u16(events + off);
        uint16_t cmd = load_u16(events + off + 2);
        if (ev_len <= IW_EVENT_MIN_LEN || ev_len > len - off) {
            LYND_ERR("Event len is not available");
            return expired;
        }
        if (cmd == NL_IWEVEXPIRED)
            expired = true;
        off += ev_len;
    }
    return expired;
}

bool nl_wifi_parse_attrs(const uint8_t* attrs, size_t len) {
    bool expired = false;
    size_t off = 0;
    while (len - off >= RTATTR_HEADER_LEN) {
        uint16_t rta_len = load_u16(attrs + off);
        uint16_t rta_type = load_u16(attrs + off + 2);
        if (rta_len < RTATTR_HEADER_LEN || rta_len > len - off)
            break;
        if (rta_type == NL_IFLA_WIRELESS)
            expired = __isDisassociateEvent(attrs + off + RTATTR_HEADER_LEN, rta_len - RTATTR_HEADER_LEN);
        if (align4(rta_len) >= len - off)
            break;
        off += align4(rta_len);
    }
    return expired;
}
