// The simulator's loop: virtual time that jumps from one due timer to the
// next, so hours of a scenario run in milliseconds.
#pragma once
#include <cstdint>
#include <vector>

#include "platform/loop.h"
#include "platform/timer_queue.h"

namespace lynd {

// Told around each timer the loop fires (a sweep checks the daemon after
// its period runs).
class LoopFireWatch {
public:
    virtual ~LoopFireWatch() = default;
    virtual void before_fire(LoopTimer* t) = 0;
    virtual void after_fire(LoopTimer* t) = 0;
};

class SimLoop : public Loop {
public:
    int init() override;
    void done() override;
    int timer_set(LoopTimer* t, int msecs) override;
    int timer_cancel(LoopTimer* t) override;
    int64_t timer_remaining(const LoopTimer* t) override;
    int fd_add(LoopFd* f, unsigned events) override;
    int fd_delete(LoopFd* f) override;
    // Fires due timers in time order until end() or the stop time.
    void run() override;
    void end() override { ended_ = true; }
    int64_t now_ms() override { return now_ms_; }

    // run() returns once virtual time reaches stop_ms, as SIGTERM would end it.
    void set_stop_time(int64_t stop_ms) { stop_ms_ = stop_ms; }
    // Moves virtual time forward, firing every timer due on the way.
    void advance(int64_t ms);
    // Moves virtual time forward without firing anything, as a loop held
    // inside a callback; what fell due fires late, once it is back.
    void stall(int64_t ms) { now_ms_ += ms; }
    bool running() const { return running_; }
    // Calls the watch on fd as the poller would when data arrives; false when
    // nothing watches fd.
    bool fd_ready(int fd);
    int init_count() const { return init_count_; }
    // t is the node's, not the daemon's: it stays armed when a run of the
    // daemon ends (a restart within the process).
    void keep(LoopTimer* t);
    int done_count() const { return done_count_; }
    void set_fire_watch(LoopFireWatch* w) { watch_ = w; }

private:
    void fire_due(int64_t until_ms);

    static constexpr int kMaxWatches = 8;
    LoopFd* watches_[kMaxWatches] = {};
    std::vector<LoopTimer*> kept_;
    TimerQueue timers_;
    int64_t now_ms_ = 0;
    int64_t stop_ms_ = INT64_MAX;
    bool ended_ = false;
    bool running_ = false;
    LoopFireWatch* watch_ = nullptr;
    int init_count_ = 0;
    int done_count_ = 0;
};

}  // namespace lynd
