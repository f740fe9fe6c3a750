// The bridge-library seam. The device build forwards each call to libkrel;
// the simulator answers from its model of the bridge; tests install fakes.
#pragma once
#include <cstdint>

namespace lynd {

class KrelApi {
public:
    virtual ~KrelApi() = default;

    virtual void* bridgeAllocTableBuf(int size, const char* bridge_name) = 0;
    virtual void bridgeFreeTableBuf(void* payload) = 0;
    virtual int bridgeTableAction(const char* bridge_name, int table_type, int* count, void* buf,
                                  int flags) = 0;
    virtual int netlink_msg(int msg_type, unsigned char* buf, int size, int protocol) = 0;

    virtual int bridgeSetHCTableEntries(const char* bridge_name, const unsigned char* client_mac,
                                        const unsigned char* id, const char* port_ifname,
                                        const char* vlan_ifname) = 0;
    virtual int bridgeDelHCTableEntriesByMAC(const char* bridge_name,
                                             const unsigned char* client_mac) = 0;
    virtual int bridgeSetHcPreferred(const char* bridge_name, uint32_t ifindex) = 0;
    virtual int bridgeSetHcPreferredAndFlushHCTable(const char* bridge_name, uint32_t ifindex) = 0;
    virtual int bridgeFlushHCTable(const char* bridge_name) = 0;
    virtual int bridgeFlushHipTable(const char* bridge_name) = 0;

    virtual int bridgeSetTcpSP(const char* bridge_name, int on) = 0;
    virtual int bridgeSetBridgeMode(const char* bridge_name, int mode) = 0;
    virtual int bridgeSetFollowRE(const char* bridge_name, int on) = 0;
    virtual int bridgeSetHcEnable(const char* bridge_name, int on) = 0;
    virtual int bridgeSetForwardingMode(const char* bridge_name, int mode) = 0;
    virtual int bridgeSetIFCompat(const char* bridge_name, const char* ifname, int group) = 0;
    virtual int bridgeSetIFGroup(const char* bridge_name, const char* ifname, int group,
                                 int relay) = 0;
    virtual int bridgeSetIFTSvlan(const char* bridge_name, const char* ifname, int vlan_id,
                                  const char* primary_ifname) = 0;
    virtual int bridgeSetIFBroadcast(const char* bridge_name, const char* ifname, int allowed) = 0;
    virtual int bridgeSetIFClass(const char* bridge_name, const char* ifname, int if_class) = 0;
    virtual int bridgeSetIFPath(const char* bridge_name, const char* ifname, int path) = 0;
    virtual int bridgeSetIFType(const char* bridge_name, const char* ifname, int type) = 0;

    virtual int bridgeSetEventInfo(const char* bridge_name, int pid, int event_type,
                                   int protocol) = 0;
    virtual int bridgeStopAPS(const char* bridge_name) = 0;
    virtual int bridgeDelFdbByName(const char* bridge_name, const char* ifname) = 0;
};

}  // namespace lynd
