#include "modules/path_selection/ts_destination.h"

#include <cstring>

#include "bridge/hybrid_tables.h"
#include "config/ts_vlan.h"
#include "core/log.h"
#include "core/mac.h"
#include "core/vlan_name.h"
#include "modules/path_selection/client_rules.h"
#include "platform/seams.h"

namespace {

// An index without a name gives "".
void name_of(uint32_t ifindex, char* out) {
    std::memset(out, 0, LYND_NAME_LEN);
    if (!lynd::host().if_indextoname(ifindex, out))
        out[0] = '\0';
}

// The client's own VLAN when it is a separated one, else the primary; 0: none.
uint32_t dst_vlan(const lynd_config* conf, uint32_t svid) {
    if (svid != 0 && lynd_is_ts_vlan(conf, svid))
        return svid;
    return conf->ts.primary_vlan;
}

}  // namespace

void path_selection_ts_dst_name(const lynd_config* conf, const char* base, const char* src_ifname, char* out) {
    std::memset(out, 0, LYND_NAME_LEN);
    uint32_t vid = conf->ts.enable ? dst_vlan(conf, src_ifname[0] != '\0' ? lynd_get_ts_vlan(conf, src_ifname) : 0) : 0;
    if (vid == 0) {
        std::strncpy(out, base, LYND_NAME_LEN - 1);
        return;
    }
    char home[LYND_NAME_LEN];
    (void)lynd_get_home_name(home, base);
    (void)lynd_get_vlan_name(out, home, vid, true);
}

void path_selection_check_dst_vlan_hc_table(lynd_config* conf, conf_bridge* bridge, hc_path* paths) {
    if (!conf->ts.enable) {
        LYND_DEBUG("ts disable, do nothing");
        return;
    }
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++) {
        hc_path* p = &paths[t];
        if (p->name[0] == '\0' || !path_is_live(*p))
            continue;
        LYND_DEBUG("path :%d name:%s", t, p->name);
        for (lynd_list* n = p->clients.next; n != &p->clients; n = n->next)
            path_selection_ts_vlan_hc_update(conf, bridge, &hc_client_of_path_node(n)->hc, p);
    }
}

void path_selection_ts_vlan_hc_update(lynd_config* conf, conf_bridge* bridge, hc_entry* hc, const hc_path* path) {
    if (client_mac_excluded(hc->mac))
        return;  // the operator keeps its entry as the bridge has it
    lynd::Host& host = lynd::host();
    char src[LYND_NAME_LEN], dst[LYND_NAME_LEN], home[LYND_NAME_LEN], name[LYND_NAME_LEN] = {};
    name_of(hc->src_port, src);
    name_of(hc->dst_port, dst);
    uint32_t svid = src[0] != '\0' ? lynd_get_ts_vlan(conf, src) : 0;
    uint32_t dvid = dst[0] != '\0' ? lynd_get_ts_vlan(conf, dst) : 0;
    (void)lynd_get_home_name(home, path != nullptr ? path->name : dst);
    uint32_t vid = dst_vlan(conf, svid);
    uint32_t index = hc->dst_port;
    if (vid != 0) {
        (void)lynd_get_vlan_name(name, home, vid, true);
        index = host.if_nametoindex(name);
    }
    LYND_DEBUG("src_ifname:%s, dst_name:%s, home_name:%s, svid:%d, dvid:%d, dst_index:%d", src, dst, home,
               static_cast<int>(svid), static_cast<int>(dvid), static_cast<int>(index));
    if (index == 0 || index == hc->dst_port)
        return;
    const uint8_t* m = hc->mac;
    LYND_INFO("update hc(%s) dst from %s to %s", lynd_mac(m, '-').s, dst, name);
    (void)lynd_set_hc_entry(bridge->name, hc->mac, hc->id, src, name);
    hc->dst_port = index;
}
