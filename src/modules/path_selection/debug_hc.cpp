#include "modules/path_selection/debug_hc.h"

#include "config/lynd_config.h"
#include "core/log.h"
#include "modules/path_selection/hc_records.h"
#include "wlan/wlan.h"

namespace {

constexpr const char* kFn = "path_selection_event_debug_hc";

constexpr uint32_t kOverloadBits = 31;

void set_dump(lynd_config* conf, uint32_t value) {
    if (value == TRI_KEEP)
        return;
    for (uint64_t i = 0; i < conf->n_bridges; i++) {
        if (value == TRI_ON)
            conf->bridges[i].flags |= BR_FLAG_DUMP;
        else
            conf->bridges[i].flags &= ~BR_FLAG_DUMP;
    }
}

void set_path_info(const debug_event& ev) {
    char name[sizeof ev.path.ifname + 1] = {};
    for (size_t i = 0; i < sizeof ev.path.ifname && ev.path.ifname[i] != '\0'; i++)
        name[i] = ev.path.ifname[i];
    uint32_t type = wlan_get_type_by_ifname(name);
    if (type < IF_TYPE_2G || type >= IF_TYPE_MAX)
        return;
    LYND_LOG_AS(kFn, "%s[%d] dbg path info", name, static_cast<int>(type));
    if (ev.subtype == DBG_SET_PATH_INFO)
        g_dbg_path_info[type] = ev.path;
    else
        g_dbg_path_info[type] = debug_path_info{};
}

}  // namespace

void path_selection_event_debug_hc(const debug_event* ev) {
    switch (ev->subtype) {
        case DBG_DUMP:
            set_dump(g_ps_conf, ev->value);
            break;
        case DBG_OVERLOAD:
            g_dbg_overload_mask = static_cast<uint8_t>(ev->value & kOverloadBits);
            break;
        case DBG_SET_PATH_INFO:
        case DBG_CLEAN_PATH_INFO:
            set_path_info(*ev);
            break;
        default:
            LYND_LOG("dbg subtype %d not implemented yet", ev->subtype);
            break;
    }
}
