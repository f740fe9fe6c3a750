#include "bridge/hybrid_tables.h"
#include "bridge/port_inventory.h"
#include "core/counters.h"
#include "core/log.h"
#include "platform/seams.h"

namespace {

uint32_t port_index(const char* ifname) { return ifname == nullptr ? 0 : lynd::host().if_nametoindex(ifname); }

}  // namespace

int lynd_set_hc_preferred(conf_bridge* bridge, const char* ifname) {
    uint32_t index = port_index(ifname);
    if (index == bridge->preferred_ifindex)
        return 1;
    LYND_INFO("set preferred to %d", static_cast<int>(index));
    if (lynd::krel().bridgeSetHcPreferred(bridge->name, index) != 0) {
        LYND_ERR("bridgeSetHcPreferred");
        g_counters.bridge_call_failures++;
        return 0;
    }
    bridge->preferred_ifindex = index;
    return 1;
}

int lynd_set_hc_preferred_and_flush_hc_table(conf_bridge* bridge, const char* ifname) {
    uint32_t index = port_index(ifname);
    LYND_LOG("set preferred to %d and clear hc table", static_cast<int>(index));
    if (lynd::krel().bridgeSetHcPreferredAndFlushHCTable(bridge->name, index) != 0) {
        LYND_ERR("bridgeSetHcPreferredAndFlushHCTable");
        g_counters.bridge_call_failures++;
        return 0;
    }
    bridge->preferred_ifindex = index;
    return 1;
}

void lynd_flush_preferred(lynd_config* conf) {
    for (uint64_t i = 0; i < conf->n_bridges; i++)
        (void)lynd_set_hc_preferred(&conf->bridges[i], nullptr);
}
