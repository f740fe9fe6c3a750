// The loop of a replay: it hands the daemon what the record says happened
// next (a timer, a ready socket, a bus event or call) at the recorded time.
#pragma once
#include "platform/loop.h"
#include "platform/timer_queue.h"
#include "sim/desk/replay_bus.h"
#include "sim/desk/replay_tape.h"
#include "trace/trace_ids.h"

namespace lynd {

class ReplayLoop : public Loop {
public:
    ReplayLoop(ReplayTape* tape, ReplayBus* bus) : tape_(tape), bus_(bus) {}

    int init() override;
    void done() override;
    int timer_set(LoopTimer* t, int msecs) override;
    int timer_cancel(LoopTimer* t) override;
    int64_t timer_remaining(const LoopTimer* t) override;
    int fd_add(LoopFd* f, unsigned events) override;
    int fd_delete(LoopFd* f) override;
    void run() override;
    void end() override;
    int64_t now_ms() override { return tape_->now_ms(); }

private:
    int rc_of(TraceLine& l, int def);
    void dispatch(const TraceRecord& r);
    // What-if: the daemon's own timers run on their own schedule, between
    // the recorded events from outside.
    void run_what_if();
    size_t next_outside(size_t from) const;

    ReplayTape* tape_;
    ReplayBus* bus_;
    TraceIds timer_ids_;
    TraceIds fd_ids_;
    TimerQueue timers_;
    bool ended_ = false;
};

}  // namespace lynd
