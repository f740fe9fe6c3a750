#include "modules/path_selection/path_state.h"

#include <cstring>

#include "bridge/hybrid_tables.h"
#include "core/decision_ring.h"
#include "core/log.h"
#include "modules/loop_avoidance/bcast_port.h"
#include "modules/path_selection/client_log.h"
#include "modules/path_selection/client_rules.h"
#include "modules/path_selection/flap_guard.h"
#include "modules/path_selection/path_insight.h"
#include "modules/path_selection/ts_destination.h"
#include "platform/seams.h"
#include "wlan/wlan.h"

namespace {

constexpr const char* kFn = "path_selection_evaluate_path_state";
constexpr const char* kEvacuateFn = "path_selection_pre_update_weak_abnormal_path";

struct verdict {
    bool weak;
    bool hold;
    bool tx_low;
    bool rx_low;
    bool no_tx;
};

const link_sample& newest(const sample_ring& r) { return r.samples[(r.start + r.num - 1) % HC_RING_SIZE]; }

verdict judge(const hc_path& p) {
    ring_means m = path_selection_ring_means(p.path_history, p.linkquality_smoothing_factor);
    LYND_DEBUG_AS(kFn, "path %s, ma_rssi:%ddB, ma_snr:%ddB, rate %u,(smooth:%u)", p.name, m.rssi, m.snr, p.rate,
                  m.rate);
    const link_sample& n = newest(p.path_history);
    verdict v{};
    v.tx_low = n.txrate <= p.abnormal_threshold_txrate;
    v.rx_low = n.rxrate <= p.abnormal_threshold_rxrate;
    v.no_tx = p.cur_txbytes == p.last_txbytes;
    LYND_DEBUG_AS(kFn, "txrate:%d, rxrate:%d, incre_txbytes:%lld(%llu->%llu)", n.txrate, n.rxrate,
                  static_cast<long long>(p.cur_txbytes - p.last_txbytes),
                  static_cast<unsigned long long>(p.last_txbytes), static_cast<unsigned long long>(p.cur_txbytes));
    // Rates compare unsigned: a negative threshold makes every rate slow.
    bool slow = n.rate < static_cast<uint32_t>(p.weaklink_threshold_rate);
    v.weak = (m.rssi < p.weaklink_threshold_rssi || m.snr < p.weaklink_threshold_snr) && slow;
    v.hold = (m.rssi < p.weaklink_hold_threshold_rssi || m.snr < p.weaklink_hold_threshold_snr) && slow;
    path_rating& r = g_path_insight[p.type].rating;
    r.ma_rssi = m.rssi;
    r.ma_snr = m.snr;
    r.smooth_rate = m.rate;
    r.txrate = n.txrate;
    r.rxrate = n.rxrate;
    r.rate = n.rate;
    r.tx_bytes = static_cast<int64_t>(p.cur_txbytes - p.last_txbytes);
    r.weak = v.weak;
    r.hold = v.hold;
    r.tx_low = v.tx_low;
    r.rx_low = v.rx_low;
    r.no_tx = v.no_tx;
    return v;
}

void go(hc_path* p, uint8_t state, uint8_t rule) {
    p->last_state = p->state;
    p->state = state;
    path_insight_state_changed(*p, p->last_state, rating_rule_texts[rule]);
}

void rate_weak(hc_path* p, const verdict& v) {
    uint8_t s = p->state;
    LYND_LOG_AS(kFn, "path[%s] be assessed to WEAKLINK, last status is %d", p->name, s);
    if (s == PATH_WEAKLINK) {
        if (v.no_tx) {
            go(p, PATH_WEAKLINK_ABNORMAL, RULE_WEAK);
            LYND_DEBUG_AS(kFn, "path[%s] into to WEAKLINK+ABNORMAL", p->name);
        } else {
            LYND_DEBUG_AS(kFn, "path[%s] still to WEAKLINK", p->name);
        }
    } else if (s == PATH_WEAKLINK_ABNORMAL) {
        if (v.no_tx) {
            LYND_DEBUG_AS(kFn, "path[%s] still to WEAKLINK+ABNORMAL", p->name);
        } else {
            go(p, PATH_WEAKLINK, RULE_WEAK);
            LYND_DEBUG_AS(kFn, "path[%s] into to WEAKLINK", p->name);
        }
    } else if (++p->weak_count > 1) {
        p->weak_count = 0;
        go(p, PATH_WEAKLINK, RULE_WEAK);
        LYND_DEBUG_AS(kFn, "path[%s] from %s into to WEAKLINK", p->name, path_state_names[p->last_state]);
    }
}

// True when the hold keeps a WEAKLINK path where it is.
bool rate_hold(hc_path* p, const verdict& v) {
    LYND_LOG_AS(kFn, "path[%s] be assessed to WEAKLINK hold, last status is %d", p->name, p->state);
    if (p->state != PATH_WEAKLINK)
        return false;
    if (v.no_tx) {
        go(p, PATH_WEAKLINK_ABNORMAL, RULE_HOLD);
        LYND_DEBUG_AS(kFn, "path[%s] into to WEAKLINK+ABNORMAL", p->name);
    } else {
        LYND_DEBUG_AS(kFn, "path[%s] still to WEAKLINK", p->name);
    }
    return true;
}

void rate_traffic(hc_path* p, const verdict& v) {
    if (!v.no_tx && !(v.tx_low && v.rx_low)) {
        LYND_LOG_AS(kFn, "path[%s] be assessed to NORMAL, last status is %d", p->name, p->state);
        go(p, PATH_NORMAL, RULE_NORMAL);
        p->weak_count = 0;
        p->abnormal_count = 0;
        return;
    }
    LYND_LOG_AS(kFn, "path[%s] be assessed to ABNORMAL, last status is %d", p->name, p->state);
    if (p->state == PATH_ABNORMAL) {
        LYND_DEBUG_AS(kFn, "path[%s] still to ABNORMAL", p->name);
    } else if (++p->abnormal_count > 1) {
        p->abnormal_count = 0;
        go(p, PATH_ABNORMAL, RULE_ABNORMAL);
        LYND_DEBUG_AS(kFn, "path[%s] from %s into to ABNORMAL", p->name, path_state_names[p->last_state]);
    }
}

uint8_t rate_state(hc_path* p) {
    const sample_ring& r = p->path_history;
    bool fresh = p->last_state == PATH_UNINITED || p->last_state == PATH_UNLINK;
    if (r.num == 0 || (fresh && r.num < p->linkquality_smoothing_factor)) {
        LYND_LOG_AS(kFn, "Path is unlink last time, not enough data(path_history num=%d)", r.num);
        return RULE_FEW_SAMPLES;
    }
    verdict v = judge(*p);
    if (v.weak) {
        rate_weak(p, v);
        return RULE_WEAK;
    }
    if (v.hold && rate_hold(p, v))
        return RULE_HOLD;
    rate_traffic(p, v);
    return v.no_tx || (v.tx_low && v.rx_low) ? RULE_ABNORMAL : RULE_NORMAL;
}

// The rating's outcome is kept for an operator's question.
void evaluate(hc_path* p) {
    path_rating& r = g_path_insight[p->type].rating;
    r.state_before = p->state;
    r.rule = rate_state(p);
    r.at_ms = lynd_monotonic_ms();
    r.state_after = p->state;
    r.samples = p->path_history.num;
    r.weak_count = p->weak_count;
    r.abnormal_count = p->abnormal_count;
}

// The lowest live state, 6 when none; the best path holds it, the highest
// type among equals.
uint8_t best_state(hc_path* paths, hc_path** best) {
    uint8_t s = 6;
    *best = nullptr;
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++) {
        if (path_is_live(paths[t]) && paths[t].state <= s) {
            s = paths[t].state;
            *best = &paths[t];
        }
    }
    return s;
}

