// The bridge library's write calls, listed once. Every seam that declares,
// forwards, records, gates or fakes them expands this list, so a new call
// is one row here plus code only where something does more than pass it on.
//
// X(name, parameters, arguments, steers): steers says that the call moves
// traffic, so shadow mode holds it back.
#pragma once

// clang-format off
#define LYND_KREL_WRITES(X)                                                                             \
    X(bridgeSetHCTableEntries,                                                                          \
      (const char* bridge_name, const unsigned char* client_mac, const unsigned char* id,               \
       const char* port_ifname, const char* vlan_ifname),                                               \
      (bridge_name, client_mac, id, port_ifname, vlan_ifname), true)                                    \
    X(bridgeDelHCTableEntriesByMAC, (const char* bridge_name, const unsigned char* client_mac),         \
      (bridge_name, client_mac), true)                                                                  \
    X(bridgeSetHcPreferred, (const char* bridge_name, uint32_t ifindex), (bridge_name, ifindex), true)  \
    X(bridgeSetHcPreferredAndFlushHCTable, (const char* bridge_name, uint32_t ifindex),                 \
      (bridge_name, ifindex), true)                                                                     \
    X(bridgeFlushHCTable, (const char* bridge_name), (bridge_name), true)                               \
    X(bridgeFlushHipTable, (const char* bridge_name), (bridge_name), true)                              \
    X(bridgeSetTcpSP, (const char* bridge_name, int on), (bridge_name, on), true)                       \
    X(bridgeSetBridgeMode, (const char* bridge_name, int mode), (bridge_name, mode), true)              \
    X(bridgeSetFollowRE, (const char* bridge_name, int on), (bridge_name, on), true)                    \
    X(bridgeSetHcEnable, (const char* bridge_name, int on), (bridge_name, on), true)                    \
    X(bridgeSetForwardingMode, (const char* bridge_name, int mode), (bridge_name, mode), true)          \
    X(bridgeSetIFCompat, (const char* bridge_name, const char* ifname, int group),                      \
      (bridge_name, ifname, group), true)                                                               \
    X(bridgeSetIFGroup, (const char* bridge_name, const char* ifname, int group, int relay),            \
      (bridge_name, ifname, group, relay), true)                                                        \
    X(bridgeSetIFTSvlan, (const char* bridge_name, const char* ifname, int vlan_id,                     \
                          const char* primary_ifname),                                                  \
      (bridge_name, ifname, vlan_id, primary_ifname), true)                                             \
    X(bridgeSetIFBroadcast, (const char* bridge_name, const char* ifname, int allowed),                 \
      (bridge_name, ifname, allowed), true)                                                             \
    X(bridgeSetIFClass, (const char* bridge_name, const char* ifname, int if_class),                    \
      (bridge_name, ifname, if_class), true)                                                            \
    X(bridgeSetIFPath, (const char* bridge_name, const char* ifname, int path),                         \
      (bridge_name, ifname, path), true)                                                                \
    X(bridgeSetIFType, (const char* bridge_name, const char* ifname, int type),                         \
      (bridge_name, ifname, type), true)                                                                \
    X(bridgeSetEventInfo, (const char* bridge_name, int pid, int event_type, int protocol),             \
      (bridge_name, pid, event_type, protocol), false)                                                  \
    X(bridgeStopAPS, (const char* bridge_name), (bridge_name), false)                                   \
    X(bridgeDelFdbByName, (const char* bridge_name, const char* ifname), (bridge_name, ifname), true)
// clang-format on
