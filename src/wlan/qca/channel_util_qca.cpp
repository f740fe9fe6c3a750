// Channel utilisation of a radio, from the driver's get-parameter request.
#include "core/log.h"
#include "wlan/qca/link_stats_qca.h"
#include "wlan/qca/qca_request.h"

bool wlan_get_channel_utilization_qca(const char* ifname, uint8_t* util, uint32_t, bool) {
    if (ifname == nullptr || util == nullptr) {
        LYND_ERR("Arg");
        return false;
    }
    QcaSocket sock;
    if (!sock.ok()) {
        LYND_ERR("socket");
        return false;
    }
    iw_request req = qca_request(ifname);
    req.u.value = QCA_PARAM_CHANNEL_UTIL;
    if (sock.request(QCA_IOCTL_GET_PARAM, &req) < 0) {
        LYND_ERR("ioctl");
        return false;
    }
    uint32_t value = static_cast<uint32_t>(req.u.value);
    if (value > 255)
        return false;
    *util = static_cast<uint8_t>(value);
    return true;
}
