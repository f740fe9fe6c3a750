#include "daemon/process_state.h"

#include "node/controller.h"
#include "node/host_stats.h"
#include "bridge/hybrid_tables.h"
#include "core/counters.h"
#include "core/decision_ring.h"
#include "core/log.h"
#include "core/shadow.h"
#include "core/state_file.h"
#include "daemon/restart_request.h"
#include "event/event_dispatch.h"
#include "modules/loop_avoidance/bcast_port.h"
#include "modules/path_selection/hc_records.h"
#include "wlan/wlan.h"

void lynd_process_state_reset() {
    g_lynd_dgb_lvl = LYND_LVL_ERR;
    g_dgb_lvl = 0;
    lynd_cpu_sampler_reset();
    lynd_link_state_reset();
    wlan_link_records_reset();
    lynd_cap_mac_reset();
    lynd_tables_reset();
    l_ev = nullptr;
    loop_avoidance_state_reset();
    path_selection_state_reset();
    decision_ring_reset();
    lynd_shadow_reset();
    lynd_counters_reset();
    lynd_state_files_reset();
    lynd_log_to_syslog(false);
    lynd_restart_reset();
}
