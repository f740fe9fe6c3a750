#include "modules/path_selection/period_drive.h"

#include <cstdio>

#include "bridge/hybrid_tables.h"
#include "bridge/port_inventory.h"
#include "core/log.h"
#include "core/mac.h"
#include "core/queries.h"
#include "modules/path_selection/client_sync.h"
#include "modules/path_selection/path_state.h"
#include "modules/path_selection/sampling.h"
#include "modules/path_selection/uplink_drive.h"
#include "wlan/wlan.h"

namespace {

constexpr const char* kFn = "path_selection_while_hc_enabled";

// The run's own storage: port lists and the bridge's clients with their
// flows are far too large for the stack and must not come from the heap.
struct period_storage {
    conf_interface* active[LYND_MAX_PORTS];
    conf_interface* path_ports[LYND_MAX_PORTS];
    conf_interface* relay_ports[LYND_MAX_PORTS];
    client_entry clients[LYND_MAX_CLIENTS];
};
period_storage g_period;

int pick_ports(conf_interface* const* active, int n, bool conf_interface::*flag, conf_interface** out,
               const char* list) {
    int count = 0;
    for (int i = 0; i < n; i++) {
        if (!(active[i]->*flag))
            continue;
        LYND_DEBUG_AS(kFn, "active_ports[%s] add to %s port list", active[i]->name, list);
        out[count++] = active[i];
    }
    return count;
}

void log_clients(const client_entry* clients, int n) {
    LYND_DEBUG_AS(kFn, "client_list num=%d", n);
    for (int i = 0; i < n; i++) {
        const uint8_t* m = clients[i].mac;
        LYND_DEBUG_AS(kFn, "  [%d]%s", i, lynd_mac(m).s);
    }
}

}  // namespace

void path_selection_timer_period_hc(lynd_config* conf) {
    LYND_DEBUG("start");
    for (uint64_t i = 0; i < conf->n_bridges; i++) {
        if (lynd_get_work_mode() != WORK_MODE_RE)
            return;
        if (path_selection_bridge(conf->bridges[i], false))
            path_selection_while_hc_enabled(&conf->bridges[i]);
    }
}

void path_selection_while_hc_enabled(conf_bridge* bridge) {
    lynd_config* conf = g_ps_conf;
    period_storage& s = g_period;
    int n = lynd_get_active_ports(conf, bridge->name, s.active);
    int n_path = pick_ports(s.active, n, &conf_interface::path, s.path_ports, "path");
    int n_relay = pick_ports(s.active, n, &conf_interface::relay, s.relay_ports, "relay");
    int n_clients = lynd_get_client_list(bridge->name, n_relay, s.relay_ports, s.clients);
    log_clients(s.clients, n_clients);
    path_selection_activate_uplink_paths(s.path_ports, n_path, &conf->param);
    (void)path_selection_update_hc_clients(bridge, hc_paths, s.clients, n_clients);
    if (conf->param.wlan_enable)
        path_selection_update_hc_paths(bridge, hc_paths);
    path_selection_evaluate_path_state(bridge, hc_paths);
    path_selection_pre_update_weak_abnormal_path(bridge, hc_paths);
    path_selection_update_uplink_path_for_hc_v2(bridge, hc_paths);
}

void path_selection_activate_uplink_paths(conf_interface* const* path_ports, int n, const conf_param* param) {
    for (int i = 0; i < n; i++) {
        const conf_interface* port = path_ports[i];
        if (port->relay || port->type < IF_TYPE_2G || port->type >= IF_TYPE_MAX)
            continue;
        const hc_path& slot = hc_paths[port->type];
        char base[LYND_NAME_LEN] = {};
        (void)std::sscanf(port->name, "%15[^.]", base);
        if (slot.abnormal_count != 0) {
            LYND_DEBUG("Path %s in ABNORMAL(count=%d), send pkts to keep alive", port->name, slot.abnormal_count);
            wlan_activate_links(base, param);
        } else if (lynd_list_empty(&slot.clients)) {
            LYND_DEBUG("No sta in path %s, send pkts to keep alive", slot.name);
            wlan_activate_links(base, param);
        }
    }
}
