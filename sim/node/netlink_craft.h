// Datagrams the simulated bridge and radios send, built from a scenario.
#pragma once
#include <json-c/json.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "bridge/table_entries.h"

namespace lynd {

// {"type": N} with optional "body_hex" (the message body), "len" (a length
// field that lies) or "raw_hex" (the whole datagram as it is).
bool craft_bridge_datagram(json_object* entry, std::string* out, std::string* problem);

// A bridge message of type with body after the 16-byte header.
std::string craft_bridge_message(uint32_t type, const void* body, size_t len);

// An RTM_NEWLINK for ifindex whose wireless event says a station expired.
std::string craft_station_expired(uint32_t ifindex);

// The entry a bridge datagram announces: a type-3 message whose header
// fits the datagram and whose body holds a whole entry with a client MAC.
bool announced_hc_entry(const std::string& datagram, hc_entry* out);

}  // namespace lynd
