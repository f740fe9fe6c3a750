// Watches a run once a virtual second for the timeline picture: each path's
// state, rate and utilisation, and the daemon's decisions as they come.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "node/host_stats.h"
#include "platform/loop.h"
#include "sim/scenario/scenario.h"
#include "sim/timeline/timeline_trace.h"

namespace lynd {

class TimelineRecorder {
public:
    // Samples from now on, every second of virtual time on loop.
    void start(Loop* loop, const Scenario& sc);
    // The trace up to end_ms; the recorder stops.
    TimelineTrace finish(int64_t end_ms);
    // Its sampling timer, which is the node's and not the daemon's.
    LoopTimer* tick_timer() { return &tick_.timer; }

private:
    // A link going down or up, from the scenario's timeline.
    struct LinkFlip {
        int64_t at_ms;
        std::string name;
        bool up;
    };
    struct Tick {
        LoopTimer timer;  // first: the timer is the record
        TimelineRecorder* self;
    };
    static void on_tick(LoopTimer* t);
    void sample(int64_t now_ms);
    void take_decisions();
    void take_cpu(int64_t now_ms);
    void add_ticks(const Scenario& sc);
    void add_link_flips(const Scenario& sc);
    bool link_up(const std::string& name, int64_t now_ms) const;

    Loop* loop_ = nullptr;
    Tick tick_{};
    TimelineTrace trace_;
    int open_state_[5] = {-1, -1, -1, -1, -1};
    uint32_t seen_seq_ = 0;
    int64_t clock_offset_ms_ = 0;
    cpu_sampler seen_cpu_{};
    std::vector<LinkFlip> flips_;
};

}  // namespace lynd
