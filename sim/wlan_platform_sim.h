#pragma once
#include "wlan/wlan_platform.h"

// The WLAN table of the simulated node: the QCA back-end's own code, whose
// tools and driver answer from the scenario.
extern const wlan_platform wlan_platform_sim;
