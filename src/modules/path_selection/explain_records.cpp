#include "modules/path_selection/explain_records.h"

#include <cstring>

client_explain g_explain[HC_MAX_CLIENTS];
int64_t g_explain_run_ms;

const char* const move_outcome_texts[OUTCOME_COUNT] = {
    "not rated",
    "not rated in the last run",
    "not busy: clients wait on an overloaded path, or there is no best path",
    "on its best path",
    "its path is overloaded: waiting for the busy count",
    "a better path: waiting for the idle count",
    "handle count used up in this run",
    "its rate needs more than the adjusted quota of the best path",
    "another client of its path was moved instead",
    "moved to its best path",
    "flap guard: the move waits",
    "excluded by configuration: never moved",
};

void explain_reset() {
    for (auto& e : g_explain)
        e = client_explain{};
    g_explain_run_ms = 0;
}

client_explain& explain_of(const hc_client* c) { return g_explain[c - hc_entrys]; }

void explain_begin(const hc_client* c, uint8_t here, uint64_t sq, uint32_t sta_rate) {
    client_explain& e = explain_of(c);
    e = client_explain{};
    std::memcpy(e.mac, c->hc.mac, LYND_MAC_LEN);
    e.valid = true;
    e.at_ms = g_explain_run_ms;
    e.here = here;
    e.sta_type = c->sta_type;
    e.sq = sq;
    e.sta_rate = sta_rate;
    e.ranked = PATH_NONE;
    e.best = PATH_NONE;
    e.pinned = PATH_NONE;
}

void explain_candidate_add(client_explain& e, const explain_candidate& cand) {
    if (e.n < IF_TYPE_MAX)
        e.cand[e.n++] = cand;
}

void explain_file_damping(client_explain& e, const damping_verdict& d) {
    e.ranked = d.ranked;
    if (!d.checked)
        return;
    e.damping_checked = true;
    e.delta_percent = d.delta_percent;
    e.threshold = d.threshold;
    e.damped = d.damped;
}

// Only what the rules looked at: a field they did not reach keeps its value.
void explain_file_move(client_explain& e, const move_verdict& v) {
    e.outcome = v.outcome;
    if (v.weighed)
        e.count_needed = v.count_needed;
    if (v.counted)
        e.count = v.count;
    if (v.assoc_newly)
        e.assoc_newly = true;
    if (v.priced) {
        e.adjust_quota = v.adjust_quota;
        e.quota = v.quota;
        e.rate_mbps = v.rate_mbps;
    }
    if (v.outcome == OUTCOME_FLAP_HELD) {
        e.guard_rule = v.guard_rule;
        e.guard_left_ms = v.guard_left_ms;
    }
}

// A client freed and taken again keeps its slot only while in the pool.
const client_explain* explain_find(const uint8_t* mac) {
    const client_explain* newest = nullptr;
    for (int i = 0; i < HC_MAX_CLIENTS; i++) {
        const client_explain& e = g_explain[i];
        bool in_pool = hc_entrys[i].path_node.next != nullptr;
        if (e.valid && in_pool && std::memcmp(e.mac, mac, LYND_MAC_LEN) == 0 &&
            (newest == nullptr || e.at_ms > newest->at_ms))
            newest = &e;
    }
    return newest;
}
