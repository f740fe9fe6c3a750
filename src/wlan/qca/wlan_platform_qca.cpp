#include "wlan/qca/wlan_platform_qca.h"

#include "core/queries.h"
#include "wlan/qca/link_control_qca.h"
#include "wlan/qca/link_stats_qca.h"

namespace {

// Dual-band concurrency is off while the daemon runs and back on after it.
int qca_set_dbdc(const char* value) {
    const char* const argv[] = {"iwpriv", "wifi0", "dbdc_enable", value, nullptr};
    return lynd_tool_status(argv);
}

// The slot has no result; the peer count is of no use to its callers.
void activate_links_slot(const char* ifname, const conf_param* param) {
    (void)wlan_activate_links_qca(ifname, param);
}

}  // namespace

void wlan_mac_check_qca(const uint8_t* a, uint8_t* b) {
    // The driver derives a radio's addresses by flipping bits of the first
    // octet; differences of 0, 4, 8 or 12 mean the same station.
    uint8_t d = a[0] > b[0] ? static_cast<uint8_t>(a[0] - b[0]) : static_cast<uint8_t>(b[0] - a[0]);
    if (d == 0 || d == 4 || d == 8 || d == 12)
        b[0] = a[0];
}

bool wlan_get_util_adjustment_qca(const char*, uint8_t, uint8_t* adj) {
    if (adj != nullptr)
        *adj = 0;
    return true;
}

bool wlan_get_if_tx_rx_stat_qca(const char*, void*) { return false; }

int qca_platform_init() { return qca_set_dbdc("0"); }

int qca_platform_finit() { return qca_set_dbdc("1"); }

const wlan_platform wlan_platform_qca = {
    wlan_get_uplink_rate_qca,
    wlan_get_channel_utilization_qca,
    activate_links_slot,
    wlan_activate_links_for_ap_qca,
    wlan_delete_wds_entry_qca,
    wlan_get_util_adjustment_qca,
    nullptr,  // is_5g_low_noise
    wlan_get_links_qca,
    wlan_get_if_tx_rx_stat_qca,
    nullptr,  // flush_all_fcache_flow
    nullptr,  // flush_fcache_flow_entry
    nullptr,  // update_flow_brlist
    nullptr,  // get_maximal_ha_entries_from_fcache
    nullptr,  // flush_fc_flow_by_mac
    wlan_mac_check_qca,
    qca_platform_init,
    qca_platform_finit,
    nullptr,  // platform_test
    wlan_restart_link_qca,
};
