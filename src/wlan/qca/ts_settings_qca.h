// Traffic-separation settings and SSIDs as UCI holds them on a QCA node.
// An option that cannot be read gives 0 (the switch: leaves it on).
#pragma once
#include <cstddef>
#include <cstdint>

// 1 unless the mesh switch (outside the controller) or the TS switch is off.
int wlan_get_ts_enable(uint32_t work_mode);
uint32_t wlan_get_ts_primary_vid();
uint32_t wlan_get_ts_policy_count();
uint32_t wlan_get_ts_vid_by_index(uint32_t i);
// 1 when read into out (at most out_len - 1 characters).
int wlan_get_ts_policy_ssid_by_index(char* out, size_t out_len, uint32_t i);
int wlan_get_ts_policy_is_pri_by_index(uint32_t i);
// 1 when ifname's wireless section has a non-empty SSID; out holds 64 bytes.
int wlan_get_ssid_by_ifname(const char* ifname, char* out);
