// The bridge-library request exchange, done by the daemon itself: send the
// message in buf to the kernel on protocol and read the answer back into
// buf. 1 on success, 0 on failure. Nothing calls it instead of the library.
#pragma once
#include <cstdint>

int lynd_netlink_msg(int msg_type, uint8_t* buf, int size, int protocol);
