// The bridge-library seam (its writes are listed in krel_calls.h). The device build forwards each call to libkrel;
// the simulator answers from its model of the bridge; tests install fakes.
#pragma once
#include <cstdint>

#include "platform/krel_calls.h"

namespace lynd {

class KrelApi {
public:
    virtual ~KrelApi() = default;

    virtual void* bridgeAllocTableBuf(int size, const char* bridge_name) = 0;
    virtual void bridgeFreeTableBuf(void* payload) = 0;
    virtual int bridgeTableAction(const char* bridge_name, int table_type, int* count, void* buf,
                                  int flags) = 0;
    virtual int netlink_msg(int msg_type, unsigned char* buf, int size, int protocol) = 0;

#define LYND_KREL_PURE(name, params, args, steers) virtual int name params = 0;
    LYND_KREL_WRITES(LYND_KREL_PURE)
#undef LYND_KREL_PURE
};

}  // namespace lynd
