// Whether a station interface is associated. Asked of the driver directly,
// with the two requests iwconfig makes, since it runs several times a period.
#include "core/log.h"
#include "core/mac.h"
#include "wlan/qca/link_stats_qca.h"
#include "wlan/qca/qca_request.h"

namespace {

// An ad-hoc interface reports a cell, not an access point. A failed mode
// request does not make it one.
bool is_ad_hoc(QcaSocket& sock, const char* ifname) {
    iw_request req = qca_request(ifname);
    return sock.request(IW_IOCTL_GET_MODE, &req) >= 0 && req.u.mode == IW_MODE_AD_HOC;
}

}  // namespace

int lynd_get_wireless_link_state(const char* ifname) {
    // No name: no station interface (the second 5 GHz path has none).
    if (ifname == nullptr || ifname[0] == '\0')
        return 0;
    QcaSocket sock;
    if (!sock.ok())
        return 0;
    iw_request ap = qca_request(ifname);
    if (sock.request(IW_IOCTL_GET_AP, &ap) < 0 || is_ad_hoc(sock, ifname))
        return 0;
    if (lynd_mac_is_zero(ap.u.addr.bytes)) {
        LYND_DEBUG("%s not Associa", ifname);
        return 0;
    }
    return 1;
}
