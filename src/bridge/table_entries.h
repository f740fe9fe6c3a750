// Binary entries of the bridge's tables, as the library hands them out.
// Entries inside a library buffer need not be aligned: copy one out before
// reading its fields.
#pragma once
#include <cstdint>

constexpr int LYND_TABLE_HC = 2;
constexpr int LYND_TABLE_FDB = 4;
constexpr int HC_ENTRY_SIZE = 56;
constexpr int FDB_ENTRY_SIZE = 20;
constexpr int LYND_MAX_CLIENTS = 256;
constexpr int CLIENT_MAX_HA = 30;
constexpr uint32_t HD_PORT_NONE = 65535;

struct hc_entry {
    uint8_t mac[6];
    uint8_t id[6];
    uint32_t dst_port;  // ifindex
    uint32_t src_port;  // ifindex
    uint8_t reserved0[4];
    int64_t pkts;
    uint64_t bytes;
    uint8_t reserved1[16];
};
static_assert(sizeof(hc_entry) == HC_ENTRY_SIZE, "hc entry layout");

struct fdb_entry {
    uint8_t mac[6];
    uint8_t port_lo;
    uint8_t is_local;
    uint32_t ageing_timer;
    uint8_t port_hi;
    uint8_t reserved[7];
};
static_assert(sizeof(fdb_entry) == FDB_ENTRY_SIZE, "fdb entry layout");

struct ha_entry {
    uint8_t reserved0[12];
    uint32_t port;
    uint8_t reserved1[8];
    uint32_t num_bytes;
    uint32_t num_pkts;
    uint8_t reserved2[4];
    uint8_t is_fcache;
    uint8_t estimated;
    uint16_t src_port;
    uint16_t dst_port;
    uint8_t reserved3[14];
};
static_assert(sizeof(ha_entry) == HC_ENTRY_SIZE, "ha entry layout");

struct client_entry {
    uint8_t mac[6];
    int32_t type;  // if_type of the client's port
    uint8_t relay;
    uint32_t fdb_port;
    uint32_t hd_port;
    ha_entry ha[CLIENT_MAX_HA];
};

inline uint32_t fdb_entry_port(const fdb_entry& e) {
    return static_cast<uint32_t>(e.port_hi) << 8 | e.port_lo;
}
