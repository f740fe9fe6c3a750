#include "targets/openwrt/krel_vendor.h"

#include "targets/openwrt/krel.h"

namespace lynd {

void* KrelVendor::bridgeAllocTableBuf(int size, const char* bridge_name) {
    return ::bridgeAllocTableBuf(size, bridge_name);
}

void KrelVendor::bridgeFreeTableBuf(void* payload) {
    ::bridgeFreeTableBuf(payload);
}

int KrelVendor::bridgeTableAction(const char* bridge_name, int table_type, int* count, void* buf, int flags) {
    return ::bridgeTableAction(bridge_name, table_type, count, buf, flags);
}

int KrelVendor::netlink_msg(int msg_type, unsigned char* buf, int size, int protocol) {
    return ::netlink_msg(msg_type, buf, size, protocol);
}

#define LYND_KREL_FORWARD(name, params, args, steers) \
    int KrelVendor::name params { return ::name args; }
LYND_KREL_WRITES(LYND_KREL_FORWARD)
#undef LYND_KREL_FORWARD

}  // namespace lynd
