// Any process may send to a netlink port id (and /proc/net/netlink lists
// them all): only the kernel's datagrams are read.
#pragma once
#include <cstdint>

// True when sender is the kernel (port id 0). Otherwise the datagram is
// counted as foreign and logged: the first one, then at every power of two,
// so that a flood cannot flood the log too.
bool event_nl_from_kernel(uint32_t sender, int protocol);
