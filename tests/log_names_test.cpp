// Each log line names the operation it belongs to, never a helper that
// printed it for that operation: the bundled scenarios' logs at the most
// verbose level, checked against a table of lines and their operations.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "core/log.h"
#include "scenario_text.h"
#include "sim/sim_node.h"

namespace {

struct NamedLine {
    const char* tag;
    const char* format;  // the text after "[%s, %d] "
    const char* fn;
};

// Lines whose text several operations print alike ("init done", "start",
// "call: %s", ...) are left out: their text does not tell the operation.
const NamedLine kLines[] = {
    // Daemon entry and logging
    {"LOG", "g_lynd_dgb_lvl=%d!", "main"},
    {"LOG", "set libkrel g_dgb_lvl=%d!", "main"},
    {"ERR", "lynd disabled", "main"},
    {"WARN", "%s initialized", "main"},
    // Configuration and traffic separation
    {"WARN", "br %s ps mode set to HC", "config_load"},
    {"INFO", "Bridges:", "config_dump"},
    {"INFO", "%s ==> flags: %d, loop_avoidance: %d, path_selection: %d", "config_dump"},
    {"INFO", "Interfaces:", "config_dump"},
    {"INFO", "%s ==>type: %d, compat_group: %d, relay: %d, ts_vap:%d, ts_vlan:%d, ts_vid:%d, support_ts:%d if_class:%d", "config_dump"},
    {"INFO", "Param:", "config_dump"},
    {"INFO", "\tperiod: %d, low_threhold: %d", "config_dump"},
    {"INFO", "-----------dump TS info--------------------------------------", "config_dump"},
    {"INFO", "TS enable:%d, \tprimary_vlan:%d, \tpolicy_count:%d, \tvlan_count:%d", "config_dump"},
    {"INFO", "policy[%d].vlan_id:%d, is_primary:%d, ssid:%s", "config_dump"},
    {"INFO", "-----------dump TS info end-----------------------------------", "config_dump"},
    {"DEBUG", "ts primary vlan is %d", "traffic_separation_config_load"},
    {"DEBUG", "ts policy count is %d", "traffic_separation_config_load"},
    {"DEBUG", "ts policy count:%d, vlan count is %d", "traffic_separation_config_load"},
    {"INFO", "LYND exit TS mode", "traffic_separation_config_load"},
    {"DEBUG", "ts vlan_id[%d] %d", "traffic_separation_config_load"},
    {"DEBUG", "port:%s support ts vlan", "traffic_separation_config_load"},
    {"DEBUG", "new m:%d, interface_name:%s", "traffic_separation_config_load"},
    {"DEBUG", "newinterface_name:%s", "traffic_separation_config_load"},
    {"ERR", "get ssid faild", "traffic_separation_config_load"},
    {"DEBUG", "ts_vap_interface:%s, ssid:%s", "traffic_separation_config_load"},
    {"DEBUG", "newinterface:%s ts_vlan_id: %d is_ts_vlan: %d\n", "traffic_separation_config_load"},
    {"DEBUG", "interface:%s ts_vlan_id:%d is_ts_vlan:%d", "traffic_separation_config_load"},
    {"DEBUG", "conf->n_interfaces: %d->%d", "traffic_separation_config_load"},
    // Events
    {"DEBUG", "ubus receive:%s", "event_ubus_receive_cb"},
    {"WARN", "unknown subtype", "event_ubus_receive_cb"},
    {"WARN", "work mode: %d", "event_ubus_receive_configure"},
    {"DEBUG", "link_state parse ", "event_ubus_receive_link_state"},
    {"DEBUG", "link_state parse failed", "event_ubus_receive_link_state"},
    {"DEBUG", "eth%d state %d", "event_ubus_receive_link_state"},
    {"DEBUG", "eth%d link state change, need_reconfig", "event_ubus_receive_link_state"},
    {"DEBUG", "%s set path info: txrate=%d rxrate=%d rssi=%d noise=%d txbytes=%d rxbytes=%d", "event_ubus_receive_debug"},
    {"LOG", "Set pathsel_mode to %d", "event_ubus_receive_debug"},
    {"ERR", "bridgeSetEventInfo", "event_bridge_set_event"},
    {"ERR", "NLMSG_OK(nlh[%d], len[%d])", "event_hyfi_nl_cb"},
    {"DEBUG", "wifi flush table", "nl_wifi_newlink_handle"},
    // Bridge and host access
    {"ERR", "No such interface %u, name:%s", "lynd_get_active_ports"},
    {"TRACE", "active ports count:%d", "lynd_get_active_ports"},
    {"TRACE", "port %d: name %s type %d relay %d path %d compat %d wired_primary_name %s", "lynd_get_active_ports"},
    {"TRACE", "client[%d]: mac %02x:%02x:%02x:%02x:%02x:%02x relay %d type %d fdb_port %u hd_port %u hac_port %u", "lynd_dump_client_list"},
    {"INFO", "set preferred to %d", "lynd_set_hc_preferred"},
    {"LOG", "cpu =================> %u", "lynd_calculate_cpu_occupy"},
    {"DEBUG", "send dummy packet, ifname: %s, if_mac: %02X-%02X len: %d", "lynd_activate_link"},
    // WLAN platform
    {"DEBUG", "wlan %s get links idx=%d", "wlan_get_links_qca"},
    {"WARN", "ioctl", "wlan_get_links_v2"},
    {"WARN", "ioctl get failed", "wlan_get_links_v2"},
    {"DEBUG", "%s not linked", "wlan_get_sta_links"},
    {"LOG", "uplink count  %s txbyte:%llu, rxbyte:%llu, %s", "wlan_get_link_counters"},
    {"DEBUG", "%s not Associa", "lynd_get_wireless_link_state"},
    {"WARN", "not get src iface[%s] type", "_ifname2type"},
    {"DEBUG", "src iface[%s] type is %d", "_ifname2type"},
    {"DEBUG", "ifname(%s) subunit is %d", "_get_ifname_subunit"},
    {"DEBUG", "fail to get ifname(%s) subunit", "_get_ifname_subunit"},
    {"WARN", "Cannot check wds by ifname(%s), because QCA does not have wds", "wlan_check_wds_by_ifname"},
    {"DEBUG", "reset %d util_record", "wlan_reset_util_record"},
    // Loop avoidance
    {"DEBUG", "configure hyfi bridge with mode %s", "loop_avoidance_configure_bridge_with_mode"},
    {"DEBUG", "bridge %s running_state 0x%x", "loop_avoidance_configure_bridge_with_mode"},
    {"DEBUG", "setup %s", "loop_avoidance_configure_bridge_with_mode"},
    {"DEBUG", "name:%s, compat_group:%d, relay:%d", "loop_avoidance_configure_bridge_with_mode"},
    {"INFO", "===>[%d] bcast_port_0:%s, bcast_port_1:%s", "loop_avoidance_configure_bridge_with_mode"},
    {"DEBUG", "bcast_port_count:%d, count:%d", "loop_avoidance_configure_bridge_with_mode"},
    {"ERR", "bridgeSetIFCompat ifname %s", "loop_avoidance_configure_bridge_with_mode"},
    {"DEBUG", "bridgeSetIFBroadcast bridge:%s, name:%s, bcast:%d", "loop_avoidance_configure_bridge_with_mode"},
    {"DEBUG", "cur_name:%s, priority cur/conf %d/%d", "loop_avoidance_pick_bcast_nonrelay_port"},
    {"DEBUG", "Pick %s as broadcast nonrelay port!", "loop_avoidance_pick_bcast_nonrelay_port"},
    {"DEBUG", "=====>[%d] vid:%d bcast_port_0:%s, bcast_port_1:%s", "loop_avoidance_set_bcast_port"},
    {"INFO", "set bcast type:%d", "loop_avoidance_set_bcast_port"},
    {"DEBUG", "event %d\n", "loop_avoidance_event_cb"},
    {"DEBUG", "get configure event", "loop_avoidance_event_cb"},
    {"WARN", "reconfig bridge", "loop_avoidance_event_cb"},
    {"DEBUG", "flush fc flow by mac: %02X:%02X:%02X:%02X:%02X:%02X", "loop_avoidance_event_fdb_update"},
    {"DEBUG", "update fdb from if: %s", "loop_avoidance_delete_wds_entry"},
    {"DEBUG", "bridge type:%d\n", "loop_avoidance_event_cb"},
    // Path selection
    {"INFO", "reset hc path info", "path_selection_event_cb"},
    {"DEBUG", "debug  subtype %d", "path_selection_event_debug"},
    {"DEBUG", "Cancel path selection timer", "path_selection_event_debug"},
    {"DEBUG", "Start path selection timer", "path_selection_event_debug"},
    {"DEBUG", "time_interval(ms): %lld", "lynd_update_time"},
    {"WARN", "%s maybe not ap interface", "path_selection_find_ap_iface_by_hc"},
    {"INFO", "TS enable, not init no primary vlan path:%s", "path_selection_hc_path_init"},
    {"DEBUG", "[type %d][subunit %d] inited, iface %s, ifindex %d", "path_selection_hc_path_init"},
    {"DEBUG", "sample backhaul wlan info", "path_selection_sample_wlan_path_info"},
    {"DEBUG", "iface[%s], type[%d]", "path_selection_sample_wlan_path_info"},
    {"DEBUG", "sample DUT AP STAs wlan info", "path_selection_sample_wlan_sta_info"},
    {"DEBUG", "ap_iface name:%s", "path_selection_sample_wlan_sta_info"},
    {"DEBUG", "hc_paths[path_type].path.name:%s", "path_selection_update_hc_paths"},
    {"WARN", "history, array_index[%d]", "path_selection_sample_wlan_path_info"},
    {"LOG", "Path is unlink last time, not enough data(path_history num=%d)", "path_selection_evaluate_path_state"},
    {"DEBUG", "path %s, ma_rssi:%ddB, ma_snr:%ddB, rate %u,(smooth:%u)", "path_selection_evaluate_path_state"},
    {"DEBUG", "txrate:%d, rxrate:%d, incre_txbytes:%lld(%llu->%llu)", "path_selection_evaluate_path_state"},
    {"LOG", "path[%s] be assessed to WEAKLINK, last status is %d", "path_selection_evaluate_path_state"},
    {"DEBUG", "path[%s] still to WEAKLINK", "path_selection_evaluate_path_state"},
    {"DEBUG", "path[%s] from %s into to WEAKLINK", "path_selection_evaluate_path_state"},
    {"LOG", "path[%s] be assessed to WEAKLINK hold, last status is %d", "path_selection_evaluate_path_state"},
    {"LOG", "path[%s] be assessed to NORMAL, last status is %d", "path_selection_evaluate_path_state"},
    {"LOG", "path[%s] be assessed to ABNORMAL, last status is %d", "path_selection_evaluate_path_state"},
    {"DEBUG", "path[%s] still to ABNORMAL", "path_selection_evaluate_path_state"},
    {"DEBUG", "path[%s] from %s into to ABNORMAL", "path_selection_evaluate_path_state"},
    {"WARN", "highest priority link state:%s, can not adjust!", "path_selection_pre_update_weak_abnormal_path"},
    {"WARN", "cpu overload! lynd will not select 2.4G!", "path_selection_init_path_quota_v2"},
    {"WARN", "%s is abnomal! lynd will not select it!", "path_selection_init_path_quota_v2"},
    {"WARN", "%s is weak! lynd will not select it!", "path_selection_init_path_quota_v2"},
    {"LOG", "path: %s, util: %d, quota: %d, rate: %d", "path_selection_init_path_quota_v2"},
    {"LOG", "path %s is overloaded", "path_selection_check_path_overload_v2"},
    {"LOG", "wlan client[%02x:%02x:%02x:%02x:%02x:%02x] sta_type[%d] path_type[%d]", "path_selection_find_best_path_v2"},
    {"LOG", "quality: backhaul=%lld sta=%lld path=%lld", "path_selection_find_best_path_v2"},
    {"LOG", "client[%02x:%02x:%02x:%02x:%02x:%02x] best path:%s, quality:%lld", "path_selection_find_best_path_v2"},
    {"LOG", "best path:%s", "path_selection_find_best_path_v2"},
    {"DEBUG", "number of hc items: %d", "path_selection_update_hc_clients"},
    {"DEBUG", "hc_table[%d].client:%x-%x-%x-%x-%x-%x, id:%x-%x-%x-%x-%x-%x， srcPort%d, dstPort:%d", "path_selection_update_hc_clients"},
    {"LOG", "delete hc_entry(%02x:%02x:%02x:%02x:%02x:%02x) sport(%d) dport(%d)", "path_selection_update_hc_clients"},
    {"DEBUG", "hc item: client(%02x:%02x:%02x:%02x:%02x:%02x) sport(%d) dport(%d) packets(%lld) bytes(%lld)", "path_selection_update_hc_clients"},
    {"DEBUG", "best path:%s", "path_selection_update_uplink_path_for_hc_v2"},
    {"DEBUG", "has_path_overload:%d, has_clients_on_busy_path:%d", "path_selection_update_uplink_path_for_hc_v2"},
    {"INFO", "node magic:%x, hc magic:%d", "path_selection_update_uplink_hc_table_v2"},
    {"INFO", "not busy, not adjust :%s", "path_selection_update_uplink_hc_table_v2"},
    {"LOG", "hc[%02x:%02x:%02x:%02x:%02x:%02x] is assoc newly, change path %s to %s", "path_selection_update_uplink_hc_table_v2"},
    {"LOG", "adjust_quota: %d", "path_selection_update_uplink_hc_table_v2"},
    {"LOG", "cur hc(%02x-%02x-%02x-%02x-%02x-%02x) quota: %d rate(Mbps) %u time(ms) %lld", "path_selection_update_uplink_hc_table_v2"},
    {"DEBUG", "handle_count:%d", "path_selection_update_uplink_hc_table_v2"},
    {"INFO", "set hc(%02x-%02x-%02x-%02x-%02x-%02x) to %s", "path_selection_update_uplink_hc_table_v2"},
    {"INFO", "best_path_name:%s", "path_selection_update_uplink_hc_table_v2"},
    {"INFO", "set hc(%02x:%02x:%02x:%02x:%02x:%02x) to %s", "path_selection_pre_update_uplink_path_for_hc_v2"},
    {"INFO", "[%d]path_port: %s", "path_selection_show_path_ports"},
    {"INFO", "path %s: last_status %u curr_status %u", "path_selection_startup_uplink"},
    {"INFO", "startup set preferred to %s", "path_selection_startup_uplink"},
    {"DEBUG", "ap_iface:%s wds:%d", "path_selection_startup_aplink"},
    {"DEBUG", "active_ports[%s] add to path port list", "path_selection_while_hc_enabled"},
    {"DEBUG", "active_ports[%s] add to relay port list", "path_selection_while_hc_enabled"},
    {"DEBUG", "client_list num=%d", "path_selection_while_hc_enabled"},
    {"DEBUG", "  [%d]%02x:%02x:%02x:%02x:%02x:%02x", "path_selection_while_hc_enabled"},
    {"DEBUG", "Path %s in ABNORMAL(count=%d), send pkts to keep alive", "path_selection_activate_uplink_paths"},
    {"DEBUG", "No sta in path %s, send pkts to keep alive", "path_selection_activate_uplink_paths"},
    {"WARN", "sample %s path(status %d) and STAs info", "path_selection_sample_wlan_info"},
    {"DEBUG", "path %s: last_status %u curr_status %u", "path_selection_emergency_set_preferred"},
    {"INFO", "Emergently set preferred to %s", "path_selection_emergency_set_preferred"},
    {"INFO", "Recv add hc table notify, mac[%02x:%02x:%02x:%02x:%02x:%02x], src[%d], dst[%d]", "path_selection_event_add_entry_hc"},
    {"DEBUG", "bridge %s", "path_selection_timer_short_period_hc"},
    {"LOG", "%s[%d] dbg path info", "path_selection_event_debug_hc"},
    {"DEBUG", "ts disable, do nothing", "path_selection_check_dst_vlan_hc_table"},
    {"DEBUG", "path :%d name:%s", "path_selection_check_dst_vlan_hc_table"},
    {"DEBUG", "src_ifname:%s, dst_name:%s, home_name:%s, svid:%d, dvid:%d, dst_index:%d", "path_selection_ts_vlan_hc_update"},
    {"INFO", "update hc(%02x-%02x-%02x-%02x-%02x-%02x) dst from %s to %s", "path_selection_ts_vlan_hc_update"},
};

// Whether text is what format prints: a conversion matches a number (or, for
// %s, any run of characters); everything else must stand as it is.
bool prints(const char* format, const char* text) {
    if (*format == '\0')
        return *text == '\0';
    if (*format != '%')
        return *format == *text && prints(format + 1, text + 1);
    const char* f = format + 1;
    while (std::strchr("-+ #0123456789.lhz", *f) != nullptr && *f != '\0')
        f++;
    if (*f == 's') {
        for (const char* t = text;; t++) {
            if (prints(f + 1, t))
                return true;
            if (*t == '\0')
                return false;
        }
    }
    const char* t = text;
    if (*t == '-')
        t++;
    const char* digits = t;
    while (std::isxdigit(static_cast<unsigned char>(*t)))
        t++;
    for (; t > digits; t--)
        if (prints(f + 1, t))
            return true;
    return false;
}

size_t literal_length(const char* format) {
    size_t n = 0;
    for (const char* f = format; *f != '\0'; f++)
        n += *f != '%' ? 1 : 0;
    return n;
}

// The table row a console line is, the one with the most fixed text when
// several fit; null when none does. *fn receives the name the line shows.
const NamedLine* row_of(const std::string& line, std::string* fn) {
    if (line.compare(0, 6, "<LYND_") != 0)
        return nullptr;
    size_t tag_end = line.find(">[");
    size_t comma = line.find(", ", tag_end);
    size_t text = line.find("] ", comma);
    if (tag_end == std::string::npos || comma == std::string::npos || text == std::string::npos)
        return nullptr;
    std::string tag = line.substr(6, tag_end - 6);
    const NamedLine* best = nullptr;
    for (const NamedLine& r : kLines) {
        if (tag == r.tag && prints(r.format, line.c_str() + text + 2) &&
            (best == nullptr || literal_length(r.format) > literal_length(best->format)))
            best = &r;
    }
    *fn = line.substr(tag_end + 2, comma - tag_end - 2);
    return best;
}

std::vector<std::string> verbose_log(const std::string& name) {
    const lynd::Scenario sc = bundled(name);
    lynd::SimNode node(sc);
    run_kept(node, {"-l", "6"});
    g_lynd_dgb_lvl = 1;
    g_dgb_lvl = 0;
    return node.host().console_lines();
}

TEST(LogNames, EveryLineNamesTheOperationItBelongsTo) {
    // Every bundled scenario but the day-long one, whose log at this level
    // only repeats what the others show, and the two that end the process.
    const char* const scenarios[] = {
        "bridge_failures",   "bus_and_netlink_events", "bus_restart",         "demo",          "disabled",
        "loop_avoidance",    "operator_logs",          "path_startup",        "ps_all_down",   "ps_cpu_overload",
        "ps_eth_unplugged",  "ps_flap_guard",          "ps_flap_unguarded",   "ps_peer_lost",  "ps_pinned_clients",
        "ps_preferred_return", "ps_shadow",            "ps_stalled_uplink",   "ps_status",     "ps_ts_vlan",
        "ps_weak_5g",        "record_restart",         "traffic_separation",
    };
    std::vector<bool> seen(std::size(kLines));
    for (const char* name : scenarios) {
        for (const std::string& line : verbose_log(name)) {
            std::string fn;
            const NamedLine* r = row_of(line, &fn);
            if (r == nullptr)
                continue;
            seen[static_cast<size_t>(r - kLines)] = true;
            EXPECT_EQ(r->fn, fn) << name << ": " << line;
        }
    }
    // A row no scenario prints would check nothing.
    for (size_t i = 0; i < std::size(kLines); i++)
        EXPECT_TRUE(seen[i]) << "no scenario prints: <LYND_" << kLines[i].tag << "> " << kLines[i].format;
}

TEST(LogNames, AFormatMatchesOnlyWhatItPrints) {
    const struct {
        const char* format;
        const char* text;
        bool match;
    } cases[] = {
        {"eth%d state %d", "eth1 state 0", true},
        {"eth%d state %d", "eth1 state", false},
        {"set preferred to %d", "set preferred to 12 and clear hc table", false},
        {"set preferred to %d and clear hc table", "set preferred to 12 and clear hc table", true},
        {"%s ==> flags: %d", "br-lan ==> flags: -3", true},
        {"path[%s] into to WEAKLINK", "path[ath12] into to WEAKLINK+ABNORMAL", false},
        {"mac %02x:%02x", "mac 0a:ff", true},
        {"event %d\n", "event 3\n", true},
        {"event %d\n", "event 3", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.match, prints(c.format, c.text)) << c.format << " / " << c.text;
}

}  // namespace
