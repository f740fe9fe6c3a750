#include "modules/path_selection/best_path.h"

#include "core/decision_ring.h"
#include "core/log.h"
#include "core/mac.h"
#include "modules/path_selection/client_rules.h"
#include "modules/path_selection/explain_records.h"
#include "modules/path_selection/path_insight.h"
#include "modules/path_selection/sampling.h"
#include "node/host_stats.h"

namespace {

constexpr const char* kFn = "path_selection_find_best_path_v2";

bool is_wireless(uint8_t type) { return type >= IF_TYPE_2G && type < IF_TYPE_MAX; }

uint64_t station_quality(const hc_client& c, const hc_path* paths, uint32_t sta_rate) {
    if (!is_wireless(c.sta_type) || paths[c.sta_type].path == 0)
        return 0;
    return static_cast<uint64_t>(static_cast<int64_t>(paths[c.sta_type].quota)) * sta_rate;
}

struct choice {
    uint8_t path = PATH_NONE;
    uint64_t q = 0;
    uint64_t bq = 0;
    bool limited = false;
    uint64_t cur_q = 0;
    uint64_t cur_bq = 0;
};

// Apart from the rating, which runs for every client and path: the line's
// MAC text would otherwise take room in the rating's frame.
[[gnu::cold, gnu::noinline]] void log_rating(const hc_client& c, const hc_path& x, uint64_t bq, uint64_t sq,
                                             uint64_t q) {
    LYND_LOG_AS(kFn, "wlan client[%s] sta_type[%d] path_type[%d]", lynd_mac(c.hc.mac).s, c.sta_type, x.type);
    LYND_LOG_AS(kFn, "quality: backhaul=%lld sta=%lld path=%lld", static_cast<long long>(bq),
                static_cast<long long>(sq), static_cast<long long>(q));
}

void rate_path(const hc_client& c, const hc_path& x, uint8_t here, uint64_t sq, choice* ch) {
    bool wireless = is_wireless(c.sta_type);
    uint64_t bq = path_selection_backhaul_quality(x);
    uint64_t q = path_selection_path_quality(bq, sq, wireless, x.type == c.sta_type);
    bool limited = wireless && bq != 0 && sq != 0 && x.type != c.sta_type && bq > sq;
    explain_candidate_add(explain_of(&c), explain_candidate{x.type, x.overload == 1, limited,
                                                            wireless && x.type == c.sta_type, path_weight(x), x.quota,
                                                            x.rate, bq, q});
    if (wireless && lynd_log_on(LYND_LVL_LOG))
        log_rating(c, x, bq, sq, q);
    if (x.type == here) {
        ch->cur_q = q;
        ch->cur_bq = bq;
    }
    if (ch->path == PATH_NONE || q > ch->q) {
        ch->path = x.type;
        ch->q = q;
        ch->limited = limited;
        ch->bq = bq;
    } else if (q == ch->q && limited && ch->limited && bq > ch->bq) {
        ch->path = x.type;
        ch->bq = bq;
    }
}

// A move must gain more than the threshold over where the client is.
damping_verdict damp(choice* ch, const hc_path& here, const hc_path* paths, uint8_t threshold) {
    damping_verdict d;
    d.ranked = ch->path;
    if (ch->path == here.type)
        return d;
    uint64_t delta = static_cast<uint64_t>(threshold) + 1;
    if (ch->q != ch->cur_q) {
        if (ch->cur_q != 0 && ch->cur_q > ch->q - ch->cur_q)
            delta = (ch->q - ch->cur_q) * 100 / ch->cur_q;
    } else if (ch->bq == ch->cur_bq) {
        delta = 0;
    } else if (ch->cur_bq != 0 && ch->cur_bq > ch->bq - ch->cur_bq) {
        delta = (ch->bq - ch->cur_bq) * 100 / ch->cur_bq;
    }
    d.checked = true;
    d.delta_percent = static_cast<uint32_t>(delta > UINT32_MAX ? UINT32_MAX : delta);
    d.threshold = threshold;
    if (delta > threshold)
        return d;
    d.damped = true;
    LYND_LOG_AS(kFn, "quality: new_path=%s, last_path=%s, delta_percent=%d<%d, not change the path",
                paths[ch->path].name, here.name, static_cast<int>(delta), threshold);
    ch->path = here.type;
    ch->q = ch->cur_q;
    return d;
}

uint8_t choose(hc_client* c, const hc_path& here, hc_path* paths, uint8_t threshold) {
    uint64_t sq = 0;
    uint32_t rate = 0;
    if (c->sta_type < PATH_NONE) {
        rate = path_selection_get_wl_sta_info_rate(c);
        sq = station_quality(*c, paths, rate);
    }
    explain_begin(c, here.type, sq, rate);
    choice ch;
    for (uint32_t x = 0; x < IF_TYPE_MAX; x++)
        if (path_is_live(paths[x]))
            rate_path(*c, paths[x], here.type, sq, &ch);
    client_explain& e = explain_of(c);
    explain_file_damping(e, damp(&ch, here, paths, threshold));
    e.best = ch.path;
    const uint8_t* m = c->hc.mac;
    LYND_LOG_AS(kFn, "client[%s] best path:%s, quality:%lld", lynd_mac(m).s,
                ch.path < PATH_NONE ? paths[ch.path].name : "", static_cast<long long>(ch.q));
    return ch.path;
}

// A pinned client's own best is its pin while that path is live; the
// node's choice stays the ranking's.
void pin(hc_client* c) {
    uint8_t slot = client_pinned_slot(*c);
    if (slot == PATH_NONE)
        return;
    c->best_path = slot;
    client_explain& e = explain_of(c);
    e.best = slot;
    e.pinned = slot;
}

}  // namespace

