// A trace holds received and crafted bytes with their multi-byte fields in
// little-endian order, whatever CPU recorded it, so a big-endian router's
// trace replays on a PC. Only fields the daemon reads or steers by have a
// known layout; the bytes between them pass as they are.
#pragma once
#include <cstddef>
#include <cstdint>

namespace lynd {

class TraceLine;
struct ByteLayout;

enum class TraceBytes {
    BRIDGE_DGRAM,  // the bridge's netlink datagrams
    ROUTE_DGRAM,   // rtnetlink link datagrams with wireless events
    HC_TABLE,
    FDB_TABLE,
    PORT_REPLY,    // library message header and port entries
    OPAQUE,        // kept as is
};

// Pure: reverses each known field of p[0..n) in place. from_big tells the
// order the bytes are in now, for the lengths the walk steps by. Applied
// twice with opposite from_big it gives the bytes back.
void trace_swap_fields(TraceBytes kind, uint8_t* p, size_t n, bool from_big);
// The same by a back-end's layout of driver bytes; null: kept as they are.
void trace_swap_fields(const ByteLayout* layout, uint8_t* p, size_t n, bool from_big);

// The bytes in hex under key, in trace order; p is back as it was after.
void trace_hex_ordered(TraceLine& l, const char* key, TraceBytes kind, void* p, size_t n);
void trace_hex_ordered(TraceLine& l, const char* key, const ByteLayout* layout, void* p, size_t n);

// Bytes read from a trace, turned to this CPU's order.
void trace_bytes_to_host(TraceBytes kind, void* p, size_t n);
void trace_bytes_to_host(const ByteLayout* layout, void* p, size_t n);

uint16_t trace_load_le16(const uint8_t* p);

// The layout of a fetched table's entries.
TraceBytes trace_table_bytes(int table_type);

// The netlink family of each socket, which gives its datagrams their layout.
class NlFamilies {
public:
    void note(int fd, int protocol);
    TraceBytes of(int fd) const;

private:
    static constexpr int kMax = 8;
    int fd_[kMax] = {-1, -1, -1, -1, -1, -1, -1, -1};
    int protocol_[kMax] = {};
    int next_ = 0;
};

}  // namespace lynd
