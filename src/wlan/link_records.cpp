#include "wlan/link_records.h"

#include "core/log.h"

wlan_link_records g_wlan_link_records = {};

void wlan_link_records_reset() { g_wlan_link_records = wlan_link_records{}; }

void wlan_reset_util_record(uint32_t type) {
    if (type >= IF_TYPE_MAX)
        return;
    LYND_DEBUG("reset %d util_record", static_cast<int>(type));
    for (uint8_t& sample : g_wlan_link_records.util_record[type])
        sample = 0;
    g_wlan_link_records.util_total[type] = 0;
}

void wlan_reset_trinfo(uint32_t type) {
    if (type < IF_TYPE_MAX)
        g_wlan_link_records.trinfo[type] = traffic_record{};
}
