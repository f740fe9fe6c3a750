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
    int bridgeSetHCTableEntries(const char* bridge_name, const unsigned char* client_mac, const unsigned char* id,
                                const char* port_ifname, const char* vlan_ifname) override;
    int bridgeDelHCTableEntriesByMAC(const char* bridge_name, const unsigned char* client_mac) override;
    int bridgeSetHcPreferred(const char* bridge_name, uint32_t ifindex) override;
    int bridgeSetHcPreferredAndFlushHCTable(const char* bridge_name, uint32_t ifindex) override;
    int bridgeFlushHCTable(const char* bridge_name) override;
    int bridgeFlushHipTable(const char* bridge_name) override;
    int bridgeSetTcpSP(const char* bridge_name, int on) override;
    int bridgeSetBridgeMode(const char* bridge_name, int mode) override;
    int bridgeSetFollowRE(const char* bridge_name, int on) override;
    int bridgeSetHcEnable(const char* bridge_name, int on) override;
    int bridgeSetForwardingMode(const char* bridge_name, int mode) override;
    int bridgeSetIFCompat(const char* bridge_name, const char* ifname, int group) override;
    int bridgeSetIFGroup(const char* bridge_name, const char* ifname, int group, int relay) override;
    int bridgeSetIFTSvlan(const char* bridge_name, const char* ifname, int vlan_id,
                          const char* primary_ifname) override;
    int bridgeSetIFBroadcast(const char* bridge_name, const char* ifname, int allowed) override;
    int bridgeSetIFClass(const char* bridge_name, const char* ifname, int if_class) override;
    int bridgeSetIFPath(const char* bridge_name, const char* ifname, int path) override;
    int bridgeSetIFType(const char* bridge_name, const char* ifname, int type) override;
    int bridgeSetEventInfo(const char* bridge_name, int pid, int event_type, int protocol) override;
    int bridgeStopAPS(const char* bridge_name) override;
    int bridgeDelFdbByName(const char* bridge_name, const char* ifname) override;

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
