// What the node is and which ports its hybrid bridge has.
#pragma once
#include <cstddef>
#include <cstdint>

#include "config/lynd_config.h"

constexpr int LYND_MAX_PORTS = 128;
constexpr int PORT_ENTRY_SIZE = 52;
constexpr int PORT_QUERY_SIZE = LYND_MAX_PORTS * PORT_ENTRY_SIZE;  // 6656
// The library's message header before a table buffer's payload.
constexpr int KREL_MSG_HEADER = 52;
constexpr int KREL_PAYLOAD_LEN_OFFSET = 44;
constexpr int HYFI_NETLINK_PROTOCOL = 25;

int lynd_check_active_bridge(const char* bridge_name);

// ports_out has room for LYND_MAX_PORTS records; the bridge's order is kept.
int lynd_get_active_ports(lynd_config* conf, const char* bridge_name, conf_interface** ports_out);
int lynd_get_path_ports(lynd_config* conf, const char* bridge_name, conf_interface** ports_out);

int lynd_check_norelay_port(uint32_t ifindex, int count, conf_interface* const* ports);

// Pure: the port indexes of a port-query reply (header and payload), at most
// max of them and never more than the payload can hold.
size_t lynd_read_port_entries(const uint8_t* reply, size_t reply_len, uint32_t* ifindexes, size_t max);
