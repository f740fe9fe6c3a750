// STAND-IN until loop avoidance lands.
#pragma once
#include "config/lynd_config.h"

void loop_avoidance_set_bcast_port_by_ps(lynd_config* conf, conf_bridge* bridge, const char* port_name);
