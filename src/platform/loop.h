// The event loop seam: timers and fd watches, one loop per process.
#pragma once
#include <cstdint>

namespace lynd {

class Loop;

// A timer lives inside the record that owns it; the handler finds the owner
// from the timer's address and re-arms it when it wants another run.
struct LoopTimer {
    void (*cb)(LoopTimer* t) = nullptr;
    // Owned by the loop.
    bool pending = false;
    int64_t expires_ms = 0;
    LoopTimer* next = nullptr;
};

enum LoopFdEvents : unsigned { LOOP_FD_READ = 1u, LOOP_FD_WRITE = 2u };

struct LoopFd {
    int fd = -1;
    void (*cb)(LoopFd* f, unsigned events) = nullptr;
    bool registered = false;
};

class Loop {
public:
    virtual ~Loop() = default;
    virtual int init() = 0;
    virtual void done() = 0;
    // Arms (or re-arms) t to fire msecs from now; 0 on success.
    virtual int timer_set(LoopTimer* t, int msecs) = 0;
    // Disarms t; -1 when it was not pending.
    virtual int timer_cancel(LoopTimer* t) = 0;
    // Milliseconds until t fires, -1 when not pending.
    virtual int64_t timer_remaining(const LoopTimer* t) = 0;
    virtual int fd_add(LoopFd* f, unsigned events) = 0;
    virtual int fd_delete(LoopFd* f) = 0;
    // Runs until end() or SIGINT/SIGTERM; SIGHUP, SIGUSR1 and SIGUSR2 neither
    // end it nor kill the process.
    virtual void run() = 0;
    virtual void end() = 0;
    virtual int64_t now_ms() = 0;
};

}  // namespace lynd
