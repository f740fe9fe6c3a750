#include "modules/loop_avoidance/bcast_port.h"

#include <cstring>

#include "node/host_stats.h"
#include "bridge/port_inventory.h"
#include "config/ts_vlan.h"
#include "core/counters.h"
#include "core/decision_ring.h"
#include "core/log.h"
#include "core/state_file.h"
#include "modules/loop_avoidance/loop_avoidance.h"
#include "platform/seams.h"
#include "wlan/wlan.h"

loop_avoidance_state g_loop_avoidance;

namespace {

constexpr const char* kFn = "loop_avoidance_set_bcast_port";

constexpr int32_t kLinkDown = -10;
constexpr int32_t kLinkAbnormal = 0;
constexpr int32_t kLinkUp = 10;
constexpr uint32_t kNoVlan = 0;

bool is_candidate(const conf_interface* p, uint8_t if_class, lynd_config* conf, uint32_t vlan) {
    return !p->relay && p->if_class == if_class && lynd_get_ts_vlan(conf, p->name) == vlan;
}

int bridge_index(const lynd_config* conf, const conf_bridge* bridge) {
    for (uint64_t i = 0; i < conf->n_bridges; i++)
        if (&conf->bridges[i] == bridge)
            return static_cast<int>(i);
    return -1;
}

bool off_primary(const lynd_config* conf, const conf_interface* p) {
    return conf->ts.enable && p->ts_vlan_id != conf->ts.primary_vlan;
}

// The bridge follows the port's type; the file changes only with the name.
void take_primary(lynd_config* conf, int i, const conf_interface* p, const char* reason) {
    conf->bridges[i].bcast_type = static_cast<uint8_t>(p->type);
    if (std::strncmp(p->name, g_loop_avoidance.last_bcast_port[i], LYND_NAME_LEN) != 0)
        loop_avoidance_publish_bcast_port(conf, i, p->name, reason);
}

void keep_name(char* dst, const conf_interface* p) {
    std::memset(dst, 0, LYND_NAME_LEN);
    if (p != nullptr)
        std::memcpy(dst, p->name, strnlen(p->name, LYND_NAME_LEN - 1));
}

// Path selection names one port per VLAN, whatever its class.
void keep_chosen(lynd_config* conf, int i, conf_interface* const* chosen, int n_chosen) {
    bcast_picks pk{};
    const uint32_t* vids = nullptr;
    pk.n_vlans = loop_avoidance_vlans(conf, &vids);
    for (int v = 0; v < pk.n_vlans; v++)
        for (int k = 0; k < n_chosen; k++)
            if (lynd_get_ts_vlan(conf, chosen[k]->name) == vids[v])
                pk.port[chosen[k]->if_class != 0 ? 1 : 0][v] = chosen[k];
    loop_avoidance_keep_picks(conf, i, pk);
}

bool in_list(const conf_interface* p, conf_interface* const* list, int n) {
    for (int k = 0; k < n; k++)
        if (list[k] == p)
            return true;
    return false;
}

void pick_all(lynd_config* conf, conf_interface* const* ports, int count, bcast_picks* out) {
    const uint32_t* vids = nullptr;
    out->n_vlans = loop_avoidance_vlans(conf, &vids);
    for (int v = 0; v < out->n_vlans; v++) {
        out->port[0][v] = loop_avoidance_pick_bcast_nonrelay_port(ports, count, 0, conf, vids[v]);
        out->port[1][v] = loop_avoidance_pick_bcast_nonrelay_port(ports, count, 1, conf, vids[v]);
        LYND_DEBUG_AS(kFn, "=====>[%d] vid:%d bcast_port_0:%s, bcast_port_1:%s", v, static_cast<int>(vids[v]),
                      out->port[0][v] != nullptr ? out->port[0][v]->name : "NO_PORT_0",
                      out->port[1][v] != nullptr ? out->port[1][v]->name : "NO_PORT_1");
    }
}

void program_broadcast(const conf_bridge& br, conf_interface* const* ports, int count, const bcast_picks& pk) {
    for (int k = 0; k < count; k++) {
        bool allowed = loop_avoidance_picked(pk, ports[k]);
        if (allowed)
            LYND_DEBUG_AS(kFn, "nonrelay port %s enable bcast", ports[k]->name);
        int value = ports[k]->relay ? 1 : allowed ? 1 : 0;
        if (lynd::krel().bridgeSetIFBroadcast(br.name, ports[k]->name, value) != 0) {
            LYND_ERR_AS(kFn, "bridgeSetIFBroadcast ifname %s", ports[k]->name);
            g_counters.bridge_call_failures++;
        }
    }
}

void set_bcast_port_of(lynd_config* conf, int i) {
    conf_bridge& br = conf->bridges[i];
    if (lynd_check_active_bridge(br.name) != 1 || (br.flags & BR_FLAG_LOOP_AVOIDANCE) == 0)
        return;
    conf_interface* ports[LYND_MAX_PORTS];
    int count = lynd_get_active_ports(conf, br.name, ports);
    if (count == 0)
        return;
    bcast_picks pk;
    pick_all(conf, ports, count, &pk);
    loop_avoidance_keep_picks(conf, i, pk);
    program_broadcast(br, ports, count, pk);
    for (int v = 0; v < pk.n_vlans; v++) {
        conf_interface* p = pk.port[0][v];
        if (p == nullptr || off_primary(conf, p))
            continue;
        LYND_INFO_AS(kFn, "set bcast type:%d", static_cast<int>(p->type));
        take_primary(conf, i, p, "best linked uplink");
    }
}

}  // namespace

