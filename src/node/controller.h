// The mesh controller (CAP): its MAC address, asked of the mesh daemon, and
// whether this node hangs directly below it.
#pragma once
#include <cstdint>

#include "core/mac.h"

// The controller's MAC once a discovery succeeded; all zero means unknown.
extern uint8_t g_cap_mac[LYND_MAC_LEN];
void lynd_cap_mac_reset();

// 1 with the controller's MAC in mac_out (all zero when the daemon's answer
// holds no readable address, so the next call asks again), or 0.
int lynd_get_cap_mac(uint8_t* mac_out);
// 1 when this node is at mesh level 1.
int lynd_check_direct_connect_cap();
// 1 with the controller's MAC in mac_out when this node is at level 1 and the
// MAC is known; otherwise 0 and mac_out untouched.
int lynd_get_parent_mac(uint8_t* mac_out);
