#include "modules/path_selection/client_moves.h"

#include <cstring>

#include "bridge/hybrid_tables.h"
#include "config/ts_vlan.h"
#include "core/log.h"
#include "core/mac.h"
#include "core/vlan_name.h"
#include "modules/path_selection/client_log.h"
#include "modules/path_selection/client_rules.h"
#include "modules/path_selection/explain_records.h"
#include "modules/path_selection/flap_guard.h"
#include "modules/path_selection/ts_destination.h"
#include "platform/seams.h"
#include "wlan/wlan.h"

namespace {

constexpr const char* kFn = "path_selection_update_uplink_hc_table_v2";

struct Candidate {
    hc_client* client = nullptr;
    hc_path* bp = nullptr;
    uint32_t quota = 0;
};

// Whether the hysteresis lets c leave slot p this run.
bool may_move(hc_client* c, const hc_path& p, int has_clients_on_busy_path, uint8_t threshold, move_verdict* v) {
    v->weighed = true;
    v->count_needed = threshold;
    if ((has_clients_on_busy_path && p.overload != 1) || c->best_path == PATH_NONE) {
        c->busy_count = 0;
        c->idle_count = 0;
        v->outcome = OUTCOME_NOT_BUSY;
        LYND_INFO_AS(kFn, "not busy, not adjust :%s", p.name);
        return false;
    }
    if (c->best_path == p.type) {
        c->busy_count = 0;
        c->idle_count = 0;
        c->flags &= static_cast<uint8_t>(~HC_FLAG_ASSOC_NEWLY);
        v->outcome = OUTCOME_ON_BEST;
        return false;
    }
    if (p.overload == 1) {
        c->idle_count = 0;
        c->busy_count++;
        v->outcome = OUTCOME_BUSY_WAIT;
        v->counted = true;
        v->count = c->busy_count;
        return c->busy_count >= threshold;
    }
    c->busy_count = 0;
    if (c->flags & HC_FLAG_ASSOC_NEWLY) {
        const uint8_t* m = c->hc.mac;
        LYND_LOG_AS(kFn, "hc[%s] is assoc newly, change path %s to %s", lynd_mac(m).s, p.name,
                    hc_paths[c->best_path].name);
        v->assoc_newly = true;
        return true;
    }
    c->idle_count++;
    v->outcome = OUTCOME_IDLE_WAIT;
    v->counted = true;
    v->count = c->idle_count;
    return c->idle_count >= threshold;
}

// Moving up in priority takes the heaviest client first, else the lightest.
bool better_candidate(const Candidate& cur, const hc_client* c, const hc_path& bp, const hc_path& from) {
    if (cur.client == nullptr)
        return true;
    if (bp.priority <= from.priority)
        return c->hc.bytes < cur.client->hc.bytes;
    return c->hc.bytes > cur.client->hc.bytes;
}

// The rules in their order; the first that holds the client ends the verdict.
move_verdict judge(lynd_config* conf, hc_client* c, hc_path* p, int has_busy, int handle, int64_t time_ms,
                   Candidate* cand) {
    move_verdict v;
    if (client_excluded(*c)) {
        v.outcome = OUTCOME_EXCLUDED;
        return v;
    }
    if (!may_move(c, *p, has_busy, conf->param.busy_count_threshold, &v))
        return v;
    if (handle == 0) {
        v.outcome = OUTCOME_NO_HANDLE;
        return v;
    }
    hc_path* bp = &hc_paths[c->best_path];
    int32_t adjust_quota = static_cast<int32_t>(conf->param.adjusted_ratio) * bp->quota / 100;
    LYND_LOG_AS(kFn, "adjust_quota: %d", adjust_quota);
    uint32_t rate = path_selection_client_rate(c->hc.bytes, time_ms);
    uint32_t quota = bp->rate != 0 ? rate * 10000u / bp->rate : 0;
    const uint8_t* m = c->hc.mac;
    LYND_LOG_AS(kFn, "cur hc(%s) quota: %d rate(Mbps) %u time(ms) %lld", lynd_mac(m, '-').s, static_cast<int>(quota),
                rate, static_cast<long long>(time_ms));
    v.priced = true;
    v.adjust_quota = adjust_quota;
    v.quota = quota;
    v.rate_mbps = rate;
    v.outcome = OUTCOME_TOO_HEAVY;
    if (quota > static_cast<uint32_t>(adjust_quota))
        return v;
    guard_verdict g;
    if (flap_guard_holds(*c, p->type, bp->type, &g)) {
        v.outcome = OUTCOME_FLAP_HELD;
        v.guard_rule = g.rule;
        v.guard_left_ms = g.left_ms;
        return v;
    }
    v.outcome = OUTCOME_OUTWEIGHED;  // until it is the one moved
    if (better_candidate(*cand, c, *bp, *p))
        *cand = Candidate{c, bp, quota};
    return v;
}

void consider(lynd_config* conf, hc_client* c, hc_path* p, int has_busy, int handle, int64_t time_ms, Candidate* cand) {
    if (c->magic != g_hc_magic) {
        LYND_INFO_AS(kFn, "node magic:%x, hc magic:%d", c->magic, g_hc_magic);
        return;
    }
    c->magic++;
    explain_file_move(explain_of(c), judge(conf, c, p, has_busy, handle, time_ms, cand));
}

uint8_t move_reason_of(const hc_client& c, const hc_path& from) {
    if (from.overload == 1)
        return MOVE_PATH_OVERLOADED;
    return (c.flags & HC_FLAG_ASSOC_NEWLY) != 0 ? MOVE_NEWLY_ASSOCIATED : MOVE_BETTER_PATH;
}

void source_name(const hc_client* c, char* out) {
    std::memset(out, 0, LYND_NAME_LEN);
    if (!lynd::host().if_indextoname(c->hc.src_port, out))
        out[0] = '\0';
}

// What every move does, the periodic one and the evacuation alike: the
// bridge sends the client's traffic from src to dst, the client joins
// to's list, the move is logged, and its flows start over on the new path.
void move_client(conf_bridge* bridge, hc_client* c, const char* src, const char* dst, hc_path* to, uint8_t from_type,
                 uint8_t reason, const char* fn) {
    (void)lynd_set_hc_entry(bridge->name, c->hc.mac, c->hc.id, src, dst);
    hc_client_unlink_path(c);
    lynd_list_add_tail(&c->path_node, &to->clients);
    client_log_move(*c, from_type, to->type, reason);
    hc_list_dump(&to->clients, fn, __LINE__);
    (void)lynd_flush_fc_flow_by_mac(c->hc.mac);
}

// The bridge sends the client by the node's best path, while its record
// joins its own best's list; a pinned client goes where it is pinned.
void move(lynd_config* conf, conf_bridge* bridge, const Candidate& cand, const hc_path& from, const hc_path& best) {
    hc_client* c = cand.client;
    const uint8_t* m = c->hc.mac;
    LYND_INFO_AS(kFn, "set hc(%s) to %s", lynd_mac(m, '-').s, cand.bp->name);
    const char* base = client_pinned_slot(*c) != PATH_NONE ? cand.bp->name : best.name;
    char src[LYND_NAME_LEN], dst[LYND_NAME_LEN];
    source_name(c, src);
    path_selection_ts_dst_name(conf, base, src, dst);
    if (conf->ts.enable) {
        char home[LYND_NAME_LEN];
        (void)lynd_get_home_name(home, base);
        LYND_INFO_AS(kFn, "adjust_hc->src_port:%d, src_ifname:%s, home_name:%s", static_cast<int>(c->hc.src_port), src,
                     home);
    }
    LYND_INFO_AS(kFn, "best_path_name:%s", dst);
    uint8_t reason = move_reason_of(*c, from);
    explain_file_moved(explain_of(c));
    cand.bp->quota = static_cast<int16_t>(cand.bp->quota - static_cast<int16_t>(cand.quota));
    c->busy_count = 0;
    c->idle_count = 0;
    c->flags &= static_cast<uint8_t>(~HC_FLAG_ASSOC_NEWLY);
    move_client(bridge, c, src, dst, cand.bp, from.type, reason, kFn);
}

}  // namespace

