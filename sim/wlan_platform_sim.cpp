#include "sim/wlan_platform_sim.h"

#include "wlan/qca/wlan_platform_qca.h"

// Named slot by slot rather than copied from the QCA table, so a QCA slot
// that talks to a real driver never reaches the simulator by accident.
const wlan_platform wlan_platform_sim = {
    nullptr,  // get_uplink_rate
    nullptr,  // get_channel_utilization
    nullptr,  // activate_links
    nullptr,  // activate_links_for_ap
    nullptr,  // delete_wds_entry
    wlan_get_util_adjustment_qca,
    nullptr,  // is_5g_low_noise
    nullptr,  // get_links
    wlan_get_if_tx_rx_stat_qca,
    nullptr,  // flush_all_fcache_flow
    nullptr,  // flush_fcache_flow_entry
    nullptr,  // update_flow_brlist
    nullptr,  // get_maximal_ha_entries_from_fcache
    nullptr,  // flush_fc_flow_by_mac
    wlan_mac_check_qca,
    qca_platform_init,  // iwpriv through the simulated host's tools
    qca_platform_finit,
    nullptr,  // platform_test
};