uint8_t path_selection_next_magic() {
    g_hc_rand_state = g_hc_rand_state * 1103515245u + 12345u;
    return static_cast<uint8_t>(g_hc_rand_state >> 16);
}

uint32_t path_weight(const hc_path& p) { return p.priority == 0 ? 80u : (p.priority - 1u) * 20u + 100u; }

uint32_t path_selection_backhaul_quality(const hc_path& p) {
    uint32_t weight = path_weight(p);
    uint32_t free = p.quota > 0 ? static_cast<uint32_t>(p.quota) / 100u : 0u;
    return free * p.rate * weight;
}

uint64_t path_selection_path_quality(uint64_t bq, uint64_t sq, bool wireless, bool own_band) {
    if (!wireless || bq == 0 || sq == 0)
        return bq;
    if (own_band)
        return bq * sq / (bq + sq);  // backhaul and access share the radio
    return bq < sq ? bq : sq;
}

void path_selection_init_path_quota_v2(conf_bridge* bridge, hc_path* paths) {
    bool cpu = lynd_check_cpu_overload(g_ps_conf) == 1;
    for (uint32_t i = 0; i < IF_TYPE_MAX; i++) {
        hc_path& p = paths[i];
        if (!path_is_live(p))
            continue;
        int busy = p.util + p.reserved_ratio;
        p.quota = static_cast<int16_t>(busy < 100 ? (100 - busy) * 100 : 0);
        uint8_t& block = g_path_insight[i].quota_block;
        block = QUOTA_OPEN;
        if (cpu && i == IF_TYPE_2G) {
            LYND_WARN("cpu overload! lynd will not select 2.4G!");
            p.quota = 0;
            block = QUOTA_CPU;
        }
        if (p.state == PATH_WEAKLINK_ABNORMAL || p.state == PATH_ABNORMAL) {
            LYND_WARN("%s is abnomal! lynd will not select it!", p.name);
            p.quota = 0;
            block = QUOTA_ABNORMAL;
        }
        if (bridge->best_state == PATH_NORMAL && p.state == PATH_WEAKLINK) {
            LYND_WARN("%s is weak! lynd will not select it!", p.name);
            p.quota = 0;
            block = QUOTA_WEAK;
        }
        if (g_dbg_overload_mask & (1u << i)) {
            LYND_WARN("%s is set overload! lynd will not select it!", p.name);
            p.quota = 0;
            block = QUOTA_DEBUG;
        }
        LYND_LOG("path: %s, util: %d, quota: %d, rate: %d", p.name, p.util, p.quota, p.rate);
    }
}

int path_selection_check_path_overload_v2(conf_bridge*, hc_path* paths, int* has_clients_on_busy_path) {
    uint32_t mask = 0;
    for (uint32_t i = 0; i < IF_TYPE_MAX; i++) {
        hc_path& p = paths[i];
        if (!path_is_live(p))
            continue;
        if (p.util + p.reserved_ratio < g_ps_conf->param.high_threshold && p.quota != 0) {
            p.overload = 0;
            continue;
        }
        LYND_LOG("path %s is overloaded", p.name);
        p.overload = 1;
        mask |= 1u << i;
        if (!lynd_list_empty(&p.clients))
            *has_clients_on_busy_path = 1;
    }
    return mask != 0 ? 1 : 0;
}

hc_path* path_selection_find_best_path_v2(hc_path* paths) {
    g_hc_magic = path_selection_next_magic();
    g_explain_run_ms = lynd_monotonic_ms();
    hc_path* node_best = nullptr;
    int usable = 0;
    for (uint32_t p = 0; p < IF_TYPE_MAX; p++)
        usable += path_is_live(paths[p]) && paths[p].overload != 1 ? 1 : 0;
    uint8_t threshold = g_ps_conf->param.delta_threshold;
    for (uint32_t p = 0; p < IF_TYPE_MAX; p++) {
        if (!path_is_live(paths[p]))
            continue;
        for (lynd_list* n = paths[p].clients.next; n != &paths[p].clients; n = n->next) {
            hc_client* c = hc_client_of_path_node(n);
            c->best_path = PATH_NONE;
            c->best_path = choose(c, paths[p], paths, threshold);
            c->magic = g_hc_magic;
            if (c->sta_type == PATH_NONE && c->best_path < PATH_NONE)
                node_best = &paths[c->best_path];
            pin(c);
        }
    }
    hc_path* best = usable > 0 ? node_best : nullptr;
    LYND_LOG("best path:%s", best != nullptr ? best->name : "nil");
    return best;
}
