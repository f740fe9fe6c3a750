// The bridge-library seam on the router: every call goes to libkrel.
#pragma once
#include "platform/krel_api.h"

namespace lynd {

class KrelVendor : public KrelApi {
public:
    void* bridgeAllocTableBuf(int size, const char* bridge_name) override;
    void bridgeFreeTableBuf(void* payload) override;
    int bridgeTableAction(const char* bridge_name, int table_type, int* count, void* buf, int flags) override;
    int netlink_msg(int msg_type, unsigned char* buf, int size, int protocol) override;
#define LYND_KREL_DECLARE(name, params, args, steers) int name params override;
    LYND_KREL_WRITES(LYND_KREL_DECLARE)
#undef LYND_KREL_DECLARE
};

}  // namespace lynd
