#include "targets/openwrt/uloop_loop.h"

#include <ctime>

#include "targets/linux/quiet_signals.h"

namespace lynd {

UloopLoop::UloopLoop() {
    timeout_.t.cb = on_timeout;
    timeout_.self = this;
}

int UloopLoop::init() {
    if (uloop_init() != 0)
        return -1;
    // uloop ends the run on SIGINT and SIGTERM; the others must not kill it.
    lynd_quiet_signals();
    rearm();  // timers armed before the loop existed
    return 0;
}

void UloopLoop::done() {
    uloop_timeout_cancel(&timeout_.t);
    timers_.clear();
    // uloop_done() drops the poller, and every watch with it.
    for (Watch& w : watches_) {
        if (w.owner != nullptr)
            w.owner->registered = false;
        w = Watch{};
    }
    uloop_done();
}

int64_t UloopLoop::now_ms() {
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<int64_t>(ts.tv_sec) * 1000 + ts.tv_nsec / 1000000;
}

void UloopLoop::rearm() {
    LoopTimer* first = timers_.first();
    if (first == nullptr) {
        uloop_timeout_cancel(&timeout_.t);
        return;
    }
    int64_t wait = first->expires_ms - now_ms();
    uloop_timeout_set(&timeout_.t, static_cast<int>(wait < 0 ? 0 : wait));
}

int UloopLoop::timer_set(LoopTimer* t, int msecs) {
    timers_.add(t, now_ms() + (msecs < 0 ? 0 : msecs));
    rearm();
    return 0;
}

int UloopLoop::timer_cancel(LoopTimer* t) {
    bool was_pending = timers_.remove(t);
    rearm();
    return was_pending ? 0 : -1;
}

int64_t UloopLoop::timer_remaining(const LoopTimer* t) {
    if (!t->pending)
        return -1;
    int64_t left = t->expires_ms - now_ms();
    return left > 0 ? left : 0;
}

// One timer per pass: a handler that re-arms itself at 0 ms cannot spin
// here, and the fds get their turn before the next due timer runs.
void UloopLoop::on_timeout(uloop_timeout* t) {
    UloopLoop* self = reinterpret_cast<Timeout*>(t)->self;
    LoopTimer* due = self->timers_.pop_due(self->now_ms());
    if (due != nullptr)
        due->cb(due);
    self->rearm();
}

UloopLoop::Watch* UloopLoop::find_watch(const LoopFd* f) {
    for (Watch& w : watches_)
        if (w.owner == f)
            return &w;
    return nullptr;
}

int UloopLoop::fd_add(LoopFd* f, unsigned events) {
    unsigned int flags = 0;
    if (events & LOOP_FD_READ)
        flags |= ULOOP_READ;
    if (events & LOOP_FD_WRITE)
        flags |= ULOOP_WRITE;
    // uloop takes no events as a delete.
    if (flags == 0)
        return -1;
    Watch* w = find_watch(f);
    // A socket rebuilt under the same watch needs a fresh registration.
    if (w != nullptr && w->ufd.fd != f->fd) {
        (void)uloop_fd_delete(&w->ufd);
        w->owner = nullptr;
        w = nullptr;
    }
    if (w == nullptr) {
        w = find_watch(nullptr);
        if (w == nullptr)
            return -1;
        w->ufd = uloop_fd{};
        w->ufd.fd = f->fd;
        w->ufd.cb = on_fd;
    }
    if (uloop_fd_add(&w->ufd, flags) != 0) {
        if (!w->ufd.registered)
            w->owner = nullptr;
        return -1;
    }
    w->owner = f;
    f->registered = true;
    return 0;
}

int UloopLoop::fd_delete(LoopFd* f) {
    Watch* w = find_watch(f);
    if (w == nullptr)
        return -1;
    int rc = uloop_fd_delete(&w->ufd);
    w->owner = nullptr;
    f->registered = false;
    return rc;
}

void UloopLoop::on_fd(uloop_fd* u, unsigned int events) {
    LoopFd* owner = reinterpret_cast<Watch*>(u)->owner;
    if (owner == nullptr)
        return;
    unsigned mapped = 0;
    if (events & ULOOP_READ)
        mapped |= LOOP_FD_READ;
    if (events & ULOOP_WRITE)
        mapped |= LOOP_FD_WRITE;
    owner->cb(owner, mapped);
}

// uloop itself ends the run on SIGINT and SIGTERM, but uloop_run forgets one
// that came before it. Between two runs of one process (a restart's tear-down
// and start) only a signal sets the flag, so such a signal ends the next run
// as soon as it begins.
void UloopLoop::run() {
    if (uloop_cancelled) {
        uloop_cancelled = false;
        return;
    }
    uloop_run();
    uloop_cancelled = false;
}

void UloopLoop::end() { uloop_end(); }

}  // namespace lynd
