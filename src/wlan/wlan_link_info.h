#pragma once
#include <cstdint>

// One peer of a wireless interface.
struct wlan_link_info {
    uint8_t mac[6];
    uint16_t idle;
    uint16_t txrate;  // Mbps
    uint16_t rxrate;  // Mbps
    int8_t rssi;      // dBm
    int32_t noise;    // dBm
    int32_t snr;      // dB
};

struct wlan_rate {
    uint16_t tx;  // Mbps
    uint16_t rx;
};
