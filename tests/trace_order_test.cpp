#include "trace/trace_order.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "bridge/port_inventory.h"
#include "bridge/table_entries.h"
#include "core/event_records.h"
#include "core/wire.h"
#include "event/netlink_datagram.h"
#include "wlan/qca/qca_ioctl.h"
#include "wlan/qca/qca_layouts.h"
#include "wlan/qca/sta_table_parse.h"

namespace {

using lynd::TraceBytes;
using Bytes = std::vector<uint8_t>;

// The same record laid out by either CPU: fields by their own width in the
// chosen order, plain bytes as they are.
struct Image {
    bool big;
    Bytes b;
    void put(size_t off, uint64_t v, size_t width) {
        if (b.size() < off + width)
            b.resize(off + width);
        for (size_t i = 0; i < width; i++)
            b[off + i] = static_cast<uint8_t>(v >> 8 * (big ? width - 1 - i : i));
    }
    void text(size_t off, const char* s, size_t n) {
        if (b.size() < off + n)
            b.resize(off + n);
        std::memcpy(&b[off], s, n);
    }
    void nlmsg(size_t off, uint32_t len, uint16_t type) {
        put(off, len, 4);
        put(off + 4, type, 2);
        put(off + 6, 0x0102, 2);
        put(off + 8, 0x0a0b0c0d, 4);
        put(off + 12, 0x11223344, 4);
    }
};

// The layout the QCA back-end gives the bytes of request.
const lynd::ByteLayout* qca_layout(unsigned long request) {
    return lynd::find_driver_request(&qca_driver_requests, request)->layout;
}

// Order: a kind of bytes, or a back-end's layout.
template <typename Order>
Bytes swapped(Order kind, Bytes b, bool from_big) {
    lynd::trace_swap_fields(kind, b.data(), b.size(), from_big);
    return b;
}

// Both ways: a big-endian image turns into the little-endian one and back.
template <typename Order>
void expect_turns(Order kind, const Image& big, const Image& little) {
    ASSERT_EQ(big.b.size(), little.b.size());
    EXPECT_EQ(little.b, swapped(kind, big.b, true));
    EXPECT_EQ(big.b, swapped(kind, little.b, false));
}

Image hc_entry_at(Image im, size_t off) {
    im.text(off, "\x02\x11\x22\x33\x44\x55", 6);
    im.text(off + 6, "\x02\x66\x77\x88\x99\xaa", 6);
    im.put(off + offsetof(hc_entry, dst_port), 0x01020304, 4);
    im.put(off + offsetof(hc_entry, src_port), 0x05060708, 4);
    im.put(off + offsetof(hc_entry, pkts), 0x1112131415161718ull, 8);
    im.put(off + offsetof(hc_entry, bytes), 0x2122232425262728ull, 8);
    im.put(off + HC_ENTRY_SIZE - 1, 0, 1);
    return im;
}

Image fdb_entry_at(Image im, size_t off) {
    im.text(off, "\x02\xaa\xbb\xcc\xdd\xee\x07\x00", 8);
    im.put(off + offsetof(fdb_entry, ageing_timer), 0x31323334, 4);
    im.text(off + 12, "\x01\x00\x00\x00\x00\x00\x00\x00", 8);
    return im;
}

Image bridge_datagram(bool big) {
    Image im{big, {}};
    im.nlmsg(0, 16 + HC_ENTRY_SIZE, MSG_NEW_HC_ENTRY);
    im = hc_entry_at(im, 16);
    size_t second = 16 + HC_ENTRY_SIZE;
    im.nlmsg(second, 16 + FDB_ENTRY_SIZE, MSG_FDB_UPDATE);
    im = fdb_entry_at(im, second + 16);
    im.text(im.b.size(), "\x01\x02\x03\x04\x05", 5);  // a torn tail is left alone
    return im;
}

Image route_datagram(bool big) {
    Image im{big, {}};
    const size_t wireless = 16 + 16 + 8;
    const size_t len = wireless + 4 + 12 + 20;
    im.nlmsg(0, static_cast<uint32_t>(len), NL_RTM_NEWLINK);
    im.put(16, 0, 2);  // family, pad
    im.put(18, 1, 2);  // device type
    im.put(IFINFOMSG_INDEX_OFFSET, 7, 4);
    im.put(24, 0x1003, 4);
    im.put(28, 0xffffffff, 4);
    im.put(32, 8, 2);  // IFLA_IFNAME "br0": a name is never turned
    im.put(34, 3, 2);
    im.text(36, "br0\0", 4);
    im.put(wireless, 4 + 12 + 20, 2);
    im.put(wireless + 2, NL_IFLA_WIRELESS, 2);
    im.put(wireless + 4, 12, 2);
    im.put(wireless + 6, 0x8B15, 2);
    im.text(wireless + 8, "\x01\x00\x02\x11\x22\x33\x44\x55", 8);
    im.put(wireless + 16, 20, 2);
    im.put(wireless + 18, NL_IWEVEXPIRED, 2);
    im.text(wireless + 20, "\x01\x00\x02\x11\x22\x33\x44\x55\x00\x00\x00\x00\x00\x00\x00\x00", 16);
    return im;
}

Image sta_table(bool big) {
    Image im{big, {}};
    for (size_t r = 0; r < 2; r++) {
        size_t off = r * QCA_STA_RECORD_MIN;
        im.put(off + STA_OFF_LEN, QCA_STA_RECORD_MIN, 2);
        im.put(off + STA_OFF_NOISE, static_cast<uint32_t>(-95), 4);
        im.put(off + STA_OFF_SNR, 40, 1);
        im.text(off + STA_OFF_MAC, "\x02\x01\x02\x03\x04\x05", 6);
        im.put(off + STA_OFF_TXRATE, 866700 + r, 4);
        im.put(off + STA_OFF_IDLE, 3, 2);
        im.put(off + STA_OFF_RXRATE, 650000, 4);
        im.put(off + QCA_STA_RECORD_MIN - 1, 0, 1);
    }
    im.text(im.b.size(), "\x10\x00\x20", 3);  // shorter than a record
    return im;
}

Image port_reply(bool big) {
    Image im{big, {}};
    im.nlmsg(0, KREL_MSG_HEADER + 3 * PORT_ENTRY_SIZE, 256);
    im.text(16, "br-lan", 6);
    im.put(KREL_PAYLOAD_LEN_OFFSET, 2 * PORT_ENTRY_SIZE, 4);
    im.put(KREL_MSG_HEADER, 11, 4);
    im.put(KREL_MSG_HEADER + PORT_ENTRY_SIZE, 0x0c0d, 4);
    // Beyond the payload's length: not a port, not turned.
    im.text(KREL_MSG_HEADER + 2 * PORT_ENTRY_SIZE, "\x01\x02\x03\x04", 4);
    im.put(KREL_MSG_HEADER + 3 * PORT_ENTRY_SIZE - 1, 0, 1);
    return im;
}

TEST(TraceOrder, EachLayoutTurnsFieldByField) {
    expect_turns(TraceBytes::BRIDGE_DGRAM, bridge_datagram(true), bridge_datagram(false));
    expect_turns(TraceBytes::ROUTE_DGRAM, route_datagram(true), route_datagram(false));
    expect_turns(qca_layout(QCA_IOCTL_STA_TABLE), sta_table(true), sta_table(false));
    expect_turns(TraceBytes::PORT_REPLY, port_reply(true), port_reply(false));
    Image hb{true, {}}, hl{false, {}};
    expect_turns(TraceBytes::HC_TABLE, hc_entry_at(hc_entry_at(hb, 0), HC_ENTRY_SIZE),
                 hc_entry_at(hc_entry_at(hl, 0), HC_ENTRY_SIZE));
    expect_turns(TraceBytes::FDB_TABLE, fdb_entry_at(fdb_entry_at(hb, 0), FDB_ENTRY_SIZE),
                 fdb_entry_at(fdb_entry_at(hl, 0), FDB_ENTRY_SIZE));
    Image wb{true, {}}, wl{false, {}};
    wb.put(0, QCA_CMD_WDS_DELETE, 4);
    wl.put(0, QCA_CMD_WDS_DELETE, 4);
    wb.text(QCA_WDS_CMD_MAC_OFFSET, "\x02\x01\x02\x03\x04\x05", 6);
    wl.text(QCA_WDS_CMD_MAC_OFFSET, "\x02\x01\x02\x03\x04\x05", 6);
    expect_turns(qca_layout(QCA_IOCTL_GENERIC), wb, wl);
}

// What a trace holds reads, on this CPU, as the daemon's own readers expect.
TEST(TraceOrder, TraceBytesReadRightAfterTurningToHost) {
    Bytes route = route_datagram(false).b;
    lynd::trace_bytes_to_host(TraceBytes::ROUTE_DGRAM, route.data(), route.size());
    ASSERT_TRUE(nl_first_msg_ok(route.data(), route.size()));
    EXPECT_EQ(7u, load_u32(route.data() + IFINFOMSG_INDEX_OFFSET));
    EXPECT_TRUE(nl_wifi_parse_attrs(route.data() + IFLA_ATTRS_OFFSET, nl_first_msg_len(route.data(), route.size()) -
                                                                           IFLA_ATTRS_OFFSET));

    Bytes sta = sta_table(false).b;
    lynd::trace_bytes_to_host(qca_layout(QCA_IOCTL_STA_TABLE), sta.data(), sta.size());
    wlan_link_info links[4];
    ASSERT_EQ(2u, qca_read_sta_table(sta.data(), sta.size(), links, 4));
    EXPECT_EQ(-95, links[0].noise);
    EXPECT_EQ(3, links[1].idle);

    Bytes ports = port_reply(false).b;
    lynd::trace_bytes_to_host(TraceBytes::PORT_REPLY, ports.data(), ports.size());
    uint32_t ifindexes[4];
    ASSERT_EQ(2u, lynd_read_port_entries(ports.data(), ports.size(), ifindexes, 4));
    EXPECT_EQ(0x0c0du, ifindexes[1]);

    Bytes bridge = bridge_datagram(false).b;
    lynd::trace_bytes_to_host(TraceBytes::BRIDGE_DGRAM, bridge.data(), bridge.size());
    hc_entry e;
    std::memcpy(&e, bridge.data() + 16, sizeof e);
    EXPECT_EQ(0x01020304u, e.dst_port);
    EXPECT_EQ(0x2122232425262728ull, e.bytes);
}

// A length that lies steers no field outside the bytes, and the turn still
// comes back to what it started from.
TEST(TraceOrder, LyingLengthsStayInsideAndComeBack) {
    Image im = bridge_datagram(true);
    im.put(0, 0xffff, 4);  // longer than the datagram: only the header turns
    Bytes once = swapped(TraceBytes::BRIDGE_DGRAM, im.b, true);
    EXPECT_TRUE(std::equal(im.b.begin() + 16, im.b.end(), once.begin() + 16));
    EXPECT_EQ(0xffu, once[0]);

    std::mt19937 rng(7);
    const TraceBytes kinds[] = {TraceBytes::BRIDGE_DGRAM, TraceBytes::ROUTE_DGRAM, TraceBytes::HC_TABLE,
                                TraceBytes::FDB_TABLE, TraceBytes::PORT_REPLY};
    const lynd::ByteLayout* layouts[] = {qca_layout(QCA_IOCTL_STA_TABLE), qca_layout(QCA_IOCTL_GENERIC)};
    for (int round = 0; round < 300; round++) {
        Bytes b(rng() % 1200);
        for (auto& x : b)
            x = static_cast<uint8_t>(rng() % 4 == 0 ? rng() : rng() % 24);
        for (TraceBytes k : kinds) {
            SCOPED_TRACE(static_cast<int>(k));
            EXPECT_EQ(b, swapped(k, swapped(k, b, true), false));
            EXPECT_EQ(b, swapped(k, swapped(k, b, false), true));
        }
        for (const lynd::ByteLayout* k : layouts) {
            EXPECT_EQ(b, swapped(k, swapped(k, b, true), false));
            EXPECT_EQ(b, swapped(k, swapped(k, b, false), true));
        }
    }
}

// A layout whose fields overlap, or reach past a record's fixed part, could
// not be turned back: a back-end's table with one is refused at build time.
TEST(TraceOrder, UnsoundLayoutsAreRefused) {
    const lynd::ByteField overlap[] = {{4, 4}, {6, 2}};
    const lynd::ByteField on_length[] = {{1, 2}};
    const lynd::ByteField past_fixed[] = {{14, 4}};
    const lynd::ByteField odd[] = {{4, 3}};
    const lynd::ByteLayout bad[] = {
        {overlap, 2, 0, 0, nullptr, 0},    {on_length, 1, 16, 0, nullptr, 0}, {past_fixed, 1, 16, 0, nullptr, 0},
        {odd, 1, 0, 0, nullptr, 0},        {nullptr, 0, 16, 15, nullptr, 0},
    };
    for (const auto& l : bad)
        EXPECT_FALSE(lynd::byte_layout_sound(l)) << &l - bad;
    EXPECT_TRUE(lynd::byte_layout_sound({past_fixed, 1, 0, 0, nullptr, 0}));  // a block has no fixed part
}

TEST(TraceOrder, SocketsKeepTheirFamily) {
    lynd::NlFamilies f;
    EXPECT_EQ(TraceBytes::OPAQUE, f.of(5));
    f.note(5, 0);
    f.note(6, 25);
    f.note(-1, 0);
    EXPECT_EQ(TraceBytes::ROUTE_DGRAM, f.of(5));
    EXPECT_EQ(TraceBytes::BRIDGE_DGRAM, f.of(6));
    f.note(5, 25);  // the number reused by another family
    EXPECT_EQ(TraceBytes::BRIDGE_DGRAM, f.of(5));
    for (int fd = 10; fd < 30; fd++)
        f.note(fd, 0);
    EXPECT_EQ(TraceBytes::ROUTE_DGRAM, f.of(29));
    EXPECT_EQ(TraceBytes::OPAQUE, f.of(-1));
}

}  // namespace
