// One period of the algorithm for every path-selection bridge, in a fixed
// order: keep-alive frames, table sync, path refresh, rating, evacuation,
// and the driver that moves clients.
#pragma once
#include "config/lynd_config.h"
#include "modules/path_selection/hc_records.h"

void path_selection_timer_period_hc(lynd_config* conf);
void path_selection_while_hc_enabled(conf_bridge* bridge);
void path_selection_activate_uplink_paths(conf_interface* const* path_ports, int n, const conf_param* param);
