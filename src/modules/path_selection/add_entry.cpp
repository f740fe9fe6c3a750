#include "modules/path_selection/add_entry.h"

#include "core/log.h"
#include "core/mac.h"
#include "modules/path_selection/hc_records.h"
#include "modules/path_selection/ts_destination.h"
#include "wlan/wlan.h"

namespace {

// The record of mac on any configured path, taken off its lists.
hc_client* take_known(const uint8_t* mac) {
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++) {
        if (hc_paths[t].state == PATH_UNINITED)
            continue;
        if (hc_client* c = hc_find_client(&hc_paths[t].clients, mac)) {
            hc_client_unlink_path(c);
            hc_client_unlink_ap(c);
            return c;
        }
    }
    return nullptr;
}

}  // namespace

void path_selection_event_add_entry_hc(const hc_entry* entry) {
    lynd_config* conf = g_ps_conf;
    hc_entry e = *entry;
    const uint8_t* m = e.mac;
    LYND_INFO("Recv add hc table notify, mac[%s], src[%d], dst[%d]", lynd_mac(m).s, static_cast<int>(e.src_port),
              static_cast<int>(e.dst_port));
    uint32_t dst_type = wlan_get_type_by_ifindex(e.dst_port);
    if (dst_type >= IF_TYPE_MAX) {
        LYND_ERR("can not find dst_port[%d] type", static_cast<int>(e.dst_port));
        return;
    }
    hc_path* path = &hc_paths[dst_type];
    if (path->path == 0 || path->state == PATH_UNINITED) {
        LYND_ERR("path is error, because port[%d] is not uplink path", static_cast<int>(e.dst_port));
        return;
    }
    hc_client* c = take_known(e.mac);
    bool is_new = c == nullptr;
    if (is_new && (c = hc_pool_alloc()) == nullptr) {
        LYND_ERR("hc_entrys list pool is full");
        return;
    }
    if (conf->ts.enable && conf->n_bridges > 0)
        path_selection_ts_vlan_hc_update(conf, &conf->bridges[0], &e, nullptr);
    *c = hc_client{};
    c->hc = e;
    c->sta_type = static_cast<uint8_t>(wlan_get_type_by_ifindex(e.src_port));
    if (is_new && c->sta_type >= IF_TYPE_2G && c->sta_type < IF_TYPE_MAX)
        c->flags |= HC_FLAG_ASSOC_NEWLY;
    lynd_list_add_tail(&c->path_node, &path->clients);
    hc_list_dump(&path->clients, __func__, __LINE__);
    if (ap_iface* ap = path_selection_find_ap_iface_by_hc(c))
        lynd_list_add_tail(&c->ap_node, &ap->clients);
}
