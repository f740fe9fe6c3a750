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

int SteeringGate::bridgeSetHCTableEntries(const char* bridge_name, const unsigned char* client_mac,
                                          const unsigned char* id, const char* port_ifname, const char* vlan_ifname) {
    if (lynd_shadow_holds("bridgeSetHCTableEntries"))
        return 0;
    return inner_->bridgeSetHCTableEntries(bridge_name, client_mac, id, port_ifname, vlan_ifname);
}

int SteeringGate::bridgeDelHCTableEntriesByMAC(const char* bridge_name, const unsigned char* client_mac) {
    if (lynd_shadow_holds("bridgeDelHCTableEntriesByMAC"))
        return 0;
    return inner_->bridgeDelHCTableEntriesByMAC(bridge_name, client_mac);
}

int SteeringGate::bridgeSetHcPreferred(const char* bridge_name, uint32_t ifindex) {
    if (lynd_shadow_holds("bridgeSetHcPreferred"))
        return 0;
    return inner_->bridgeSetHcPreferred(bridge_name, ifindex);
}

int SteeringGate::bridgeSetHcPreferredAndFlushHCTable(const char* bridge_name, uint32_t ifindex) {
    if (lynd_shadow_holds("bridgeSetHcPreferredAndFlushHCTable"))
        return 0;
    return inner_->bridgeSetHcPreferredAndFlushHCTable(bridge_name, ifindex);
}

int SteeringGate::bridgeFlushHCTable(const char* bridge_name) {
    if (lynd_shadow_holds("bridgeFlushHCTable"))
        return 0;
    return inner_->bridgeFlushHCTable(bridge_name);
}

int SteeringGate::bridgeFlushHipTable(const char* bridge_name) {
    if (lynd_shadow_holds("bridgeFlushHipTable"))
        return 0;
    return inner_->bridgeFlushHipTable(bridge_name);
}

int SteeringGate::bridgeSetTcpSP(const char* bridge_name, int on) {
    if (lynd_shadow_holds("bridgeSetTcpSP"))
        return 0;
    return inner_->bridgeSetTcpSP(bridge_name, on);
}

int SteeringGate::bridgeSetBridgeMode(const char* bridge_name, int mode) {
    if (lynd_shadow_holds("bridgeSetBridgeMode"))
        return 0;
    return inner_->bridgeSetBridgeMode(bridge_name, mode);
}

int SteeringGate::bridgeSetFollowRE(const char* bridge_name, int on) {
    if (lynd_shadow_holds("bridgeSetFollowRE"))
        return 0;
    return inner_->bridgeSetFollowRE(bridge_name, on);
}

int SteeringGate::bridgeSetHcEnable(const char* bridge_name, int on) {
    if (lynd_shadow_holds("bridgeSetHcEnable"))
        return 0;
    return inner_->bridgeSetHcEnable(bridge_name, on);
}

int SteeringGate::bridgeSetForwardingMode(const char* bridge_name, int mode) {
    if (lynd_shadow_holds("bridgeSetForwardingMode"))
        return 0;
    return inner_->bridgeSetForwardingMode(bridge_name, mode);
}

int SteeringGate::bridgeSetIFCompat(const char* bridge_name, const char* ifname, int group) {
    if (lynd_shadow_holds("bridgeSetIFCompat"))
        return 0;
    return inner_->bridgeSetIFCompat(bridge_name, ifname, group);
}

int SteeringGate::bridgeSetIFGroup(const char* bridge_name, const char* ifname, int group, int relay) {
    if (lynd_shadow_holds("bridgeSetIFGroup"))
        return 0;
    return inner_->bridgeSetIFGroup(bridge_name, ifname, group, relay);
}

int SteeringGate::bridgeSetIFTSvlan(const char* bridge_name, const char* ifname, int vlan_id,
                                    const char* primary_ifname) {
    if (lynd_shadow_holds("bridgeSetIFTSvlan"))
        return 0;
    return inner_->bridgeSetIFTSvlan(bridge_name, ifname, vlan_id, primary_ifname);
}

int SteeringGate::bridgeSetIFBroadcast(const char* bridge_name, const char* ifname, int allowed) {
    if (lynd_shadow_holds("bridgeSetIFBroadcast"))
        return 0;
    return inner_->bridgeSetIFBroadcast(bridge_name, ifname, allowed);
}

int SteeringGate::bridgeSetIFClass(const char* bridge_name, const char* ifname, int if_class) {
    if (lynd_shadow_holds("bridgeSetIFClass"))
        return 0;
    return inner_->bridgeSetIFClass(bridge_name, ifname, if_class);
}

int SteeringGate::bridgeSetIFPath(const char* bridge_name, const char* ifname, int path) {
    if (lynd_shadow_holds("bridgeSetIFPath"))
        return 0;
    return inner_->bridgeSetIFPath(bridge_name, ifname, path);
}

int SteeringGate::bridgeSetIFType(const char* bridge_name, const char* ifname, int type) {
    if (lynd_shadow_holds("bridgeSetIFType"))
        return 0;
    return inner_->bridgeSetIFType(bridge_name, ifname, type);
}

int SteeringGate::bridgeSetEventInfo(const char* bridge_name, int pid, int event_type, int protocol) {
    return inner_->bridgeSetEventInfo(bridge_name, pid, event_type, protocol);
}

int SteeringGate::bridgeStopAPS(const char* bridge_name) { return inner_->bridgeStopAPS(bridge_name); }

int SteeringGate::bridgeDelFdbByName(const char* bridge_name, const char* ifname) {
    if (lynd_shadow_holds("bridgeDelFdbByName"))
        return 0;
    return inner_->bridgeDelFdbByName(bridge_name, ifname);
}

}  // namespace lynd
