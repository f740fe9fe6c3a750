#include <cstring>

#include "core/counters.h"
#include "core/decision_ring.h"
#include "core/log.h"
#include "core/queries.h"
#include "core/shadow.h"
#include "daemon/replies/status_replies.h"
#include "modules/loop_avoidance/bcast_port.h"
#include "modules/path_selection/hc_records.h"
#include "platform/seams.h"

using lynd::BusReply;

namespace {

const char* const work_mode_names[] = {"RE", "FAP", "HAP", "INVALID"};

void put_flag(BusReply& r, const char* name, uint32_t flags, uint32_t bit) { r.put_bool(name, (flags & bit) != 0); }

void put_preferred(BusReply& r, const conf_bridge& br) {
    char name[LYND_NAME_LEN] = {};
    if (br.preferred_ifindex != 0 && !lynd::host().if_indextoname(br.preferred_ifindex, name))
        name[0] = '\0';
    r.put_string("preferred_port", name);
    r.put_int("preferred_ifindex", br.preferred_ifindex);
}

void put_bcast_ports(BusReply& r, int i) {
    r.put_string("broadcast_file_port", g_loop_avoidance.last_bcast_port[i]);
    r.open_array("bcast_ports");
    for (int v = 0; v < g_loop_avoidance.n_picks[i] && v < TS_MAX_VLANS; v++) {
        const bcast_pick_kept& k = g_loop_avoidance.picks[i][v];
        r.open_table(nullptr);
        r.put_int("vid", k.vid);
        r.put_string("class_0", k.port[0]);
        r.put_string("class_1", k.port[1]);
        r.close();
    }
    r.close();
}

void put_bridge(BusReply& r, const conf_bridge& br, int i) {
    r.open_table(nullptr);
    r.put_string("name", br.name);
    put_flag(r, "loop_avoidance", br.flags, BR_FLAG_LOOP_AVOIDANCE);
    put_flag(r, "path_selection", br.flags, BR_FLAG_PATH_SELECTION);
    put_flag(r, "hc", br.ps_flags, PS_FLAG_HC);
    put_flag(r, "follow_re", br.ps_flags, PS_FLAG_FOLLOW_RE);
    put_flag(r, "tcp_sp", br.ps_flags, PS_FLAG_TCP_SP);
    put_preferred(r, br);
    put_bcast_ports(r, i);
    r.close();
}

}  // namespace

void status_reply_status(const status_context& ctx, BusReply& r) {
    const lynd_config* conf = ctx.conf;
    r.put_string("version", lynd_version());
    r.put_string("revision", lynd_revision());
    uint32_t mode = lynd_get_work_mode();
    r.put_string("work_mode", work_mode_names[mode < 4 ? mode : 3]);
    r.put_int("uptime", status_uptime_s(ctx, lynd_monotonic_ms()));
    r.put_int("log_level", g_lynd_dgb_lvl);
    r.put_int("pathsel_mode", conf->pathsel_mode);
    r.put_int("brconf_mode", conf->brconf_mode);
    r.put_bool("shadow", lynd_shadow_mode());
    r.put_int("shadow_held", lynd_shadow_held_count());
    // Pressure on the client records: a full pool leaves new clients unsteered.
    put_ints(r, {{"client_pool_used", hc_pool_used()},
                 {"client_pool_size", HC_MAX_CLIENTS},
                 {"client_pool_full", static_cast<int64_t>(g_counters.client_pool_full)}});
    r.open_array("bridges");
    for (uint64_t i = 0; i < conf->n_bridges && i < LYND_MAX_BRIDGES; i++)
        put_bridge(r, conf->bridges[i], static_cast<int>(i));
    r.close();
}

int64_t status_uptime_s(const status_context& ctx, int64_t at_ms) { return (at_ms - ctx.started_ms) / 1000; }

void status_reply_decisions(const status_context& ctx, BusReply& r) {
    int64_t now_ms = lynd_monotonic_ms();
    int64_t wall = static_cast<int64_t>(lynd::host().wall_now());
    r.open_array("decisions");
    for (int k = 0; k < decision_count(); k++) {
        const decision* d = decision_at(k);
        r.open_table(nullptr);
        r.put_int("seq", d->seq);
        r.put_int("uptime", status_uptime_s(ctx, d->at_ms));
        r.put_int("time", wall - (now_ms - d->at_ms) / 1000);
        r.put_string("kind", decision_kind_names[d->kind < DECISION_KINDS ? d->kind : 0]);
        r.put_string("subject", d->subject);
        r.put_string("from", d->from);
        r.put_string("to", d->to);
        r.put_string("reason", d->reason);
        r.close();
    }
    r.close();
}
