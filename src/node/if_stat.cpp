#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "node/host_stats.h"
#include "core/log.h"
#include "core/text_lines.h"
#include "platform/seams.h"

namespace {

constexpr size_t kLineMax = 256;
// Room for about 500 interfaces; a longer file is read only this far.
constexpr size_t kNetDevMax = 64 * 1024;

}  // namespace

bool lynd_parse_net_dev(const char* text, size_t len, const char* ifname, if_stat* out) {
    char pattern[17];
    std::snprintf(pattern, sizeof pattern, "%s:", ifname);
    char line[kLineMax];
    for (size_t pos = 0; pos < len;) {
        pos = lynd_next_line(text, len, pos, line, sizeof line);
        const char* at = std::strstr(line, pattern);
        if (at == nullptr)
            continue;
        // A short line still counts as found; what it lacks reads as zero.
        char rxb[32] = {}, rxp[32] = {}, txb[32] = {}, txp[32] = {};
        (void)std::sscanf(at, "%*s%31s%31s%*s%*s%*s%*s%*s%*s%31s%31s", rxb, rxp, txb, txp);
        *out = if_stat{};
        std::sscanf(rxb, "%" SCNu64, &out->rx_bytes);
        std::sscanf(rxp, "%" SCNu64, &out->rx_packets);
        std::sscanf(txb, "%" SCNu64, &out->tx_bytes);
        std::sscanf(txp, "%" SCNu64, &out->tx_packets);
        return true;
    }
    return false;
}

int lynd_get_if_stat(const char* ifname, if_stat* stat_out) {
    if (ifname == nullptr || stat_out == nullptr)
        return 0;
    char text[kNetDevMax];
    long n = lynd::host().read_file("/proc/net/dev", text, sizeof text);
    if (n < 0) {
        LYND_ERR("popen cat /proc/net/dev");
        return 0;
    }
    if_stat s{};
    if (!lynd_parse_net_dev(text, static_cast<size_t>(n), ifname, &s)) {
        if (static_cast<size_t>(n) >= sizeof text)
            LYND_WARN("/proc/net/dev is cut at %zu bytes, %s is not in what was read", sizeof text, ifname);
        return 0;
    }
    s.time = static_cast<uint32_t>(lynd::host().wall_now());
    *stat_out = s;
    return 1;
}

int lynd_check_abnormal_link(uint32_t) { return 0; }

int lynd_check_eth_has_neigh(const lynd_config*, const char*) { return 0; }

int update_eth_traffic_ports(lynd_config*, int, conf_interface* const*) { return 0; }

int eth_traffic_is_active() { return 0; }
