#pragma once
#include "wlan/wlan_platform.h"

// The WLAN table of the simulated node: the QCA back-end's functions that
// reach the world only through the host seam (its tools answer from the
// scenario). The radio slots stay empty until the node has radios.
extern const wlan_platform wlan_platform_sim;
