// What the driver tells of a wireless link.
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

// A link's byte counters as the driver keeps them.
struct wlan_link_counters {
    uint64_t tx_bytes;
    uint64_t rx_bytes;
};
