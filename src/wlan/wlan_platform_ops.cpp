#include "wlan/qca/wlan_platform_qca.h"
#include "wlan/wlan_platform.h"

const wlan_platform* wlan_platform_ops = &wlan_platform_qca;