uint32_t path_selection_client_rate(uint64_t bytes, int64_t time_ms) {
    if (time_ms <= 0)
        return 0;
    return static_cast<uint32_t>((bytes / static_cast<uint64_t>(time_ms)) >> 6);
}

void path_selection_update_uplink_hc_table_v2(lynd_config* conf, conf_bridge* bridge, hc_path* best, hc_path* paths,
                                              int has_clients_on_busy_path) {
    int handle = conf->param.handle_count;
    int64_t period = conf->param.period;
    int64_t time_ms = g_timer_interval > period ? g_timer_interval : period;
    if (paths[best->type].path == 0) {
        LYND_ERR("best path(%s) is err!", best->name);
        return;
    }
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++) {
        hc_path* p = &paths[t];
        if (!path_is_live(*p))
            continue;
        Candidate cand;
        for (lynd_list* n = p->clients.next; n != &p->clients; n = n->next)
            consider(conf, hc_client_of_path_node(n), p, has_clients_on_busy_path, handle, time_ms, &cand);
        LYND_DEBUG("handle_count:%d", handle);
        if (handle > 0 && cand.client != nullptr) {
            move(conf, bridge, cand, *p, *best);
            handle--;
        }
    }
}

void path_selection_pre_update_uplink_path_for_hc_v2(conf_bridge* bridge, hc_path* paths, uint32_t best_type) {
    lynd_config* conf = g_ps_conf;
    if (best_type >= PATH_NONE) {
        LYND_WARN("not find best path");
        lynd_flush_hc_table(conf);
        return;
    }
    hc_path* best = &paths[best_type];
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++) {
        if (paths[t].state != PATH_UNLINK)
            continue;
        lynd_list* head = &paths[t].clients;
        for (lynd_list *n = head->next, *next = n->next; n != head; n = next, next = n->next) {
            hc_client* c = hc_client_of_path_node(n);
            if (client_excluded(*c))
                continue;
            const uint8_t* m = c->hc.mac;
            LYND_INFO("set hc(%s) to %s", lynd_mac(m).s, best->name);
            char src[LYND_NAME_LEN], dst[LYND_NAME_LEN];
            if (!lynd::host().if_indextoname(c->hc.src_port, src)) {
                LYND_ERR("if_indextoname(hc->src_port:%d, ifname:%s) == NULL!", static_cast<int>(c->hc.src_port), "");
                continue;
            }
            path_selection_ts_dst_name(conf, best->name, src, dst);
            if (conf->ts.enable) {
                char home[LYND_NAME_LEN];
                (void)lynd_get_home_name(home, best->name);
                LYND_INFO("src_ifname:%s, dst_ifname:%s, home_name:%s, vlan_id:%d", src, dst, home,
                          static_cast<int>(lynd_get_ts_vlan(conf, src)));
            }
            move_client(bridge, c, src, dst, best, static_cast<uint8_t>(t), MOVE_PATH_UNLINKED, __func__);
        }
    }
}
