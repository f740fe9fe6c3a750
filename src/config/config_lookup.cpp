#include <cstring>

#include "config/config.h"
#include "core/log.h"
#include "platform/seams.h"

conf_interface* config_find_interface_by_name(lynd_config* conf, const char* name) {
    for (uint64_t i = 0; i < conf->n_interfaces; i++)
        if (std::strcmp(conf->interfaces[i].name, name) == 0)
            return &conf->interfaces[i];
    return nullptr;
}

bool config_index_to_name(uint32_t ifindex, char* name) { return lynd::host().if_indextoname(ifindex, name); }

conf_interface* config_find_interface_by_index(lynd_config* conf, uint32_t ifindex) {
    char name[LYND_NAME_LEN] = {};
    if (!config_index_to_name(ifindex, name)) {
        LYND_ERR("if_indextoname");
        return nullptr;
    }
    return config_find_interface_by_name(conf, name);
}
