// Every wireless operation the modules call: the platform table, link
// state and records, and the back-end's interface and link queries.
#pragma once
#include <cstdint>

#include "core/types.h"
#include "wlan/link_records.h"
#include "wlan/link_state.h"
#include "wlan/wlan_link_info.h"
#include "wlan/wlan_platform.h"

// The backhaul station interface of each type; the second 5 GHz path has none.
extern const char* const link_ifname[IF_TYPE_MAX];

uint32_t wlan_get_type_by_ifname(const char* name);
uint32_t wlan_get_type_by_ifindex(uint32_t ifindex);
// The sub-unit number, or UINT32_MAX (-1) when the name has none.
uint32_t wlan_get_subunit_by_ifname(const char* name);
// The interface's index; the station MAC is not needed on QCA.
uint32_t wlan_get_wdsport_by_stamac(const char* ifname, const uint8_t* mac);
// Always 0: QCA keeps no WDS ports.
int wlan_check_wds_by_ifname(const char* ifname);

// 1 and the interface's first peer, or 0.
int wlan_get_links_v2(const char* ifname, wlan_link_info* link);
// The peers of an associated interface, at most max (links has room for max).
int wlan_get_sta_links(const char* ifname, wlan_link_info* links, int max);
// 1 when both counters were read; a counter not read keeps its value.
int wlan_get_link_counters(const char* ifname, wlan_link_counters* counters);

// Asks the station's supplicant of a wireless type (1..4) to reconnect: the
// tool's exit status, or -1 for a type without a station interface.
int wlan_restart_link(uint32_t type);
