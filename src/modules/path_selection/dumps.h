// What path selection shows of itself: the snapshot file of the live paths
// for other programs, and the console tables of uplinks and clients.
#pragma once
#include "config/lynd_config.h"
#include "modules/path_selection/hc_records.h"

constexpr const char* PATHS_INFO_FILE = "/tmp/lynd_paths_info";

// Writes the snapshot whole; the number of live paths in it.
int path_selection_dump_paths_info(conf_bridge* bridge, hc_path* paths);
void path_selection_dump_uplinks(const hc_path* paths);
void path_selection_dump_clients(lynd_config* conf, hc_path* paths);
