#include <cctype>
#include <cstring>

#include "bridge/vlan_name.h"
#include "config/lynd_config.h"

int lynd_get_home_name(char* out, const char* name) {
    std::memset(out, 0, LYND_NAME_LEN);
    const char* dot = std::strrchr(name, '.');
    size_t len = std::strlen(name);
    if (dot != nullptr && dot - name <= LYND_NAME_LEN)
        len = static_cast<size_t>(dot - name);
    std::memcpy(out, name, len < LYND_NAME_LEN - 1 ? len : LYND_NAME_LEN - 1);
    return 1;
}

uint32_t lynd_get_vlan_id(const char* name) {
    size_t len = std::strlen(name);
    size_t i = len;
    while (i > 0 && std::isdigit(static_cast<unsigned char>(name[i - 1])))
        i--;
    if (i == 0 || name[i - 1] != '.' || i == len)
        return 0;
    uint32_t vid = 0;
    for (size_t k = i; k < len && vid <= 4095; k++)  // stops growing once out of range
        vid = vid * 10 + static_cast<uint32_t>(name[k] - '0');
    return vid >= 1 && vid <= 4095 ? vid : 0;
}

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
