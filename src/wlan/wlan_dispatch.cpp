#include "wlan/wlan_platform.h"

#include "core/shadow.h"
#include "wlan/qca/wlan_platform_qca.h"

const wlan_platform* wlan_platform_ops = &wlan_platform_qca;

namespace {

// The slot when the table and the slot are both set, else null.
template <typename Fn>
Fn slot(Fn wlan_platform::*member) {
    return wlan_platform_ops != nullptr ? wlan_platform_ops->*member : nullptr;
}

}  // namespace

bool wlan_get_uplink_rate(const char* ifname, wlan_rate* rate, int8_t* rssi) {
    auto fn = slot(&wlan_platform::get_uplink_rate);
    return fn != nullptr && fn(ifname, rate, rssi);
}

bool wlan_get_channel_utilization(const char* ifname, uint8_t* util, uint32_t path_type) {
    auto fn = slot(&wlan_platform::get_channel_utilization);
    return fn != nullptr && fn(ifname, util, path_type, true);
}

bool wlan_get_client_channel_utilization(const char* ifname, uint8_t* util, uint32_t path_type) {
    auto fn = slot(&wlan_platform::get_channel_utilization);
    return fn != nullptr && fn(ifname, util, path_type, false);
}

void wlan_activate_links(const char* ifname, const conf_param* param) {
    if (lynd_shadow_holds("keep-alive frames"))
        return;
    if (auto fn = slot(&wlan_platform::activate_links))
        fn(ifname, param);
}

uint8_t wlan_activate_links_for_ap(const char* ifname, const conf_param* param) {
    if (lynd_shadow_holds("keep-alive frames"))
        return 0;
    auto fn = slot(&wlan_platform::activate_links_for_ap);
    return fn != nullptr ? fn(ifname, param) : 0;
}

void wlan_delete_wds_entry(const char* ifname, const uint8_t* mac) {
    if (lynd_shadow_holds("WDS entry deletion"))
        return;
    if (auto fn = slot(&wlan_platform::delete_wds_entry))
        fn(ifname, mac);
}

bool wlan_get_util_adjustment(const char* ifname, uint8_t arg, uint8_t* adj) {
    auto fn = slot(&wlan_platform::get_util_adjustment);
    return fn != nullptr && fn(ifname, arg, adj);
}

bool wlan_is_5g_low_noise(uint16_t a, uint8_t b) {
    auto fn = slot(&wlan_platform::is_5g_low_noise);
    return fn != nullptr && fn(a, b);
}

uint8_t wlan_get_links(const char* ifname, wlan_link_info* links) {
    auto fn = slot(&wlan_platform::get_links);
    return fn != nullptr ? fn(ifname, links, true) : 0;
}

uint8_t wlan_get_client_links(const char* ifname, wlan_link_info* links) {
    auto fn = slot(&wlan_platform::get_links);
    return fn != nullptr ? fn(ifname, links, false) : 0;
}

bool wlan_get_if_tx_rx_stat(const char* ifname, void* out) {
    auto fn = slot(&wlan_platform::get_if_tx_rx_stat);
    return fn != nullptr && fn(ifname, out);
}

int lynd_flush_all_fcache_flow() {
    if (lynd_shadow_holds("flow cache flush"))
        return 0;
    auto fn = slot(&wlan_platform::flush_all_fcache_flow);
    return fn != nullptr ? fn() : 0;
}

bool lynd_flush_fcache_flow_entry(uint32_t id) {
    if (lynd_shadow_holds("flow cache flush"))
        return true;
    auto fn = slot(&wlan_platform::flush_fcache_flow_entry);
    return fn != nullptr && fn(id);
}

bool lynd_update_flow_brlist() {
    auto fn = slot(&wlan_platform::update_flow_brlist);
    return fn != nullptr && fn();
}

bool lynd_get_maximal_ha_entries_from_fcache(void* a, uint8_t b, void* c) {
    auto fn = slot(&wlan_platform::get_maximal_ha_entries_from_fcache);
    return fn != nullptr && fn(a, b, c);
}

int lynd_flush_fc_flow_by_mac(const uint8_t* mac) {
    if (lynd_shadow_holds("flow cache flush"))
        return 0;
    auto fn = slot(&wlan_platform::flush_fc_flow_by_mac);
    return fn != nullptr ? fn(mac) : 0;
}

void lynd_mac_check(const uint8_t* a, uint8_t* b) {
    if (auto fn = slot(&wlan_platform::mac_check))
        fn(a, b);
}

int wlan_restart_link(uint32_t type) {
    if (lynd_shadow_holds("reconnect"))
        return 0;
    auto fn = slot(&wlan_platform::restart_link);
    return fn != nullptr ? fn(type) : 0;
}

int lynd_platform_init() {
    auto fn = slot(&wlan_platform::platform_init);
    return fn != nullptr ? fn() : 0;
}

void lynd_platform_finit() {
    if (auto fn = slot(&wlan_platform::platform_finit))
        (void)fn();
}

int lynd_platform_test() {
    auto fn = slot(&wlan_platform::platform_test);
    return fn != nullptr ? fn() : 0;
}
