#include <cstddef>
#include <cstring>

#include "bridge/hybrid_tables.h"
#include "core/log.h"
#include "core/mac.h"
#include "platform/seams.h"

int lynd_fdb_to_clients(const uint8_t* fdb, size_t n_entries, const uint32_t* port_ifindex,
                        conf_interface* const* ports, int n_ports, client_entry* out) {
    int count = 0;
    if (n_entries > LYND_MAX_CLIENTS)
        n_entries = LYND_MAX_CLIENTS;
    for (size_t i = 0; i < n_entries; i++) {
        fdb_entry e;
        std::memcpy(&e, fdb + i * FDB_ENTRY_SIZE, sizeof e);
        if (e.is_local == 1)
            continue;
        uint32_t port = fdb_entry_port(e);
        for (int p = 0; p < n_ports && count < LYND_MAX_CLIENTS; p++) {
            if (port_ifindex[p] != port)
                continue;
            client_entry& c = out[count++];
            // The flow records stay as they were: nothing here fills them,
            // and clearing 256 of them each run would dominate its cost.
            std::memset(&c, 0, offsetof(client_entry, ha));
            std::memset(&c.ha[0], 0, sizeof c.ha[0]);
            std::memcpy(c.mac, e.mac, sizeof c.mac);
            c.type = static_cast<int32_t>(ports[p]->type);
            c.relay = ports[p]->relay ? 1 : 0;
            c.fdb_port = port;
            c.hd_port = HD_PORT_NONE;
        }
    }
    return count;
}

int lynd_get_fdb_client_list(const char* bridge_name, int n_ports, conf_interface* const* ports,
                             client_entry* clients_out) {
    void* table = nullptr;
    int n = 0;
    if (!lynd_get_hyfi_bridge_table(bridge_name, LYND_TABLE_FDB, &table, &n)) {
        LYND_ERR("get fdb table");
        return 0;
    }
    uint32_t port_ifindex[LYND_MAX_INTERFACES];
    if (n_ports > LYND_MAX_INTERFACES)
        n_ports = LYND_MAX_INTERFACES;
    for (int p = 0; p < n_ports; p++)
        port_ifindex[p] = lynd::host().if_nametoindex(ports[p]->name);
    int count = lynd_fdb_to_clients(static_cast<const uint8_t*>(table), static_cast<size_t>(n), port_ifindex,
                                    ports, n_ports, clients_out);
    lynd::krel().bridgeFreeTableBuf(table);
    return count;
}

int lynd_get_client_list(const char* bridge_name, int n_ports, conf_interface* const* ports,
                         client_entry* clients_out) {
    int count = lynd_get_fdb_client_list(bridge_name, n_ports, ports, clients_out);
    if (count != 0 && lynd_log_on(LYND_LVL_TRACE))
        lynd_dump_client_list(count, clients_out);
    return count;
}

void lynd_dump_client_list(int count, const client_entry* clients) {
    for (int i = 0; i < count; i++) {
        const client_entry& c = clients[i];
        LYND_TRACE("client[%d]: mac %s relay %d type %d fdb_port %u hd_port %u hac_port %u", i, lynd_mac(c.mac).s,
                   c.relay, c.type, c.fdb_port, c.hd_port, 0u);
        for (int h = 0; h < CLIENT_MAX_HA && lynd_check_ha_entry_valid(&c.ha[h]); h++) {
            const ha_entry& a = c.ha[h];
            LYND_TRACE("ha[%d]: is_fcache: %d, dst_port:%u, src_port:%u, port: %u, num_bytes: %u, num_pkts: %u, "
                       "estimated: %d",
                       h, a.is_fcache, a.dst_port, a.src_port, a.port, a.num_bytes, a.num_pkts, a.estimated);
        }
    }
}
