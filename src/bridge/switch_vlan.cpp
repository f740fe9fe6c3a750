#include <cstring>

#include "node/mesh_reply.h"
#include "bridge/switch_vlan.h"
#include "core/queries.h"
#include "core/log.h"

namespace {

constexpr const char* kBhEthText = "ubus call map get_bh_eth";

// True when name begins with a configured interface's name. A record without
// a name matches nothing.
bool names_an_interface(const lynd_config* conf, const char* name) {
    for (uint64_t i = 0; i < conf->n_interfaces && i < LYND_MAX_INTERFACES; i++) {
        const char* own = conf->interfaces[i].name;
        size_t len = strnlen(own, LYND_NAME_LEN);
        if (len > 0 && std::strncmp(name, own, len) == 0)
            return true;
    }
    return false;
}

// At most 15 characters: the field always keeps its terminator.
void set_primary_names(lynd_config* conf, const char* name) {
    for (uint64_t i = 0; i < conf->n_interfaces && i < LYND_MAX_INTERFACES; i++) {
        conf_interface& r = conf->interfaces[i];
        if (r.type != IF_TYPE_ETH || !r.is_ts_vlan || !r.switch_vlan_interface)
            continue;
        std::memset(r.primary_name, 0, sizeof r.primary_name);
        std::memcpy(r.primary_name, name, strnlen(name, sizeof r.primary_name - 1));
    }
}

}  // namespace

int lynd_update_switch_vlan_interface_primary_name(lynd_config* conf) {
    if (!conf->ts.enable)
        return 0;
    static const char* const argv[] = {"ubus", "call", "map", "get_bh_eth", nullptr};
    char reply[LYND_MESH_REPLY_MAX] = {};
    int32_t n = lynd_exec_and_res(argv, reply, sizeof reply);
    if (n < 0) {
        LYND_DEBUG("call: %s fail", kBhEthText);
        return 0;
    }
    char name[LYND_BH_ETH_NAME_LEN] = {};
    switch (lynd_parse_bh_eth_reply(reply, static_cast<size_t>(n), name)) {
    case bh_eth_reply::FAILED:
        LYND_DEBUG("%s: no success code of 0", kBhEthText);
        return 0;
    case bh_eth_reply::NO_NAME:
        break;
    case bh_eth_reply::NAME:
        if (!names_an_interface(conf, name)) {
            LYND_DEBUG("bh_eth_name %s matches no interface", name);
            return 0;
        }
        LYND_LOG("bh_eth_name: %s", name);
        break;
    }
    set_primary_names(conf, name);
    return 1;
}
