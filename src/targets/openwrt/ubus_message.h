// A ubus event's blob, read by the daemon's typed attribute walk.
#pragma once
#include <cstddef>

#include "platform/bus.h"

namespace lynd {

// Pure: checks len bytes of blobmsg attributes at data and sets out to walk
// them in place. An attribute that fails blobmsg's own checks marks the
// message malformed, as blobmsg_parse would refuse it.
void ubus_message_from_blob(const void* data, size_t len, BusMessage* out);

// The walk itself: the next attribute from *pos on, as a BusAttr.
bool ubus_message_walk(const void* raw, size_t len, size_t* pos, BusAttr* out);

}  // namespace lynd
