#include "daemon/platform_hooks.h"

#include "platform/seams.h"
#include "wlan/wlan_platform.h"

void config_bridge(lynd_config*) { (void)lynd_platform_init(); }

void config_bridge_revert(lynd_config* conf) {
    lynd_platform_finit();
    for (uint64_t i = 0; i < conf->n_bridges; i++)
        (void)lynd::krel().bridgeStopAPS(conf->bridges[i].name);
}
