#include <cstring>

#include "bridge/port_inventory.h"
#include "config/config.h"
#include "config/lynd_config.h"
#include "core/decision_ring.h"
#include "core/log.h"
#include "modules/path_selection/hc_records.h"
#include "modules/path_selection/path_insight.h"
#include "platform/seams.h"
#include "wlan/wlan.h"

namespace {

constexpr const char* kFn = "path_selection_hc_path_init";

int band_of(uint32_t type) {
    switch (type) {
        case IF_TYPE_2G:
            return BAND_2G;
        case IF_TYPE_5G:
        case IF_TYPE_5G_2:
            return BAND_5G;
        case IF_TYPE_6G:
            return BAND_6G;
        default:
            return -1;  // Ethernet: no band parameters
    }
}

void copy_name(char* out, const char* name) {
    std::memset(out, 0, LYND_NAME_LEN);
    std::strncpy(out, name, LYND_NAME_LEN - 1);
}

void take_band_params(hc_path* p, const conf_param& c) {
    int b = band_of(p->type);
    if (b < 0)
        return;
    p->reserved_ratio = c.reserved_ratio[b];
    p->linkquality_smoothing_factor = static_cast<uint32_t>(c.linkquality_smoothing_factor[b]);
    p->abnormal_threshold_txrate = static_cast<uint32_t>(abnormal_threshold_txrate(c, b));
    p->abnormal_threshold_rxrate = static_cast<uint32_t>(abnormal_threshold_rxrate(c, b));
    p->weaklink_threshold_rssi = c.weaklink_threshold_rssi[b];
    p->weaklink_threshold_snr = c.weaklink_threshold_snr[b];
    p->weaklink_threshold_rate = c.weaklink_threshold_rate[b];
    p->weaklink_hold_threshold_rssi = c.weaklink_hold_threshold_rssi[b];
    p->weaklink_hold_threshold_snr = c.weaklink_hold_threshold_snr[b];
}

void log_path(const hc_path& p) {
    LYND_INFO_AS(kFn,
                 "%s[%d] inited, info:\n  [path]:%s\n  [priority]:%d\n  [reserved_ratios]:%d\n"
                 "  [linkquality_smoothing_factor]:%d\n  [abnormal_threshold_txrate]:%d\n"
                 "  [abnormal_threshold_rxrate]:%d\n  [weaklink_threshold_rssi]:%d\n  [weaklink_threshold_snr]:%d\n"
                 "  [weaklink_threshold_rate]:%d\n  [weaklink_hold_threshold_rssi]:%d\n"
                 "  [weaklink_hold_threshold_snr]:%d\n",
                 p.name, p.type, p.path ? "true" : "false", p.priority, p.reserved_ratio,
                 static_cast<int>(p.linkquality_smoothing_factor), static_cast<int>(p.abnormal_threshold_txrate),
                 static_cast<int>(p.abnormal_threshold_rxrate), p.weaklink_threshold_rssi, p.weaklink_threshold_snr,
                 p.weaklink_threshold_rate, p.weaklink_hold_threshold_rssi, p.weaklink_hold_threshold_snr);
}

// Under separation only the primary VLAN's interface is a path; without it
// no VLAN interface is.
bool skip_path(const lynd_config* conf, const conf_interface& i) {
    bool vlan = i.is_ts_vlan || i.ts_vlan_id != 0;
    if (!conf->ts.enable && vlan) {
        LYND_INFO_AS(kFn, "TS disable, not init vlan path:%s", i.name);
        return true;
    }
    if (conf->ts.enable && !(i.is_ts_vlan && i.ts_vlan_id == conf->ts.primary_vlan)) {
        LYND_INFO_AS(kFn, "TS enable, not init no primary vlan path:%s", i.name);
        return true;
    }
    return false;
}

// One slot per type: a later interface of the type takes it over.
void note_dropped(const hc_path& p, const conf_interface& i) {
    if (p.name[0] == '\0')
        return;
    if (p.path)
        LYND_WARN_AS(kFn, "path %s dropped: %s takes the only %s path slot", p.name, i.name,
                     config_if_type_name(i.type));
    else
        LYND_INFO_AS(kFn, "non-relay %s is not a path: %s takes the only %s path slot", p.name, i.name,
                     config_if_type_name(i.type));
}

void init_path(const lynd_config* conf, const conf_interface& i) {
    if (i.type >= IF_TYPE_MAX || skip_path(conf, i))
        return;
    hc_path* p = &hc_paths[i.type];
    note_dropped(*p, i);
    copy_name(p->name, i.name);
    p->type = static_cast<uint8_t>(i.type);
    p->path = i.path ? 1 : 0;
    p->priority = i.priority;
    p->state = PATH_UNLINK;
    g_path_insight[i.type].entered_ms = lynd_monotonic_ms();
    take_band_params(p, conf->param);
    log_path(*p);
    lynd_list_init(&p->clients);
}

void init_ap(const conf_interface& i) {
    uint32_t sub = wlan_get_subunit_by_ifname(i.name);
    if (sub > 9 || std::strncmp(i.name, "wds", 3) == 0) {
        LYND_WARN_AS(kFn, "[type %d][subunit %d] ignored, iface %s", static_cast<int>(i.type), static_cast<int>(sub),
                     i.name);
        return;
    }
    ap_iface* ap = &hc_paths[i.type].ap_ifaces[sub];
    copy_name(ap->name, i.name);
    ap->type = static_cast<uint8_t>(i.type);
    ap->ifindex = lynd::host().if_nametoindex(ap->name);
    lynd_list_init(&ap->clients);
    LYND_DEBUG_AS(kFn, "[type %d][subunit %d] inited, iface %s, ifindex %d", static_cast<int>(i.type),
                  static_cast<int>(sub), ap->name, static_cast<int>(ap->ifindex));
}

}  // namespace

