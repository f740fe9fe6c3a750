// Each client's moves, kept by MAC apart from the client records: the pool
// forgets a client when it is swept, re-added or re-initialised, and an
// operator still wants to know where it went and why.
#pragma once
#include <cstdint>

#include "config/conf_steering.h"
#include "core/counters.h"
#include "core/mac.h"
#include "modules/path_selection/hc_records.h"
#include "modules/path_selection/mac_index.h"

struct client_log_entry {
    uint8_t mac[LYND_MAC_LEN];
    bool used;
    uint32_t moves;
    int64_t last_move_ms;
    uint8_t from;  // path slots, PATH_NONE for none
    uint8_t to;
    const char* reason;  // static text
    uint32_t touched;    // the oldest touched goes first when the table is full
    // For the flap guard: the times of the latest moves, newest at
    // recent[(next_recent + FLAP_BUDGET_MAX - 1) % FLAP_BUDGET_MAX].
    int64_t recent[FLAP_BUDGET_MAX];
    uint8_t n_recent;
    uint8_t next_recent;
    int64_t hold_until_ms;  // a flap was seen: the client stays on hold_on
    uint8_t hold_on;
    // The hold last listed: one listing while it lasts, wherever the client
    // is pushed meanwhile (its entry can swing with the preferred port).
    uint8_t held_rule;  // 0 for none
    int64_t held_until_ms;
};

struct client_log {
    client_log_entry entries[HC_MAX_CLIENTS];
    uint32_t clock;
    mac_index by_mac;  // every used entry: the guard asks for one on each move
};
extern client_log g_client_log;
void client_log_reset();

// Counts a move of c from slot `from` to slot `to` and records it as a
// decision with its reason (a move_reason).
void client_log_move(const hc_client& c, uint8_t from, uint8_t to, uint8_t reason);
// The client's entry, or null when it never moved (or was dropped).
const client_log_entry* client_log_find(const uint8_t* mac);
client_log_entry* client_log_find_mut(const uint8_t* mac);
