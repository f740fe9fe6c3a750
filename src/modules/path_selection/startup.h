// Start of the HC algorithm: its records, the first choice of a preferred
// path from the links that are up, and the short-period sampling.
#pragma once
#include "config/lynd_config.h"
#include "modules/path_selection/hc_records.h"

void path_selection_init_hc(lynd_config* conf);
void path_selection_event_startup_hc(lynd_config* conf);
void path_selection_timer_short_period_hc(lynd_config* conf);
void path_selection_startup_uplink(conf_bridge* bridge);
void path_selection_startup_aplink(conf_bridge* bridge);
// The linked wireless slot of highest priority, ties to the lower type; it
// brings each slot up or down by what the link says. Null when none is up.
hc_path* path_selection_link_candidate(hc_path* p, hc_path* cand);
