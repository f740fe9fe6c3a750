#include "sim/node/sim_bridge.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/mac.h"
#include "sim/node/sim_host.h"

namespace lynd {

namespace {

std::string str(const char* s) { return s != nullptr ? s : "(null)"; }

std::string mac_str(const unsigned char* m) {
    if (m == nullptr)
        return "(null)";
    return lynd_mac(m).s;
}

std::string num(long v) { return std::to_string(v); }

// Table buffers carry the library's 52-byte message header before the payload.
constexpr int kTableHeader = 52;
constexpr int kPayloadLenOffset = 44;
constexpr int kPortEntrySize = 52;

}  // namespace

SimBridgeState& SimBridge::add_bridge(const std::string& name, bool active) {
    bridges_.push_back(SimBridgeState{});
    bridges_.back().name = name;
    bridges_.back().active = active;
    return bridges_.back();
}

SimBridgeState* SimBridge::find(const std::string& name) {
    for (auto& b : bridges_)
        if (b.name == name)
            return &b;
    return nullptr;
}

uint32_t SimBridge::ifindex(const std::string& ifname) const {
    return host_ != nullptr ? host_->if_nametoindex(ifname.c_str()) : 0;
}

void SimBridge::add_port(const std::string& bridge, const std::string& ifname) {
    if (SimBridgeState* b = find(bridge))
        b->ports.push_back(ifname);
}

void SimBridge::add_fdb(const std::string& bridge, const uint8_t mac[6], const std::string& port, bool local) {
    SimBridgeState* b = find(bridge);
    if (b == nullptr)
        return;
    fdb_entry e{};
    std::memcpy(e.mac, mac, sizeof e.mac);
    uint32_t idx = ifindex(port);
    e.port_lo = static_cast<uint8_t>(idx & 0xff);
    e.port_hi = static_cast<uint8_t>(idx >> 8);
    e.is_local = local ? 1 : 0;
    b->fdb.push_back(e);
}

void SimBridge::del_fdb(const std::string& bridge, const uint8_t mac[6]) {
    if (SimBridgeState* b = find(bridge))
        b->fdb.erase(std::remove_if(b->fdb.begin(), b->fdb.end(),
                                    [&](const fdb_entry& e) { return std::memcmp(e.mac, mac, 6) == 0; }),
                     b->fdb.end());
}

void SimBridge::add_hc(const std::string& bridge, const hc_entry& e) {
    if (SimBridgeState* b = find(bridge))
        b->hc.push_back(e);
}

size_t SimBridge::count_calls(const std::string& prefix) const {
    size_t n = 0;
    for (const auto& c : calls_)
        n += c.compare(0, prefix.size(), prefix) == 0;
    return n;
}

std::vector<std::string> SimBridge::calls_matching(const std::string& prefix) const {
    std::vector<std::string> out;
    for (const auto& c : calls_)
        if (c.compare(0, prefix.size(), prefix) == 0)
            out.push_back(c);
    return out;
}

int SimBridge::record(const std::string& call, const std::string& args, const char* port) {
    int64_t now = 0;
    if (host_ != nullptr) {
        timespec ts = host_->monotonic_now();
        now = static_cast<int64_t>(ts.tv_sec) * 1000 + ts.tv_nsec / 1000000;
    }
    calls_.push_back(args.empty() ? call : call + " " + args);
    call_ms_.push_back(now);
    for (const auto& f : failures_) {
        bool port_ok = f.port.empty() || (port != nullptr && f.port == port);
        if (f.call == call && port_ok && now >= f.from_ms && (f.to_ms < 0 || now <= f.to_ms))
            return f.result;
    }
    auto it = results_.find(call);
    return it == results_.end() ? 0 : it->second;
}

SimPortState* SimBridge::port_after(int rc, const char* bridge_name, const char* ifname) {
    SimBridgeState* br = find(str(bridge_name));
    if (rc != 0 || br == nullptr || ifname == nullptr)
        return nullptr;
    return &br->port_state[ifname];
}

int* SimBridge::switch_after(int rc, const char* bridge_name, int SimBridgeState::*field) {
    SimBridgeState* br = find(str(bridge_name));
    return rc != 0 || br == nullptr ? nullptr : &(br->*field);
}

void* SimBridge::bridgeAllocTableBuf(int size, const char* bridge_name) {
    if (record("bridgeAllocTableBuf", num(size) + " " + str(bridge_name)) != 0 || size < 0)
        return nullptr;
    auto* area = static_cast<unsigned char*>(std::calloc(1, static_cast<size_t>(size) + kTableHeader));
    if (area == nullptr)
        return nullptr;
    buffers_[area + kTableHeader] = str(bridge_name);
    return area + kTableHeader;
}

void SimBridge::bridgeFreeTableBuf(void* payload) {
    (void)record("bridgeFreeTableBuf", "");
    if (payload == nullptr)
        return;
    buffers_.erase(payload);
    std::free(static_cast<unsigned char*>(payload) - kTableHeader);
}

int SimBridge::answer_query(int msg_type, unsigned char* buf, int size) {
    auto it = buffers_.find(buf + kTableHeader);
    SimBridgeState* br = it == buffers_.end() ? nullptr : find(it->second);
    if (br == nullptr || !br->active)
        return -1;
    if (msg_type != 256)
        return 0;
    // The port list: one 52-byte entry per port, its ifindex first.
    size_t room = static_cast<size_t>(size) / kPortEntrySize;
    uint32_t len = 0;
    for (size_t i = 0; i < br->ports.size() && i < room; i++) {
        uint32_t idx = ifindex(br->ports[i]);
        std::memcpy(buf + kTableHeader + i * kPortEntrySize, &idx, sizeof idx);
        len += kPortEntrySize;
    }
    std::memcpy(buf + kPayloadLenOffset, &len, sizeof len);
    return 0;
}

int SimBridge::netlink_msg(int msg_type, unsigned char* buf, int size, int protocol) {
    int rc = record("netlink_msg", num(msg_type) + " " + num(size) + " " + num(protocol));
    return rc != 0 ? rc : answer_query(msg_type, buf, size);
}

int SimBridge::copy_table(SimBridgeState& br, int table_type, int* count, void* buf) {
    if (table_type == LYND_TABLE_HC && observer_ != nullptr)
        observer_->before_hc_read(br);
    size_t n = table_type == LYND_TABLE_HC ? br.hc.size() : br.fdb.size();
    size_t entry = table_type == LYND_TABLE_HC ? sizeof(hc_entry) : sizeof(fdb_entry);
    if (*count < 0 || n > static_cast<size_t>(*count)) {
        *count = static_cast<int>(n);  // tells the caller how much room it needs
        return -1;
    }
    const void* src = table_type == LYND_TABLE_HC ? static_cast<const void*>(br.hc.data()) : br.fdb.data();
    if (n > 0)
        std::memcpy(buf, src, n * entry);
    *count = static_cast<int>(n);
    return 0;
}

int SimBridge::bridgeTableAction(const char* bridge_name, int table_type, int* count, void* buf, int flags) {
    int rc = record("bridgeTableAction", str(bridge_name) + " " + num(table_type) + " " + num(flags));
    if (rc != 0)
        return rc;
    SimBridgeState* br = find(str(bridge_name));
    if (br == nullptr || !br->active || count == nullptr ||
        (table_type != LYND_TABLE_HC && table_type != LYND_TABLE_FDB))
        return -1;
    return copy_table(*br, table_type, count, buf);
}

// The fourth argument is the client's own port, the fifth where its traffic goes.
int SimBridge::bridgeSetHCTableEntries(const char* bridge_name, const unsigned char* client_mac,
                                       const unsigned char* id, const char* port_ifname,
                                       const char* vlan_ifname) {
    int rc = record("bridgeSetHCTableEntries", str(bridge_name) + " " + mac_str(client_mac) + " " + mac_str(id) +
                                                   " " + str(port_ifname) + " " + str(vlan_ifname));
    SimBridgeState* br = find(str(bridge_name));
    if (rc != 0 || br == nullptr || client_mac == nullptr)
        return rc != 0 ? rc : -1;
    auto it = std::find_if(br->hc.begin(), br->hc.end(),
                           [&](const hc_entry& e) { return std::memcmp(e.mac, client_mac, 6) == 0; });
    if (it == br->hc.end()) {
        br->hc.push_back(hc_entry{});
        it = br->hc.end() - 1;
        std::memcpy(it->mac, client_mac, 6);
    }
    uint32_t old_dst = it->dst_port;
    if (id != nullptr)
        std::memcpy(it->id, id, 6);
    if (port_ifname != nullptr && port_ifname[0] != '\0')
        it->src_port = ifindex(port_ifname);
    it->dst_port = ifindex(str(vlan_ifname));
    if (observer_ != nullptr)
        observer_->hc_written(*br, client_mac, old_dst);
    return 0;
}

int SimBridge::bridgeDelHCTableEntriesByMAC(const char* bridge_name, const unsigned char* client_mac) {
    int rc = record("bridgeDelHCTableEntriesByMAC", str(bridge_name) + " " + mac_str(client_mac));
    SimBridgeState* br = find(str(bridge_name));
    if (rc != 0 || br == nullptr || client_mac == nullptr)
        return rc != 0 ? rc : -1;
    br->hc.erase(std::remove_if(br->hc.begin(), br->hc.end(),
                                [&](const hc_entry& e) { return std::memcmp(e.mac, client_mac, 6) == 0; }),
                 br->hc.end());
    if (observer_ != nullptr)
        observer_->hc_written(*br, client_mac, 0);
    return 0;
}

int SimBridge::bridgeSetHcPreferred(const char* bridge_name, uint32_t ifindex) {
    int rc = record("bridgeSetHcPreferred", str(bridge_name) + " " + num(ifindex));
    SimBridgeState* br = find(str(bridge_name));
    if (rc == 0 && br != nullptr) {
        br->preferred = ifindex;
        if (observer_ != nullptr)
            observer_->preferred_set(*br);
    }
    return rc;
}

int SimBridge::bridgeSetHcPreferredAndFlushHCTable(const char* bridge_name, uint32_t ifindex) {
    int rc = record("bridgeSetHcPreferredAndFlushHCTable", str(bridge_name) + " " + num(ifindex));
    SimBridgeState* br = find(str(bridge_name));
    if (rc == 0 && br != nullptr) {
        br->preferred = ifindex;
        br->hc.clear();
        if (observer_ != nullptr)
            observer_->hc_flushed(*br);
    }
    return rc;
}

int SimBridge::bridgeFlushHCTable(const char* bridge_name) {
    int rc = record("bridgeFlushHCTable", str(bridge_name));
    SimBridgeState* br = find(str(bridge_name));
    if (rc == 0 && br != nullptr) {
        br->hc.clear();
        if (observer_ != nullptr)
            observer_->hc_flushed(*br);
    }
    return rc;
}

int SimBridge::bridgeFlushHipTable(const char* bridge_name) {
    int rc = record("bridgeFlushHipTable", str(bridge_name));
    SimBridgeState* br = find(str(bridge_name));
    if (rc == 0 && br != nullptr)
        br->hip_flushes++;
    return rc;
}

int SimBridge::bridgeSetTcpSP(const char* bridge_name, int on) {
    int rc = record("bridgeSetTcpSP", str(bridge_name) + " " + num(on));
    if (int* v = switch_after(rc, bridge_name, &SimBridgeState::tcp_sp))
        *v = on;
    return rc;
}

int SimBridge::bridgeSetBridgeMode(const char* bridge_name, int mode) {
    int rc = record("bridgeSetBridgeMode", str(bridge_name) + " " + num(mode));
    if (int* v = switch_after(rc, bridge_name, &SimBridgeState::bridge_mode))
        *v = mode;
    return rc;
}

int SimBridge::bridgeSetFollowRE(const char* bridge_name, int on) {
    int rc = record("bridgeSetFollowRE", str(bridge_name) + " " + num(on));
    if (int* v = switch_after(rc, bridge_name, &SimBridgeState::follow_re))
        *v = on;
    return rc;
}

int SimBridge::bridgeSetHcEnable(const char* bridge_name, int on) {
    int rc = record("bridgeSetHcEnable", str(bridge_name) + " " + num(on));
    if (int* v = switch_after(rc, bridge_name, &SimBridgeState::hc_enable))
        *v = on;
    return rc;
}

int SimBridge::bridgeSetForwardingMode(const char* bridge_name, int mode) {
    int rc = record("bridgeSetForwardingMode", str(bridge_name) + " " + num(mode));
    if (int* v = switch_after(rc, bridge_name, &SimBridgeState::forwarding_mode))
        *v = mode;
    return rc;
}

int SimBridge::bridgeSetIFCompat(const char* bridge_name, const char* ifname, int group) {
    int rc = record("bridgeSetIFCompat", str(bridge_name) + " " + str(ifname) + " " + num(group), ifname);
    if (SimPortState* p = port_after(rc, bridge_name, ifname))
        p->compat_group = group;
    return rc;
}

int SimBridge::bridgeSetIFGroup(const char* bridge_name, const char* ifname, int group, int relay) {
    int rc = record("bridgeSetIFGroup", str(bridge_name) + " " + str(ifname) + " " + num(group) + " " + num(relay),
                    ifname);
    if (SimPortState* p = port_after(rc, bridge_name, ifname)) {
        p->group = group;
        p->relay = relay;
    }
    return rc;
}

int SimBridge::bridgeSetIFTSvlan(const char* bridge_name, const char* ifname, int vlan_id,
                                 const char* primary_ifname) {
    int rc = record("bridgeSetIFTSvlan",
                    str(bridge_name) + " " + str(ifname) + " " + num(vlan_id) + " " + str(primary_ifname), ifname);
    if (SimPortState* p = port_after(rc, bridge_name, ifname)) {
        p->ts_vlan = vlan_id;
        p->primary_name = str(primary_ifname);
    }
    return rc;
}

int SimBridge::bridgeSetIFBroadcast(const char* bridge_name, const char* ifname, int allowed) {
    int rc = record("bridgeSetIFBroadcast", str(bridge_name) + " " + str(ifname) + " " + num(allowed), ifname);
    if (SimPortState* p = port_after(rc, bridge_name, ifname))
        p->broadcast = allowed;
    return rc;
}

int SimBridge::bridgeSetIFClass(const char* bridge_name, const char* ifname, int if_class) {
    int rc = record("bridgeSetIFClass", str(bridge_name) + " " + str(ifname) + " " + num(if_class), ifname);
    if (SimPortState* p = port_after(rc, bridge_name, ifname))
        p->if_class = if_class;
    return rc;
}

int SimBridge::bridgeSetIFPath(const char* bridge_name, const char* ifname, int path) {
    int rc = record("bridgeSetIFPath", str(bridge_name) + " " + str(ifname) + " " + num(path), ifname);
    if (SimPortState* p = port_after(rc, bridge_name, ifname))
        p->path = path;
    return rc;
}

int SimBridge::bridgeSetIFType(const char* bridge_name, const char* ifname, int type) {
    int rc = record("bridgeSetIFType", str(bridge_name) + " " + str(ifname) + " " + num(type), ifname);
    if (SimPortState* p = port_after(rc, bridge_name, ifname))
        p->type = type;
    return rc;
}

int SimBridge::bridgeSetEventInfo(const char* bridge_name, int pid, int event_type, int protocol) {
    int rc = record("bridgeSetEventInfo",
                    str(bridge_name) + " " + num(pid) + " " + num(event_type) + " " + num(protocol));
    SimBridgeState* br = find(str(bridge_name));
    if (rc == 0 && br != nullptr)
        br->event_pid = pid;
    return rc;
}

int SimBridge::bridgeStopAPS(const char* bridge_name) {
    int rc = record("bridgeStopAPS", str(bridge_name));
    SimBridgeState* br = find(str(bridge_name));
    if (rc == 0 && br != nullptr)
        br->stopped = true;
    return rc;
}

int SimBridge::bridgeDelFdbByName(const char* bridge_name, const char* ifname) {
    int rc = record("bridgeDelFdbByName", str(bridge_name) + " " + str(ifname));
    SimBridgeState* br = find(str(bridge_name));
    if (rc != 0 || br == nullptr)
        return rc;
    uint32_t idx = ifindex(str(ifname));
    br->fdb.erase(std::remove_if(br->fdb.begin(), br->fdb.end(),
                                 [&](const fdb_entry& e) { return !e.is_local && fdb_entry_port(e) == idx; }),
                  br->fdb.end());
    return 0;
}

}  // namespace lynd
