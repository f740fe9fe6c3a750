// The loop seam on the router: libubox uloop. Timers stay in the daemon's
// own queue; uloop holds one timeout, armed for the earliest of them.
#pragma once
extern "C" {
#include <libubox/uloop.h>
}

#include "platform/loop.h"
#include "platform/timer_queue.h"

namespace lynd {

class UloopLoop : public Loop {
public:
    UloopLoop();

    int init() override;
    void done() override;
    int timer_set(LoopTimer* t, int msecs) override;
    int timer_cancel(LoopTimer* t) override;
    int64_t timer_remaining(const LoopTimer* t) override;
    int fd_add(LoopFd* f, unsigned events) override;
    int fd_delete(LoopFd* f) override;
    void run() override;
    void end() override;
    int64_t now_ms() override;

private:
    // Each libubox record comes first, so its callback finds its owner.
    struct Timeout {
        uloop_timeout t;
        UloopLoop* self;
    };
    struct Watch {
        uloop_fd ufd;
        LoopFd* owner;
    };
    // The daemon watches two netlink sockets; ubus keeps its own uloop_fd.
    static constexpr int kMaxWatches = 8;

    static void on_timeout(uloop_timeout* t);
    static void on_fd(uloop_fd* u, unsigned int events);
    void rearm();
    Watch* find_watch(const LoopFd* f);

    TimerQueue timers_;
    Timeout timeout_{};
    Watch watches_[kMaxWatches] = {};
};

}  // namespace lynd
