// Opt-in calm for the node's preferred port: it does not swing back to a
// path it left a short while ago unless that path now has a better state;
// a better figure alone is not enough.
#pragma once
#include <cstdint>

#include "config/lynd_config.h"
#include "modules/path_selection/hc_records.h"

void preferred_guard_reset();
// The path the preferred port should name this run: best, or the path it
// names now when best is the one it left too recently.
hc_path* preferred_guard_choose(conf_bridge* bridge, hc_path* best, hc_path* paths);
// Notes a change of the bridge's preferred port made by the period run.
void preferred_guard_note(conf_bridge* bridge, uint32_t before_ifindex, uint32_t after_ifindex);
