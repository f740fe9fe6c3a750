// The last step of every period run: the snapshot, quotas and overload, the
// best path, the preferred port and the client moves.
#pragma once
#include "config/lynd_config.h"
#include "modules/path_selection/hc_records.h"

void path_selection_update_uplink_path_for_hc_v2(conf_bridge* bridge, hc_path* paths);
