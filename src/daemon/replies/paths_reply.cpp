#include <cstring>

#include "core/decision_ring.h"
#include "daemon/replies/status_replies.h"
#include "modules/path_selection/path_insight.h"

using lynd::BusReply;

namespace {

const char* const type_names[IF_TYPE_MAX] = {"eth", "2g", "5g", "5g_2", "6g"};

int count_clients(const hc_path& p) {
    int n = 0;
    for (const lynd_list* l = p.clients.next; l != nullptr && l != &p.clients && n < HC_MAX_CLIENTS; l = l->next)
        n++;
    return n;
}

void put_path(const status_context& ctx, BusReply& r, int t, int64_t now_ms) {
    const hc_path& p = hc_paths[t];
    const path_insight& in = g_path_insight[t];
    r.open_table(nullptr);
    r.put_string("name", p.name);
    r.put_string("type", type_names[t]);
    r.put_string("state", path_state_names[p.state < 6 ? p.state : 6]);
    r.put_int("state_seconds", in.entered_ms != 0 ? (now_ms - in.entered_ms) / 1000 : status_uptime_s(ctx, now_ms));
    put_ints(r, {{"changes_last_hour", path_insight_flaps(t, now_ms)},
                 {"ma_rssi", in.rating.ma_rssi},
                 {"ma_snr", in.rating.ma_snr},
                 {"rate", p.rate},
                 {"util", p.util},
                 {"quota", p.quota}});
    r.put_bool("overload", p.overload == 1);
    put_ints(r, {{"clients", count_clients(p)}, {"samples", p.path_history.num}});
    r.close();
}

void put_thresholds(BusReply& r, const hc_path& p) {
    r.open_table("thresholds");
    put_ints(r, {{"weaklink_rssi", p.weaklink_threshold_rssi},
                 {"weaklink_snr", p.weaklink_threshold_snr},
                 {"weaklink_rate", p.weaklink_threshold_rate},
                 {"weaklink_hold_rssi", p.weaklink_hold_threshold_rssi},
                 {"weaklink_hold_snr", p.weaklink_hold_threshold_snr},
                 {"abnormal_txrate", p.abnormal_threshold_txrate},
                 {"abnormal_rxrate", p.abnormal_threshold_rxrate},
                 {"smoothing_factor", p.linkquality_smoothing_factor}});
    r.close();
}

void put_verdict(BusReply& r, const path_rating& g) {
    r.open_table("below");
    put_flags(r, {{"weaklink", g.weak},
                  {"weaklink_hold", g.hold},
                  {"txrate_floor", g.tx_low},
                  {"rxrate_floor", g.rx_low},
                  {"no_traffic", g.no_tx}});
    r.close();
}

void put_rating(const status_context& ctx, BusReply& r, const path_rating& g) {
    r.put_string("rule", rating_rule_texts[g.rule < 6 ? g.rule : 0]);
    r.put_int("rated_at", g.at_ms != 0 ? status_uptime_s(ctx, g.at_ms) : -1);
    r.put_string("state_before", path_state_names[g.state_before < 6 ? g.state_before : 6]);
    r.put_string("state_after", path_state_names[g.state_after < 6 ? g.state_after : 6]);
    put_ints(r, {{"samples", g.samples},
                 {"ma_rssi", g.ma_rssi},
                 {"ma_snr", g.ma_snr},
                 {"smooth_rate", g.smooth_rate},
                 {"txrate", g.txrate},
                 {"rxrate", g.rxrate},
                 {"rate", g.rate},
                 {"tx_bytes", g.tx_bytes},
                 {"weak_count", g.weak_count},
                 {"abnormal_count", g.abnormal_count}});
}

}  // namespace

void status_reply_paths(const status_context& ctx, BusReply& r) {
    int64_t now_ms = lynd_monotonic_ms();
    r.open_array("paths");
    for (int t = 0; t < static_cast<int>(IF_TYPE_MAX); t++)
        if (hc_paths[t].state != PATH_UNINITED)
            put_path(ctx, r, t, now_ms);
    r.close();
}

int status_reply_explain_path(const status_context& ctx, const char* path, BusReply& r) {
    for (int t = 0; t < static_cast<int>(IF_TYPE_MAX); t++) {
        const hc_path& p = hc_paths[t];
        if (p.state == PATH_UNINITED || std::strncmp(p.name, path, LYND_NAME_LEN) != 0)
            continue;
        r.put_string("path", p.name);
        r.put_string("state", path_state_names[p.state < 6 ? p.state : 6]);
        put_rating(ctx, r, g_path_insight[t].rating);
        put_thresholds(r, p);
        put_verdict(r, g_path_insight[t].rating);
        put_ints(r, {{"util", p.util}, {"reserved_ratio", p.reserved_ratio}, {"quota", p.quota}});
        r.put_string("quota_block", quota_block_texts[g_path_insight[t].quota_block % 5]);
        r.put_bool("overload", p.overload == 1);
        r.put_int("high_threshold", ctx.conf->param.high_threshold);
        return lynd::BUS_STATUS_OK;
    }
    return lynd::BUS_STATUS_NOT_FOUND;
}
