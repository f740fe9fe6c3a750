#include "sim/node/netlink_craft.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <cstring>

#include "core/mac.h"
#include "core/wire.h"
#include "event/netlink_datagram.h"

namespace lynd {

namespace {

constexpr uint16_t kArphrdEther = 1;  // the address family of a station's address

template <typename T>
std::string bytes_of(const T& v) {
    return std::string(reinterpret_cast<const char*>(&v), sizeof v);
}

}  // namespace

std::string craft_nlmsg(uint16_t type, const std::string& body) {
    nlmsghdr h{};
    h.nlmsg_len = static_cast<uint32_t>(sizeof h + body.size());
    h.nlmsg_type = type;
    return bytes_of(h) + body;
}

void set_nlmsg_len(std::string* msg, uint32_t len) {
    if (msg->size() >= sizeof len)
        std::memcpy(&(*msg)[offsetof(nlmsghdr, nlmsg_len)], &len, sizeof len);
}

std::string craft_bridge_message(uint32_t type, const void* body, size_t len) {
    return craft_nlmsg(static_cast<uint16_t>(type), std::string(static_cast<const char*>(body), len));
}

std::string craft_ifinfo(uint32_t ifindex, uint32_t flags, uint32_t change) {
    ifinfomsg ifi{};
    ifi.ifi_index = static_cast<int>(ifindex);
    ifi.ifi_flags = flags;
    ifi.ifi_change = change;
    return bytes_of(ifi);
}

std::string craft_rtattr(uint16_t type, const std::string& payload) {
    rtattr a{};
    a.rta_len = static_cast<uint16_t>(sizeof a + payload.size());
    a.rta_type = type;
    std::string s = bytes_of(a) + payload;
    s.resize((s.size() + 3) & ~static_cast<size_t>(3), '\0');
    return s;
}

std::string craft_iw_event(uint16_t cmd, const uint8_t* station, int64_t len) {
    sockaddr addr{};
    if (station != nullptr) {
        addr.sa_family = kArphrdEther;
        std::memcpy(addr.sa_data, station, 6);
    }
    uint16_t ev_len = static_cast<uint16_t>(len >= 0 ? len : 4 + static_cast<int64_t>(sizeof addr));
    return bytes_of(ev_len) + bytes_of(cmd) + bytes_of(addr);
}

std::string craft_station_expired(uint32_t ifindex, const uint8_t* station) {
    std::string event = craft_iw_event(NL_IWEVEXPIRED, station, -1);
    return craft_nlmsg(NL_RTM_NEWLINK, craft_ifinfo(ifindex, 0, 0) + craft_rtattr(NL_IFLA_WIRELESS, event));
}

std::vector<hc_entry> announced_hc_entries(const std::string& datagram) {
    constexpr uint16_t kHcAdd = 3;
    std::vector<hc_entry> out;
    const auto* d = reinterpret_cast<const uint8_t*>(datagram.data());
    if (datagram.size() < NLMSG_HEADER_LEN)
        return out;
    uint32_t len = load_u32(d);
    if (load_u16(d + 4) != kHcAdd || len < NLMSG_HEADER_LEN || len > datagram.size())
        return out;
    for (size_t off = NLMSG_HEADER_LEN; sizeof(hc_entry) <= len - off; off += sizeof(hc_entry)) {
        hc_entry e;
        std::memcpy(&e, d + off, sizeof e);
        if (!lynd_mac_is_zero(e.mac))
            out.push_back(e);
    }
    return out;
}

bool announced_hc_entry(const std::string& datagram, hc_entry* out) {
    std::vector<hc_entry> all = announced_hc_entries(datagram);
    if (all.empty())
        return false;
    *out = all[0];
    return true;
}

}  // namespace lynd
