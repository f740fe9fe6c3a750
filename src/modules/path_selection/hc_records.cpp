#include "modules/path_selection/hc_records.h"

#include <cstddef>
#include <cstring>

#include "core/counters.h"
#include "core/log.h"

const char* const path_state_names[7] = {"UNINITED",          "UNLINK",   "NORMAL", "WEAKLINK",
                                         "WEAKLINK+ABNORMAL", "ABNORMAL", ""};

hc_path hc_paths[IF_TYPE_MAX];
hc_client hc_entrys[HC_MAX_CLIENTS];
uint8_t g_hc_magic;
lynd_config* g_ps_conf;
int64_t g_timer_interval;
uint8_t g_dbg_overload_mask;
debug_path_info g_dbg_path_info[IF_TYPE_MAX];
uint32_t g_hc_rand_state = 1;

hc_client* hc_client_of_path_node(lynd_list* l) {
    return static_cast<hc_client*>(lynd_container_of(l, offsetof(hc_client, path_node)));
}

// A refusal is counted: spoofed addresses or an overfull node show.
hc_client* hc_pool_alloc() {
    for (auto& c : hc_entrys)
        if (c.path_node.next == nullptr && c.path_node.prev == nullptr)
            return &c;
    g_counters.client_pool_full++;
    return nullptr;
}

int hc_pool_used() {
    int n = 0;
    for (const auto& c : hc_entrys)
        n += c.path_node.next != nullptr || c.path_node.prev != nullptr;
    return n;
}

void hc_pool_clear() {
    for (auto& c : hc_entrys)
        c = hc_client{};
}

hc_client* hc_find_client(lynd_list* head, const uint8_t* mac) {
    if (head == nullptr || mac == nullptr || head->next == nullptr)
        return nullptr;
    for (lynd_list* n = head->next; n != head; n = n->next) {
        hc_client* c = hc_client_of_path_node(n);
        if (std::memcmp(c->hc.mac, mac, 6) == 0)
            return c;
    }
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

void hc_list_dump(const lynd_list* head, const char* func, int line) {
    if (!lynd_log_on(LYND_LVL_DEBUG))
        return;
    lynd_printf("list dump[%s, %d]==========", func, line);
    lynd_printf("head -> @%p, prev->@%p, next->@%p", static_cast<const void*>(head), static_cast<void*>(head->prev),
                static_cast<void*>(head->next));
    for (const lynd_list* n = head->next; n != head; n = n->next)
        lynd_printf("node -> @%p, prev->@%p, next->@%p", static_cast<const void*>(n), static_cast<void*>(n->prev),
                    static_cast<void*>(n->next));
}

void ring_clear(sample_ring* r) { *r = sample_ring{}; }

link_sample* ring_append(sample_ring* r, bool path_ring) {
    int index;
    if (r->num >= HC_RING_SIZE) {
        index = r->start;
        r->start = static_cast<uint8_t>((r->start + 1) % HC_RING_SIZE);
    } else {
        index = (r->start + r->num) % HC_RING_SIZE;
        r->num++;
    }
    // Logged for the sampling operation that appends.
    if (path_ring)
        LYND_WARN_AS("path_selection_sample_wlan_path_info", "history, array_index[%d]", index);
    else
        LYND_DEBUG_AS("path_selection_sample_wlan_sta_info", "history, array_index[%d]", index);
    return &r->samples[index];
}
