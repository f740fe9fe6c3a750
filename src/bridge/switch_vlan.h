// The wired backhaul of a switch-VLAN set-up, learned from the mesh daemon.
#pragma once
#include "config/lynd_config.h"

// 1 when the primary names of the Ethernet TS VLAN records were updated
// (cleared when the daemon names no backhaul), else 0.
int lynd_update_switch_vlan_interface_primary_name(lynd_config* conf);
