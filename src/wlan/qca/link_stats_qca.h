// The QCA back-end's read-only link queries: peers, rates, channel
// utilisation, byte counters and association.
#pragma once
#include <cstdint>

#include "wlan/qca/apstats_parse.h"
#include "wlan/wlan.h"

// links has room for QCA_STA_MAX_LINKS (16) records; uplink is not used.
uint8_t wlan_get_links_qca(const char* ifname, wlan_link_info* links, bool uplink);
// The first peer's rates and signal; false when there is no peer.
bool wlan_get_uplink_rate_qca(const char* ifname, wlan_rate* rate, int8_t* rssi);
// path_type and uplink are not used.
bool wlan_get_channel_utilization_qca(const char* ifname, uint8_t* util, uint32_t path_type, bool uplink);
// 1 when the station interface is associated with an access point.
int lynd_get_wireless_link_state(const char* ifname);
