// Under traffic separation a client's traffic leaves through the VLAN
// sub-interface of its own VLAN, or of the primary one.
#pragma once
#include <cstdint>

#include "bridge/table_entries.h"
#include "config/lynd_config.h"
#include "modules/path_selection/hc_records.h"

// The name a client coming in on src_ifname is sent to on the path named
// base: base itself without separation, else home "." VLAN when that VLAN
// (the client's, else the primary one) is set. out has LYND_NAME_LEN bytes.
void path_selection_ts_dst_name(const lynd_config* conf, const char* base, const char* src_ifname, char* out);

void path_selection_check_dst_vlan_hc_table(lynd_config* conf, conf_bridge* bridge, hc_path* paths);
// path may be null (a new entry): the home is the current destination's.
void path_selection_ts_vlan_hc_update(lynd_config* conf, conf_bridge* bridge, hc_entry* hc, const hc_path* path);
