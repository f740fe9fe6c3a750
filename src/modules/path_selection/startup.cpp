#include "modules/path_selection/startup.h"

#include "bridge/hybrid_tables.h"
#include "bridge/port_inventory.h"
#include "core/decision_ring.h"
#include "core/log.h"
#include "core/queries.h"
#include "modules/module.h"
#include "modules/path_selection/path_selection.h"
#include "modules/path_selection/sampling.h"
#include "wlan/wlan.h"

namespace {

void path_selection_show_path_ports(lynd_config* conf) {
    conf_interface* ports[LYND_MAX_PORTS];
    for (uint64_t i = 0; i < conf->n_bridges; i++) {
        if (!path_selection_bridge(conf->bridges[i], false))
            continue;
        int n = lynd_get_path_ports(conf, conf->bridges[i].name, ports);
        for (int k = 0; k < n; k++)
            LYND_INFO("[%d]path_port: %s", k, ports[k]->name);
    }
}

void path_selection_startup_ifaces(lynd_config* conf) {
    LYND_LOG("startup_ifaces, n_bridges:%d\n", static_cast<int>(conf->n_bridges));
    for (uint64_t i = 0; i < conf->n_bridges; i++) {
        if (lynd_get_work_mode() != WORK_MODE_RE)
            return;
        conf_bridge* br = &conf->bridges[i];
        if (!path_selection_bridge(*br, true))
            continue;
        path_selection_startup_uplink(br);
        path_selection_startup_aplink(br);
    }
}

// Every slot is sampled, whichever bridge asked.
void path_selection_sample_wlan_info() {
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++) {
        hc_path* p = &hc_paths[t];
        if (p->state == PATH_UNINITED)
            continue;
        LYND_WARN("sample %s path(status %d) and STAs info", p->name, p->state);
        path_selection_sample_wlan_path_info(p);
        path_selection_sample_wlan_sta_info(hc_paths, t);
    }
}

}  // namespace

hc_path* path_selection_link_candidate(hc_path* p, hc_path* cand) {
    bool up = lynd_check_link_state_v2(p->type) == 1;
    path_selection_apply_link_state(p, up);
    if (up && (cand == nullptr || p->priority > cand->priority))
        return p;
    return cand;
}

void path_selection_init_hc(lynd_config* conf) {
    g_ps_conf = conf;
    path_selection_hc_path_init(conf);
    lynd_reset_link_state_all();
    path_selection_show_path_ports(conf);
}

void path_selection_event_startup_hc(lynd_config* conf) {
    lynd_module* m = lynd_get_mod_contex(&conf->modules, LYND_MODULE_PATH_SELECTION);
    if (m == nullptr) {
        LYND_ERR("find mod");
        return;
    }
    path_selection_startup_ifaces(conf);
    path_selection_arm_timers(m);
}

void path_selection_startup_uplink(conf_bridge* bridge) {
    hc_path* cand = nullptr;
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++) {
        hc_path* p = &hc_paths[t];
        if (p->state == PATH_UNINITED)
            continue;
        if (t != IF_TYPE_ETH)
            cand = path_selection_link_candidate(p, cand);
        LYND_INFO("path %s: last_status %u curr_status %u", p->name, p->last_state, p->state);
    }
    if (cand == nullptr)
        return;
    LYND_INFO("startup set preferred to %s", cand->name);
    uint32_t before = bridge->preferred_ifindex;
    (void)lynd_set_hc_preferred(bridge, cand->name);
    decision_record_port(DECISION_PREFERRED_PORT, bridge->name, before, bridge->preferred_ifindex, "start-up");
}

void path_selection_startup_aplink(conf_bridge*) {
    for (auto& p : hc_paths) {
        for (auto& ap : p.ap_ifaces) {
            if (ap.name[0] == '\0')
                continue;
            ap.wds = static_cast<uint8_t>(wlan_check_wds_by_ifname(ap.name));
            LYND_DEBUG("ap_iface:%s wds:%d", ap.name, ap.wds);
        }
    }
}

void path_selection_timer_short_period_hc(lynd_config* conf) {
    LYND_DEBUG("start");
    for (uint64_t i = 0; i < conf->n_bridges; i++) {
        LYND_DEBUG("bridge %s", conf->bridges[i].name);
        if (lynd_get_work_mode() != WORK_MODE_RE)
            return;
        if (path_selection_bridge(conf->bridges[i], false))
            path_selection_sample_wlan_info();
    }
}
