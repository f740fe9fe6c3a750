#include "modules/path_selection/ps_funcs.h"

#include "modules/path_selection/add_entry.h"
#include "modules/path_selection/debug_hc.h"
#include "modules/path_selection/emergency.h"
#include "modules/path_selection/period_drive.h"
#include "modules/path_selection/startup.h"

const ps_funcs ps_funcs_hc = {
    path_selection_init_hc,
    nullptr,
    path_selection_timer_period_hc,
    path_selection_timer_short_period_hc,
    path_selection_event_startup_hc,
    path_selection_event_link_state_hc,
    path_selection_event_add_entry_hc,
    path_selection_event_debug_hc,
};

const ps_funcs* ps_funcs_ops = nullptr;

// Each calls its slot when a table is selected and the slot is filled.
void ps_init(lynd_config* conf) {
    if (ps_funcs_ops != nullptr && ps_funcs_ops->init != nullptr)
        ps_funcs_ops->init(conf);
}
void ps_finit(lynd_config* conf) {
    if (ps_funcs_ops != nullptr && ps_funcs_ops->finit != nullptr)
        ps_funcs_ops->finit(conf);
}
void ps_timer_period(lynd_config* conf) {
    if (ps_funcs_ops != nullptr && ps_funcs_ops->timer_period != nullptr)
        ps_funcs_ops->timer_period(conf);
}
void ps_timer_short_period(lynd_config* conf) {
    if (ps_funcs_ops != nullptr && ps_funcs_ops->timer_short_period != nullptr)
        ps_funcs_ops->timer_short_period(conf);
}
void ps_event_startup(lynd_config* conf) {
    if (ps_funcs_ops != nullptr && ps_funcs_ops->event_startup != nullptr)
        ps_funcs_ops->event_startup(conf);
}
void ps_event_link_state(lynd_config* conf) {
    if (ps_funcs_ops != nullptr && ps_funcs_ops->event_link_state != nullptr)
        ps_funcs_ops->event_link_state(conf);
}
void ps_event_add_entry(const hc_entry* entry) {
    if (ps_funcs_ops != nullptr && ps_funcs_ops->event_add_entry != nullptr)
        ps_funcs_ops->event_add_entry(entry);
}
void ps_event_debug(const debug_event* ev) {
    if (ps_funcs_ops != nullptr && ps_funcs_ops->event_debug != nullptr)
        ps_funcs_ops->event_debug(ev);
}
