// One run of the daemon on a simulated node built from a scenario.
#pragma once
#include <string>
#include <vector>

#include "sim/scenario/scenario.h"
#include "sim/node/sim_bridge.h"
#include "sim/node/sim_bus.h"
#include "sim/node/sim_clients.h"
#include "sim/node/sim_host.h"
#include "sim/node/sim_loop.h"
#include "sim/node/sim_uci.h"
#include "sim/timeline/timeline_recorder.h"
#include "sim/node/wlan_platform_sim.h"

namespace lynd {

struct ExpectResult {
    const Expectation* expect;
    bool passed;
    std::string why;
};

// A method call the timeline made, and what came back.
struct BusCallRecord {
    int64_t at_ms;
    std::string object;
    std::string method;
    std::string args;
    int status;
    std::string reply;  // JSON text when the status is 0
};

struct RunOutcome {
    int exit_status = 0;
    int64_t virtual_ms = 0;
    std::vector<ExpectResult> results;
    size_t failed() const;
};

class SimNode {
public:
    explicit SimNode(const Scenario& sc);
    // Runs the real entry with the scenario's arguments and then extra.
    // A fatal start-up error exits the process from inside the daemon; the
    // handler set with on_exit() still reports the outcome.
    RunOutcome run(const std::string& argv0, const std::vector<std::string>& extra);
    // Expectations still open are judged as if the daemon had exited.
    RunOutcome finish(int exit_status);

    SimHost& host() { return host_; }
    SimBridge& bridge() { return bridge_; }
    SimWlan& wlan() { return wlan_; }
    SimClients& clients() { return clients_; }
    SimBus& bus() { return bus_; }
    SimLoop& loop() { return loop_; }
    const std::vector<BusCallRecord>& bus_calls() const { return bus_calls_; }
    // Before run(): the daemon's trace directory (a `record` call's file, or
    // the configuration's "record", is a name in it). The first such trace
    // makes dir, or a private one when none was set.
    void set_trace_dir(const std::string& dir) { trace_dir_ = dir; }
    const std::string& trace_dir() const { return trace_dir_; }
    // Before run(): watch the run for the timeline picture.
    void record_timeline() { record_timeline_ = true; }
    // The run as watched so far (empty unless recorded); the watch ends.
    TimelineTrace timeline();
    // Actions that steer traffic, as the node saw them: bridge writes, WDS
    // deletions, reconnects, keep-alive frames and broadcast-file writes.
    size_t steering_actions() const;

private:
    struct TimelineTimer {
        LoopTimer timer;  // first: the timer is the record
        SimNode* node;
        const TimelineEntry* entry;
        const Expectation* expect;
    };
    static void fire(LoopTimer* t);
    void play(const TimelineEntry& e);
    void change_link(const TimelineEntry& e);
    void change_uci(const TimelineEntry& e);
    ExpectResult judge(const Expectation& e, int exit_status) const;
    ExpectResult judge_client(const Expectation& e) const;
    ExpectResult judge_state(const Expectation& e) const;
    ExpectResult judge_file(const Expectation& e) const;
    size_t count_calls(const Expectation& e) const;
    void call(const TimelineEntry& e);
    void use_trace_dir();
    ExpectResult judge_reply(const Expectation& e) const;
    void build_node();
    void arm_timeline();

    const Scenario& sc_;
    SimLoop loop_;
    SimHost host_;
    SimUci uci_;
    mutable SimBridge bridge_;
    SimBus bus_;
    SimCpu cpu_;
    SimWlan wlan_{&host_, &loop_};
    SimClients clients_{&host_, &bridge_, &wlan_, &loop_};
    std::vector<TimelineTimer> timers_;
    std::vector<ExpectResult> timed_results_;
    std::vector<BusCallRecord> bus_calls_;
    bool record_timeline_ = false;
    TimelineRecorder recorder_;
    std::string trace_dir_;
    bool trace_dir_made_ = false;
};

}  // namespace lynd
