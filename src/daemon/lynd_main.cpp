#include "daemon/lynd_main.h"

#include "bridge/steering_gate.h"
#include "config/config.h"
#include "config/lynd_config.h"
#include "core/decision_ring.h"
#include "core/log.h"
#include "core/shadow.h"
#include "daemon/options.h"
#include "daemon/process_state.h"
#include "daemon/restart_request.h"
#include "daemon/status_object.h"
#include "daemon/replies/status_replies.h"
#include "event/event_dispatch.h"
#include "event/event_hub.h"
#include "event/wifi_events.h"
#include "platform/seams.h"
#include "trace/trace_recorder.h"
#include "wlan/traffic_separation.h"
#include "wlan/wlan_platform.h"

namespace {

// The start-up lines belong to the entry point, whichever step prints them.
constexpr const char* kFn = "main";

// The context lives for the whole process, as the hub and l_ev point into it.
lynd_config g_conf;

void start_modules(lynd_config* conf, const lynd_module_table& modules) {
    for (size_t i = 0; i < modules.count; i++) {
        lynd_module* m = modules.inits[i](conf);
        if (m == nullptr)
            continue;
        LYND_WARN_AS(kFn, "%s initialized", m->name);
        lynd_list_add(&m->list, &conf->modules);
    }
}

// Newest first: path selection stops before loop avoidance.
void stop_modules(lynd_config* conf) {
    lynd_list* p = conf->modules.next;
    while (p != &conf->modules) {
        lynd_list* next = p->next;
        lynd_list_del(p);
        lynd_module* m = lynd_module_of(p);
        m->finit(m);
        p = next;
    }
}

// Options that end the run before it starts; the gate and the trace go again.
int end_early(int status) {
    lynd::steering_gate_remove();
    lynd::trace_finish();
    return status;
}

// A start-up error after its FATAL lines: the trace ends first, so it holds
// what the run did and not its tear-down, then what started stops.
int end_fatal(event_hub* started) {
    lynd::trace_finish_fatal();
    if (started != nullptr)
        event_free(started);
    lynd::steering_gate_remove();
    return 1;
}

}  // namespace

void config_bridge(lynd_config*) { (void)lynd_platform_init(); }

void config_bridge_revert(lynd_config* conf) {
    lynd_platform_finit();
    for (uint64_t i = 0; i < conf->n_bridges; i++)
        (void)lynd::krel().bridgeStopAPS(conf->bridges[i].name);
}

int lynd_main(int argc, char** argv) { return lynd_main_with(argc, argv, lynd_module_inits); }

// Options that end the run before it starts; the gate and the trace go again.

int lynd_main_with(int argc, char** argv, const lynd_module_table& modules) {
    lynd_process_state_reset();
    // The trace goes under the gate: it holds what reached the bridge, and a
    // replay puts the gate back in front of it.
    lynd::trace_startup(argc, argv, lynd_version());
    lynd::steering_gate_install();
    lynd_options opt{};
    switch (lynd_parse_options(argc, argv, &opt)) {
    case lynd_option_action::RUN:
        break;
    case lynd_option_action::USAGE:
        return end_early(1);
    case lynd_option_action::HELP:
    case lynd_option_action::TEST:
        return end_early(0);
    }
    g_dgb_lvl = g_lynd_dgb_lvl;
    LYND_LOG_AS(kFn, "set libkrel g_dgb_lvl=%d!", g_dgb_lvl);
    int64_t started_ms = lynd_monotonic_ms();

    lynd_config* conf = &g_conf;
    *conf = lynd_config{};
    lynd_list_init(&conf->modules);

    bool loaded = false;
    if (lynd_restarting()) {
        loaded = config_load_keeping(conf, opt.config_path);
    } else {
        (void)config_set_running_text(nullptr, 0);
        loaded = config_load(conf, opt.config_path);
    }
    if (!loaded)
        return end_fatal(nullptr);
    lynd::trace_settle(conf->record, conf->record_size);
    if (!conf->enable) {
        LYND_ERR_AS(kFn, "lynd disabled");
        lynd::steering_gate_remove();
        lynd::trace_finish();
        return 0;
    }
    lynd_set_shadow_mode(conf->shadow);
    decision_ring_log_lines(conf->log_decisions);
    traffic_separation_config_load(conf);
    config_dump(conf);
    config_bridge(conf);
    if (!event_init(&conf->ev))
        return end_fatal(&conf->ev);
    l_ev = &conf->ev;
    start_modules(conf, modules);
    lynd_status_object_start(conf, started_ms);

    event_loop(&conf->ev);

    config_bridge_revert(conf);
    stop_modules(conf);
    if (lynd_restart_requested())
        event_wifi_free(&conf->ev);
    event_free(&conf->ev);
    l_ev = nullptr;
    config_free(conf);
    lynd::steering_gate_remove();
    lynd::trace_finish();
    return 0;
}
