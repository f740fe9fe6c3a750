// A stand-in for the vendor bridge library, for running the device binary
// on a PC: every call is printed with its arguments on standard error, the
// tables are empty, and each call's result can be set in the environment:
// LYND_KREL_<call>=<result> (bridgeSetEventInfo=-1, say). netlink_msg with
// message type 0 asks whether a bridge is active: LYND_KREL_netlink_msg.
#include <cinttypes>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "targets/openwrt/krel.h"

namespace {

constexpr size_t kHeader = 52;
constexpr size_t kPayloadLenOffset = 44;

int result_of(const char* call) {
    char name[64];
    std::snprintf(name, sizeof name, "LYND_KREL_%s", call);
    const char* v = std::getenv(name);
    return v != nullptr ? std::atoi(v) : 0;
}

const char* s(const char* text) { return text != nullptr ? text : "(null)"; }

void mac(char* out, const unsigned char* m) {
    if (m == nullptr)
        std::snprintf(out, 18, "(null)");
    else
        std::snprintf(out, 18, "%02x:%02x:%02x:%02x:%02x:%02x", m[0], m[1], m[2], m[3], m[4], m[5]);
}

int logged(const char* call, const char* fmt, ...) __attribute__((format(printf, 2, 3)));
int logged(const char* call, const char* fmt, ...) {
    int rc = result_of(call);
    char args[256];
    va_list ap;
    va_start(ap, fmt);
    std::vsnprintf(args, sizeof args, fmt, ap);
    va_end(ap);
    std::fprintf(stderr, "krel-stub: %s(%s) = %d\n", call, args, rc);
    return rc;
}

}  // namespace

extern "C" {

void* bridgeAllocTableBuf(int size, const char* bridge_name) {
    if (logged("bridgeAllocTableBuf", "%d, %s", size, s(bridge_name)) != 0 || size < 0)
        return nullptr;
    auto* area = static_cast<unsigned char*>(std::calloc(1, static_cast<size_t>(size) + kHeader));
    return area != nullptr ? area + kHeader : nullptr;
}

void bridgeFreeTableBuf(void* payload) {
    (void)logged("bridgeFreeTableBuf", "%p", payload);
    if (payload != nullptr)
        std::free(static_cast<unsigned char*>(payload) - kHeader);
}

int bridgeTableAction(const char* bridge_name, int table_type, int* count, void*, int flags) {
    int rc = logged("bridgeTableAction", "%s, %d, %d, %d", s(bridge_name), table_type, count ? *count : -1, flags);
    if (rc == 0 && count != nullptr)
        *count = 0;
    return rc;
}

int netlink_msg(int msg_type, unsigned char* buf, int size, int protocol) {
    int rc = logged("netlink_msg", "%d, %d, %d", msg_type, size, protocol);
    if (rc == 0 && buf != nullptr && size >= 0) {
        uint32_t none = 0;  // no ports
        std::memcpy(buf + kPayloadLenOffset, &none, sizeof none);
    }
    return rc;
}

int bridgeSetHCTableEntries(const char* b, const unsigned char* client, const unsigned char* id, const char* port,
                            const char* dst) {
    char c[18], i[18];
    mac(c, client);
    mac(i, id);
    return logged("bridgeSetHCTableEntries", "%s, %s, %s, %s, %s", s(b), c, i, s(port), s(dst));
}

int bridgeDelHCTableEntriesByMAC(const char* b, const unsigned char* client) {
    char c[18];
    mac(c, client);
    return logged("bridgeDelHCTableEntriesByMAC", "%s, %s", s(b), c);
}

int bridgeSetHcPreferred(const char* b, uint32_t ifindex) {
    return logged("bridgeSetHcPreferred", "%s, %" PRIu32, s(b), ifindex);
}
int bridgeSetHcPreferredAndFlushHCTable(const char* b, uint32_t ifindex) {
    return logged("bridgeSetHcPreferredAndFlushHCTable", "%s, %" PRIu32, s(b), ifindex);
}
int bridgeFlushHCTable(const char* b) { return logged("bridgeFlushHCTable", "%s", s(b)); }
int bridgeFlushHipTable(const char* b) { return logged("bridgeFlushHipTable", "%s", s(b)); }
int bridgeSetTcpSP(const char* b, int on) { return logged("bridgeSetTcpSP", "%s, %d", s(b), on); }
int bridgeSetBridgeMode(const char* b, int mode) { return logged("bridgeSetBridgeMode", "%s, %d", s(b), mode); }
int bridgeSetFollowRE(const char* b, int on) { return logged("bridgeSetFollowRE", "%s, %d", s(b), on); }
int bridgeSetHcEnable(const char* b, int on) { return logged("bridgeSetHcEnable", "%s, %d", s(b), on); }
int bridgeSetForwardingMode(const char* b, int mode) {
    return logged("bridgeSetForwardingMode", "%s, %d", s(b), mode);
}
int bridgeSetIFCompat(const char* b, const char* ifname, int group) {
    return logged("bridgeSetIFCompat", "%s, %s, %d", s(b), s(ifname), group);
}
int bridgeSetIFGroup(const char* b, const char* ifname, int group, int relay) {
    return logged("bridgeSetIFGroup", "%s, %s, %d, %d", s(b), s(ifname), group, relay);
}
int bridgeSetIFTSvlan(const char* b, const char* ifname, int vlan_id, const char* primary) {
    return logged("bridgeSetIFTSvlan", "%s, %s, %d, %s", s(b), s(ifname), vlan_id, s(primary));
}
int bridgeSetIFBroadcast(const char* b, const char* ifname, int allowed) {
    return logged("bridgeSetIFBroadcast", "%s, %s, %d", s(b), s(ifname), allowed);
}
int bridgeSetIFClass(const char* b, const char* ifname, int if_class) {
    return logged("bridgeSetIFClass", "%s, %s, %d", s(b), s(ifname), if_class);
}
int bridgeSetIFPath(const char* b, const char* ifname, int path) {
    return logged("bridgeSetIFPath", "%s, %s, %d", s(b), s(ifname), path);
}
int bridgeSetIFType(const char* b, const char* ifname, int type) {
    return logged("bridgeSetIFType", "%s, %s, %d", s(b), s(ifname), type);
}
int bridgeSetEventInfo(const char* b, int pid, int event_type, int protocol) {
    return logged("bridgeSetEventInfo", "%s, %d, %d, %d", s(b), pid, event_type, protocol);
}
int bridgeStopAPS(const char* b) { return logged("bridgeStopAPS", "%s", s(b)); }
int bridgeDelFdbByName(const char* b, const char* ifname) {
    return logged("bridgeDelFdbByName", "%s, %s", s(b), s(ifname));
}

}  // extern "C"
