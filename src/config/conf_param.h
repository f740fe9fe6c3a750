// The path-selection parameter group of the configuration.
#pragma once
#include <cstdint>

#include "config/conf_steering.h"
#include "core/types.h"

struct conf_param {
    uint32_t short_period;  // ms
    uint32_t period;        // ms, a multiple of short_period when that is set
    bool cpu_limit;
    bool wlan_enable;
    bool estimate_ack_enable;
    uint8_t low_threshold;
    uint8_t high_threshold;
    uint8_t delta_threshold;
    uint8_t cpu_threshold;
    uint8_t abn_threshold;
    uint16_t idle_threshold;
    uint16_t activate_pkts;
    uint8_t adjusted_streams;
    uint8_t adjusted_ratio;
    uint32_t exchange_vid[3];
    uint8_t reserved_ratio[BAND_COUNT];
    uint8_t busy_count_threshold;
    uint8_t handle_count;
    int32_t linkquality_smoothing_factor[BAND_COUNT];
    // Interleaved by band: tx 2g, rx 2g, tx 5g, rx 5g, tx 6g, rx 6g.
    int32_t abnormal_threshold_txrate_rxrate[BAND_COUNT * 2];
    int32_t weaklink_bestpath_txrate_delta;
    int32_t weaklink_threshold_rssi[BAND_COUNT];
    int32_t weaklink_threshold_snr[BAND_COUNT];
    int32_t weaklink_threshold_rate[BAND_COUNT];
    int32_t weaklink_hold_threshold_rssi[BAND_COUNT];
    int32_t weaklink_hold_threshold_snr[BAND_COUNT];
    conf_flap_guard flap_guard;  // all off unless the file sets them
};

inline int32_t abnormal_threshold_txrate(const conf_param& p, int band) {
    return p.abnormal_threshold_txrate_rxrate[band * 2];
}
inline int32_t abnormal_threshold_rxrate(const conf_param& p, int band) {
    return p.abnormal_threshold_txrate_rxrate[band * 2 + 1];
}