bool loop_avoidance_picked(const bcast_picks& pk, const conf_interface* p) {
    for (int v = 0; v < pk.n_vlans; v++)
        if (pk.port[0][v] == p || pk.port[1][v] == p)
            return true;
    return false;
}

void loop_avoidance_state_reset() { g_loop_avoidance = loop_avoidance_state{}; }

int loop_avoidance_vlans(const lynd_config* conf, const uint32_t** vids) {
    static const uint32_t none[1] = {kNoVlan};
    if (conf->ts.enable && conf->ts.vlan_count != 0) {
        *vids = conf->ts.vlan_ids;
        return static_cast<int>(conf->ts.vlan_count < TS_MAX_VLANS ? conf->ts.vlan_count : TS_MAX_VLANS);
    }
    *vids = none;
    return 1;
}

void loop_avoidance_keep_picks(lynd_config* conf, int i, const bcast_picks& pk) {
    const uint32_t* vids = nullptr;
    (void)loop_avoidance_vlans(conf, &vids);
    g_loop_avoidance.n_picks[i] = static_cast<uint8_t>(pk.n_vlans);
    for (int v = 0; v < pk.n_vlans; v++) {
        bcast_pick_kept& k = g_loop_avoidance.picks[i][v];
        k.vid = vids[v];
        keep_name(k.port[0], pk.port[0][v]);
        keep_name(k.port[1], pk.port[1][v]);
    }
}

void loop_avoidance_publish_bcast_port(lynd_config* conf, int i, const char* name, const char* reason) {
    decision_record(DECISION_BCAST_PORT, conf->bridges[i].name, g_loop_avoidance.last_bcast_port[i], name, reason);
    size_t len = strnlen(name, LYND_NAME_LEN - 1);
    char* text = g_loop_avoidance.bcast_file_text;
    std::memcpy(text, name, len);
    text[len] = '\n';
    g_loop_avoidance.bcast_file_len = static_cast<uint8_t>(len + 1);
    g_loop_avoidance.bcast_file_pending = true;
    (void)loop_avoidance_write_bcast_file(conf);
    std::memset(g_loop_avoidance.last_bcast_port[i], 0, LYND_NAME_LEN);
    std::memcpy(g_loop_avoidance.last_bcast_port[i], name, len);
}

