// Port-query replies and fdb tables as the bridge library hands them over.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "bridge/hybrid_tables.h"
#include "bridge/port_inventory.h"
#include "fuzz/fuzz_check.h"
#include "fuzz/fuzz_seams.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz_seams();
    std::vector<uint8_t> buf(data, data + size);
    uint32_t ifindexes[LYND_MAX_PORTS];
    size_t ports_read = lynd_read_port_entries(buf.data(), buf.size(), ifindexes, LYND_MAX_PORTS);
    fuzz_check(ports_read <= LYND_MAX_PORTS, "ports within the room");
    fuzz_check(ports_read == 0 || ports_read <= (buf.size() - KREL_MSG_HEADER) / PORT_ENTRY_SIZE, "ports within the reply");

    static lynd_config conf;
    conf.interfaces[0].type = IF_TYPE_5G;
    conf.interfaces[1].type = IF_TYPE_2G;
    conf_interface* ports[] = {&conf.interfaces[0], &conf.interfaces[1], &conf.interfaces[0]};
    const uint32_t port_ifindex[] = {1, 2, 1};
    static client_entry clients[LYND_MAX_CLIENTS];
    int n = lynd_fdb_to_clients(buf.data(), buf.size() / FDB_ENTRY_SIZE, port_ifindex, ports, 3, clients);
    fuzz_check(n >= 0 && n <= LYND_MAX_CLIENTS, "clients within the room");
    lynd_dump_client_list(n, clients);
    return 0;
}
