#include "trace/trace_order.h"

#include <linux/netlink.h>

#include <algorithm>
#include <cstddef>

#include "bridge/port_inventory.h"
#include "bridge/table_entries.h"
#include "core/event_records.h"
#include "event/netlink_datagram.h"
#include "platform/driver_requests.h"
#include "trace/trace_kinds.h"
#include "trace/trace_line.h"

namespace lynd {

namespace {

// A field not wholly inside the bytes stays as it is.
void swap_at(uint8_t* p, size_t n, size_t off, size_t width) {
    if (off <= n && width <= n - off)
        std::reverse(p + off, p + off + width);
}

uint32_t read_in(const uint8_t* p, size_t width, bool big) {
    uint32_t v = 0;
    for (size_t i = 0; i < width; i++)
        v = v << 8 | p[big ? i : width - 1 - i];
    return v;
}

size_t align4(size_t len) { return (len + 3) & ~static_cast<size_t>(3); }

void swap_nlmsghdr(uint8_t* m, size_t n) {
    swap_at(m, n, 0, 4);   // length
    swap_at(m, n, 4, 2);   // type
    swap_at(m, n, 6, 2);   // flags
    swap_at(m, n, 8, 4);   // sequence
    swap_at(m, n, 12, 4);  // port id
}

void swap_hc_entry(uint8_t* e, size_t n) {
    swap_at(e, n, offsetof(hc_entry, dst_port), 4);
    swap_at(e, n, offsetof(hc_entry, src_port), 4);
    swap_at(e, n, offsetof(hc_entry, pkts), 8);
    swap_at(e, n, offsetof(hc_entry, bytes), 8);
}

void swap_fdb_entry(uint8_t* e, size_t n) { swap_at(e, n, offsetof(fdb_entry, ageing_timer), 4); }

void swap_entries(uint8_t* p, size_t n, size_t size, void (*swap)(uint8_t*, size_t)) {
    for (size_t off = 0; size <= n - off; off += size)
        swap(p + off, size);
}

void swap_bridge_body(uint8_t* body, size_t n, uint16_t type) {
    if (type == MSG_NEW_HC_ENTRY)
        swap_hc_entry(body, n);
    else if (type == MSG_FDB_UPDATE)
        swap_fdb_entry(body, n);
}

// Only each event's length and command: payloads differ by the kernel's word size.
void swap_iw_events(uint8_t* p, size_t n, bool big) {
    size_t off = 0;
    while (n - off >= 4) {
        size_t len = read_in(p + off, 2, big);
        swap_at(p + off, n - off, 0, 2);
        swap_at(p + off, n - off, 2, 2);
        if (len <= IW_EVENT_MIN_LEN || len > n - off)
            return;
        off += len;
    }
}

void swap_link_attrs(uint8_t* p, size_t n, bool big) {
    size_t off = 0;
    while (n - off >= RTATTR_HEADER_LEN) {
        size_t len = read_in(p + off, 2, big);
        uint16_t type = static_cast<uint16_t>(read_in(p + off + 2, 2, big));
        swap_at(p + off, n - off, 0, 2);
        swap_at(p + off, n - off, 2, 2);
        if (len < RTATTR_HEADER_LEN || len > n - off)
            return;
        if (type == NL_IFLA_WIRELESS)
            swap_iw_events(p + off + RTATTR_HEADER_LEN, len - RTATTR_HEADER_LEN, big);
        if (align4(len) >= n - off)
            return;
        off += align4(len);
    }
}

void swap_route_body(uint8_t* m, size_t len, uint16_t type, bool big) {
    if (type != NL_RTM_NEWLINK && type != NL_RTM_DELLINK)
        return;
    swap_at(m, len, NLMSG_HEADER_LEN + 2, 2);  // device type
    swap_at(m, len, IFINFOMSG_INDEX_OFFSET, 4);
    swap_at(m, len, NLMSG_HEADER_LEN + 8, 4);   // flags
    swap_at(m, len, NLMSG_HEADER_LEN + 12, 4);  // change mask
    if (len > IFLA_ATTRS_OFFSET)
        swap_link_attrs(m + IFLA_ATTRS_OFFSET, len - IFLA_ATTRS_OFFSET, big);
}

// Every message of the datagram; a body only where its length holds.
void swap_datagram(uint8_t* p, size_t n, bool big, bool route) {
    size_t off = 0;
    while (n - off >= NLMSG_HEADER_LEN) {
        uint8_t* m = p + off;
        size_t len = read_in(m, 4, big);
        uint16_t type = static_cast<uint16_t>(read_in(m + 4, 2, big));
        swap_nlmsghdr(m, NLMSG_HEADER_LEN);
        if (len < NLMSG_HEADER_LEN || len > n - off)
            return;
        if (route)
            swap_route_body(m, len, type, big);
        else
            swap_bridge_body(m + NLMSG_HEADER_LEN, len - NLMSG_HEADER_LEN, type);
        if (align4(len) >= n - off)
            return;
        off += align4(len);
    }
}

void swap_layout_fields(const ByteLayout& layout, uint8_t* p, size_t n) {
    for (size_t i = 0; i < layout.field_count; i++)
        swap_at(p, n, layout.fields[i].offset, layout.fields[i].width);
}

// The records the daemon reads, walked as it walks them. One shorter than
// its fixed part ends the walk: the next would overlap it, and no one order
// could serve both.
void swap_records(const ByteLayout& layout, uint8_t* p, size_t n, bool big) {
    size_t off = 0;
    while (n - off >= layout.record_min) {
        uint8_t* r = p + off;
        size_t len = read_in(r + layout.length_at, 2, big);
        swap_at(r, n - off, layout.length_at, 2);
        swap_layout_fields(layout, r, n - off);
        if (len < layout.record_min || len > n - off)
            return;
        off += len;
    }
}

// Swaps to trace order for the writing and back: p is the daemon's buffer.
template <typename Order>
void hex_in_trace_order(TraceLine& l, const char* key, Order order, void* p, size_t n) {
    auto* b = static_cast<uint8_t*>(p);
    bool big = trace_host_is_big();
    if (big)
        trace_swap_fields(order, b, n, true);
    l.hex(key, b, n);
    if (big)
        trace_swap_fields(order, b, n, false);
}

void swap_port_reply(uint8_t* p, size_t n, bool big) {
    swap_nlmsghdr(p, n);
    if (n < static_cast<size_t>(KREL_MSG_HEADER))
        return;
    size_t count = read_in(p + KREL_PAYLOAD_LEN_OFFSET, 4, big) / PORT_ENTRY_SIZE;
    swap_at(p, n, KREL_PAYLOAD_LEN_OFFSET, 4);
    size_t room = (n - KREL_MSG_HEADER) / PORT_ENTRY_SIZE;
    for (size_t i = 0; i < count && i < room; i++)
        swap_at(p, n, KREL_MSG_HEADER + i * PORT_ENTRY_SIZE, 4);  // the port's ifindex
}

}  // namespace

void trace_swap_fields(TraceBytes kind, uint8_t* p, size_t n, bool from_big) {
    if (p == nullptr)
        return;
    switch (kind) {
    case TraceBytes::BRIDGE_DGRAM:
        swap_datagram(p, n, from_big, false);
        break;
    case TraceBytes::ROUTE_DGRAM:
        swap_datagram(p, n, from_big, true);
        break;
    case TraceBytes::HC_TABLE:
        swap_entries(p, n, HC_ENTRY_SIZE, swap_hc_entry);
        break;
    case TraceBytes::FDB_TABLE:
        swap_entries(p, n, FDB_ENTRY_SIZE, swap_fdb_entry);
        break;
    case TraceBytes::PORT_REPLY:
        swap_port_reply(p, n, from_big);
        break;
    case TraceBytes::OPAQUE:
        break;
    }
}

void trace_swap_fields(const ByteLayout* layout, uint8_t* p, size_t n, bool from_big) {
    if (p == nullptr || layout == nullptr)
        return;
    if (layout->record_min == 0)
        swap_layout_fields(*layout, p, n);
    else
        swap_records(*layout, p, n, from_big);
}

void trace_hex_ordered(TraceLine& l, const char* key, TraceBytes kind, void* p, size_t n) {
    hex_in_trace_order(l, key, kind, p, n);
}

void trace_hex_ordered(TraceLine& l, const char* key, const ByteLayout* layout, void* p, size_t n) {
    hex_in_trace_order(l, key, layout, p, n);
}

void trace_bytes_to_host(TraceBytes kind, void* p, size_t n) {
    if (trace_host_is_big())
        trace_swap_fields(kind, static_cast<uint8_t*>(p), n, false);
}

void trace_bytes_to_host(const ByteLayout* layout, void* p, size_t n) {
    if (trace_host_is_big())
        trace_swap_fields(layout, static_cast<uint8_t*>(p), n, false);
}

uint16_t trace_load_le16(const uint8_t* p) { return static_cast<uint16_t>(read_in(p, 2, false)); }

TraceBytes trace_table_bytes(int table_type) {
    switch (table_type) {
    case LYND_TABLE_HC:
        return TraceBytes::HC_TABLE;
    case LYND_TABLE_FDB:
        return TraceBytes::FDB_TABLE;
    default:
        return TraceBytes::OPAQUE;
    }
}

void NlFamilies::note(int fd, int protocol) {
    if (fd < 0)
        return;
    int slot = next_;
    for (int i = 0; i < kMax; i++)
        if (fd_[i] == fd)
            slot = i;
    if (slot == next_)
        next_ = (next_ + 1) % kMax;
    fd_[slot] = fd;
    protocol_[slot] = protocol;
}

TraceBytes NlFamilies::of(int fd) const {
    for (int i = 0; i < kMax; i++)
        if (fd_[i] == fd)
            return protocol_[i] == NETLINK_ROUTE ? TraceBytes::ROUTE_DGRAM : TraceBytes::BRIDGE_DGRAM;
    return TraceBytes::OPAQUE;
}

}  // namespace lynd
