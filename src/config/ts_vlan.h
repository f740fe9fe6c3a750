// Which VLAN an interface's traffic travels in under traffic separation.
#pragma once
#include <cstdint>

#include "config/lynd_config.h"

// The VLAN of ifname under traffic separation, or 0.
uint32_t lynd_get_ts_vlan(const lynd_config* conf, const char* ifname);

int lynd_is_ts_vlan(const lynd_config* conf, uint32_t vid);
