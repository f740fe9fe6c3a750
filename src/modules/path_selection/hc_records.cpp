// STAND-IN until the path records land.
#include "modules/path_selection/hc_records.h"

#include <cstddef>
#include <cstring>

#include "core/log.h"
#include "platform/seams.h"
#include "wlan/wlan.h"

const char* const path_state_names[7] = {"UNINITED", "UNLINK", "NORMAL", "WEAKLINK", "WEAKLINK+ABNORMAL", "ABNORMAL", ""};
hc_path hc_paths[IF_TYPE_MAX];
hc_client hc_entrys[HC_MAX_CLIENTS];
uint8_t g_hc_magic;
lynd_config* g_ps_conf;
int64_t g_timer_interval;
uint8_t g_dbg_overload_mask;
debug_path_info g_dbg_path_info[IF_TYPE_MAX];

hc_client* hc_client_of_path_node(lynd_list* l) {
    return static_cast<hc_client*>(lynd_container_of(l, offsetof(hc_client, path_node)));
}

hc_client* hc_pool_alloc() {
    for (auto& c : hc_entrys)
        if (c.path_node.next == nullptr && c.path_node.prev == nullptr)
            return &c;
    return nullptr;
}

hc_client* hc_find_client(lynd_list* head, const uint8_t* mac) {
    if (head == nullptr || mac == nullptr)
        return nullptr;
    for (lynd_list* n = head->next; n != head; n = n->next)
        if (std::memcmp(hc_client_of_path_node(n)->hc.mac, mac, 6) == 0)
            return hc_client_of_path_node(n);
    return nullptr;
}

void hc_client_unlink_path(hc_client* c) {
    if (c->path_node.next != nullptr)
        lynd_list_del(&c->path_node);
}

void hc_client_unlink_ap(hc_client* c) {
    if (c->ap_node.next != nullptr)
        lynd_list_del(&c->ap_node);
}

void hc_list_dump(const lynd_list*, const char*, int) {}

void hc_mark_generation(lynd_list* head, uint8_t magic) {
    for (lynd_list* n = head->next; n != head; n = n->next)
        hc_client_of_path_node(n)->magic = magic;
}

void hc_sweep_generation(lynd_list* head, uint8_t magic) {
    for (lynd_list *n = head->next, *next = n->next; n != head; n = next, next = n->next) {
        hc_client* c = hc_client_of_path_node(n);
        if (c->magic == magic)
            continue;
        hc_client_unlink_path(c);
        hc_client_unlink_ap(c);
        *c = hc_client{};
    }
}

ap_iface* path_selection_find_ap_iface_by_hc(hc_client* c) {
    char name[LYND_NAME_LEN] = {};
    if (!lynd::host().if_indextoname(c->hc.src_port, name)) {
        LYND_ERR("port[%d] can not get ifname", static_cast<int>(c->hc.src_port));
        return nullptr;
    }
    uint32_t sub = wlan_get_subunit_by_ifname(name);
    if (sub > 9 || c->sta_type >= IF_TYPE_MAX) {
        LYND_WARN("%s maybe not ap interface", name);
        return nullptr;
    }
    ap_iface* ap = &hc_paths[c->sta_type].ap_ifaces[sub];
    return ap->name[0] != '\0' ? ap : nullptr;
}

void path_selection_apply_link_state(hc_path* p, bool up) {
    if (up && p->state == PATH_UNLINK) {
        uint8_t keep_type = p->type;
        p->last_state = PATH_UNLINK;
        p->state = PATH_NORMAL;
        p->weak_count = p->abnormal_count = p->util = 0;
        p->rate = 0;
        p->quota = 0;
        p->last_txbytes = p->last_rxbytes = p->cur_txbytes = p->cur_rxbytes = 0;
        p->overload = 0;
        p->path_history = sample_ring{};
        p->type = keep_type;
    } else if (!up && p->state > PATH_UNLINK) {
        p->last_state = p->state;
        p->state = PATH_UNLINK;
    }
}

bool path_is_live(const hc_path& p) { return p.state > PATH_UNLINK; }
