// Opt-in calm for client steering: a client that has just moved, that keeps
// going back to where it came from, or that has used up its hour's moves
// stays where it is. Moves off a broken path never wait: callers ask only
// for the moves that steer.
#pragma once
#include <cstdint>

#include "config/conf_steering.h"
#include "modules/path_selection/hc_records.h"

enum guard_rule : uint8_t { GUARD_NONE = 0, GUARD_DWELL, GUARD_RETURN, GUARD_BUDGET };
extern const char* const guard_rule_texts[4];

constexpr int64_t FLAP_BUDGET_WINDOW_MS = 3600 * 1000;

struct guard_verdict {
    uint8_t rule;     // GUARD_NONE: the move may go ahead
    int64_t left_ms;  // until the move may be made
};

// Whether a move of c from slot `from` to slot `to` must wait. A client
// sent back to the path it left within the return window is kept on the
// better of the two for the hold time: the move goes ahead only when `to`
// is the better one.
guard_verdict flap_guard_check(const conf_flap_guard& g, const hc_client& c, uint8_t from, uint8_t to,
                               int64_t now_ms);
// Counts and lists a held move, once for as long as the hold lasts under
// the same rule, whichever way the client is pushed meanwhile.
void flap_guard_held(const hc_client& c, uint8_t from, uint8_t to, const guard_verdict& v, int64_t now_ms);
// Checks and, when held, lists; true when the move must wait.
bool flap_guard_holds(const hc_client& c, uint8_t from, uint8_t to, guard_verdict* v);
