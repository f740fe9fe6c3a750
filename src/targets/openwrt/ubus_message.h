// A ubus event's blob, turned into the daemon's typed attribute list.
#pragma once
#include <cstddef>

#include "platform/bus.h"

namespace lynd {

// Pure: walks len bytes of blobmsg attributes at data. An attribute that
// fails blobmsg's own checks marks the message malformed, as blobmsg_parse
// would refuse it; attributes past max are left out.
void ubus_message_from_blob(const void* data, size_t len, BusAttr* attrs, size_t max, BusMessage* out);

}  // namespace lynd
