#include "daemon/status_object.h"

#include <cstring>

#include "core/decision_ring.h"
#include "core/shadow.h"
#include "daemon/record_method.h"
#include "daemon/replies/status_replies.h"
#include "event/ubus_receive.h"
#include "modules/loop_avoidance/bcast_port.h"

using lynd::BusMessage;
using lynd::BusReply;
using lynd::BusType;

namespace {

const lynd::bus_policy explain_args[] = {{"mac", BusType::STRING}, {"path", BusType::STRING}};
const lynd::bus_policy shadow_args[] = {{"enable", lynd::BUS_TYPE_BOOL}};

enum status_method { M_STATUS, M_PATHS, M_CLIENTS, M_EXPLAIN, M_DECISIONS, M_SHADOW, M_COUNTERS, M_RECORD, M_COUNT };

const lynd::BusMethod methods[M_COUNT] = {
    {"status", nullptr, 0},
    {"paths", nullptr, 0},
    {"clients", nullptr, 0},
    {"explain", explain_args, 2},
    {"decisions", nullptr, 0},
    {"shadow", shadow_args, 1},
    {"counters", nullptr, 0},
    {"record", record_args, 3},
};

status_context g_status;

int explain(const BusMessage& args, BusReply& r) {
    explain_query q;
    int rc = explain_query_parse(args, &q);
    if (rc != lynd::BUS_STATUS_OK)
        return rc;
    return q.by_mac ? status_reply_explain_client(g_status, q.mac, r) : status_reply_explain_path(g_status, q.path, r);
}

// What shadow mode kept from the bridge is not cached as written: the next
// run writes the preferred port and the broadcast file again.
void forget_held_writes(lynd_config* conf) {
    for (uint64_t i = 0; i < conf->n_bridges && i < LYND_MAX_BRIDGES; i++) {
        conf->bridges[i].preferred_ifindex = 0;
        g_loop_avoidance.last_bcast_port[i][0] = '\0';
    }
}

int shadow(const BusMessage& args, BusReply& r) {
    bool enable = false;
    int rc = shadow_query_parse(args, &enable);
    if (rc != lynd::BUS_STATUS_OK)
        return rc;
    if (lynd_shadow_mode() && !enable)
        forget_held_writes(g_status.conf);
    g_status.conf->shadow = enable;
    lynd_set_shadow_mode(enable);
    r.put_bool("shadow", enable);
    return lynd::BUS_STATUS_OK;
}

int answer(void*, const char* method, const BusMessage& args, BusReply& r) {
    int m = 0;
    while (m < M_COUNT && std::strcmp(methods[m].name, method) != 0)
        m++;
    switch (m) {
    case M_STATUS:
        status_reply_status(g_status, r);
        return lynd::BUS_STATUS_OK;
    case M_PATHS:
        status_reply_paths(g_status, r);
        return lynd::BUS_STATUS_OK;
    case M_CLIENTS:
        status_reply_clients(g_status, r);
        return lynd::BUS_STATUS_OK;
    case M_EXPLAIN:
        return explain(args, r);
    case M_DECISIONS:
        status_reply_decisions(g_status, r);
        return lynd::BUS_STATUS_OK;
    case M_SHADOW:
        return shadow(args, r);
    case M_COUNTERS:
        status_put_counters(r);
        return lynd::BUS_STATUS_OK;
    case M_RECORD:
        return record_method(g_status.conf, args, r);
    default:
        return lynd::BUS_STATUS_METHOD_NOT_FOUND;
    }
}

const lynd::BusObject object = {"lynd", methods, M_COUNT, answer, nullptr};

}  // namespace

void lynd_status_object_start(lynd_config* conf, int64_t started_ms) {
    g_status = status_context{conf, started_ms};
    (void)event_ubus_add_object(&conf->ev, &object);
}
