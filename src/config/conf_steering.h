// Opt-in limits on steering: how often a client may change path, where some
// clients must stay, and when the preferred port may swing back.
#pragma once
#include <cstdint>

#include "core/mac.h"
#include "core/types.h"

constexpr int FLAP_BUDGET_MAX = 32;      // moves per hour a budget may allow
constexpr int LYND_MAX_CLIENT_RULES = 64;
constexpr uint32_t FLAP_GUARD_MAX_S = 86400;

// Every rule is off at 0.
struct conf_flap_guard {
    uint32_t min_dwell_ms;        // no move sooner than this after the last one
    uint32_t return_window_ms;    // A to B and back to A within this is a flap
    uint32_t return_hold_ms;      // ... and the client then stays this long
    uint8_t moves_per_hour;       // a client's budget over the last hour
    uint32_t preferred_return_ms; // the preferred port keeps away from a path it left
};

inline bool flap_guard_on(const conf_flap_guard& g) {
    return g.min_dwell_ms != 0 || (g.return_window_ms != 0 && g.return_hold_ms != 0) || g.moves_per_hour != 0;
}

struct conf_client_rule {
    uint8_t mac[LYND_MAC_LEN];
    bool exclude;
    uint8_t pin;  // a path type, IF_TYPE_MAX for none
};

struct conf_client_rules {
    uint32_t n;
    conf_client_rule rules[LYND_MAX_CLIENT_RULES];  // by MAC, ascending
};

// The rule for a client, or null.
const conf_client_rule* conf_client_rule_find(const conf_client_rules& r, const uint8_t* mac);
