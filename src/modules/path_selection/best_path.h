// Free airtime per path, overload, and the best path of every client and
// of the node itself.
#pragma once
#include <cstdint>

#include "config/lynd_config.h"
#include "modules/path_selection/hc_records.h"

void path_selection_init_path_quota_v2(conf_bridge* bridge, hc_path* paths);
int path_selection_check_path_overload_v2(conf_bridge* bridge, hc_path* paths, int* has_clients_on_busy_path);
// The best path of the node (of its last client of unknown source type),
// or null when there is none or every live path is overloaded.
hc_path* path_selection_find_best_path_v2(hc_path* paths);

// Pure pieces of the rating.
uint32_t path_weight(const hc_path& p);
uint32_t path_selection_backhaul_quality(const hc_path& p);
uint64_t path_selection_path_quality(uint64_t bq, uint64_t sq, bool wireless, bool own_band);
// The next run magic: a small generator, repeatable from a reset.
uint8_t path_selection_next_magic();
