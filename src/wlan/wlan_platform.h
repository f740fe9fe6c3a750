// Chipset-specific wireless work goes through one table of operations. An
// empty slot means "not supported": its dispatcher returns 0 and logs nothing.
// The dispatchers, not the back-ends, hold back in shadow mode every action
// that steers traffic, so a new back-end need not know shadow mode.
#pragma once
#include <cstdint>

#include "config/conf_param.h"
#include "wlan/wlan_link_info.h"

struct wlan_platform {
    bool (*get_uplink_rate)(const char* ifname, wlan_rate* rate, int8_t* rssi);
    bool (*get_channel_utilization)(const char* ifname, uint8_t* util, uint32_t path_type, bool uplink);
    void (*activate_links)(const char* ifname, const conf_param* param);
    uint8_t (*activate_links_for_ap)(const char* ifname, const conf_param* param);
    void (*delete_wds_entry)(const char* ifname, const uint8_t* mac);
    bool (*get_util_adjustment)(const char* ifname, uint8_t arg, uint8_t* adj);
    bool (*is_5g_low_noise)(uint16_t a, uint8_t b);
    uint8_t (*get_links)(const char* ifname, wlan_link_info* links, bool uplink);
    bool (*get_if_tx_rx_stat)(const char* ifname, void* out);
    int (*flush_all_fcache_flow)();
    bool (*flush_fcache_flow_entry)(uint32_t id);
    bool (*update_flow_brlist)();
    bool (*get_maximal_ha_entries_from_fcache)(void* a, uint8_t b, void* c);
    int (*flush_fc_flow_by_mac)(const uint8_t* mac);
    void (*mac_check)(const uint8_t* a, uint8_t* b);
    int (*platform_init)();
    int (*platform_finit)();
    int (*platform_test)();
    int (*restart_link)(uint32_t type);
};

// The active table; set before start, never changed at run time.
extern const wlan_platform* wlan_platform_ops;

bool wlan_get_uplink_rate(const char* ifname, wlan_rate* rate, int8_t* rssi);
bool wlan_get_channel_utilization(const char* ifname, uint8_t* util, uint32_t path_type);
bool wlan_get_client_channel_utilization(const char* ifname, uint8_t* util, uint32_t path_type);
void wlan_activate_links(const char* ifname, const conf_param* param);
uint8_t wlan_activate_links_for_ap(const char* ifname, const conf_param* param);
void wlan_delete_wds_entry(const char* ifname, const uint8_t* mac);
bool wlan_get_util_adjustment(const char* ifname, uint8_t arg, uint8_t* adj);
bool wlan_is_5g_low_noise(uint16_t a, uint8_t b);
uint8_t wlan_get_links(const char* ifname, wlan_link_info* links);
uint8_t wlan_get_client_links(const char* ifname, wlan_link_info* links);
bool wlan_get_if_tx_rx_stat(const char* ifname, void* out);
int lynd_flush_all_fcache_flow();
bool lynd_flush_fcache_flow_entry(uint32_t id);
bool lynd_update_flow_brlist();
bool lynd_get_maximal_ha_entries_from_fcache(void* a, uint8_t b, void* c);
int lynd_flush_fc_flow_by_mac(const uint8_t* mac);
void lynd_mac_check(const uint8_t* a, uint8_t* b);
int lynd_platform_init();
void lynd_platform_finit();
int lynd_platform_test();
