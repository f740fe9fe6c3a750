#include "core/counters.h"
#include "daemon/replies/status_replies.h"
#include "modules/path_selection/hc_records.h"

using lynd::BusReply;

namespace {

// Metric-friendly names, by move_reason.
const char* const reason_keys[MOVE_REASON_COUNT] = {
    "better_path", "path_overloaded", "newly_associated", "path_weak", "path_abnormal", "path_unlinked",
};
const char* const event_keys[COUNTER_EVENT_TYPES] = {"startup", "configure", "link_state", "bridge", "debug", "ts"};

int64_t value(uint64_t n) { return static_cast<int64_t>(n > INT64_MAX ? INT64_MAX : n); }

void put_group(BusReply& r, const char* name, const char* const* keys, const uint64_t* counts, int n) {
    r.open_table(name);
    for (int i = 0; i < n; i++)
        r.put_int(keys[i], value(counts[i]));
    r.close();
}

}  // namespace

void status_put_counters(BusReply& r) {
    const lynd_counters& c = g_counters;
    r.put_int("moves", value(c.moves));
    put_group(r, "moves_by_reason", reason_keys, c.moves_by_reason, MOVE_REASON_COUNT);
    put_ints(r, {{"moves_held", value(c.moves_held)},
                 {"evacuations", value(c.evacuations)},
                 {"emergency_choices", value(c.emergency_choices)}});
    put_group(r, "state_changes", path_state_names, c.state_changes, COUNTER_STATES);
    put_ints(r, {{"bus_reconnects", value(c.bus_reconnects)},
                 {"bridge_call_failures", value(c.bridge_call_failures)},
                 {"tool_run_failures", value(c.tool_run_failures)}});
    put_group(r, "events", event_keys, c.events, COUNTER_EVENT_TYPES);
    put_ints(r, {{"malformed_datagrams", value(c.malformed_datagrams)},
                 {"foreign_datagrams", value(c.foreign_datagrams)},
                 {"netlink_rebuild_failures", value(c.netlink_rebuild_failures)},
                 {"console_lines_dropped", value(c.console_lines_dropped)},
                 {"state_file_failures", value(c.state_file_failures)},
                 {"client_pool_full", value(c.client_pool_full)}});
}
