#include "sim/wlan_platform_sim.h"

#include "wlan/qca/wlan_platform_qca.h"

const wlan_platform wlan_platform_sim = wlan_platform_qca;
