#include "config/ts_vlan.h"

#include <cstring>

#include "core/vlan_name.h"

int lynd_is_ts_vlan(const lynd_config* conf, uint32_t vid) {
    for (uint32_t i = 0; i < conf->ts.vlan_count && i < TS_MAX_VLANS; i++)
        if (conf->ts.vlan_ids[i] == vid)
            return 1;
    return 0;
}

uint32_t lynd_get_ts_vlan(const lynd_config* conf, const char* ifname) {
    if (!conf->ts.enable)
        return 0;
    if (conf->ts.policy_count != 0 && conf->ts.vlan_count != 0) {
        for (uint64_t i = 0; i < conf->n_interfaces; i++)
            if (std::strncmp(conf->interfaces[i].name, ifname, LYND_NAME_LEN) == 0)
                return conf->interfaces[i].ts_vlan_id;
    }
    return lynd_get_vlan_id(ifname);
}
