// The loop, recorded: what the daemon arms, and each timer and watch as it
// fires. The loop calls a timer's own handler, so the record steps in front
// of it while it is armed, and gives it back when it fires or is disarmed.
#pragma once
#include "platform/loop.h"
#include "trace/trace_ids.h"

namespace lynd {

class RecLoop : public Loop {
public:
    void set_inner(Loop* inner) { in_ = inner; }
    Loop* inner() const { return in_; }
    // Hands every timer and watch its own handler back.
    void release();

    int init() override;
    void done() override;
    int timer_set(LoopTimer* t, int msecs) override;
    int timer_cancel(LoopTimer* t) override;
    int64_t timer_remaining(const LoopTimer* t) override;
    int fd_add(LoopFd* f, unsigned events) override;
    int fd_delete(LoopFd* f) override;
    void run() override;
    void end() override;
    int64_t now_ms() override { return in_->now_ms(); }

private:
    static void on_timer(LoopTimer* t);
    static void on_fd(LoopFd* f, unsigned events);
    void unwrap_timer(int id);
    void unwrap_fd(int id);

    Loop* in_ = nullptr;
    TraceIds timer_ids_;
    TraceIds fd_ids_;
    void (*timer_cb_[TraceIds::kMax])(LoopTimer*) = {};
    void (*fd_cb_[TraceIds::kMax])(LoopFd*, unsigned) = {};
    // Only an armed timer or a watched fd carries our handler: one disarmed
    // may be freed by its owner at any time after.
    bool timer_wrapped_[TraceIds::kMax] = {};
    bool fd_wrapped_[TraceIds::kMax] = {};
};

}  // namespace lynd
