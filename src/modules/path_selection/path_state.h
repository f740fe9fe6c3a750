// Rating the live paths from their samples and counters, and moving the
// clients of worse paths onto the best one.
#pragma once
#include <cstdint>

#include "config/lynd_config.h"
#include "modules/path_selection/hc_records.h"

struct ring_means {
    int32_t rssi;
    int32_t snr;
    uint32_t rate;
};

// Pure: the means of the n newest slots counted back from the newest,
// wrapping (so n above 20 revisits slots) at the cost of one pass.
ring_means path_selection_ring_means(const sample_ring& r, uint32_t n);

void path_selection_evaluate_path_state(conf_bridge* bridge, hc_path* paths);
void path_selection_pre_update_weak_abnormal_path(conf_bridge* bridge, hc_path* paths);
