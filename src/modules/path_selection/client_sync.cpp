#include "modules/path_selection/client_sync.h"

#include <cstring>

#include "bridge/hybrid_tables.h"
#include "core/log.h"
#include "platform/seams.h"
#include "platform/krel_api.h"
#include "wlan/wlan.h"

namespace {

constexpr uint8_t kGeneration = 1;

bool in_fdb(const uint8_t* mac, const client_entry* clients, int n) {
    for (int i = 0; i < n; i++)
        if (std::memcmp(clients[i].mac, mac, 6) == 0)
            return true;
    return false;
}

void log_entry(int i, const hc_entry& e) {
    const uint8_t* m = e.mac;
    const uint8_t* d = e.id;
    LYND_DEBUG_AS("path_selection_update_hc_clients", "hc_table[%d].client:%x-%x-%x-%x-%x-%x, id:%x-%x-%x-%x-%x-%x\xef\xbc\x8c srcPort%d, dstPort:%d", i, m[0],
               m[1], m[2], m[3], m[4], m[5], d[0], d[1], d[2], d[3], d[4], d[5], static_cast<int>(e.src_port),
               static_cast<int>(e.dst_port));
}

// The record of mac on a configured path, re-filed when its entry changed.
hc_client* find_and_refile(hc_path* paths, const hc_entry& e, uint32_t dst_type) {
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++) {
        hc_path* p = &paths[t];
        if (p->state == PATH_UNINITED)
            continue;
        if (lynd::host().if_nametoindex(p->name) == 0) {
            LYND_WARN_AS("path_selection_update_hc_clients", "if_nametoindex failed: %s", p->name);
            continue;
        }
        hc_client* c = hc_find_client(&p->clients, e.mac);
        if (c == nullptr)
            continue;
        if (c->hc.src_port != e.src_port) {
            c->sta_type = static_cast<uint8_t>(wlan_get_type_by_ifindex(e.src_port));
            c->sta_history = sample_ring{};
            hc_client_unlink_ap(c);
        }
        if (dst_type != p->type) {
            hc_client_unlink_path(c);
            c->busy_count = 0;
            c->idle_count = 0;
        }
        return c;
    }
    return nullptr;
}

void file_client(hc_path* paths, hc_client* c, uint32_t dst_type) {
    if (c->path_node.next == nullptr) {
        lynd_list_add_tail(&c->path_node, &paths[dst_type].clients);
        hc_list_dump(&paths[dst_type].clients, "path_selection_update_hc_clients", __LINE__);
    }
    if (c->ap_node.next == nullptr)
        if (ap_iface* ap = path_selection_find_ap_iface_by_hc(c))
            lynd_list_add_tail(&c->ap_node, &ap->clients);
}

// One entry of the table: false when it is not recorded.
bool take_entry(conf_bridge* bridge, hc_path* paths, const hc_entry& e, const client_entry* clients, int n) {
    const uint8_t* m = e.mac;
    if (std::memcmp(e.mac, e.id, 6) != 0 && !in_fdb(e.mac, clients, n)) {
        (void)lynd_delete_hc_entry(bridge->name, e.mac);
        LYND_LOG_AS("path_selection_update_hc_clients", "delete hc_entry(%02x:%02x:%02x:%02x:%02x:%02x) sport(%d) dport(%d)", m[0], m[1], m[2], m[3], m[4],
                 m[5], static_cast<int>(e.src_port), static_cast<int>(e.dst_port));
        return false;
    }
    uint32_t dst_type = wlan_get_type_by_ifindex(e.dst_port);
    if (dst_type >= IF_TYPE_MAX) {
        LYND_ERR_AS("path_selection_update_hc_clients", "client dstport[%d] can not dst_type", static_cast<int>(e.dst_port));
        return false;
    }
    // Filed under a slot that is never live, it would be neither found nor swept.
    if (paths[dst_type].state == PATH_UNINITED || paths[dst_type].path == 0) {
        LYND_ERR_AS("path_selection_update_hc_clients", "path is error, because port[%d] is not uplink path", static_cast<int>(e.dst_port));
        return false;
    }
    hc_client* c = find_and_refile(paths, e, dst_type);
    if (c == nullptr) {
        c = hc_pool_alloc();
        if (c == nullptr) {
            LYND_ERR_AS("path_selection_update_hc_clients", "hc_entrys list pool is full");
            return false;
        }
        *c = hc_client{};
        c->sta_type = static_cast<uint8_t>(wlan_get_type_by_ifindex(e.src_port));
    }
    c->hc = e;
    c->magic = kGeneration;
    file_client(paths, c, dst_type);
    LYND_DEBUG_AS("path_selection_update_hc_clients", "hc item: client(%02x:%02x:%02x:%02x:%02x:%02x) sport(%d) dport(%d) packets(%lld) bytes(%lld)", m[0],
               m[1], m[2], m[3], m[4], m[5], static_cast<int>(e.src_port), static_cast<int>(e.dst_port),
               static_cast<long long>(e.pkts), static_cast<long long>(e.bytes));
    return true;
}

void for_configured(hc_path* paths, void (*fn)(lynd_list*, uint8_t), uint8_t gen) {
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++)
        if (paths[t].state != PATH_UNINITED)
            fn(&paths[t].clients, gen);
}

}  // namespace

int path_selection_update_hc_clients(conf_bridge* bridge, hc_path* paths, const client_entry* clients,
                                     int n_clients) {
    void* table = nullptr;
    int count = 0;
    if (lynd_get_hyfi_bridge_hc_table(bridge->name, &table, &count) != 1) {
        LYND_ERR("get hc table");
        return -1;
    }
    LYND_DEBUG("number of hc items: %d", count);
    if (count > 0)
        for_configured(paths, hc_mark_generation, 0);
    int recorded = 0;
    for (int i = 0; i < count; i++) {
        hc_entry e;
        std::memcpy(&e, static_cast<const uint8_t*>(table) + static_cast<size_t>(i) * sizeof e, sizeof e);
        log_entry(i, e);
        recorded += take_entry(bridge, paths, e, clients, n_clients) ? 1 : 0;
    }
    if (count > 0)
        for_configured(paths, hc_sweep_generation, kGeneration);
    lynd::krel().bridgeFreeTableBuf(table);
    return recorded;
}
