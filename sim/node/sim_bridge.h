// The simulated hybrid bridge. It records every library call in order and
// answers with results a scenario or test can set per call name.
#pragma once
#include <map>
#include <string>
#include <vector>

#include "platform/krel_api.h"
#include "bridge/table_entries.h"

namespace lynd {

class SimHost;

// What the daemon set on one port; -1: never set.
struct SimPortState {
    int compat_group = -1;
    int group = -1;
    int relay = -1;
    int ts_vlan = -1;
    std::string primary_name;
    int broadcast = -1;
    int if_class = -1;
    int path = -1;
    int type = -1;
};

// A library call that fails: for one port only when port is set, and only
// within [from_ms, to_ms] (to_ms -1: to the end).
struct SimFailure {
    std::string call;
    int result = -1;
    std::string port;
    int64_t from_ms = 0;
    int64_t to_ms = -1;
};

// One hybrid bridge of the model. Ports and fdb entries name interfaces;
// their indexes come from the simulated host.
struct SimBridgeState {
    std::string name;
    bool active = true;
    std::vector<std::string> ports;
    std::vector<fdb_entry> fdb;
    std::vector<hc_entry> hc;
    uint32_t preferred = 0;
    int event_pid = 0;  // who gets the bridge's events; 0: nobody
    int hip_flushes = 0;
    // The five switches (-1: never set) and whether it was stopped.
    int tcp_sp = -1;
    int bridge_mode = -1;
    int follow_re = -1;
    int hc_enable = -1;
    int forwarding_mode = -1;
    bool stopped = false;
    std::map<std::string, SimPortState> port_state;
};

// Told of the hc table's reads and changes, so that the model's clients
// follow what the daemon writes.
class SimHcObserver {
public:
    virtual ~SimHcObserver() = default;
    virtual void before_hc_read(SimBridgeState& br) = 0;
    // old_dst: the entry's destination before the write, 0 for a new entry.
    virtual void hc_written(SimBridgeState& br, const uint8_t* mac, uint32_t old_dst) = 0;
    virtual void hc_flushed(SimBridgeState& br) = 0;
    virtual void preferred_set(SimBridgeState& br) = 0;
};

class SimBridge : public KrelApi {
public:
    void set_hc_observer(SimHcObserver* o) { observer_ = o; }
    // The model's first bridge, or null.
    SimBridgeState* first() { return bridges_.empty() ? nullptr : &bridges_.front(); }
    void del_fdb(const std::string& bridge, const uint8_t mac[6]);
    void set_host(SimHost* host) { host_ = host; }
    SimBridgeState& add_bridge(const std::string& name, bool active = true);
    // Null when the model has no such bridge.
    SimBridgeState* find(const std::string& name);
    void add_port(const std::string& bridge, const std::string& ifname);
    void add_fdb(const std::string& bridge, const uint8_t mac[6], const std::string& port, bool local);
    void add_hc(const std::string& bridge, const hc_entry& e);
    uint32_t ifindex(const std::string& ifname) const;

    // A non-zero result fails every later call of that name, untouched.
    void set_result(const std::string& call, int result) { results_[call] = result; }
    void add_failure(const SimFailure& f) { failures_.push_back(f); }
    const std::vector<std::string>& calls() const { return calls_; }
    // Virtual time of each call, in step with calls().
    const std::vector<int64_t>& call_times() const { return call_ms_; }
    size_t count_calls(const std::string& prefix) const;
    std::vector<std::string> calls_matching(const std::string& prefix) const;
    void clear_calls() { calls_.clear(); }

    void* bridgeAllocTableBuf(int size, const char* bridge_name) override;
    void bridgeFreeTableBuf(void* payload) override;
    int bridgeTableAction(const char* bridge_name, int table_type, int* count, void* buf,
                          int flags) override;
    int netlink_msg(int msg_type, unsigned char* buf, int size, int protocol) override;
    int bridgeSetHCTableEntries(const char* bridge_name, const unsigned char* client_mac,
                                const unsigned char* id, const char* port_ifname,
                                const char* vlan_ifname) override;
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

private:
    int record(const std::string& call, const std::string& args, const char* port = nullptr);
    // The port's state after a successful call; null on failure.
    SimPortState* port_after(int rc, const char* bridge_name, const char* ifname);
    int* switch_after(int rc, const char* bridge_name, int SimBridgeState::*field);
    int answer_query(int msg_type, unsigned char* buf, int size);
    int copy_table(SimBridgeState& br, int table_type, int* count, void* buf);

    SimHost* host_ = nullptr;
    std::vector<SimBridgeState> bridges_;
    std::map<const void*, std::string> buffers_;  // payload -> bridge it was allocated for
    std::vector<std::string> calls_;
    std::map<std::string, int> results_;
    std::vector<SimFailure> failures_;
    std::vector<int64_t> call_ms_;
    SimHcObserver* observer_ = nullptr;
};

}  // namespace lynd
