#include "modules/path_selection/uplink_drive.h"

#include <cstring>

#include "bridge/hybrid_tables.h"
#include "core/decision_ring.h"
#include "core/log.h"
#include "modules/loop_avoidance/bcast_port.h"
#include "modules/path_selection/best_path.h"
#include "modules/path_selection/client_moves.h"
#include "modules/path_selection/dumps.h"
#include "modules/path_selection/preferred_guard.h"
#include "modules/path_selection/ts_destination.h"
#include "wlan/wlan.h"

namespace {

constexpr const char* kFn = "path_selection_update_uplink_path_for_hc_v2";

// Everything but the dumps; false when the run ends early after a link change.
bool steer(lynd_config* conf, conf_bridge* bridge, hc_path* paths, int has_path_overload, int has_busy) {
    hc_path* best = path_selection_find_best_path_v2(paths);
    if (best == nullptr) {
        LYND_WARN_AS(kFn, "not find best path");
        return true;
    }
    LYND_DEBUG_AS(kFn, "best path:%s", best->name);
    char name[LYND_NAME_LEN];
    std::memcpy(name, best->name, sizeof name);
    uint32_t before = bridge->preferred_ifindex;
    if (lynd_get_link_state_changed()) {
        (void)lynd_set_hc_preferred_and_flush_hc_table(bridge, name);
        decision_record_port(DECISION_PREFERRED_PORT, bridge->name, before, bridge->preferred_ifindex,
                             "best path after a link change");
        lynd_set_link_state_changed(0);
        return false;
    }
    (void)lynd_set_hc_preferred(bridge, preferred_guard_choose(bridge, best, paths)->name);
    preferred_guard_note(bridge, before, bridge->preferred_ifindex);
    decision_record_port(DECISION_PREFERRED_PORT, bridge->name, before, bridge->preferred_ifindex, "best path");
    LYND_DEBUG_AS(kFn, "has_path_overload:%d, has_clients_on_busy_path:%d", has_path_overload, has_busy);
    path_selection_update_uplink_hc_table_v2(conf, bridge, best, paths, has_busy);
    path_selection_check_dst_vlan_hc_table(conf, bridge, paths);
    if (bridge->bcast_type == IF_TYPE_2G && best->type != IF_TYPE_2G) {
        LYND_INFO_AS(kFn, "set bcast port:%s", name);
        loop_avoidance_set_bcast_port_by_ps(conf, bridge, name);
    }
    return true;
}

}  // namespace

void path_selection_update_uplink_path_for_hc_v2(conf_bridge* bridge, hc_path* paths) {
    lynd_config* conf = g_ps_conf;
    (void)path_selection_dump_paths_info(bridge, paths);
    path_selection_init_path_quota_v2(bridge, paths);
    int has_busy = 0;
    int has_path_overload = path_selection_check_path_overload_v2(bridge, paths, &has_busy);
    bool dump = (bridge->flags & BR_FLAG_DUMP) != 0;
    if (dump)
        path_selection_dump_uplinks(paths);
    if (steer(conf, bridge, paths, has_path_overload, has_busy) && dump)
        path_selection_dump_clients(conf, paths);
}
