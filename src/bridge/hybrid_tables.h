// Reading and writing the hybrid bridge's hc, hip and forwarding tables and
// its preferred port.
#pragma once
#include <cstddef>
#include <cstdint>

#include "bridge/table_entries.h"
#include "config/lynd_config.h"

enum enum_hybr_table_type { HYBR_TABLE_HC = 0, HYBR_TABLE_HIP = 1 };

// How many entries a fetch asks for; it only grows.
struct hyfi_table_state {
    int hyfi_table_capacity;
};
constexpr int HYFI_TABLE_INITIAL_CAPACITY = 500;
extern hyfi_table_state g_hyfi_tables;
void lynd_tables_reset();
// The bytes of one entry of a fetched table (LYND_TABLE_HC, _FDB); 0 for others.
int lynd_table_entry_size(int table_type);

// 1 with a library buffer of *count_out entries (released by the caller
// with bridgeFreeTableBuf), else 0.
int lynd_get_hyfi_bridge_table(const char* bridge_name, int table_type, void** entries_out, int* count_out);
int lynd_get_hyfi_bridge_hc_table(const char* bridge_name, void** entries_out, int* count_out);

// clients_out has room for LYND_MAX_CLIENTS records.
int lynd_get_fdb_client_list(const char* bridge_name, int n_ports, conf_interface* const* ports,
                             client_entry* clients_out);
int lynd_get_client_list(const char* bridge_name, int n_ports, conf_interface* const* ports,
                         client_entry* clients_out);
void lynd_dump_client_list(int count, const client_entry* clients);

// Pure: the client records of an fdb table, given each listed port's ifindex.
int lynd_fdb_to_clients(const uint8_t* fdb, size_t n_entries, const uint32_t* port_ifindex,
                        conf_interface* const* ports, int n_ports, client_entry* out);

int lynd_check_hc_entry_valid(const void* entry);
int lynd_check_ha_entry_valid(const void* entry);

int lynd_set_hc_entry(const char* bridge_name, const uint8_t* client_mac, const uint8_t* id,
                      const char* port_ifname, const char* vlan_ifname);
int lynd_delete_hc_entry(const char* bridge_name, const uint8_t* client_mac);

int lynd_set_hc_preferred(conf_bridge* bridge, const char* ifname);
int lynd_set_hc_preferred_and_flush_hc_table(conf_bridge* bridge, const char* ifname);
void lynd_flush_preferred(lynd_config* conf);

void lynd_flush_hybr_table(lynd_config* conf, int kind);
void lynd_flush_hc_table(lynd_config* conf);
void lynd_flush_hip_table(lynd_config* conf);
