// The node's clients and the traffic they send: they join and leave the
// bridge's forwarding table, the bridge files each in its hc table, and
// their load rides on the path their entry points at, so what the daemon
// writes moves their traffic and the path counters and utilisation follow.
#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/loop.h"
#include "sim/node/sim_bridge.h"

namespace lynd {

class SimHost;
class SimLoop;
class SimWlan;

struct SimClient {
    uint8_t mac[6] = {};
    std::string port;      // access port
    std::string path;      // first destination; empty: what the bridge picks
    uint32_t mbps = 0;     // upstream load
    int64_t join_ms = 0;
    int64_t leave_ms = -1;  // -1: stays
};

// What the bridge does on its own, each switched on as a real one does.
struct SimHcModel {
    bool own_entry = true;         // the node's own traffic has an entry
    bool refill = true;            // a flushed table fills again
    bool announce_refills = true;  // with a type-3 message per entry
    // Path interfaces of the daemon's configuration: where a new entry goes
    // while the bridge has no preferred port.
    std::vector<std::string> paths;
};

// One change of a client's destination made by a write of the daemon.
struct SimMove {
    int64_t at_ms;
    uint8_t mac[6];
    std::string from;
    std::string to;
};

class SimClients : public SimHcObserver {
public:
    SimClients(SimHost* host, SimBridge* bridge, SimWlan* wlan, SimLoop* loop)
        : host_(host), bridge_(bridge), wlan_(wlan), loop_(loop) {}

    // The clients belong to the first of the model's bridges, which also
    // gets the node's own entry. Arms the joins and leaves.
    void start(const std::vector<SimClient>& clients, const SimHcModel& model = SimHcModel{});
    // An entry the scenario announced by a type-3 message: the bridge holds
    // what it announces.
    void announced(const hc_entry& e);

    // The interface an active client's entry points at; empty when none.
    std::string path_of(const uint8_t* mac) const;
    const std::vector<SimMove>& moves() const { return moves_; }

    void before_hc_read(SimBridgeState& br) override;
    void hc_written(SimBridgeState& br, const uint8_t* mac, uint32_t old_dst) override;
    void hc_flushed(SimBridgeState& br) override;
    void preferred_set(SimBridgeState& br) override;

private:
    struct Member {
        LoopTimer timer{};  // its next join or leave
        SimClients* owner = nullptr;
        SimClient c;
        bool active = false;
    };
    struct Refill {
        LoopTimer timer{};
        SimClients* owner = nullptr;
    };
    static void on_member_timer(LoopTimer* t);
    static void on_refill(LoopTimer* t);
    void join(Member* m);
    void leave(Member* m);
    void refill();
    void learn_own_entry(bool announce);
    void add_entry(const uint8_t* mac, const uint8_t* id, uint32_t src, uint32_t dst, bool announce);
    uint32_t default_dst();
    void update_loads();
    std::string name_of(uint32_t ifindex) const;
    std::array<uint8_t, 6> node_mac() const;

    SimHost* host_;
    SimBridge* bridge_;
    SimWlan* wlan_;
    SimLoop* loop_;
    std::string bridge_name_;
    std::vector<Member> members_;  // sized once: the loop keeps pointers into it
    Refill refill_;
    SimHcModel model_;
    bool own_pending_ = false;  // the own entry waits for a destination
    int64_t last_read_ms_ = 0;
    std::vector<SimMove> moves_;
    std::vector<std::string> loaded_;  // paths given a load, to clear it later
};

}  // namespace lynd
