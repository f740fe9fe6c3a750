// Byte counters of a backhaul interface, from the driver's statistics tool.
#include <cinttypes>
#include <cstdio>

#include "core/queries.h"
#include "core/log.h"
#include "wlan/qca/link_stats_qca.h"

namespace {

constexpr size_t kApstatsMax = 8192;

}  // namespace

int wlan_get_link_counters(const char* ifname, wlan_link_counters* counters) {
    if (ifname == nullptr || counters == nullptr) {
        LYND_ERR("Arg");
        return 0;
    }
    // The report's filter is the reader's job now; the text names it for
    // whoever reads the log.
    char cmd[128];
    std::snprintf(cmd, sizeof cmd, "apstats -v -i %s|grep 'x Data Bytes'", ifname);
    const char* const argv[] = {"apstats", "-v", "-i", ifname, nullptr};
    char out[kApstatsMax];
    int n = lynd_tool_capture(argv, out, sizeof out);
    if (n < 0) {
        LYND_ERR("popen %s faild", cmd);
        return 0;
    }
    bool both = wlan_read_apstats(out, static_cast<size_t>(n), counters);
    LYND_LOG("uplink count  %s txbyte:%" PRIu64 ", rxbyte:%" PRIu64 ", %s", ifname, counters->tx_bytes,
             counters->rx_bytes, both ? "valid" : "invalid");
    return both ? 1 : 0;
}
