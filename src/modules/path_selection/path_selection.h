// The "Path Selection" module: its record, the two periodic timers, and the
// events handed to the algorithm.
#pragma once
#include <ctime>

#include "config/lynd_config.h"
#include "modules/module.h"
#include "platform/loop.h"

struct ps_module {
    lynd_module base;  // first: the module list holds the record by it
    lynd::LoopTimer period_timer;
    timespec last_run;  // start of the previous period run; zero before the first
    lynd::LoopTimer short_period_timer;
    bool short_installed;  // only with a short period
    bool idle_period_said;
    lynd_config* conf;
};

lynd_module* path_selection_init(lynd_config* conf);
void path_selection_event_cb(lynd_config* conf, event_listener* listener, uint32_t type, void* data);
void path_selection_event_debug(lynd_config* conf, const debug_event* ev);
// 1 with the interval since last (0 the first time) and last set to now.
int lynd_update_time(timespec* last, int64_t* interval_out);
void path_selection_finit(lynd_module* module);
// Both timers with their full periods; a period of 0 leaves its timer idle.
void path_selection_arm_timers(lynd_module* module);
