#include "config/config_param.h"

#include <cstdio>

#include "config/config.h"
#include "config/config_steering.h"
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

uint16_t clamped16(json_object* obj, const char* key, int32_t def, int32_t hi) {
    return static_cast<uint16_t>(clamp_i32(json_int_or(obj, key, def), 0, hi));
}

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

// One i32 per band: key_2g, key_5g, key_6g.
void load_per_band(int32_t* out, json_object* p, const char* base, int32_t def) {
    char key[64];
    for (int b = 0; b < BAND_COUNT; b++) {
        band_key(key, sizeof key, base, b);
        out[b] = json_int_or(p, key, def);
    }
}

// Transmit and receive thresholds share one array, interleaved by band.
void load_abnormal(conf_param& c, json_object* p) {
    constexpr int32_t kDefault[BAND_COUNT] = {0, 13, 13};
    char key[64];
    for (int b = 0; b < BAND_COUNT; b++) {
        band_key(key, sizeof key, "abnormal_threshold_txrate", b);
        c.abnormal_threshold_txrate_rxrate[b * 2] = json_int_or(p, key, kDefault[b]);
        band_key(key, sizeof key, "abnormal_threshold_rxrate", b);
        c.abnormal_threshold_txrate_rxrate[b * 2 + 1] = json_int_or(p, key, kDefault[b]);
    }
}

void load_band_group(conf_param& c, json_object* p) {
    char key[64];
    for (int b = 0; b < BAND_COUNT; b++) {
        band_key(key, sizeof key, "reserved_ratio", b);
        c.reserved_ratio[b] = clamped8(p, key, 0, 100);
    }
    c.busy_count_threshold = low8(p, "busy_count_threshold", 3);
    c.handle_count = low8(p, "handle_count", 1);
    load_per_band(c.linkquality_smoothing_factor, p, "linkquality_smoothing_factor", 18);
    load_abnormal(c, p);
    c.weaklink_bestpath_txrate_delta = json_int_or(p, "weaklink_bestpath_txrate_delta", 30);
    load_per_band(c.weaklink_threshold_rssi, p, "weaklink_threshold_rssi", -85);
    load_per_band(c.weaklink_threshold_snr, p, "weaklink_threshold_snr", 15);
    load_per_band(c.weaklink_threshold_rate, p, "weaklink_threshold_rate", 100);
    load_per_band(c.weaklink_hold_threshold_rssi, p, "weaklink_hold_threshold_rssi", -83);
    load_per_band(c.weaklink_hold_threshold_snr, p, "weaklink_hold_threshold_snr", 17);
}

}  // namespace

bool config_get_util_compensation() { return g_util_compensation; }

void config_reset_util_compensation() { g_util_compensation = false; }

void config_load_param(lynd_config* conf, json_object* p) {
    conf_param& c = conf->param;
    c = conf_param{};
    c.short_period = static_cast<uint32_t>(json_int_or(p, "short_period", 0)) * 1000u;
    c.period = period_from(p, c.short_period);
    c.cpu_limit = json_bool_or(p, "cpu_limit", false);
    c.wlan_enable = json_bool_or(p, "wlan_enable", false);
    c.estimate_ack_enable = json_bool_or(p, "estimate_ack_enable", false);
    c.low_threshold = clamped8(p, "low_threshold", 60, 100);
    c.high_threshold = clamped8(p, "high_threshold", 70, 100);
    c.delta_threshold = clamped8(p, "delta_threshold", 10, 100);
    c.cpu_threshold = low8(p, "cpu_threshold", 0);
    c.abn_threshold = low8(p, "abn_threshold", 0);
    c.idle_threshold = clamped16(p, "idle_threshold", 10, 1000);
    c.activate_pkts = clamped16(p, "activate_pkts", 1, 1000);
    c.adjusted_streams = static_cast<uint8_t>(clamped16(p, "adjusted_streams", 1, 1000));  // then the low 8 bits
    int32_t ratio = json_int_or(p, "adjusted_ratio", 50);
    c.adjusted_ratio = static_cast<uint8_t>(clamp_i32(ratio, 0, 100));
    // No key names the exchange VLANs; the third one has always followed
    // the ratio's raw value, and the other two stay unused.
    c.exchange_vid[2] = static_cast<uint32_t>(clamp_i32(ratio, 0, 4094));
    load_band_group(c, p);
    g_util_compensation = json_bool_or(p, "util_compensation", false);
    config_load_flap_guard(&c.flap_guard, p);
}
