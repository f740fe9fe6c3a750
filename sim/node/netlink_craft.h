// Datagrams the simulated bridge, kernel and radios send, laid out field by
// field in host order, as the daemon reads them on the CPU it runs on.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "bridge/table_entries.h"

namespace lynd {

// A netlink message of type with body; its length field says what it holds.
std::string craft_nlmsg(uint16_t type, const std::string& body);
// The length field of a crafted message rewritten to lie.
void set_nlmsg_len(std::string* msg, uint32_t len);

// A bridge message of type with body after the 16-byte header.
std::string craft_bridge_message(uint32_t type, const void* body, size_t len);

// An interface's header of a link message (family and device type zero).
std::string craft_ifinfo(uint32_t ifindex, uint32_t flags, uint32_t change);
// A route attribute, padded to four bytes.
std::string craft_rtattr(uint16_t type, const std::string& payload);
// A wireless event of cmd whose address is the station's (or zeros when
// station is null); len: its length field, or -1 for the true one.
std::string craft_iw_event(uint16_t cmd, const uint8_t* station, int64_t len);

// An RTM_NEWLINK for ifindex whose wireless event says the station (or an
// unnamed one when null) expired.
std::string craft_station_expired(uint32_t ifindex, const uint8_t* station = nullptr);

// The entries a bridge datagram announces: a type-3 message whose header
// fits the datagram, every whole entry in its body with a client MAC.
std::vector<hc_entry> announced_hc_entries(const std::string& datagram);
// The first of them.
bool announced_hc_entry(const std::string& datagram, hc_entry* out);

}  // namespace lynd
