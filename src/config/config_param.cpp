#include "config/config_param.h"

#include "config/config.h"
#include "config/config_keys.h"
#include "config/config_steering.h"
#include "config/json_read.h"

namespace {

bool g_util_compensation;

// short_period is the unit of period: a period in between is rounded up.
uint32_t period_from(json_object* p, uint32_t short_period) {
    json_object* v;
    if (!json_has(p, "period", &v))
        return short_period;
    uint32_t period = static_cast<uint32_t>(json_object_get_int(v)) * 1000u;
    if (short_period != 0 && period % short_period != 0)
        period = (period / short_period + 1) * short_period;
    return period;
}

}  // namespace

bool config_get_util_compensation() { return g_util_compensation; }

void config_reset_util_compensation() { g_util_compensation = false; }

void config_load_param(lynd_config* conf, json_object* p) {
    conf_param& c = conf->param;
    c = conf_param{};
    config_target t{};
    t.param = &c;
    config_load_section(config_section::PARAM, p, t);
    c.period = period_from(p, c.short_period);
    // No key names the exchange VLANs; the third one has always followed
    // the ratio's raw value, and the other two stay unused.
    int32_t ratio = json_int_or(p, "adjusted_ratio", config_key_find(config_section::PARAM, "adjusted_ratio")->def[0]);
    c.exchange_vid[2] = static_cast<uint32_t>(clamp_i32(ratio, 0, 4094));
    g_util_compensation = json_bool_or(p, "util_compensation", false);
    config_load_flap_guard(&c.flap_guard, p);
}
