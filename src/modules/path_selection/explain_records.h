// Why each client is where it is: the figures that ranked every candidate
// path and the rule that held or moved it, as the last period run saw them.
// Kept beside the client pool, so an answer never reruns the algorithm.
#pragma once
#include <cstdint>

#include "core/mac.h"
#include "modules/path_selection/hc_records.h"

enum move_outcome : uint8_t {
    OUTCOME_NOT_RATED = 0,
    OUTCOME_STALE,      // rated in an earlier run only
    OUTCOME_NOT_BUSY,   // others wait on a busy path, or no best path
    OUTCOME_ON_BEST,    // already on its best path
    OUTCOME_BUSY_WAIT,  // its path is overloaded; waiting out the busy count
    OUTCOME_IDLE_WAIT,  // a better path; waiting out the idle count
    OUTCOME_NO_HANDLE,  // this run's moves were used up
    OUTCOME_TOO_HEAVY,  // its rate would take more than the adjusted quota
    OUTCOME_OUTWEIGHED, // another client of its path was moved instead
    OUTCOME_MOVED,
    OUTCOME_FLAP_HELD,  // the move waits for the flap guard
    OUTCOME_EXCLUDED,   // the operator excluded it from steering
    OUTCOME_COUNT,
};
extern const char* const move_outcome_texts[OUTCOME_COUNT];

struct explain_candidate {
    uint8_t slot;
    bool overloaded;
    bool limited;   // held back by the client's own radio
    bool own_band;  // backhaul and access share one radio: the harmonic mean
    uint32_t weight;
    int16_t quota;
    uint16_t rate;
    uint64_t bq;  // backhaul quality
    uint64_t q;   // path quality for this client
};

struct client_explain {
    uint8_t mac[LYND_MAC_LEN];
    bool valid;
    int64_t at_ms;
    uint8_t here;
    uint8_t sta_type;
    uint32_t sta_rate;
    uint64_t sq;  // station quality
    uint8_t n;
    explain_candidate cand[IF_TYPE_MAX];
    uint8_t ranked;  // the best by quality, before the damping rule
    bool damping_checked;
    bool damped;
    uint32_t delta_percent;
    uint8_t threshold;
    uint8_t best;
    uint8_t outcome;
    uint8_t count;  // busy or idle count after this run
    uint8_t count_needed;
    bool assoc_newly;
    int32_t adjust_quota;
    uint32_t quota;
    uint32_t rate_mbps;
    uint8_t guard_rule;     // why the flap guard held it
    int64_t guard_left_ms;  // until the held move may be made
    uint8_t pinned;         // the pinned slot, PATH_NONE when not pinned
};

// What the move rules said of one client this run. The rules return it and
// decide on it alone; explain_file_move files it.
struct move_verdict {
    uint8_t outcome = OUTCOME_NOT_RATED;
    bool weighed = false;  // the hysteresis looked at it: count_needed holds
    uint8_t count_needed = 0;
    bool counted = false;  // a busy or idle count is being waited out
    uint8_t count = 0;
    bool assoc_newly = false;
    bool priced = false;  // the quota figures below hold
    int32_t adjust_quota = 0;
    uint32_t quota = 0;
    uint32_t rate_mbps = 0;
    uint8_t guard_rule = 0;
    int64_t guard_left_ms = 0;
};

// What the damping rule said of the ranking's best.
struct damping_verdict {
    uint8_t ranked = 0;  // the best by quality, before the rule
    bool checked = false;
    bool damped = false;
    uint32_t delta_percent = 0;
    uint8_t threshold = 0;
};

extern client_explain g_explain[HC_MAX_CLIENTS];
extern int64_t g_explain_run_ms;  // the start of the last rating
void explain_reset();

// The record kept beside pool record c.
client_explain& explain_of(const hc_client* c);
void explain_begin(const hc_client* c, uint8_t here, uint64_t sq, uint32_t sta_rate);
void explain_candidate_add(client_explain& e, const explain_candidate& cand);
void explain_file_damping(client_explain& e, const damping_verdict& d);
void explain_file_move(client_explain& e, const move_verdict& v);
inline void explain_file_moved(client_explain& e) { e.outcome = OUTCOME_MOVED; }
// The newest record of a client by MAC: null when it was never rated.
const client_explain* explain_find(const uint8_t* mac);
