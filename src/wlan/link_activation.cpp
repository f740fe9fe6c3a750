#include "wlan/link_activation.h"

#include <cstring>

#include "core/log.h"
#include "platform/seams.h"

int lynd_get_bridge_mac(const char* ifname, uint8_t* mac_out) {
    switch (lynd::host().get_hwaddr(ifname, mac_out)) {
    case lynd::HwAddrResult::OK:
        return 1;
    case lynd::HwAddrResult::SOCKET_FAILED:
        LYND_ERR("socket");
        return 0;
    case lynd::HwAddrResult::IOCTL_FAILED:
        LYND_ERR("ioctl");
        return 0;
    }
    return 0;
}

void lynd_build_dummy_frame(uint8_t* frame, const uint8_t* dst, const uint8_t* src) {
    std::memset(frame, 0, DUMMY_FRAME_LEN);
    std::memcpy(frame, dst, 6);
    std::memcpy(frame + 6, src, 6);
    frame[12] = static_cast<uint8_t>(DUMMY_ETHERTYPE >> 8);
    frame[13] = static_cast<uint8_t>(DUMMY_ETHERTYPE & 0xff);
}

int lynd_activate_link(const char* ifname, const uint8_t* dst_mac) {
    if (ifname == nullptr || dst_mac == nullptr)
        return 0;
    lynd::Host& h = lynd::host();
    int fd = h.packet_socket(DUMMY_ETHERTYPE);
    if (fd < 0) {
        LYND_ERR("create socket failed");
        return 0;
    }
    unsigned ifindex = h.if_nametoindex(ifname);
    uint8_t src[6] = {};
    if (lynd_get_bridge_mac(ifname, src) != 1)
        std::memset(src, 0, sizeof src);
    uint8_t frame[DUMMY_FRAME_LEN];
    lynd_build_dummy_frame(frame, dst_mac, src);
    for (int attempt = 0; attempt < DUMMY_SEND_ATTEMPTS; attempt++) {
        long sent = h.packet_send(fd, ifindex, DUMMY_ETHERTYPE, dst_mac, frame, sizeof frame);
        // The line shows what sendto returns (-1 on failure); the errno has a line of its own.
        LYND_DEBUG("send dummy packet, ifname: %s, if_mac: %02X-%02X len: %d", ifname, src[4], src[5],
                   sent < 0 ? -1 : static_cast<int>(sent));
        if (sent < 0)
            LYND_DEBUG("send dummy packet on %s: %s", ifname, std::strerror(static_cast<int>(-sent)));
        if (sent > 0)
            break;
    }
    (void)h.close_fd(fd);
    return 1;
}