void path_selection_hc_path_init(lynd_config* conf) {
    for (auto& p : hc_paths)
        p = hc_path{};
    // Every list is ready, configured or not: a slot is never left with a
    // list that a lookup cannot walk.
    for (auto& p : hc_paths) {
        lynd_list_init(&p.clients);
        for (auto& ap : p.ap_ifaces)
            lynd_list_init(&ap.clients);
    }
    for (uint64_t k = 0; k < conf->n_interfaces; k++) {
        const conf_interface& i = conf->interfaces[k];
        if (!i.relay)
            init_path(conf, i);
        else if (i.type >= IF_TYPE_2G && i.type < IF_TYPE_MAX)
            init_ap(i);
    }
    hc_pool_clear();
}

ap_iface* path_selection_find_ap_iface_by_hc(hc_client* c) {
    char name[LYND_NAME_LEN] = {};
    if (!lynd::host().if_indextoname(c->hc.src_port, name)) {
        LYND_ERR("port[%d] can not get ifname", static_cast<int>(c->hc.src_port));
        return nullptr;
    }
    uint32_t sub = wlan_get_subunit_by_ifname(name);
    if (sub > 9) {
        LYND_WARN("%s maybe not ap interface", name);
        return nullptr;
    }
    if (c->sta_type >= IF_TYPE_MAX)
        return nullptr;
    ap_iface* ap = &hc_paths[c->sta_type].ap_ifaces[sub];
    return ap->name[0] != '\0' ? ap : nullptr;
}

void path_selection_apply_link_state(hc_path* p, bool up) {
    uint8_t was = p->state;
    if (up && p->state == PATH_UNLINK) {
        p->last_state = PATH_UNLINK;
        p->state = PATH_NORMAL;
        p->weak_count = 0;
        p->abnormal_count = 0;
        p->util = 0;
        p->rate = 0;
        p->quota = 0;
        p->last_txbytes = p->last_rxbytes = p->cur_txbytes = p->cur_rxbytes = 0;
        p->overload = 0;
        ring_clear(&p->path_history);
    } else if (!up && p->state > PATH_UNLINK) {
        p->last_state = p->state;
        p->state = PATH_UNLINK;
    }
    path_insight_state_changed(*p, was, up ? "link up" : "link down");
}

bool path_selection_bridge(const conf_bridge& br, bool hc) {
    if (lynd_check_active_bridge(br.name) != 1 || (br.flags & BR_FLAG_PATH_SELECTION) == 0)
        return false;
    return !hc || (br.ps_flags & PS_FLAG_HC) != 0;
}
