// Link measurements into the path and client records: samples of the
// backhaul and station links every short period, rates, utilisation and
// byte counters of the paths every period.
#pragma once
#include <cstdint>

#include "config/lynd_config.h"
#include "modules/path_selection/hc_records.h"

void path_selection_sample_wlan_path_info(hc_path* path);
void path_selection_sample_wlan_sta_info(hc_path* paths, uint32_t path_type);
void path_selection_update_hc_paths(conf_bridge* bridge, hc_path* paths);
uint32_t path_selection_get_wl_sta_info_rate(const hc_client* c);
int wlan_get_uplink_rate_v2(const char* ifname, uint16_t* rate, uint16_t* txrate, uint16_t* rxrate);
// The name a path or AP interface is measured under: its parent under
// traffic separation. out has LYND_NAME_LEN bytes.
void path_selection_sampling_name(const char* name, char* out);
