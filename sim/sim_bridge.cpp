#include "sim/sim_bridge.h"

#include <cstdlib>
#include <string>

namespace lynd {

namespace {

std::string str(const char* s) { return s != nullptr ? s : "(null)"; }

std::string mac_str(const unsigned char* m) {
    if (m == nullptr)
        return "(null)";
    char buf[18];
    std::snprintf(buf, sizeof buf, "%02x:%02x:%02x:%02x:%02x:%02x", m[0], m[1], m[2], m[3], m[4], m[5]);
    return buf;
}

std::string num(long v) { return std::to_string(v); }

}  // namespace

size_t SimBridge::count_calls(const std::string& prefix) const {
    size_t n = 0;
    for (const auto& c : calls_)
        n += c.compare(0, prefix.size(), prefix) == 0;
    return n;
}

int SimBridge::record(const std::string& call, const std::string& args) {
    calls_.push_back(call + " " + args);
    auto it = results_.find(call);
    return it == results_.end() ? 0 : it->second;
}

// Table buffers carry the library's 52-byte message header before the payload.
constexpr int kTableHeader = 52;

void* SimBridge::bridgeAllocTableBuf(int size, const char* bridge_name) {
    if (record("bridgeAllocTableBuf", num(size) + " " + str(bridge_name)) != 0 || size < 0)
        return nullptr;
    auto* area = static_cast<unsigned char*>(std::calloc(1, static_cast<size_t>(size) + kTableHeader));
    return area == nullptr ? nullptr : area + kTableHeader;
}

void SimBridge::bridgeFreeTableBuf(void* payload) {
    (void)record("bridgeFreeTableBuf", "");
    if (payload != nullptr)
        std::free(static_cast<unsigned char*>(payload) - kTableHeader);
}

int SimBridge::bridgeTableAction(const char* bridge_name, int table_type, int* count, void*, int flags) {
    int rc = record("bridgeTableAction", str(bridge_name) + " " + num(table_type) + " " + num(flags));
    if (count != nullptr)
        *count = 0;
    return rc;
}

int SimBridge::netlink_msg(int msg_type, unsigned char*, int size, int protocol) {
    return record("netlink_msg", num(msg_type) + " " + num(size) + " " + num(protocol));
}

int SimBridge::bridgeSetHCTableEntries(const char* bridge_name, const unsigned char* client_mac,
                                       const unsigned char* id, const char* port_ifname,
                                       const char* vlan_ifname) {
    return record("bridgeSetHCTableEntries", str(bridge_name) + " " + mac_str(client_mac) + " " + mac_str(id) +
                                                 " " + str(port_ifname) + " " + str(vlan_ifname));
}

int SimBridge::bridgeDelHCTableEntriesByMAC(const char* bridge_name, const unsigned char* client_mac) {
    return record("bridgeDelHCTableEntriesByMAC", str(bridge_name) + " " + mac_str(client_mac));
}

int SimBridge::bridgeSetHcPreferred(const char* bridge_name, uint32_t ifindex) {
    return record("bridgeSetHcPreferred", str(bridge_name) + " " + num(ifindex));
}

int SimBridge::bridgeSetHcPreferredAndFlushHCTable(const char* bridge_name, uint32_t ifindex) {
    return record("bridgeSetHcPreferredAndFlushHCTable", str(bridge_name) + " " + num(ifindex));
}

int SimBridge::bridgeFlushHCTable(const char* bridge_name) { return record("bridgeFlushHCTable", str(bridge_name)); }

int SimBridge::bridgeFlushHipTable(const char* bridge_name) { return record("bridgeFlushHipTable", str(bridge_name)); }

int SimBridge::bridgeSetTcpSP(const char* bridge_name, int on) {
    return record("bridgeSetTcpSP", str(bridge_name) + " " + num(on));
}

int SimBridge::bridgeSetBridgeMode(const char* bridge_name, int mode) {
    return record("bridgeSetBridgeMode", str(bridge_name) + " " + num(mode));
}

int SimBridge::bridgeSetFollowRE(const char* bridge_name, int on) {
    return record("bridgeSetFollowRE", str(bridge_name) + " " + num(on));
}

int SimBridge::bridgeSetHcEnable(const char* bridge_name, int on) {
    return record("bridgeSetHcEnable", str(bridge_name) + " " + num(on));
}

int SimBridge::bridgeSetForwardingMode(const char* bridge_name, int mode) {
    return record("bridgeSetForwardingMode", str(bridge_name) + " " + num(mode));
}

int SimBridge::bridgeSetIFCompat(const char* bridge_name, const char* ifname, int group) {
    return record("bridgeSetIFCompat", str(bridge_name) + " " + str(ifname) + " " + num(group));
}

int SimBridge::bridgeSetIFGroup(const char* bridge_name, const char* ifname, int group, int relay) {
    return record("bridgeSetIFGroup", str(bridge_name) + " " + str(ifname) + " " + num(group) + " " + num(relay));
}

int SimBridge::bridgeSetIFTSvlan(const char* bridge_name, const char* ifname, int vlan_id,
                                 const char* primary_ifname) {
    return record("bridgeSetIFTSvlan",
                  str(bridge_name) + " " + str(ifname) + " " + num(vlan_id) + " " + str(primary_ifname));
}

int SimBridge::bridgeSetIFBroadcast(const char* bridge_name, const char* ifname, int allowed) {
    return record("bridgeSetIFBroadcast", str(bridge_name) + " " + str(ifname) + " " + num(allowed));
}

int SimBridge::bridgeSetIFClass(const char* bridge_name, const char* ifname, int if_class) {
    return record("bridgeSetIFClass", str(bridge_name) + " " + str(ifname) + " " + num(if_class));
}

int SimBridge::bridgeSetIFPath(const char* bridge_name, const char* ifname, int path) {
    return record("bridgeSetIFPath", str(bridge_name) + " " + str(ifname) + " " + num(path));
}

int SimBridge::bridgeSetIFType(const char* bridge_name, const char* ifname, int type) {
    return record("bridgeSetIFType", str(bridge_name) + " " + str(ifname) + " " + num(type));
}

int SimBridge::bridgeSetEventInfo(const char* bridge_name, int pid, int event_type, int protocol) {
    return record("bridgeSetEventInfo",
                  str(bridge_name) + " " + num(pid) + " " + num(event_type) + " " + num(protocol));
}

int SimBridge::bridgeStopAPS(const char* bridge_name) { return record("bridgeStopAPS", str(bridge_name)); }

int SimBridge::bridgeDelFdbByName(const char* bridge_name, const char* ifname) {
    return record("bridgeDelFdbByName", str(bridge_name) + " " + str(ifname));
}

}  // namespace lynd
