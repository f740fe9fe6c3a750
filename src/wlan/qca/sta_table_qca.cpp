// The station-table request and the peer queries built on it.
#include "core/log.h"
#include "core/mac.h"
#include "wlan/qca/link_stats_qca.h"
#include "wlan/qca/qca_request.h"
#include "wlan/qca/sta_table_parse.h"

namespace {

// A socket failure is logged here, for the caller fn; a failed request is
// left to the caller, whose message differs.
enum class StaQuery { OK, NO_SOCKET, IOCTL_FAILED };

// Asks the driver for ifname's peers, at most max of them. The reply lives
// on the stack: these queries run every few seconds.
StaQuery query_links(const char* fn, const char* ifname, wlan_link_info* links, size_t max, size_t* count) {
    *count = 0;
    QcaSocket sock;
    if (!sock.ok()) {
        LYND_ERR_AS(fn, "socket");
        return StaQuery::NO_SOCKET;
    }
    // Only the length the driver reports is read: no need to clear 24 KiB.
    uint8_t reply[QCA_STA_TABLE_SIZE];
    iw_request req = qca_request(ifname);
    req.u.data.pointer = reply;
    req.u.data.length = QCA_STA_TABLE_SIZE;
    if (sock.request(QCA_IOCTL_STA_TABLE, &req) != 0)
        return StaQuery::IOCTL_FAILED;
    // The driver's count is never trusted beyond the buffer.
    size_t len = req.u.data.length < QCA_STA_TABLE_SIZE ? req.u.data.length : QCA_STA_TABLE_SIZE;
    *count = qca_read_sta_table(reply, len, links, max);
    return StaQuery::OK;
}

void log_links(const char* fn, const char* ifname, const wlan_link_info* links, size_t count) {
    for (size_t i = 0; i < count; i++) {
        const wlan_link_info& l = links[i];
        LYND_DEBUG_AS(fn,
                      "uplink info %s:%s txrate:%d, rxrate:%d, idle:%d, "
                      "rssi:%d, noise:%d, "
                      "snr:%d",
                      ifname, lynd_mac(l.mac).s, l.txrate, l.rxrate, l.idle, l.rssi, l.noise, l.snr);
    }
}

}  // namespace

uint8_t wlan_get_links_qca(const char* ifname, wlan_link_info* links, bool) {
    if (ifname == nullptr || links == nullptr) {
        LYND_ERR("Arg");
        return 0;
    }
    size_t count = 0;
    StaQuery q = query_links(__func__, ifname, links, QCA_STA_MAX_LINKS, &count);
    if (q == StaQuery::IOCTL_FAILED)
        LYND_ERR("ioctl");
    if (q != StaQuery::OK)
        return 0;
    log_links(__func__, ifname, links, count);
    LYND_DEBUG("wlan %s get links idx=%d", ifname, static_cast<int>(count));
    return static_cast<uint8_t>(count);
}

int wlan_get_links_v2(const char* ifname, wlan_link_info* link) {
    if (ifname == nullptr || link == nullptr) {
        LYND_ERR("Arg");
        return 0;
    }
    size_t count = 0;
    StaQuery q = query_links(__func__, ifname, link, 1, &count);
    if (q == StaQuery::IOCTL_FAILED)
        LYND_WARN("ioctl");
    if (q != StaQuery::OK)
        return 0;
    if (count == 0) {
        LYND_WARN("ioctl get failed");
        return 0;
    }
    log_links(__func__, ifname, link, count);
    return 1;
}

int wlan_get_sta_links(const char* ifname, wlan_link_info* links, int max) {
    if (ifname == nullptr || links == nullptr || max <= 0) {
        LYND_ERR("Arg");
        return 0;
    }
    if (lynd_get_wireless_link_state(ifname) != 1) {
        LYND_DEBUG("%s not linked", ifname);
        return 0;
    }
    LYND_DEBUG("wlan get links name: %s", ifname);
    size_t count = 0;
    StaQuery q = query_links(__func__, ifname, links, static_cast<size_t>(max), &count);
    if (q == StaQuery::IOCTL_FAILED)
        LYND_WARN("fail to get ioctl, %s maybe not ap interface", ifname);
    if (q != StaQuery::OK)
        return 0;
    log_links(__func__, ifname, links, count);
    LYND_DEBUG("wlan %s get links idx=%d", ifname, static_cast<int>(count));
    return static_cast<int>(count);
}

bool wlan_get_uplink_rate_qca(const char* ifname, wlan_rate* rate, int8_t* rssi) {
    if (rate == nullptr || rssi == nullptr) {
        LYND_ERR("Arg");
        return false;
    }
    wlan_link_info first{};
    if (wlan_get_links_v2(ifname, &first) != 1)
        return false;
    rate->tx = first.txrate;
    rate->rx = first.rxrate;
    *rssi = first.rssi;
    return true;
}
