// Stands between the daemon and the bridge library: in shadow mode the
// calls that steer traffic are held back and answered as done, while reads,
// the event registration and the stop call go through.
#pragma once
#include "platform/krel_api.h"

namespace lynd {

class SteeringGate : public KrelApi {
public:
    void set_inner(KrelApi* inner) { inner_ = inner; }
    KrelApi* inner() const { return inner_; }

    void* bridgeAllocTableBuf(int size, const char* bridge_name) override;
    void bridgeFreeTableBuf(void* payload) override;
    int bridgeTableAction(const char* bridge_name, int table_type, int* count, void* buf, int flags) override;
    int netlink_msg(int msg_type, unsigned char* buf, int size, int protocol) override;
#define LYND_KREL_DECLARE(name, params, args, steers) int name params override;
    LYND_KREL_WRITES(LYND_KREL_DECLARE)
#undef LYND_KREL_DECLARE

private:
    KrelApi* inner_ = nullptr;
};

// Puts the gate in front of the installed bridge library, once.
void steering_gate_install();
// Gives the bridge library back its place.
void steering_gate_remove();
// What stands behind the gate, when it is installed and behind it stands from.
bool steering_gate_swap_inner(KrelApi* from, KrelApi* to);

}  // namespace lynd