// An excluded client, a pinned one whose pinned path is live elsewhere, and
// one the flap guard holds stay; leaving an abnormal path never waits.
bool stays(const hc_client& c, const hc_path& p, const hc_path& best) {
    if (client_excluded(c) || client_pin_forbids(c, best.type))
        return true;
    guard_verdict v;
    return p.state == PATH_WEAKLINK && flap_guard_holds(c, p.type, best.type, &v);
}

// Moves every client of p onto best; the destination of the last one, or
// "" when p had none.
void evacuate(conf_bridge* bridge, hc_path* p, hc_path* best, char* dst) {
    lynd_list* head = &p->clients;
    for (lynd_list *n = head->next, *next = n->next; n != head; n = next, next = n->next) {
        hc_client* c = hc_client_of_path_node(n);
        char src[LYND_NAME_LEN] = {};
        if (!lynd::host().if_indextoname(c->hc.src_port, src))
            src[0] = '\0';
        path_selection_ts_dst_name(g_ps_conf, best->name, src, dst);
        if (stays(*c, *p, *best))
            continue;
        (void)lynd_set_hc_entry(bridge->name, c->hc.mac, c->hc.id, src, dst);
        hc_client_unlink_path(c);
        lynd_list_add_tail(&c->path_node, &best->clients);
        c->busy_count = 0;
        c->idle_count = 0;
        client_log_move(*c, p->type, best->type, p->state == PATH_WEAKLINK ? MOVE_PATH_WEAK : MOVE_PATH_ABNORMAL);
        hc_list_dump(&best->clients, kEvacuateFn, __LINE__);
        (void)lynd_flush_fc_flow_by_mac(c->hc.mac);
    }
}

}  // namespace

