// The bridge library, recorded: results and the bytes of every fetch as
// inputs, every write as an output.
#pragma once
#include "trace/krel_tap.h"

namespace lynd {

class RecKrel : public KrelTap {
public:
    void* bridgeAllocTableBuf(int size, const char* bridge_name) override;
    void bridgeFreeTableBuf(void* payload) override;
    int bridgeTableAction(const char* bridge_name, int table_type, int* count, void* buf, int flags) override;
    int netlink_msg(int msg_type, unsigned char* buf, int size, int protocol) override;
private:
    int write(const KrelArgs& a, int rc) override;
    // Allocations by payload address, so a fetch knows its buffer's size.
    int size_of(const void* payload) const;

    static constexpr int kBuffers = 8;
    struct Buffer {
        const void* payload;
        int size;
    } buffers_[kBuffers] = {};
};

}  // namespace lynd
