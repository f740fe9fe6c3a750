// Programming every loop-avoidance bridge for a work mode: the bridge-wide
// switches and, per port, its groups, VLAN, broadcast permission, class,
// path flag and type.
#pragma once
#include <cstdint>

#include "config/lynd_config.h"

void loop_avoidance_configure_bridge_with_mode(lynd_config* conf, uint32_t mode);
// The same for the node's own work mode.
void loop_avoidance_configure_bridge(lynd_config* conf);
const char* loop_avoidance_mode_name(uint32_t mode);
