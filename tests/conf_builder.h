// Hand-built configurations for tests that do not go through the loader.
#pragma once
#include <cstdio>

#include "config/lynd_config.h"

inline conf_bridge& add_bridge(lynd_config& c, const char* name, uint32_t flags = BR_FLAG_LOOP_AVOIDANCE) {
    conf_bridge& b = c.bridges[c.n_bridges++];
    std::snprintf(b.name, sizeof b.name, "%s", name);
    b.flags = flags;
    return b;
}

inline conf_interface& add_iface(lynd_config& c, const char* name, uint32_t type, bool path = true,
                                 bool relay = true) {
    conf_interface& i = c.interfaces[c.n_interfaces++];
    std::snprintf(i.name, sizeof i.name, "%s", name);
    i.type = type;
    i.path = path;
    i.relay = relay;
    i.compat_group = 255;
    return i;
}
