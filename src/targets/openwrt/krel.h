// The vendor bridge control library, libkrel, as the daemon calls it.
// Results: 0 on success for every call but bridgeSetHCTableEntries and
// bridgeDelHCTableEntriesByMAC, where only -1 is failure.
#pragma once
#include <cstdint>

extern "C" {


void* bridgeAllocTableBuf(int size, const char* bridge_name);
void bridgeFreeTableBuf(void* payload);
int bridgeTableAction(const char* bridge_name, int table_type, int* count, void* buf, int flags);
int netlink_msg(int msg_type, unsigned char* buf, int size, int protocol);

int bridgeSetHCTableEntries(const char* bridge_name, const unsigned char* client_mac,
                            const unsigned char* id, const char* port_ifname,
                            const char* vlan_ifname);
int bridgeDelHCTableEntriesByMAC(const char* bridge_name, const unsigned char* client_mac);
int bridgeSetHcPreferred(const char* bridge_name, uint32_t ifindex);
int bridgeSetHcPreferredAndFlushHCTable(const char* bridge_name, uint32_t ifindex);
int bridgeFlushHCTable(const char* bridge_name);
int bridgeFlushHipTable(const char* bridge_name);

int bridgeSetTcpSP(const char* bridge_name, int on);
int bridgeSetBridgeMode(const char* bridge_name, int mode);
int bridgeSetFollowRE(const char* bridge_name, int on);
int bridgeSetHcEnable(const char* bridge_name, int on);
int bridgeSetForwardingMode(const char* bridge_name, int mode);
int bridgeSetIFCompat(const char* bridge_name, const char* ifname, int compat_group);
int bridgeSetIFGroup(const char* bridge_name, const char* ifname, int group, int relay);
int bridgeSetIFTSvlan(const char* bridge_name, const char* ifname, int vlan_id,
                      const char* primary_ifname);
int bridgeSetIFBroadcast(const char* bridge_name, const char* ifname, int allowed);
int bridgeSetIFClass(const char* bridge_name, const char* ifname, int if_class);
int bridgeSetIFPath(const char* bridge_name, const char* ifname, int path);
int bridgeSetIFType(const char* bridge_name, const char* ifname, int type);

int bridgeSetEventInfo(const char* bridge_name, int pid, int event_type, int protocol);
int bridgeStopAPS(const char* bridge_name);
int bridgeDelFdbByName(const char* bridge_name, const char* ifname);

}  // extern "C"
