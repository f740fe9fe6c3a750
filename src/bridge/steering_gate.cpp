#include "bridge/steering_gate.h"

#include "core/shadow.h"
#include "platform/seams.h"

namespace lynd {

namespace {

SteeringGate g_gate;

}  // namespace

void steering_gate_install() {
    Seams s = installed_seams();
    if (s.krel == &g_gate || s.krel == nullptr)
        return;
    g_gate.set_inner(s.krel);
    s.krel = &g_gate;
    (void)install_seams(s);
}

void steering_gate_remove() {
    Seams s = installed_seams();
    if (s.krel != &g_gate)
        return;
    s.krel = g_gate.inner();
    (void)install_seams(s);
}

bool steering_gate_swap_inner(KrelApi* from, KrelApi* to) {
    if (installed_seams().krel != &g_gate || g_gate.inner() != from)
        return false;
    g_gate.set_inner(to);
    return true;
}

void* SteeringGate::bridgeAllocTableBuf(int size, const char* bridge_name) {
    return inner_->bridgeAllocTableBuf(size, bridge_name);
}

void SteeringGate::bridgeFreeTableBuf(void* payload) { inner_->bridgeFreeTableBuf(payload); }

int SteeringGate::bridgeTableAction(const char* bridge_name, int table_type, int* count, void* buf, int flags) {
    return inner_->bridgeTableAction(bridge_name, table_type, count, buf, flags);
}

int SteeringGate::netlink_msg(int msg_type, unsigned char* buf, int size, int protocol) {
    return inner_->netlink_msg(msg_type, buf, size, protocol);
}

#define LYND_KREL_GATE(name, params, args, steers) \
    int SteeringGate::name params {                \
        if (steers && lynd_shadow_holds(#name))    \
            return 0;                              \
        return inner_->name args;                  \
    }
LYND_KREL_WRITES(LYND_KREL_GATE)
#undef LYND_KREL_GATE

}  // namespace lynd
