#include <cstring>

#include "daemon/replies/status_replies.h"
#include "modules/path_selection/client_rules.h"
#include "modules/path_selection/explain_records.h"
#include "modules/path_selection/flap_guard.h"
#include "modules/path_selection/path_insight.h"

using lynd::BusReply;

namespace {

const char* slot_name(uint8_t slot) { return slot < IF_TYPE_MAX ? hc_paths[slot].name : ""; }

// Why a candidate was or was not the one ranked first.
const char* rank_text(const client_explain& e, const explain_candidate& c) {
    if (c.slot == e.ranked)
        return "highest quality";
    if (c.q == 0)
        return g_path_insight[c.slot].quota_block != QUOTA_OPEN ? quota_block_texts[g_path_insight[c.slot].quota_block]
                                                                  : "no free airtime";
    return "lower quality";
}

void put_candidate(BusReply& r, const client_explain& e, const explain_candidate& c) {
    r.open_table(nullptr);
    r.put_string("path", slot_name(c.slot));
    put_ints(r, {{"weight", c.weight},
                 {"quota", c.quota},
                 {"rate", c.rate},
                 {"bq", static_cast<int64_t>(c.bq)},
                 {"quality", static_cast<int64_t>(c.q)}});
    put_flags(r, {{"harmonic_mean", c.own_band && e.sq != 0 && c.bq != 0},
                  {"limited_by_station", c.limited},
                  {"overloaded", c.overloaded},
                  {"ranked_first", c.slot == e.ranked}});
    r.put_string("why", rank_text(e, c));
    r.close();
}

void put_damping(BusReply& r, const client_explain& e) {
    r.open_table("damping");
    put_flags(r, {{"checked", e.damping_checked}, {"held", e.damped}});
    put_ints(r, {{"delta_percent", e.delta_percent}, {"threshold", e.threshold}});
    r.close();
}

void put_outcome(BusReply& r, const client_explain& e, bool stale, int handle_count) {
    uint8_t outcome = stale ? static_cast<uint8_t>(OUTCOME_STALE) : e.outcome;
    r.put_string("outcome", move_outcome_texts[outcome < OUTCOME_COUNT ? outcome : 0]);
    if (!stale && e.outcome == OUTCOME_FLAP_HELD) {
        r.put_string("guard_rule", guard_rule_texts[e.guard_rule < 4 ? e.guard_rule : 0]);
        r.put_int("held_seconds_left", (e.guard_left_ms + 999) / 1000);
    }
    put_flags(r, {{"moved", !stale && e.outcome == OUTCOME_MOVED}, {"assoc_newly", e.assoc_newly}});
    put_ints(r, {{"count", e.count},
                 {"count_needed", e.count_needed},
                 {"handle_count", handle_count},
                 {"adjust_quota", e.adjust_quota},
                 {"needed_quota", e.quota},
                 {"client_rate", e.rate_mbps}});
}

// The pool's record of a client, or null.
const hc_client* pooled(const uint8_t* mac) {
    for (const hc_client& c : hc_entrys)
        if (c.path_node.next != nullptr && std::memcmp(c.hc.mac, mac, LYND_MAC_LEN) == 0)
            return &c;
    return nullptr;
}

// What the operator's client list says of it, when it says anything.
void put_rule(BusReply& r, const hc_client* c) {
    if (c == nullptr)
        return;
    if (client_excluded(*c)) {
        r.put_string("rule", "excluded: path selection never moves or writes it");
        return;
    }
    uint8_t pin = client_pin(*c);
    if (pin == PATH_NONE)
        return;
    r.put_string("pinned_to", slot_name(pin));
    r.put_string("rule", client_pinned_slot(*c) != PATH_NONE
                             ? "pinned: moved only to its pinned path while that path is live"
                             : "pinned, but its pinned path is not live: steered like any other");
}

}  // namespace

int status_reply_explain_client(const status_context& ctx, const uint8_t* mac, BusReply& r) {
    const client_explain* e = explain_find(mac);
    const hc_client* c = pooled(mac);
    if (e == nullptr && c == nullptr)
        return lynd::BUS_STATUS_NOT_FOUND;
    char text[LYND_MAC_TEXT_LEN];
    lynd_mac_text(mac, text);
    r.put_string("mac", text);
    put_rule(r, c);
    if (e == nullptr) {
        r.put_string("outcome", move_outcome_texts[OUTCOME_NOT_RATED]);
        return lynd::BUS_STATUS_OK;
    }
    bool stale = e->at_ms != g_explain_run_ms;
    r.put_int("rated_at", status_uptime_s(ctx, e->at_ms));
    r.put_string("path", slot_name(e->here));
    r.put_int("station_rate", e->sta_rate);
    r.put_int("station_quality", static_cast<int64_t>(e->sq));
    r.open_array("candidates");
    for (int k = 0; k < e->n; k++)
        put_candidate(r, *e, e->cand[k]);
    r.close();
    r.put_string("ranked_best", slot_name(e->ranked));
    put_damping(r, *e);
    r.put_string("best_path", slot_name(e->best));
    put_outcome(r, *e, stale, ctx.conf->param.handle_count);
    return lynd::BUS_STATUS_OK;
}
