// Link checks this platform has no source for: each answers 0.
#pragma once
#include <cstdint>

#include "config/lynd_config.h"

int lynd_check_abnormal_link(uint32_t type);
int lynd_check_eth_has_neigh(const lynd_config* conf, const char* name);
int update_eth_traffic_ports(lynd_config* conf, int count, conf_interface* const* ports);
int eth_traffic_is_active();
