// The QCA back-end's actions on links: keeping idle links busy, removing a
// WDS entry, making a backhaul station reconnect.
#pragma once
#include <cstdint>

#include "config/conf_param.h"
#include "wlan/wlan.h"

// Sends activate_pkts dummy frames to every peer; the number of peers.
uint8_t wlan_activate_links_qca(const char* ifname, const conf_param* param);
// One dummy frame to every peer idle longer than idle_threshold; the number
// of peers.
uint8_t wlan_activate_links_for_ap_qca(const char* ifname, const conf_param* param);
void wlan_delete_wds_entry_qca(const char* ifname, const uint8_t* mac);
// Runs wpa_cli reconnect for the station of a wireless type.
int wlan_restart_link_qca(uint32_t type);
