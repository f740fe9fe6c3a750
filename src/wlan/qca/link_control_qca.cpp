#include "wlan/qca/link_control_qca.h"

#include <cstdio>
#include <cstring>

#include "core/queries.h"
#include "core/log.h"
#include "wlan/link_activation.h"
#include "wlan/qca/link_stats_qca.h"
#include "wlan/qca/qca_request.h"
#include "wlan/wlan.h"

namespace {

// The command block of a WDS delete: the command code, then the MAC.
void build_wds_delete(uint8_t* block, const uint8_t* mac) {
    std::memset(block, 0, QCA_WDS_CMD_SIZE);
    uint32_t code = QCA_CMD_WDS_DELETE;
    std::memcpy(block, &code, sizeof code);
    std::memcpy(block + QCA_WDS_CMD_MAC_OFFSET, mac, 6);
}

uint16_t station_frames(const wlan_link_info&, const conf_param& param) { return param.activate_pkts; }

// Only a peer idle for longer than the threshold needs waking.
uint16_t idle_peer_frames(const wlan_link_info& peer, const conf_param& param) {
    return peer.idle > param.idle_threshold ? 1 : 0;
}

// Sends frames_for(peer) dummy frames to each peer of ifname; the number of
// peers.
uint8_t activate_peers(const char* ifname, const conf_param* param,
                       uint16_t (*frames_for)(const wlan_link_info&, const conf_param&)) {
    if (param == nullptr) {
        LYND_ERR("Arg");
        return 0;
    }
    wlan_link_info links[QCA_STA_MAX_LINKS];
    uint8_t n = wlan_get_links_qca(ifname, links, true);
    for (uint8_t i = 0; i < n; i++) {
        uint16_t frames = frames_for(links[i], *param);
        for (uint16_t k = 0; k < frames; k++)
            (void)lynd_activate_link(ifname, links[i].mac);
    }
    return n;
}

}  // namespace

uint8_t wlan_activate_links_qca(const char* ifname, const conf_param* param) {
    return activate_peers(ifname, param, station_frames);
}

uint8_t wlan_activate_links_for_ap_qca(const char* ifname, const conf_param* param) {
    return activate_peers(ifname, param, idle_peer_frames);
}

void wlan_delete_wds_entry_qca(const char* ifname, const uint8_t* mac) {
    if (ifname == nullptr || mac == nullptr)
        return;
    QcaSocket sock;
    if (!sock.ok()) {
        LYND_ERR("socket");
        return;
    }
    uint8_t block[QCA_WDS_CMD_SIZE];
    build_wds_delete(block, mac);
    iw_request req = qca_request(ifname);
    req.u.data.pointer = block;
    req.u.data.length = QCA_WDS_CMD_SIZE;
    if (sock.request(QCA_IOCTL_GENERIC, &req) < 0)
        LYND_ERR("ioctl");
}

// Its lines belong to the dispatcher's operation.
int wlan_restart_link_qca(uint32_t type) {
    constexpr const char* kFn = "wlan_restart_link";
    const char* name = type >= IF_TYPE_2G && type < IF_TYPE_MAX ? link_ifname[type] : "";
    if (name[0] == '\0') {
        LYND_ERR_AS(kFn, "Error type: %d", static_cast<int>(type));
        return -1;
    }
    char ctrl_dir[48];
    std::snprintf(ctrl_dir, sizeof ctrl_dir, "/var/run/wpa_supplicant-%s", name);
    char cmd[128];
    std::snprintf(cmd, sizeof cmd, "wpa_cli -p %s -i %s reconnect", ctrl_dir, name);
    LYND_DEBUG_AS(kFn, "call: %s", cmd);
    const char* const argv[] = {"wpa_cli", "-p", ctrl_dir, "-i", name, "reconnect", nullptr};
    return lynd_tool_status(argv);
}
