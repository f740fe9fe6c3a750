// The path-selection algorithm is reached only through a table of
// operations; an empty slot does nothing.
#pragma once
#include "bridge/table_entries.h"
#include "config/lynd_config.h"

struct ps_funcs {
    void (*init)(lynd_config* conf);
    void (*finit)(lynd_config* conf);
    void (*timer_period)(lynd_config* conf);
    void (*timer_short_period)(lynd_config* conf);
    void (*event_startup)(lynd_config* conf);
    void (*event_link_state)(lynd_config* conf);
    void (*event_add_entry)(const hc_entry* entry);
    void (*event_debug)(const debug_event* ev);
};

extern const ps_funcs ps_funcs_hc;
// The selected table; null until the module starts.
extern const ps_funcs* ps_funcs_ops;

void ps_init(lynd_config* conf);
void ps_finit(lynd_config* conf);
void ps_timer_period(lynd_config* conf);
void ps_timer_short_period(lynd_config* conf);
void ps_event_startup(lynd_config* conf);
void ps_event_link_state(lynd_config* conf);
void ps_event_add_entry(const hc_entry* entry);
void ps_event_debug(const debug_event* ev);
