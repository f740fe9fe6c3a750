#include "bridge/hybrid_tables.h"
#include "core/counters.h"
#include "platform/seams.h"

namespace {

bool all_zero(const void* entry) {
    const auto* p = static_cast<const uint8_t*>(entry);
    for (int i = 0; i < HC_ENTRY_SIZE; i++)
        if (p[i] != 0)
            return false;
    return true;
}

// For these two calls only -1 is a failure.
int counted(int rc) {
    if (rc != -1)
        return 1;
    g_counters.bridge_call_failures++;
    return 0;
}

}  // namespace

int lynd_check_hc_entry_valid(const void* entry) { return entry != nullptr && !all_zero(entry) ? 1 : 0; }

int lynd_check_ha_entry_valid(const void* entry) { return lynd_check_hc_entry_valid(entry); }

int lynd_set_hc_entry(const char* bridge_name, const uint8_t* client_mac, const uint8_t* id,
                      const char* port_ifname, const char* vlan_ifname) {
    if (port_ifname == nullptr || vlan_ifname == nullptr)
        return 0;
    return counted(lynd::krel().bridgeSetHCTableEntries(bridge_name, client_mac, id, port_ifname, vlan_ifname));
}

int lynd_delete_hc_entry(const char* bridge_name, const uint8_t* client_mac) {
    return counted(lynd::krel().bridgeDelHCTableEntriesByMAC(bridge_name, client_mac));
}
