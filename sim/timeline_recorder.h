// Watches a run once a virtual second for the timeline picture: each path's
// state, rate and utilisation, and the daemon's decisions as they come.
#pragma once
#include <cstdint>

#include "platform/loop.h"
#include "sim/scenario.h"
#include "sim/timeline_trace.h"

namespace lynd {

class TimelineRecorder {
public:
    // Samples from now on, every second of virtual time on loop.
    void start(Loop* loop, const Scenario& sc);
    // The trace up to end_ms; the recorder stops.
    TimelineTrace finish(int64_t end_ms);

private:
    struct Tick {
        LoopTimer timer;  // first: the timer is the record
        TimelineRecorder* self;
    };
    static void on_tick(LoopTimer* t);
    void sample(int64_t now_ms);
    void take_decisions();
    void add_ticks(const Scenario& sc);

    Loop* loop_ = nullptr;
    Tick tick_{};
    TimelineTrace trace_;
    int open_state_[5] = {-1, -1, -1, -1, -1};
    uint32_t seen_seq_ = 0;
    int64_t clock_offset_ms_ = 0;
};

}  // namespace lynd
