#include "trace/krel_tap.h"

namespace lynd {

int KrelTap::bridgeSetHCTableEntries(const char* bridge_name, const unsigned char* client_mac,
                                     const unsigned char* id, const char* port_ifname, const char* vlan_ifname) {
    KrelArgs a{"bridgeSetHCTableEntries", bridge_name, port_ifname, vlan_ifname, client_mac, id};
    return write(a, in_ == nullptr ? 0 : in_->bridgeSetHCTableEntries(bridge_name, client_mac, id, port_ifname, vlan_ifname));
}

int KrelTap::bridgeDelHCTableEntriesByMAC(const char* bridge_name, const unsigned char* client_mac) {
    KrelArgs a{"bridgeDelHCTableEntriesByMAC", bridge_name, nullptr, nullptr, client_mac};
    return write(a, in_ == nullptr ? 0 : in_->bridgeDelHCTableEntriesByMAC(bridge_name, client_mac));
}

int KrelTap::bridgeSetHcPreferred(const char* bridge_name, uint32_t ifindex) {
    KrelArgs a{"bridgeSetHcPreferred", bridge_name, nullptr, nullptr, nullptr, nullptr, 1, {ifindex}};
    return write(a, in_ == nullptr ? 0 : in_->bridgeSetHcPreferred(bridge_name, ifindex));
}

int KrelTap::bridgeSetHcPreferredAndFlushHCTable(const char* bridge_name, uint32_t ifindex) {
    KrelArgs a{"bridgeSetHcPreferredAndFlushHCTable", bridge_name, nullptr, nullptr, nullptr, nullptr, 1, {ifindex}};
    return write(a, in_ == nullptr ? 0 : in_->bridgeSetHcPreferredAndFlushHCTable(bridge_name, ifindex));
}

int KrelTap::bridgeFlushHCTable(const char* bridge_name) {
    return write(KrelArgs{"bridgeFlushHCTable", bridge_name}, in_ == nullptr ? 0 : in_->bridgeFlushHCTable(bridge_name));
}

int KrelTap::bridgeFlushHipTable(const char* bridge_name) {
    return write(KrelArgs{"bridgeFlushHipTable", bridge_name}, in_ == nullptr ? 0 : in_->bridgeFlushHipTable(bridge_name));
}

int KrelTap::bridgeSetTcpSP(const char* bridge_name, int on) {
    KrelArgs a{"bridgeSetTcpSP", bridge_name, nullptr, nullptr, nullptr, nullptr, 1, {on}};
    return write(a, in_ == nullptr ? 0 : in_->bridgeSetTcpSP(bridge_name, on));
}

int KrelTap::bridgeSetBridgeMode(const char* bridge_name, int mode) {
    KrelArgs a{"bridgeSetBridgeMode", bridge_name, nullptr, nullptr, nullptr, nullptr, 1, {mode}};
    return write(a, in_ == nullptr ? 0 : in_->bridgeSetBridgeMode(bridge_name, mode));
}

int KrelTap::bridgeSetFollowRE(const char* bridge_name, int on) {
    KrelArgs a{"bridgeSetFollowRE", bridge_name, nullptr, nullptr, nullptr, nullptr, 1, {on}};
    return write(a, in_ == nullptr ? 0 : in_->bridgeSetFollowRE(bridge_name, on));
}

int KrelTap::bridgeSetHcEnable(const char* bridge_name, int on) {
    KrelArgs a{"bridgeSetHcEnable", bridge_name, nullptr, nullptr, nullptr, nullptr, 1, {on}};
    return write(a, in_ == nullptr ? 0 : in_->bridgeSetHcEnable(bridge_name, on));
}

int KrelTap::bridgeSetForwardingMode(const char* bridge_name, int mode) {
    KrelArgs a{"bridgeSetForwardingMode", bridge_name, nullptr, nullptr, nullptr, nullptr, 1, {mode}};
    return write(a, in_ == nullptr ? 0 : in_->bridgeSetForwardingMode(bridge_name, mode));
}

int KrelTap::bridgeSetIFCompat(const char* bridge_name, const char* ifname, int group) {
    KrelArgs a{"bridgeSetIFCompat", bridge_name, ifname, nullptr, nullptr, nullptr, 1, {group}};
    return write(a, in_ == nullptr ? 0 : in_->bridgeSetIFCompat(bridge_name, ifname, group));
}

int KrelTap::bridgeSetIFGroup(const char* bridge_name, const char* ifname, int group, int relay) {
    KrelArgs a{"bridgeSetIFGroup", bridge_name, ifname, nullptr, nullptr, nullptr, 2, {group, relay}};
    return write(a, in_ == nullptr ? 0 : in_->bridgeSetIFGroup(bridge_name, ifname, group, relay));
}

int KrelTap::bridgeSetIFTSvlan(const char* bridge_name, const char* ifname, int vlan_id,
                               const char* primary_ifname) {
    KrelArgs a{"bridgeSetIFTSvlan", bridge_name, ifname, primary_ifname, nullptr, nullptr, 1, {vlan_id}};
    return write(a, in_ == nullptr ? 0 : in_->bridgeSetIFTSvlan(bridge_name, ifname, vlan_id, primary_ifname));
}

int KrelTap::bridgeSetIFBroadcast(const char* bridge_name, const char* ifname, int allowed) {
    KrelArgs a{"bridgeSetIFBroadcast", bridge_name, ifname, nullptr, nullptr, nullptr, 1, {allowed}};
    return write(a, in_ == nullptr ? 0 : in_->bridgeSetIFBroadcast(bridge_name, ifname, allowed));
}

int KrelTap::bridgeSetIFClass(const char* bridge_name, const char* ifname, int if_class) {
    KrelArgs a{"bridgeSetIFClass", bridge_name, ifname, nullptr, nullptr, nullptr, 1, {if_class}};
    return write(a, in_ == nullptr ? 0 : in_->bridgeSetIFClass(bridge_name, ifname, if_class));
}

int KrelTap::bridgeSetIFPath(const char* bridge_name, const char* ifname, int path) {
    KrelArgs a{"bridgeSetIFPath", bridge_name, ifname, nullptr, nullptr, nullptr, 1, {path}};
    return write(a, in_ == nullptr ? 0 : in_->bridgeSetIFPath(bridge_name, ifname, path));
}

int KrelTap::bridgeSetIFType(const char* bridge_name, const char* ifname, int type) {
    KrelArgs a{"bridgeSetIFType", bridge_name, ifname, nullptr, nullptr, nullptr, 1, {type}};
    return write(a, in_ == nullptr ? 0 : in_->bridgeSetIFType(bridge_name, ifname, type));
}

int KrelTap::bridgeSetEventInfo(const char* bridge_name, int pid, int event_type, int protocol) {
    KrelArgs a{"bridgeSetEventInfo", bridge_name, nullptr, nullptr, nullptr, nullptr, 3, {pid, event_type, protocol}};
    return write(a, in_ == nullptr ? 0 : in_->bridgeSetEventInfo(bridge_name, pid, event_type, protocol));
}

int KrelTap::bridgeStopAPS(const char* bridge_name) {
    return write(KrelArgs{"bridgeStopAPS", bridge_name}, in_ == nullptr ? 0 : in_->bridgeStopAPS(bridge_name));
}

int KrelTap::bridgeDelFdbByName(const char* bridge_name, const char* ifname) {
    KrelArgs a{"bridgeDelFdbByName", bridge_name, ifname};
    return write(a, in_ == nullptr ? 0 : in_->bridgeDelFdbByName(bridge_name, ifname));
}

}  // namespace lynd
