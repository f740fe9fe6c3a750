// A link changed state: choose the preferred port at once from the links
// that are up, and send the clients of downed paths there.
#pragma once
#include "config/lynd_config.h"
#include "modules/path_selection/hc_records.h"

void path_selection_event_link_state_hc(lynd_config* conf);
void path_selection_emergency_set_preferred(conf_bridge* bridge);
