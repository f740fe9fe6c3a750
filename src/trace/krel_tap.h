// The bridge library's writes, each named as a record names it and handed to
// write() with the result of the library underneath (0 with none, as in a
// replay, which answers from the record).
#pragma once
#include "platform/krel_api.h"
#include "trace/krel_requests.h"

namespace lynd {

class KrelTap : public KrelApi {
public:
    void set_inner(KrelApi* inner) { in_ = inner; }
    KrelApi* inner() const { return in_; }

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

protected:
    virtual int write(const KrelArgs& a, int rc) = 0;

    KrelApi* in_ = nullptr;
};

}  // namespace lynd
