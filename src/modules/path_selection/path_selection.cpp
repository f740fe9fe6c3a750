#include "modules/path_selection/path_selection.h"

#include <cstddef>
#include <cstring>
#include <new>

#include "core/log.h"
#include "event/event_dispatch.h"
#include "modules/path_selection/hc_records.h"
#include "modules/path_selection/ps_funcs.h"
#include "platform/seams.h"

namespace {

constexpr const char* kDebugFn = "path_selection_event_debug";
constexpr const char* kArmFn = "path_selection_arm_timers";
constexpr const char* kEventFn = "path_selection_event_cb";

constexpr uint32_t kMaxLevel = 6;

ps_module* of_module(lynd_module* m) {
    return static_cast<ps_module*>(lynd_container_of(m, offsetof(ps_module, base)));
}

void arm_period(ps_module* m) {
    uint32_t period = m->conf->param.period;
    if (period == 0) {
        // A zero period would fire the timer back to back.
        if (!m->idle_period_said)
            LYND_WARN_AS(kArmFn,
                         "period is 0 (\"param\" or its \"period\" missing, 0 or not a number): the period timer "
                         "stays idle");
        m->idle_period_said = true;
        return;
    }
    (void)lynd::loop().timer_set(&m->period_timer, static_cast<int>(period));
}

void arm_short(ps_module* m) {
    if (m->short_installed)
        (void)lynd::loop().timer_set(&m->short_period_timer, static_cast<int>(m->conf->param.short_period));
}

void on_period(lynd::LoopTimer* t) {
    ps_module* m = static_cast<ps_module*>(lynd_container_of(t, offsetof(ps_module, period_timer)));
    (void)lynd_update_time(&m->last_run, &g_timer_interval);
    ps_timer_period(m->conf);
    if (m->conf->pathsel_mode != 1)
        arm_period(m);
}

void on_short_period(lynd::LoopTimer* t) {
    ps_module* m = static_cast<ps_module*>(lynd_container_of(t, offsetof(ps_module, short_period_timer)));
    ps_timer_short_period(m->conf);
    if (m->conf->pathsel_mode != 1)
        arm_short(m);
}

void cancel_if_pending(lynd::LoopTimer* t) {
    if (t->pending)
        (void)lynd::loop().timer_cancel(t);
}

void pathsel_mode(lynd_config* conf, uint8_t mode) {
    bool stop = conf->pathsel_mode == 0 && mode == 1;
    bool start = conf->pathsel_mode == 1 && mode == 0;
    if (!stop && !start)
        return;
    if (stop)
        LYND_DEBUG_AS(kDebugFn, "Cancel path selection timer");
    else
        LYND_DEBUG_AS(kDebugFn, "Start path selection timer");
    lynd_module* found = lynd_get_mod_contex(&conf->modules, LYND_MODULE_PATH_SELECTION);
    if (found == nullptr) {
        LYND_ERR_AS(kDebugFn, "find mod");
        return;
    }
    ps_module* m = of_module(found);
    conf->pathsel_mode = stop ? 1 : 0;
    if (stop) {
        cancel_if_pending(&m->short_period_timer);
        cancel_if_pending(&m->period_timer);
    } else {
        path_selection_arm_timers(found);
    }
}

// A new hc entry arrives as the body of a bridge message.
void bridge_message(const bridge_event* ev) {
    if (ev == nullptr || ev->msg_type != MSG_NEW_HC_ENTRY)
        return;
    if (ev->data == nullptr || ev->data_len < sizeof(hc_entry)) {
        LYND_ERR_AS(kEventFn, "new hc entry of %llu bytes, %zu needed: dropped",
                    static_cast<unsigned long long>(ev->data_len), sizeof(hc_entry));
        return;
    }
    hc_entry e;
    std::memcpy(&e, ev->data, sizeof e);
    ps_event_add_entry(&e);
}

}  // namespace

lynd_module* path_selection_init(lynd_config* conf) {
    ps_module* m = new (std::nothrow) ps_module{};
    if (m == nullptr) {
        LYND_ERR("malloc");
        return nullptr;
    }
    m->conf = conf;
    conf->pathsel_mode = 0;
    conf->brconf_mode = 0;
    ps_funcs_ops = &ps_funcs_hc;
    m->base.name = "Path Selection";
    m->base.id = LYND_MODULE_PATH_SELECTION;
    m->base.finit = path_selection_finit;
    m->base.listener.cb = path_selection_event_cb;
    event_add_listener(&conf->ev, &m->base.listener);
    m->period_timer.cb = on_period;
    m->short_installed = conf->param.short_period != 0;
    if (m->short_installed)
        m->short_period_timer.cb = on_short_period;
    ps_init(conf);
    return &m->base;
}

void path_selection_event_cb(lynd_config* conf, event_listener*, uint32_t type, void* data) {
    switch (type) {
        case EVENT_STARTUP:
            ps_event_startup(conf);
            break;
        case EVENT_LINK_STATE:
            ps_event_link_state(conf);
            break;
        case EVENT_BRIDGE:
            bridge_message(static_cast<const bridge_event*>(data));
            break;
        case EVENT_DEBUG:
            path_selection_event_debug(conf, static_cast<const debug_event*>(data));
            break;
        case EVENT_TS:
            LYND_INFO("reset hc path info");
            ps_init(conf);
            ps_event_link_state(conf);
            break;
        default:
            break;
    }
}

void path_selection_event_debug(lynd_config* conf, const debug_event* ev) {
    LYND_DEBUG("debug  subtype %d", ev->subtype);
    switch (ev->subtype) {
        case DBG_LEVEL:
            if (ev->value <= kMaxLevel) {
                g_lynd_dgb_lvl = static_cast<int>(ev->value);
                g_dgb_lvl = static_cast<int>(ev->value);
            }
            break;
        case DBG_PATHSEL_MODE:
            pathsel_mode(conf, ev->mode);
            break;
        case DBG_BRCONF_MODE:
            LYND_DEBUG("Set brconf_mode to %d", ev->mode);
            conf->brconf_mode = ev->mode;
            break;
        default:
            ps_event_debug(ev);
            break;
    }
}

int lynd_update_time(timespec* last, int64_t* interval_out) {
    if (last == nullptr || interval_out == nullptr)
        return 0;
    timespec now = lynd::host().monotonic_now();
    if (last->tv_sec == 0 && last->tv_nsec == 0) {
        *interval_out = 0;
    } else {
        double ms = static_cast<double>(now.tv_sec - last->tv_sec) * 1000.0 +
                    static_cast<double>(now.tv_nsec - last->tv_nsec) / 1000000.0;
        *interval_out = static_cast<int64_t>(ms);
    }
    LYND_DEBUG("time_interval(ms): %lld", static_cast<long long>(*interval_out));
    *last = now;
    return 1;
}

void path_selection_arm_timers(lynd_module* module) {
    ps_module* m = of_module(module);
    arm_period(m);
    arm_short(m);
}

void path_selection_finit(lynd_module* module) {
    ps_module* m = of_module(module);
    ps_finit(nullptr);
    event_del_listener(&m->base.listener);
    (void)lynd::loop().timer_cancel(&m->period_timer);
    (void)lynd::loop().timer_cancel(&m->short_period_timer);
    delete m;
}