bool loop_avoidance_write_bcast_file(lynd_config* conf) {
    loop_avoidance_state& st = g_loop_avoidance;
    if (!st.bcast_file_pending)
        return true;
    if (lynd_write_steering_file(BCAST_PORT_FILE, st.bcast_file_text, st.bcast_file_len, "broadcast file")) {
        st.bcast_file_pending = false;
        return true;
    }
    loop_avoidance_retry_later(conf);
    return false;
}

int32_t lynd_get_link_prio(uint32_t type) {
    if (lynd_check_link_state(type) != 1)
        return kLinkDown;
    return lynd_check_abnormal_link(type) ? kLinkAbnormal : kLinkUp;
}

conf_interface* loop_avoidance_pick_bcast_nonrelay_port(conf_interface* const* ports, int count, uint8_t if_class,
                                                        lynd_config* conf, uint32_t vlan) {
    if (count <= 0)
        return nullptr;
    int32_t cache[IF_TYPE_MAX] = {};  // 0: not computed yet
    conf_interface* best = nullptr;
    int32_t best_prio = 0;
    for (int k = 0; k < count; k++) {
        conf_interface* p = ports[k];
        if (!is_candidate(p, if_class, conf, vlan))
            continue;
        int32_t link = 0;
        if (p->type < IF_TYPE_MAX) {
            if (cache[p->type] == 0)
                cache[p->type] = lynd_get_link_prio(p->type);
            link = cache[p->type];
        }
        int32_t prio = link + p->priority;
        LYND_DEBUG("cur_name:%s, priority cur/conf %d/%d", p->name, prio, p->priority);
        if (best == nullptr || prio > best_prio) {
            best = p;
            best_prio = prio;
        }
    }
    if (best != nullptr)
        LYND_DEBUG("Pick %s as broadcast nonrelay port!", best->name);
    return best;
}

void loop_avoidance_set_bcast_port(lynd_config* conf) {
    for (uint64_t i = 0; i < conf->n_bridges; i++)
        set_bcast_port_of(conf, static_cast<int>(i));
}

void loop_avoidance_set_bcast_port_by_ps(lynd_config* conf, conf_bridge* bridge, const char* port_name) {
    LYND_INFO("update bcask port:%s", port_name);
    if (lynd_check_active_bridge(bridge->name) != 1 || (bridge->flags & BR_FLAG_LOOP_AVOIDANCE) == 0)
        return;
    int i = bridge_index(conf, bridge);
    if (i < 0) {
        LYND_ERR("not find bridge[%s]", bridge->name);
        return;
    }
    conf_interface* ports[LYND_MAX_PORTS];
    conf_interface* chosen[LYND_MAX_PORTS];
    int count = lynd_get_active_ports(conf, bridge->name, ports);
    int n_chosen = 0;
    const uint32_t* vids = nullptr;
    int n_vlans = loop_avoidance_vlans(conf, &vids);
    for (int v = 0; v < n_vlans; v++)
        for (int k = 0; k < count && n_chosen < LYND_MAX_PORTS; k++)
            if (!ports[k]->relay && std::strcmp(ports[k]->name, port_name) == 0 &&
                lynd_get_ts_vlan(conf, ports[k]->name) == vids[v])
                chosen[n_chosen++] = ports[k];
    if (n_chosen == 0) {
        LYND_ERR("can not find %s for bcast_port", port_name);
        return;
    }
    for (int k = 0; k < count; k++) {
        int allowed = in_list(ports[k], chosen, n_chosen) ? 1 : 0;
        LYND_INFO("port:%s bcast:%d relay:%d", ports[k]->name, allowed, ports[k]->relay ? 1 : 0);
        if (lynd::krel().bridgeSetIFBroadcast(bridge->name, ports[k]->name, ports[k]->relay ? 1 : allowed) != 0) {
            LYND_ERR("bridgeSetIFBroadcast");
            g_counters.bridge_call_failures++;
        }
    }
    keep_chosen(conf, i, chosen, n_chosen);
    for (int k = 0; k < n_chosen; k++)
        if (!off_primary(conf, chosen[k]))
            take_primary(conf, i, chosen[k], "path selection");
}
