// The bridge library of a replay: results and table bytes from the record,
// every write compared with the recorded one.
#pragma once
#include <map>

#include "trace/krel_tap.h"
#include "sim/desk/replay_tape.h"

namespace lynd {

class ReplayKrel : public KrelTap {
public:
    explicit ReplayKrel(ReplayTape* tape) : tape_(tape) {}
    ~ReplayKrel() override;

    void* bridgeAllocTableBuf(int size, const char* bridge_name) override;
    void bridgeFreeTableBuf(void* payload) override;
    int bridgeTableAction(const char* bridge_name, int table_type, int* count, void* buf, int flags) override;
    int netlink_msg(int msg_type, unsigned char* buf, int size, int protocol) override;

private:
    int write(const KrelArgs& a, int rc) override;

    ReplayTape* tape_;
    std::map<void*, int> buffers_;  // payload -> its size
};

}  // namespace lynd
