#include "config/config_param.h"

#include <cstdio>

#include "config/config.h"
#include "config/json_read.h"

namespace {

bool g_util_compensation;

constexpr const char* kBandSuffix[BAND_COUNT] = {"_2g", "_5g", "_6g"};

void band_key(char* key, size_t size, const char* base, int band) {
    std::snprintf(key, size, "%s%s", base, kBandSuffix[band]);
}

uint8_t low8(json_object* obj, const char* key, int32_t def) {
    return static_cast<uint8_t>(json_int_or(obj, key, def));
}

uint8_t clamped8(json_object* obj, const char* key, int32_t def, int32_t hi) {
    return static_cast<uint8_t>(clamp_i32(json_int_or(obj, key, def), 0, hi));
}

// short_period is the unit of period: a period in between is rounded up.
uint32_t period_from(json_object* p, uint32_t short_period) {
    json_object* v = json_member(p, "period");
    if (v == nullptr)
        return short_period;
    uint32_t period = static_cast<uint32_t>(json_object_get_int(v)) * 1000u;
    if (short_period != 0 && period % short_period != 0)
        period = (period / short_period + 1) * short_period;
    return period;
}

void load_band_group(conf_param& c, json_object* p) {
    char key[64];
    const int32_t abnormal_default[BAND_COUNT] = {0, 13, 13};
    for (int b = 0; b < BAND_COUNT; b++) {
        band_key(key, sizeof key, "reserved_ratio", b);
        c.reserved_ratio[b] = clamped8(p, key, 0, 100);
    }
    c.busy_count_threshold = low8(p, "busy_count_threshold", 3);
    c.handle_count = low8(p, "handle_count", 1);
    for (int b = 0; b < BAND_COUNT; b++) {
        band_key(key, sizeof key, "linkquality_smoothing_factor", b);
        c.linkquality_smoothing_factor[b] = json_int_or(p, key, 18);
    }
    for (int b = 0; b < BAND_COUNT; b++) {
        band_key(key, sizeof key, "abnormal_threshold_txrate", b);
        c.abnormal_threshold_txrate_rxrate[b * 2] = json_int_or(p, key, abnormal_default[b]);
        band_key(key, sizeof key, "abnormal_threshold_rxrate", b);
        c.abnormal_threshold_txrate_rxrate[b * 2 + 1] = json_int_or(p, key, abnormal_default[b]);
    }
    c.weaklink_bestpath_txrate_delta = json_int_or(p, "weaklink_bestpath_txrate_delta", 30);
    struct {
        const char* key;
        int32_t* out;
        int32_t def;
    } const per_band[] = {
        {"weaklink_threshold_rssi", c.weaklink_threshold_rssi, -85},
        {"weaklink_threshold_snr", c.weaklink_threshold_snr, 15},
        {"weaklink_threshold_rate", c.weaklink_threshold_rate, 100},
        {"weaklink_hold_threshold_rssi", c.weaklink_hold_threshold_rssi, -83},
        {"weaklink_hold_threshold_snr", c.weaklink_hold_threshold_snr, 17},
    };
    for (const auto& g : per_band) {
        for (int b = 0; b < BAND_COUNT; b++) {
            band_key(key, sizeof key, g.key, b);
            g.out[b] = json_int_or(p, key, g.def);
        }
    }
}

}  // namespace

bool config_get_util_compensation() { return g_util_compensation; }

void config_reset_util_compensation() { g_util_compensation = false; }

void config_load_param(lynd_config* conf, json_object* p) {
    conf_param& c = conf->param;
    c = conf_param{};
    json_object* sp = json_member(p, "short_period");
    c.short_period = sp != nullptr ? static_cast<uint32_t>(json_object_get_int(sp)) * 1000u : 0;
    c.period = period_from(p, c.short_period);
    c.cpu_limit = json_bool_or(p, "cpu_limit", false);
    c.wlan_enable = json_bool_or(p, "wlan_enable", false);
    c.estimate_ack_enable = json_bool_or(p, "estimate_ack_enable", false);
    c.low_threshold = clamped8(p, "low_threshold", 60, 100);
    c.high_threshold = clamped8(p, "high_threshold", 70, 100);
    c.delta_threshold = clamped8(p, "delta_threshold", 10, 100);
    c.cpu_threshold = low8(p, "cpu_threshold", 0);
    c.abn_threshold = low8(p, "abn_threshold", 0);
    c.idle_threshold = static_cast<uint16_t>(clamp_i32(json_int_or(p, "idle_threshold", 10), 0, 1000));
    c.activate_pkts = static_cast<uint16_t>(clamp_i32(json_int_or(p, "activate_pkts", 1), 0, 1000));
    c.adjusted_streams = static_cast<uint8_t>(clamp_i32(json_int_or(p, "adjusted_streams", 1), 0, 1000));
    int32_t ratio = json_int_or(p, "adjusted_ratio", 50);
    c.adjusted_ratio = static_cast<uint8_t>(clamp_i32(ratio, 0, 100));
    // No key names the exchange VLANs; the third one has always followed
    // the ratio's raw value, and the other two stay unused.
    c.exchange_vid[2] = static_cast<uint32_t>(clamp_i32(ratio, 0, 4094));
    load_band_group(c, p);
    g_util_compensation = json_bool_or(p, "util_compensation", false);
}