ring_means path_selection_ring_means(const sample_ring& r, uint32_t n) {
    ring_means m{0, 0, 0};
    if (n == 0)
        return m;
    int64_t all_rssi = 0, all_snr = 0, rssi = 0, snr = 0;
    uint64_t all_rate = 0, rate = 0;
    for (const link_sample& s : r.samples) {
        all_rssi += s.rssi;
        all_snr += s.snr;
        all_rate += s.rate;
    }
    int top = (r.start + r.num + HC_RING_SIZE - 1) % HC_RING_SIZE;
    for (uint32_t k = 0; k < n % HC_RING_SIZE; k++) {
        const link_sample& s = r.samples[(top - static_cast<int>(k) + HC_RING_SIZE) % HC_RING_SIZE];
        rssi += s.rssi;
        snr += s.snr;
        rate += s.rate;
    }
    int64_t cycles = n / HC_RING_SIZE;
    m.rssi = static_cast<int32_t>((cycles * all_rssi + rssi) / static_cast<int64_t>(n));
    m.snr = static_cast<int32_t>((cycles * all_snr + snr) / static_cast<int64_t>(n));
    m.rate = static_cast<uint32_t>((static_cast<uint64_t>(cycles) * all_rate + rate) / n);
    return m;
}

void path_selection_evaluate_path_state(conf_bridge*, hc_path* paths) {
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++)
        if (path_is_live(paths[t]))
            evaluate(&paths[t]);
}

void path_selection_pre_update_weak_abnormal_path(conf_bridge* bridge, hc_path* paths) {
    hc_path* best = nullptr;
    uint8_t s = best_state(paths, &best);
    bridge->best_state = s;
    if (s >= PATH_WEAKLINK_ABNORMAL) {
        LYND_WARN("highest priority link state:%s, can not adjust!", path_state_names[s]);
        return;
    }
    char dst[LYND_NAME_LEN] = {};
    bool handled = false;
    for (uint32_t i = 0; i < IF_TYPE_MAX; i++) {
        hc_path* p = &paths[i];
        if (p->state <= s)
            continue;
        if (!lynd_list_empty(&p->clients)) {
            evacuate(bridge, p, best, dst);
            handled = true;
        }
        if (i == bridge->bcast_type) {
            // With no client handled yet the best path's own name stands in.
            if (!handled)
                path_selection_ts_dst_name(g_ps_conf, best->name, "", dst);
            loop_avoidance_set_bcast_port_by_ps(g_ps_conf, bridge, dst);
        }
        if (p->state == PATH_WEAKLINK_ABNORMAL || p->state == PATH_ABNORMAL)
            (void)wlan_restart_link(i);
    }
}
