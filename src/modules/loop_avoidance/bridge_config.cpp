#include "modules/loop_avoidance/bridge_config.h"

#include "node/host_stats.h"
#include "bridge/port_inventory.h"
#include "bridge/switch_vlan.h"
#include "core/counters.h"
#include "core/log.h"
#include "core/queries.h"
#include "modules/loop_avoidance/bcast_port.h"
#include "platform/seams.h"

namespace {

constexpr const char* kFn = "loop_avoidance_configure_bridge_with_mode";

constexpr uint8_t kEth1Group = 2;
constexpr uint8_t kEth2Group = 3;

void switches(const conf_bridge& br, uint32_t mode) {
    lynd::KrelApi& krel = lynd::krel();
    bool hc = (br.ps_flags & PS_FLAG_HC) != 0;
    if (krel.bridgeSetTcpSP(br.name, (br.ps_flags & PS_FLAG_TCP_SP) ? 1 : 0) != 0) {
        LYND_ERR_AS(kFn, "bridgeSetTcpSP");
        g_counters.bridge_call_failures++;
    }
    if (krel.bridgeSetBridgeMode(br.name, mode == WORK_MODE_RE ? 0 : 1) != 0) {
        LYND_ERR_AS(kFn, "bridgeSetBridgeMode");
        g_counters.bridge_call_failures++;
    }
    bool follow = (br.flags & BR_FLAG_PATH_SELECTION) && (br.ps_flags & PS_FLAG_FOLLOW_RE);
    if (krel.bridgeSetFollowRE(br.name, follow ? 1 : 0) != 0) {
        LYND_ERR_AS(kFn, "bridgeSetFollowRE");
        g_counters.bridge_call_failures++;
    }
    if (krel.bridgeSetHcEnable(br.name, mode == WORK_MODE_RE && hc ? 1 : 0) != 0) {
        LYND_ERR_AS(kFn, "bridgeSetHcEnable");
        g_counters.bridge_call_failures++;
    }
    if (krel.bridgeSetForwardingMode(br.name, hc && mode != WORK_MODE_RE ? 1 : 0) != 0) {
        LYND_ERR_AS(kFn, "bridgeSetForwardingMode");
        g_counters.bridge_call_failures++;
    }
}

// An Ethernet uplink whose switch port is up carries the backhaul: it must
// not relay broadcasts.
void ethernet_relay(const lynd_config* conf, conf_interface* const* ports, int count) {
    const uint32_t* eth = conf->ev.eth_state;
    for (int k = 0; k < count; k++) {
        conf_interface* p = ports[k];
        if (p->type != IF_TYPE_ETH)
            continue;
        bool uplink = (p->compat_group == kEth1Group && eth[0] == 1) || (p->compat_group == kEth2Group && eth[1] == 1);
        p->relay = !uplink;
        LYND_DEBUG_AS(kFn, "name:%s, compat_group:%d, relay:%d", p->name, p->compat_group, p->relay ? 1 : 0);
    }
}

void pick(lynd_config* conf, int i, conf_interface* const* ports, int count, bcast_picks* pk) {
    const uint32_t* vids = nullptr;
    pk->n_vlans = loop_avoidance_vlans(conf, &vids);
    for (int v = 0; v < pk->n_vlans; v++) {
        pk->port[0][v] = loop_avoidance_pick_bcast_nonrelay_port(ports, count, 0, conf, vids[v]);
        pk->port[1][v] = loop_avoidance_pick_bcast_nonrelay_port(ports, count, 1, conf, vids[v]);
        LYND_INFO_AS(kFn, "===>[%d] bcast_port_0:%s, bcast_port_1:%s", v,
                     pk->port[0][v] != nullptr ? pk->port[0][v]->name : "NO_PORT",
                     pk->port[1][v] != nullptr ? pk->port[1][v]->name : "NO_PORT");
    }
    loop_avoidance_keep_picks(conf, i, *pk);
    for (int v = 0; v < pk->n_vlans; v++) {
        const conf_interface* p = pk->port[0][v];
        if (p != nullptr && p->ts_vlan_id == conf->ts.primary_vlan)
            loop_avoidance_publish_bcast_port(conf, i, p->name, "bridge configured");
    }
}

void program_port(const lynd_config* conf, const conf_bridge& br, const conf_interface* p, const bcast_picks& pk) {
    lynd::KrelApi& krel = lynd::krel();
    int relay = p->relay ? 1 : 0;
    if (krel.bridgeSetIFCompat(br.name, p->name, p->compat_group) != 0) {
        LYND_ERR_AS(kFn, "bridgeSetIFCompat ifname %s", p->name);
        g_counters.bridge_call_failures++;
    }
    if (krel.bridgeSetIFGroup(br.name, p->name, relay, relay) != 0) {
        LYND_ERR_AS(kFn, "bridgeSetIFGroup ifname %s", p->name);
        g_counters.bridge_call_failures++;
    }
    bool ts = conf->ts.enable;
    if (krel.bridgeSetIFTSvlan(br.name, p->name, ts ? static_cast<int>(p->ts_vlan_id) : 0, ts ? p->primary_name : "") !=
        0) {
        LYND_ERR_AS(kFn, "bridgeSetIFTSvlan");
        g_counters.bridge_call_failures++;
    }
    bool allowed = loop_avoidance_picked(pk, p);
    if (allowed)
        LYND_DEBUG_AS(kFn, "nonrelay port %s enable bcast", p->name);
    int bcast = relay ? 1 : allowed ? 1 : 0;
    LYND_DEBUG_AS(kFn, "bridgeSetIFBroadcast bridge:%s, name:%s, bcast:%d", br.name, p->name, bcast);
    if (krel.bridgeSetIFBroadcast(br.name, p->name, bcast) != 0) {
        LYND_ERR_AS(kFn, "bridgeSetIFBroadcast ifname %s", p->name);
        g_counters.bridge_call_failures++;
    }
    if (krel.bridgeSetIFClass(br.name, p->name, p->if_class) != 0) {
        LYND_ERR_AS(kFn, "bridgeSetIFClass ifname %s", p->name);
        g_counters.bridge_call_failures++;
    }
    if (krel.bridgeSetIFPath(br.name, p->name, p->path ? 1 : 0) != 0) {
        LYND_ERR_AS(kFn, "bridgeSetIFPath ifname %s", p->name);
        g_counters.bridge_call_failures++;
    }
    if (krel.bridgeSetIFType(br.name, p->name, static_cast<int>(p->type)) != 0) {
        LYND_ERR_AS(kFn, "bridgeSetIFType ifname %s", p->name);
        g_counters.bridge_call_failures++;
    }
}

void configure_one(lynd_config* conf, int i, uint32_t mode) {
    conf_bridge& br = conf->bridges[i];
    LYND_DEBUG_AS(kFn, "bridge %s running_state 0x%x", br.name, br.ps_flags);
    if (lynd_check_active_bridge(br.name) != 1 || (br.flags & BR_FLAG_LOOP_AVOIDANCE) == 0)
        return;
    LYND_DEBUG_AS(kFn, "setup %s", br.name);
    switches(br, mode);
    (void)lynd_update_switch_vlan_interface_primary_name(conf);
    conf_interface* ports[LYND_MAX_PORTS];
    int count = lynd_get_active_ports(conf, br.name, ports);
    ethernet_relay(conf, ports, count);
    if (mode == WORK_MODE_RE && eth_traffic_is_active())
        (void)update_eth_traffic_ports(conf, count, ports);
    bcast_picks pk;
    pick(conf, i, ports, count, &pk);
    LYND_DEBUG_AS(kFn, "bcast_port_count:%d, count:%d", pk.n_vlans, count);
    for (int k = 0; k < count; k++)
        program_port(conf, br, ports[k], pk);
}

}  // namespace

const char* loop_avoidance_mode_name(uint32_t mode) {
    switch (mode) {
        case WORK_MODE_RE:
            return "RE";
        case WORK_MODE_FAP:
            return "FAP";
        case WORK_MODE_HAP:
            return "HAP";
        default:
            return "Invalid";
    }
}

void loop_avoidance_configure_bridge_with_mode(lynd_config* conf, uint32_t mode) {
    LYND_DEBUG("configure hyfi bridge with mode %s", loop_avoidance_mode_name(mode));
    for (uint64_t i = 0; i < conf->n_bridges; i++)
        configure_one(conf, static_cast<int>(i), mode);
}

void loop_avoidance_configure_bridge(lynd_config* conf) {
    loop_avoidance_configure_bridge_with_mode(conf, lynd_get_work_mode());
}
