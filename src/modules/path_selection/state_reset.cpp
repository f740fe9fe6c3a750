// The one reset of path selection: it knows every record the module keeps,
// and none of them needs to know it.
#include "modules/path_selection/client_log.h"
#include "modules/path_selection/explain_records.h"
#include "modules/path_selection/hc_records.h"
#include "modules/path_selection/path_insight.h"
#include "modules/path_selection/preferred_guard.h"
#include "modules/path_selection/ps_funcs.h"

void path_selection_state_reset() {
    for (auto& p : hc_paths)
        p = hc_path{};
    hc_pool_clear();
    g_hc_magic = 0;
    g_ps_conf = nullptr;
    g_timer_interval = 0;
    g_dbg_overload_mask = 0;
    for (auto& d : g_dbg_path_info)
        d = debug_path_info{};
    g_hc_rand_state = 1;
    ps_funcs_ops = nullptr;
    path_insight_reset();
    client_log_reset();
    explain_reset();
    preferred_guard_reset();
}
