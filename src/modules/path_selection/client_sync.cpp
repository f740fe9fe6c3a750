#include "modules/path_selection/client_sync.h"

#include <cstring>

#include "bridge/hybrid_tables.h"
#include "core/log.h"
#include "core/mac.h"
#include "modules/path_selection/mac_index.h"
#include "platform/krel_api.h"
#include "platform/seams.h"
#include "wlan/wlan.h"

namespace {

constexpr uint8_t kGeneration = 1;
constexpr const char* kFn = "path_selection_update_hc_clients";

// Built at the start of each sync: which MACs the bridge forwards, where
// each record is filed, and which slots are searched.
struct sync_index {
    mac_index fdb;
    mac_index records;  // tag: the slot the record is on
    bool searched[IF_TYPE_MAX];
};
sync_index g_sync;

void build_index(hc_path* paths, const client_entry* clients, int n) {
    mac_index_clear(&g_sync.fdb);
    for (int i = 0; i < n; i++)
        (void)mac_index_put(&g_sync.fdb, clients[i].mac, const_cast<client_entry*>(&clients[i]), 0);
    mac_index_clear(&g_sync.records);
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++) {
        hc_path* p = &paths[t];
        g_sync.searched[t] = p->state != PATH_UNINITED && lynd::host().if_nametoindex(p->name) != 0;
        if (!g_sync.searched[t])
            continue;
        for (lynd_list* l = p->clients.next; l != &p->clients; l = l->next) {
            hc_client* c = hc_client_of_path_node(l);
            (void)mac_index_put(&g_sync.records, c->hc.mac, c, static_cast<uint8_t>(t));
        }
    }
}

bool in_fdb(const uint8_t* mac) { return mac_index_get(&g_sync.fdb, mac, nullptr) != nullptr; }

// A configured slot whose name has no interface is passed over, as a
// search in slot order meets it.
void warn_unsearched(const hc_path* paths, uint32_t upto) {
    for (uint32_t t = 0; t < upto; t++)
        if (paths[t].state != PATH_UNINITED && !g_sync.searched[t])
            LYND_WARN_AS(kFn, "if_nametoindex failed: %s", paths[t].name);
}

void log_entry(int i, const hc_entry& e) {
    const uint8_t* m = e.mac;
    const uint8_t* d = e.id;
    LYND_DEBUG_AS(kFn, "hc_table[%d].client:%x-%x-%x-%x-%x-%x, id:%x-%x-%x-%x-%x-%x\xef\xbc\x8c srcPort%d, dstPort:%d",
                  i, m[0], m[1], m[2], m[3], m[4], m[5], d[0], d[1], d[2], d[3], d[4], d[5],
                  static_cast<int>(e.src_port), static_cast<int>(e.dst_port));
}

// The record of mac on a searched slot, re-filed when its entry changed.
hc_client* find_and_refile(hc_path* paths, const hc_entry& e, uint32_t dst_type) {
    uint8_t t = IF_TYPE_MAX;
    hc_client* c = static_cast<hc_client*>(mac_index_get(&g_sync.records, e.mac, &t));
    warn_unsearched(paths, c != nullptr ? t : static_cast<uint32_t>(IF_TYPE_MAX));
    if (c == nullptr)
        return nullptr;
    if (c->hc.src_port != e.src_port) {
        c->sta_type = static_cast<uint8_t>(wlan_get_type_by_ifindex(e.src_port));
        c->sta_history = sample_ring{};
        hc_client_unlink_ap(c);
    }
    if (dst_type != paths[t].type) {
        hc_client_unlink_path(c);
        c->busy_count = 0;
        c->idle_count = 0;
    }
    return c;
}

void file_client(hc_path* paths, hc_client* c, uint32_t dst_type) {
    if (c->path_node.next == nullptr) {
        lynd_list_add_tail(&c->path_node, &paths[dst_type].clients);
        hc_list_dump(&paths[dst_type].clients, kFn, __LINE__);
        if (g_sync.searched[dst_type])
            (void)mac_index_put(&g_sync.records, c->hc.mac, c, static_cast<uint8_t>(dst_type));
        mac_index_set_tag(&g_sync.records, c->hc.mac, static_cast<uint8_t>(dst_type));
    }
    if (c->ap_node.next == nullptr)
        if (ap_iface* ap = path_selection_find_ap_iface_by_hc(c))
            lynd_list_add_tail(&c->ap_node, &ap->clients);
}

// One entry of the table: false when it is not recorded.
bool take_entry(conf_bridge* bridge, hc_path* paths, const hc_entry& e) {
    const uint8_t* m = e.mac;
    if (std::memcmp(e.mac, e.id, 6) != 0 && !in_fdb(e.mac)) {
        (void)lynd_delete_hc_entry(bridge->name, e.mac);
        LYND_LOG_AS(kFn, "delete hc_entry(%s) sport(%d) dport(%d)", lynd_mac(m).s, static_cast<int>(e.src_port),
                    static_cast<int>(e.dst_port));
        return false;
    }
    uint32_t dst_type = wlan_get_type_by_ifindex(e.dst_port);
    if (dst_type >= IF_TYPE_MAX) {
        LYND_ERR_AS(kFn, "client dstport[%d] can not dst_type", static_cast<int>(e.dst_port));
        return false;
    }
    // Filed under a slot that is never live, it would be neither found nor swept.
    if (paths[dst_type].state == PATH_UNINITED || paths[dst_type].path == 0) {
        LYND_ERR_AS(kFn, "path is error, because port[%d] is not uplink path", static_cast<int>(e.dst_port));
        return false;
    }
    hc_client* c = find_and_refile(paths, e, dst_type);
    if (c == nullptr) {
        c = hc_pool_alloc();
        if (c == nullptr) {
            LYND_ERR_AS(kFn, "hc_entrys list pool is full");
            return false;
        }
        *c = hc_client{};
        c->sta_type = static_cast<uint8_t>(wlan_get_type_by_ifindex(e.src_port));
    }
    c->hc = e;
    c->magic = kGeneration;
    file_client(paths, c, dst_type);
    LYND_DEBUG_AS(kFn, "hc item: client(%s) sport(%d) dport(%d) packets(%lld) bytes(%lld)", lynd_mac(m).s,
                  static_cast<int>(e.src_port), static_cast<int>(e.dst_port), static_cast<long long>(e.pkts),
                  static_cast<long long>(e.bytes));
    return true;
}

void for_configured(hc_path* paths, void (*fn)(lynd_list*, uint8_t), uint8_t gen) {
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++)
        if (paths[t].state != PATH_UNINITED)
            fn(&paths[t].clients, gen);
}

}  // namespace

int path_selection_update_hc_clients(conf_bridge* bridge, hc_path* paths, const client_entry* clients, int n_clients) {
    void* table = nullptr;
    int count = 0;
    if (lynd_get_hyfi_bridge_hc_table(bridge->name, &table, &count) != 1) {
        LYND_ERR("get hc table");
        return -1;
    }
    LYND_DEBUG("number of hc items: %d", count);
    if (count > 0)
        for_configured(paths, hc_mark_generation, 0);
    build_index(paths, clients, n_clients);
    int recorded = 0;
    for (int i = 0; i < count; i++) {
        hc_entry e;
        std::memcpy(&e, static_cast<const uint8_t*>(table) + static_cast<size_t>(i) * sizeof e, sizeof e);
        log_entry(i, e);
        recorded += take_entry(bridge, paths, e) ? 1 : 0;
    }
    if (count > 0)
        for_configured(paths, hc_sweep_generation, kGeneration);
    lynd::krel().bridgeFreeTableBuf(table);
    return recorded;
}
