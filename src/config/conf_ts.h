// Traffic-separation block of the configuration.
#pragma once
#include <cstdint>

constexpr int TS_MAX_POLICIES = 64;
constexpr int TS_MAX_VLANS = 64;
constexpr int TS_SSID_LEN = 64;  // 63 characters and the terminator

struct ts_policy {
    uint32_t vlan_id;
    char ssid[TS_SSID_LEN];
    bool is_primary;
};

struct conf_ts {
    bool enable;
    uint32_t primary_vlan;
    uint32_t policy_count;
    ts_policy policies[TS_MAX_POLICIES];
    uint32_t vlan_count;
    uint32_t vlan_ids[TS_MAX_VLANS];
};
