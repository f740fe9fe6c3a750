#include "targets/check/check_printer.h"

#include <cstdarg>

#include "config/config.h"

namespace {

const char* yes_no(bool b) { return b ? "true" : "false"; }

void print_bands(std::FILE* out, const char* name, const int32_t* v) {
    std::fprintf(out, "  %s: 2g %d, 5g %d, 6g %d\n", name, static_cast<int>(v[0]), static_cast<int>(v[1]),
                 static_cast<int>(v[2]));
}

void print_bridges(const lynd_config& c, std::FILE* out) {
    for (uint64_t i = 0; i < c.n_bridges; i++) {
        const conf_bridge& b = c.bridges[i];
        std::fprintf(out, "bridge %s: loop_avoidance %s, path_selection %s, hc_enable %s, follow_re %s, tcp_sp %s\n",
                     b.name, yes_no(b.flags & BR_FLAG_LOOP_AVOIDANCE), yes_no(b.flags & BR_FLAG_PATH_SELECTION),
                     yes_no(b.ps_flags & PS_FLAG_HC), yes_no(b.ps_flags & PS_FLAG_FOLLOW_RE),
                     yes_no(b.ps_flags & PS_FLAG_TCP_SP));
    }
}

void print_interfaces(const lynd_config& c, std::FILE* out) {
    for (uint64_t i = 0; i < c.n_interfaces; i++) {
        const conf_interface& f = c.interfaces[i];
        std::fprintf(out,
                     "interface %s: type %s, %s, path %s, priority %u, compat_group %u, class %u, eth_index %u, "
                     "ts_vap %s, support_ts_vlan %s, switch_vlan_interface %s\n",
                     f.name, config_if_type_name(f.type), f.relay ? "relay" : "nonrelay", yes_no(f.path), f.priority,
                     f.compat_group, f.if_class, f.eth_index, yes_no(f.ts_vap), yes_no(f.support_ts_vlan),
                     yes_no(f.switch_vlan_interface));
    }
}

void print_param(const conf_param& p, std::FILE* out) {
    std::fprintf(out, "param:\n  period: %u ms, short_period: %u ms\n", p.period, p.short_period);
    std::fprintf(out, "  cpu_limit: %s, wlan_enable: %s, estimate_ack_enable: %s, util_compensation: %s\n",
                 yes_no(p.cpu_limit), yes_no(p.wlan_enable), yes_no(p.estimate_ack_enable),
                 yes_no(config_get_util_compensation()));
    std::fprintf(out, "  low_threshold: %u, high_threshold: %u, delta_threshold: %u, cpu_threshold: %u, "
                      "abn_threshold: %u\n",
                 p.low_threshold, p.high_threshold, p.delta_threshold, p.cpu_threshold, p.abn_threshold);
    std::fprintf(out, "  idle_threshold: %u, activate_pkts: %u, adjusted_streams: %u, adjusted_ratio: %u\n",
                 p.idle_threshold, p.activate_pkts, p.adjusted_streams, p.adjusted_ratio);
    std::fprintf(out, "  busy_count_threshold: %u, handle_count: %u, weaklink_bestpath_txrate_delta: %d\n",
                 p.busy_count_threshold, p.handle_count, static_cast<int>(p.weaklink_bestpath_txrate_delta));
    std::fprintf(out, "  reserved_ratio: 2g %u, 5g %u, 6g %u\n", p.reserved_ratio[0], p.reserved_ratio[1],
                 p.reserved_ratio[2]);
    print_bands(out, "linkquality_smoothing_factor", p.linkquality_smoothing_factor);
    int32_t tx[BAND_COUNT], rx[BAND_COUNT];
    for (int b = 0; b < BAND_COUNT; b++) {
        tx[b] = abnormal_threshold_txrate(p, b);
        rx[b] = abnormal_threshold_rxrate(p, b);
    }
    print_bands(out, "abnormal_threshold_txrate", tx);
    print_bands(out, "abnormal_threshold_rxrate", rx);
    print_bands(out, "weaklink_threshold_rssi", p.weaklink_threshold_rssi);
    print_bands(out, "weaklink_threshold_snr", p.weaklink_threshold_snr);
    print_bands(out, "weaklink_threshold_rate", p.weaklink_threshold_rate);
    print_bands(out, "weaklink_hold_threshold_rssi", p.weaklink_hold_threshold_rssi);
    print_bands(out, "weaklink_hold_threshold_snr", p.weaklink_hold_threshold_snr);
}

}  // namespace

void check_line(check_printer* p, const char* label, const char* where, const char* format, ...) {
    if (p->brief)
        return;
    std::fprintf(p->out, "%s: %s: ", label, where);
    va_list ap;
    va_start(ap, format);
    std::vfprintf(p->out, format, ap);
    va_end(ap);
    std::fputc('\n', p->out);
}

void print_effective(const lynd_config& c, std::FILE* out) {
    std::fprintf(out, "effective configuration:\nenable: %s, shadow: %s, syslog: %s, log_decisions: %s\n",
                 yes_no(c.enable), yes_no(c.shadow), yes_no(c.syslog), yes_no(c.log_decisions));
    print_bridges(c, out);
    print_interfaces(c, out);
    print_param(c.param, out);
}
