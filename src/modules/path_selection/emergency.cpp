#include "modules/path_selection/emergency.h"

#include "bridge/hybrid_tables.h"
#include "bridge/port_inventory.h"
#include "config/ts_vlan.h"
#include "core/counters.h"
#include "core/decision_ring.h"
#include "core/log.h"
#include "core/queries.h"
#include "modules/path_selection/client_moves.h"
#include "modules/path_selection/startup.h"
#include "wlan/wlan.h"

namespace {

bool off_primary_vlan(const lynd_config* conf, const hc_path& p) {
    return conf->ts.enable && conf->ts.primary_vlan != 0 && lynd_get_ts_vlan(conf, p.name) != conf->ts.primary_vlan;
}

}  // namespace

void path_selection_event_link_state_hc(lynd_config* conf) {
    lynd_set_link_state_changed(1);
    for (uint64_t i = 0; i < conf->n_bridges; i++) {
        if (lynd_get_work_mode() != WORK_MODE_RE)
            return;
        if (path_selection_bridge(conf->bridges[i], true))
            path_selection_emergency_set_preferred(&conf->bridges[i]);
    }
}

void path_selection_emergency_set_preferred(conf_bridge* bridge) {
    const lynd_config* conf = g_ps_conf;
    g_counters.emergency_choices++;
    hc_path* cand = nullptr;
    uint32_t connected = 0;
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++) {
        hc_path* p = &hc_paths[t];
        if (p->state == PATH_UNINITED)
            continue;
        if (off_primary_vlan(conf, *p)) {
            LYND_INFO("NOT sultable,continue\n");
            continue;
        }
        if (t >= IF_TYPE_2G) {
            cand = path_selection_link_candidate(p, cand);
            if (g_link_state.link_state[t] == 1)
                connected |= 1u << t;
        }
        LYND_DEBUG("path %s: last_status %u curr_status %u", p->name, p->last_state, p->state);
    }
    if (connected != 0) {
        LYND_WARN("some port disconnected, set preferred to available port\n");
        if (cand != nullptr && cand->state > PATH_UNLINK)
            lynd_set_link_state_changed(0);
    }
    if ((bridge->ps_flags & PS_FLAG_HC) == 0)
        return;
    if (cand != nullptr) {
        LYND_INFO("Emergently set preferred to %s", cand->name);
        uint32_t before = bridge->preferred_ifindex;
        (void)lynd_set_hc_preferred(bridge, cand->name);
        decision_record_port(DECISION_PREFERRED_PORT, bridge->name, before, bridge->preferred_ifindex,
                             "link state changed");
    }
    path_selection_pre_update_uplink_path_for_hc_v2(bridge, hc_paths, cand != nullptr ? cand->type : PATH_NONE);
    lynd_set_link_state_changed(0);
}
