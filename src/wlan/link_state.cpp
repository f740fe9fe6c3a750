#include "wlan/link_state.h"

#include "core/log.h"
#include "wlan/link_records.h"
#include "wlan/qca/link_stats_qca.h"
#include "wlan/wlan.h"

link_state_flags g_link_state = {};

void lynd_link_state_reset() { g_link_state = link_state_flags{}; }

namespace {

bool is_wireless(uint32_t type) { return type >= IF_TYPE_2G && type < IF_TYPE_MAX; }

}  // namespace

int lynd_check_link_state(uint32_t type) {
    return is_wireless(type) ? lynd_get_wireless_link_state(link_ifname[type]) : 0;
}

int lynd_check_link_state_v2(uint32_t type) {
    if (!is_wireless(type)) {
        LYND_ERR("interface type %d not support", static_cast<int>(type));
        return 0;
    }
    int state = lynd_check_link_state(type);
    lynd_check_and_reset_util_record(type, state);
    return state;
}

void lynd_check_and_reset_util_record(uint32_t type, int up) {
    if (type >= IF_TYPE_MAX)
        return;
    if (g_link_state.link_state[type] != 1 && up) {
        wlan_reset_util_record(type);
        wlan_reset_trinfo(type);
    }
    g_link_state.link_state[type] = up ? 1 : 0;
}

void lynd_set_link_state_changed(uint8_t flag) { g_link_state.link_state_changed = flag; }

uint8_t lynd_get_link_state_changed() { return g_link_state.link_state_changed; }

void lynd_reset_link_state_all() {
    for (uint8_t& flag : g_link_state.link_state)
        flag = 0;
}
