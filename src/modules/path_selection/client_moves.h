// Moving clients between paths by rewriting their hc entries: slowly, by
// hysteresis and spare quota, each period; all at once when a path goes down.
#pragma once
#include "config/lynd_config.h"
#include "modules/path_selection/hc_records.h"

void path_selection_update_uplink_hc_table_v2(lynd_config* conf, conf_bridge* bridge, hc_path* best, hc_path* paths,
                                              int has_clients_on_busy_path);
// Re-targets the clients of every UNLINK path to paths[best_type]; best_type
// PATH_NONE flushes the whole hc table.
void path_selection_pre_update_uplink_path_for_hc_v2(conf_bridge* bridge, hc_path* paths, uint32_t best_type);

// Pure: Mbps of a client that sent bytes in time_ms, as the mover counts it.
uint32_t path_selection_client_rate(uint64_t bytes, int64_t time_ms);
