#include "event/netlink_sender.h"

#include "core/counters.h"
#include "core/log.h"

bool event_nl_from_kernel(uint32_t sender, int protocol) {
    if (sender == 0)
        return true;
    uint64_t n = ++g_counters.foreign_datagrams;
    if ((n & (n - 1)) == 0)
        LYND_ERR("netlink %d: dropped a datagram from port %u, not the kernel (%llu so far)", protocol, sender,
                 static_cast<unsigned long long>(n));
    return false;
}
