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

int KrelVendor::bridgeSetHCTableEntries(const char* bridge_name, const unsigned char* client_mac, const unsigned char* id, const char* port_ifname, const char* vlan_ifname) {
    return ::bridgeSetHCTableEntries(bridge_name, client_mac, id, port_ifname, vlan_ifname);
}

int KrelVendor::bridgeDelHCTableEntriesByMAC(const char* bridge_name, const unsigned char* client_mac) {
    return ::bridgeDelHCTableEntriesByMAC(bridge_name, client_mac);
}

int KrelVendor::bridgeSetHcPreferred(const char* bridge_name, uint32_t ifindex) {
    return ::bridgeSetHcPreferred(bridge_name, ifindex);
}

int KrelVendor::bridgeSetHcPreferredAndFlushHCTable(const char* bridge_name, uint32_t ifindex) {
    return ::bridgeSetHcPreferredAndFlushHCTable(bridge_name, ifindex);
}

int KrelVendor::bridgeFlushHCTable(const char* bridge_name) {
    return ::bridgeFlushHCTable(bridge_name);
}

int KrelVendor::bridgeFlushHipTable(const char* bridge_name) {
    return ::bridgeFlushHipTable(bridge_name);
}

int KrelVendor::bridgeSetTcpSP(const char* bridge_name, int on) {
    return ::bridgeSetTcpSP(bridge_name, on);
}

int KrelVendor::bridgeSetBridgeMode(const char* bridge_name, int mode) {
    return ::bridgeSetBridgeMode(bridge_name, mode);
}

int KrelVendor::bridgeSetFollowRE(const char* bridge_name, int on) {
    return ::bridgeSetFollowRE(bridge_name, on);
}

int KrelVendor::bridgeSetHcEnable(const char* bridge_name, int on) {
    return ::bridgeSetHcEnable(bridge_name, on);
}

int KrelVendor::bridgeSetForwardingMode(const char* bridge_name, int mode) {
    return ::bridgeSetForwardingMode(bridge_name, mode);
}

int KrelVendor::bridgeSetIFCompat(const char* bridge_name, const char* ifname, int group) {
    return ::bridgeSetIFCompat(bridge_name, ifname, group);
}

int KrelVendor::bridgeSetIFGroup(const char* bridge_name, const char* ifname, int group, int relay) {
    return ::bridgeSetIFGroup(bridge_name, ifname, group, relay);
}

int KrelVendor::bridgeSetIFTSvlan(const char* bridge_name, const char* ifname, int vlan_id, const char* primary_ifname) {
    return ::bridgeSetIFTSvlan(bridge_name, ifname, vlan_id, primary_ifname);
}

int KrelVendor::bridgeSetIFBroadcast(const char* bridge_name, const char* ifname, int allowed) {
    return ::bridgeSetIFBroadcast(bridge_name, ifname, allowed);
}

int KrelVendor::bridgeSetIFClass(const char* bridge_name, const char* ifname, int if_class) {
    return ::bridgeSetIFClass(bridge_name, ifname, if_class);
}

int KrelVendor::bridgeSetIFPath(const char* bridge_name, const char* ifname, int path) {
    return ::bridgeSetIFPath(bridge_name, ifname, path);
}

int KrelVendor::bridgeSetIFType(const char* bridge_name, const char* ifname, int type) {
    return ::bridgeSetIFType(bridge_name, ifname, type);
}

int KrelVendor::bridgeSetEventInfo(const char* bridge_name, int pid, int event_type, int protocol) {
    return ::bridgeSetEventInfo(bridge_name, pid, event_type, protocol);
}

int KrelVendor::bridgeStopAPS(const char* bridge_name) {
    return ::bridgeStopAPS(bridge_name);
}

int KrelVendor::bridgeDelFdbByName(const char* bridge_name, const char* ifname) {
    return ::bridgeDelFdbByName(bridge_name, ifname);
}

}  // namespace lynd
