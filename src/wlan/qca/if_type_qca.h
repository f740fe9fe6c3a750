// Interface names, indexes and type codes on QCA: "ath" plus a radio digit
// (0 2.4 GHz, 1 5 GHz, 2 6 GHz) and a sub-unit digit; "eth" for Ethernet.
#pragma once
#include <cstdint>

#include "core/types.h"

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
