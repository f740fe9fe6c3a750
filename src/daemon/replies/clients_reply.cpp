#include <cstring>

#include "core/decision_ring.h"
#include "daemon/replies/status_replies.h"
#include "modules/path_selection/client_log.h"
#include "modules/path_selection/client_moves.h"

using lynd::BusReply;

namespace {

const char* const sta_type_names[] = {"eth", "2g", "5g", "5g_2", "6g", "unknown"};

const char* slot_name(uint8_t slot) { return slot < IF_TYPE_MAX ? hc_paths[slot].name : ""; }

// The AP interface whose list holds c, or "".
const char* ap_name_of(const hc_client& c) {
    if (c.ap_node.next == nullptr || c.sta_type >= IF_TYPE_MAX)
        return "";
    for (const ap_iface& ap : hc_paths[c.sta_type].ap_ifaces) {
        int n = 0;
        for (const lynd_list* l = ap.clients.next; l != nullptr && l != &ap.clients && n < HC_MAX_CLIENTS;
             l = l->next, n++)
            if (l == &c.ap_node)
                return ap.name;
    }
    return "";
}

void put_moves(const status_context& ctx, BusReply& r, const uint8_t* mac) {
    const client_log_entry* e = client_log_find(mac);
    r.put_int("moves", e != nullptr ? e->moves : 0);
    if (e == nullptr)
        return;
    r.put_int("last_move", status_uptime_s(ctx, e->last_move_ms));
    r.put_string("last_move_from", slot_name(e->from));
    r.put_string("last_move_to", slot_name(e->to));
    r.put_string("last_move_reason", e->reason);
}

void put_client(const status_context& ctx, BusReply& r, const hc_client& c, const hc_path& p, int64_t interval) {
    char mac[LYND_MAC_TEXT_LEN];
    lynd_mac_text(c.hc.mac, mac);
    r.open_table(nullptr);
    r.put_string("mac", mac);
    r.put_string("path", p.name);
    r.put_string("ap_iface", ap_name_of(c));
    r.put_string("sta_type", sta_type_names[c.sta_type < IF_TYPE_MAX ? c.sta_type : static_cast<uint8_t>(IF_TYPE_MAX)]);
    r.put_int("bytes", static_cast<int64_t>(c.hc.bytes > INT64_MAX ? INT64_MAX : c.hc.bytes));
    r.put_int("rate", path_selection_client_rate(c.hc.bytes, interval));
    r.put_string("best_path", slot_name(c.best_path));
    put_moves(ctx, r, c.hc.mac);
    r.close();
}

}  // namespace

void status_reply_clients(const status_context& ctx, BusReply& r) {
    int64_t period = ctx.conf->param.period;
    int64_t interval = g_timer_interval > period ? g_timer_interval : period;
    r.open_array("clients");
    for (const hc_path& p : hc_paths) {
        int n = 0;
        for (lynd_list* l = p.clients.next; l != nullptr && l != &p.clients && n < HC_MAX_CLIENTS; l = l->next, n++)
            put_client(ctx, r, *hc_client_of_path_node(l), p, interval);
    }
    r.close();
}
