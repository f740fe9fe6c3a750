#include "modules/path_selection/client_log.h"

#include <cstring>

#include "core/decision_ring.h"

client_log g_client_log;

namespace {

client_log_entry* find(const uint8_t* mac) {
    return static_cast<client_log_entry*>(mac_index_get(&g_client_log.by_mac, mac, nullptr));
}

// The index has no removal: a reused entry means filing them all again.
void reindex() {
    mac_index_clear(&g_client_log.by_mac);
    for (client_log_entry& e : g_client_log.entries)
        if (e.used)
            (void)mac_index_put(&g_client_log.by_mac, e.mac, &e, 0);
}

client_log_entry* take(const uint8_t* mac) {
    client_log_entry* oldest = &g_client_log.entries[0];
    for (client_log_entry& e : g_client_log.entries) {
        if (!e.used) {
            oldest = &e;
            break;
        }
        if (e.touched < oldest->touched)
            oldest = &e;
    }
    bool reused = oldest->used;
    *oldest = client_log_entry{};
    std::memcpy(oldest->mac, mac, LYND_MAC_LEN);
    oldest->used = true;
    oldest->hold_on = PATH_NONE;
    if (reused)
        reindex();
    else
        (void)mac_index_put(&g_client_log.by_mac, oldest->mac, oldest, 0);
    return oldest;
}

const char* slot_name(uint8_t slot) { return slot < IF_TYPE_MAX ? hc_paths[slot].name : ""; }

}  // namespace

void client_log_reset() { g_client_log = client_log{}; }

void client_log_move(const hc_client& c, uint8_t from, uint8_t to, uint8_t reason_code) {
    client_log_entry* e = find(c.hc.mac);
    if (e == nullptr)
        e = take(c.hc.mac);
    const char* reason = move_reason_texts[reason_code < MOVE_REASON_COUNT ? reason_code : 0];
    lynd_count_move(reason_code);
    e->moves++;
    e->last_move_ms = lynd_monotonic_ms();
    e->from = from;
    e->to = to;
    e->reason = reason;
    e->touched = ++g_client_log.clock;
    e->recent[e->next_recent] = e->last_move_ms;
    e->next_recent = static_cast<uint8_t>((e->next_recent + 1) % FLAP_BUDGET_MAX);
    if (e->n_recent < FLAP_BUDGET_MAX)
        e->n_recent++;
    e->held_rule = 0;
    e->held_until_ms = 0;
    char mac[LYND_MAC_TEXT_LEN];
    lynd_mac_text(c.hc.mac, mac);
    decision_record(DECISION_CLIENT_MOVE, mac, slot_name(from), slot_name(to), reason);
}

const client_log_entry* client_log_find(const uint8_t* mac) { return find(mac); }

client_log_entry* client_log_find_mut(const uint8_t* mac) { return find(mac); }
