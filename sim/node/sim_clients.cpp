#include "sim/node/sim_clients.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <map>

#include "core/list.h"
#include "event/bridge_events.h"
#include "sim/node/netlink_craft.h"
#include "sim/node/sim_host.h"
#include "sim/node/sim_loop.h"
#include "sim/node/wlan_platform_sim.h"

namespace lynd {

namespace {

constexpr uint64_t kBytesPerMbitSecond = 125000;
constexpr uint64_t kBytesPerPacket = 1000;
// A flushed table fills again once the clients' next frames cross the bridge.
constexpr int kRelearnMs = 1000;
constexpr uint32_t kHcAddMessage = 3;

bool same_mac(const uint8_t* a, const uint8_t* b) { return std::memcmp(a, b, 6) == 0; }

hc_entry* find_entry(SimBridgeState& br, const uint8_t* mac) {
    for (auto& e : br.hc)
        if (same_mac(e.mac, mac))
            return &e;
    return nullptr;
}

// "ath12.20" rides on ath12.
std::string home_of(const std::string& name) { return name.substr(0, name.find('.')); }

// Switched off by the daemon; never set counts as on.
bool hc_on(const SimBridgeState& br) { return br.hc_enable != 0; }

}  // namespace

void SimClients::start(const std::vector<SimClient>& clients, const SimHcModel& model) {
    SimBridgeState* br = bridge_->first();
    if (br == nullptr)
        return;
    bridge_name_ = br->name;
    bridge_->set_hc_observer(this);
    model_ = model;
    refill_.timer.cb = on_refill;
    loop_->keep(&refill_.timer);
    refill_.owner = this;
    members_.resize(clients.size());
    for (size_t i = 0; i < clients.size(); i++) {
        members_[i].c = clients[i];
        members_[i].owner = this;
        members_[i].timer.cb = on_member_timer;
        loop_->keep(&members_[i].timer);
        loop_->timer_set(&members_[i].timer, static_cast<int>(clients[i].join_ms));
    }
    own_pending_ = model_.own_entry;
    learn_own_entry(true);
}

void SimClients::on_member_timer(LoopTimer* t) {
    auto* m = static_cast<Member*>(lynd_container_of(t, offsetof(Member, timer)));
    if (!m->active)
        m->owner->join(m);
    else
        m->owner->leave(m);
}

void SimClients::on_refill(LoopTimer* t) {
    static_cast<Refill*>(lynd_container_of(t, offsetof(Refill, timer)))->owner->refill();
}

void SimClients::join(Member* m) {
    m->active = true;
    bridge_->add_fdb(bridge_name_, m->c.mac, m->c.port, false);
    uint32_t dst = m->c.path.empty() ? default_dst() : host_->if_nametoindex(m->c.path.c_str());
    add_entry(m->c.mac, node_mac().data(), host_->if_nametoindex(m->c.port.c_str()), dst, true);
    if (m->c.leave_ms >= 0)
        loop_->timer_set(&m->timer, static_cast<int>(m->c.leave_ms - loop_->now_ms()));
    update_loads();
}

// It leaves the forwarding table and stops sending; its hc entry stays
// until the daemon deletes it.
void SimClients::leave(Member* m) {
    m->active = false;
    bridge_->del_fdb(bridge_name_, m->c.mac);
    update_loads();
}

// The node's own traffic: the bridge is its source and its own id. It is
// learnt once it has somewhere to go.
void SimClients::learn_own_entry(bool announce) {
    if (!own_pending_)
        return;
    uint32_t dst = default_dst();
    if (dst == 0)
        return;
    own_pending_ = false;
    add_entry(node_mac().data(), node_mac().data(), host_->if_nametoindex(bridge_name_.c_str()), dst, announce);
}

// The entry is filed and, when asked and with a daemon registered for
// events, announced; a bridge whose hc is off announces nothing.
void SimClients::add_entry(const uint8_t* mac, const uint8_t* id, uint32_t src, uint32_t dst, bool announce) {
    SimBridgeState* br = bridge_->find(bridge_name_);
    if (br == nullptr || dst == 0 || find_entry(*br, mac) != nullptr)
        return;
    hc_entry e{};
    std::memcpy(e.mac, mac, 6);
    std::memcpy(e.id, id, 6);
    e.src_port = src;
    e.dst_port = dst;
    br->hc.push_back(e);
    if (!announce || br->event_pid == 0 || !hc_on(*br))
        return;
    host_->queue_datagram(HYFI_EVENT_PROTOCOL, craft_bridge_message(kHcAddMessage, &e, sizeof e));
    (void)loop_->fd_ready(host_->nl_fd(HYFI_EVENT_PROTOCOL));
}

// The preferred port, or with none the first port in port order that the
// daemon's configuration makes a path; 0 when there is neither.
uint32_t SimClients::default_dst() {
    const SimBridgeState* br = bridge_->find(bridge_name_);
    if (br == nullptr)
        return 0;
    if (br->preferred != 0)
        return br->preferred;
    for (const auto& p : br->ports)
        if (std::find(model_.paths.begin(), model_.paths.end(), p) != model_.paths.end())
            return host_->if_nametoindex(p.c_str());
    return 0;
}

// Entries carry the node's own address as their id.
std::array<uint8_t, 6> SimClients::node_mac() const {
    std::array<uint8_t, 6> mac{};
    (void)host_->get_hwaddr(bridge_name_.c_str(), mac.data());
    return mac;
}

std::string SimClients::name_of(uint32_t ifindex) const {
    char name[IFNAME_LEN] = {};
    return host_->if_indextoname(ifindex, name) ? name : "";
}

std::string SimClients::path_of(const uint8_t* mac) const {
    const SimBridgeState* br = bridge_->find(bridge_name_);
    if (br == nullptr)
        return "";
    for (const auto& e : br->hc)
        if (same_mac(e.mac, mac))
            return name_of(e.dst_port);
    return "";
}

void SimClients::before_hc_read(SimBridgeState& br) {
    if (br.name != bridge_name_)
        return;
    int64_t now = loop_->now_ms();
    uint64_t ms = static_cast<uint64_t>(now - last_read_ms_);
    last_read_ms_ = now;
    for (auto& e : br.hc) {
        e.bytes = 0;
        e.pkts = 0;
        for (const auto& m : members_) {
            if (m.active && same_mac(m.c.mac, e.mac)) {
                e.bytes = m.c.mbps * kBytesPerMbitSecond * ms / 1000;
                e.pkts = static_cast<int64_t>(e.bytes / kBytesPerPacket);
            }
        }
    }
}

void SimClients::hc_written(SimBridgeState& br, const uint8_t* mac, uint32_t old_dst) {
    if (br.name != bridge_name_)
        return;
    const hc_entry* e = find_entry(br, mac);
    if (e != nullptr && old_dst != 0 && e->dst_port != old_dst) {
        SimMove mv{loop_->now_ms(), {}, name_of(old_dst), name_of(e->dst_port)};
        std::memcpy(mv.mac, mac, 6);
        moves_.push_back(mv);
    }
    update_loads();
}

void SimClients::hc_flushed(SimBridgeState& br) {
    if (br.name != bridge_name_)
        return;
    update_loads();
    if (model_.refill && hc_on(br))
        loop_->timer_set(&refill_.timer, kRelearnMs);
}

// The bridge's own traffic leaves by the preferred port.
void SimClients::preferred_set(SimBridgeState& br) {
    if (br.name != bridge_name_ || br.preferred == 0 || !hc_on(br))
        return;
    learn_own_entry(true);
    if (hc_entry* own = find_entry(br, node_mac().data()))
        own->dst_port = br.preferred;
}

void SimClients::refill() {
    SimBridgeState* br = bridge_->find(bridge_name_);
    if (br == nullptr || !hc_on(*br))
        return;
    bool say = model_.announce_refills;
    own_pending_ = model_.own_entry;
    learn_own_entry(say);
    for (const auto& m : members_)
        if (m.active)
            add_entry(m.c.mac, node_mac().data(), host_->if_nametoindex(m.c.port.c_str()), default_dst(), say);
    update_loads();
}

void SimClients::announced(const hc_entry& e) {
    SimBridgeState* br = bridge_->find(bridge_name_);
    if (br == nullptr)
        return;
    if (hc_entry* held = find_entry(*br, e.mac))
        *held = e;
    else
        br->hc.push_back(e);
    update_loads();
}

// Each backhaul link carries the load of the clients filed on it.
void SimClients::update_loads() {
    std::map<std::string, uint32_t> load;
    for (const auto& name : loaded_)
        load[name] = 0;
    const SimBridgeState* br = bridge_->find(bridge_name_);
    for (const auto& m : members_) {
        std::string path = m.active && br != nullptr ? path_of(m.c.mac) : "";
        if (!path.empty())
            load[home_of(path)] += m.c.mbps;
    }
    loaded_.clear();
    for (const auto& kv : load) {
        wlan_->set_client_load(kv.first, kv.second);
        loaded_.push_back(kv.first);
    }
}

}  // namespace lynd
