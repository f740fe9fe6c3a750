#include <cstring>

#include "bridge/port_inventory.h"
#include "core/uci_query.h"
#include "event/event_types.h"

uint32_t lynd_get_work_mode() {
    char mode[32] = {};
    char role[32] = {};
    (void)lynd_uci_get_value("sysmode.sysmode.mode", mode, sizeof mode);
    (void)lynd_uci_get_value("meshd.meshd.role", role, sizeof role);
    if (std::strncmp(mode, "router", 6) == 0 && std::strncmp(role, "controller", 10) == 0)
        return WORK_MODE_FAP;
    return WORK_MODE_RE;
}
