#pragma once
#include <cstdint>

#include "wlan/wlan_platform.h"

extern const wlan_platform wlan_platform_qca;

void wlan_mac_check_qca(const uint8_t* a, uint8_t* b);
bool wlan_get_util_adjustment_qca(const char* ifname, uint8_t arg, uint8_t* adj);
bool wlan_get_if_tx_rx_stat_qca(const char* ifname, void* out);
int qca_platform_init();
int qca_platform_finit();
