#include "modules/path_selection/flap_guard.h"

#include "config/lynd_config.h"
#include "core/counters.h"
#include "core/decision_ring.h"
#include "core/log.h"
#include "core/mac.h"
#include "modules/path_selection/client_log.h"
#include "modules/path_selection/explain_records.h"

const char* const guard_rule_texts[4] = {
    "",
    "minimum dwell time after its last move",
    "sent back to the path it left: held on the better of the two",
    "move budget of the last hour used up",
};

namespace {

// The longer wait decides.
void wait_for(guard_verdict* v, uint8_t rule, int64_t left_ms) {
    if (left_ms > v->left_ms || v->rule == GUARD_NONE)
        *v = guard_verdict{rule, left_ms};
}

uint64_t quality_of(const client_explain& e, uint8_t slot) {
    for (int k = 0; k < e.n && k < static_cast<int>(IF_TYPE_MAX); k++)
        if (e.cand[k].slot == slot)
            return e.cand[k].q;
    return 0;
}

// By state first (lower is better among live paths), then by the client's
// own quality of the last rating.
bool strictly_better(const hc_client& c, uint8_t a, uint8_t b) {
    const hc_path& pa = hc_paths[a];
    const hc_path& pb = hc_paths[b];
    if (path_is_live(pa) != path_is_live(pb))
        return path_is_live(pa);
    if (pa.state != pb.state)
        return pa.state < pb.state;
    const client_explain& e = explain_of(&c);
    return quality_of(e, a) > quality_of(e, b);
}

void budget(const conf_flap_guard& g, const client_log_entry& e, int64_t now_ms, guard_verdict* v) {
    if (g.moves_per_hour == 0 || e.n_recent < g.moves_per_hour)
        return;
    int64_t oldest = e.recent[(e.next_recent + FLAP_BUDGET_MAX - g.moves_per_hour) % FLAP_BUDGET_MAX];
    if (now_ms - oldest < FLAP_BUDGET_WINDOW_MS)
        wait_for(v, GUARD_BUDGET, oldest + FLAP_BUDGET_WINDOW_MS - now_ms);
}

const char* slot_name(uint8_t slot) { return slot < IF_TYPE_MAX ? hc_paths[slot].name : ""; }

}  // namespace

guard_verdict flap_guard_check(const conf_flap_guard& g, const hc_client& c, uint8_t from, uint8_t to,
                               int64_t now_ms) {
    guard_verdict v{GUARD_NONE, 0};
    client_log_entry* e = client_log_find_mut(c.hc.mac);
    if (e == nullptr || from >= IF_TYPE_MAX || to >= IF_TYPE_MAX)
        return v;  // never moved: nothing to calm
    if (e->hold_until_ms > now_ms && e->hold_on == from)
        wait_for(&v, GUARD_RETURN, e->hold_until_ms - now_ms);
    if (g.min_dwell_ms != 0 && now_ms - e->last_move_ms < g.min_dwell_ms)
        wait_for(&v, GUARD_DWELL, e->last_move_ms + g.min_dwell_ms - now_ms);
    budget(g, *e, now_ms, &v);
    bool returning = g.return_window_ms != 0 && g.return_hold_ms != 0 && e->from == to && e->to == from &&
                     now_ms - e->last_move_ms < g.return_window_ms;
    if (v.rule != GUARD_NONE || !returning)
        return v;
    bool back_better = strictly_better(c, to, from);
    e->hold_until_ms = now_ms + g.return_hold_ms;
    e->hold_on = back_better ? to : from;
    if (!back_better)
        v = guard_verdict{GUARD_RETURN, g.return_hold_ms};
    return v;
}

void flap_guard_held(const hc_client& c, uint8_t from, uint8_t to, const guard_verdict& v, int64_t now_ms) {
    const uint8_t* m = c.hc.mac;
    LYND_INFO("hold hc(%s) on %s: flap guard, %s, %lld s left", lynd_mac(m).s, slot_name(from),
              guard_rule_texts[v.rule < 4 ? v.rule : 0], static_cast<long long>((v.left_ms + 999) / 1000));
    client_log_entry* e = client_log_find_mut(c.hc.mac);
    if (e == nullptr || (e->held_rule == v.rule && now_ms < e->held_until_ms))
        return;
    e->held_rule = v.rule;
    e->held_until_ms = now_ms + v.left_ms;
    g_counters.moves_held++;
    char mac[LYND_MAC_TEXT_LEN];
    lynd_mac_text(m, mac);
    decision_record(DECISION_CLIENT_HELD, mac, slot_name(from), slot_name(to), "flap guard");
}

bool flap_guard_holds(const hc_client& c, uint8_t from, uint8_t to, guard_verdict* v) {
    *v = guard_verdict{GUARD_NONE, 0};
    const conf_flap_guard& g = g_ps_conf->param.flap_guard;
    if (!flap_guard_on(g))
        return false;
    int64_t now_ms = lynd_monotonic_ms();
    *v = flap_guard_check(g, c, from, to, now_ms);
    if (v->rule == GUARD_NONE)
        return false;
    flap_guard_held(c, from, to, *v, now_ms);
    return true;
}
