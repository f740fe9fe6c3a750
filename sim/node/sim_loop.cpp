#include "sim/node/sim_loop.h"

#include <algorithm>
#include <utility>

namespace lynd {

int SimLoop::init() {
    init_count_++;
    ended_ = false;
    return 0;
}

void SimLoop::done() {
    done_count_++;
    std::vector<std::pair<LoopTimer*, int64_t>> armed;
    for (LoopTimer* t : kept_)
        if (t->pending)
            armed.emplace_back(t, t->expires_ms);
    timers_.clear();
    for (const auto& a : armed)
        timers_.add(a.first, a.second);
}

void SimLoop::keep(LoopTimer* t) {
    if (std::find(kept_.begin(), kept_.end(), t) == kept_.end())
        kept_.push_back(t);
}

int SimLoop::timer_set(LoopTimer* t, int msecs) {
    timers_.add(t, now_ms_ + (msecs < 0 ? 0 : msecs));
    return 0;
}

int SimLoop::timer_cancel(LoopTimer* t) { return timers_.remove(t) ? 0 : -1; }

int64_t SimLoop::timer_remaining(const LoopTimer* t) {
    if (!t->pending)
        return -1;
    return t->expires_ms > now_ms_ ? t->expires_ms - now_ms_ : 0;
}

int SimLoop::fd_add(LoopFd* f, unsigned) {
    for (LoopFd*& w : watches_) {
        if (w == nullptr || w == f) {
            w = f;
            f->registered = true;
            return 0;
        }
    }
    return -1;
}

int SimLoop::fd_delete(LoopFd* f) {
    for (LoopFd*& w : watches_) {
        if (w == f) {
            w = nullptr;
            f->registered = false;
            return 0;
        }
    }
    return -1;
}

bool SimLoop::fd_ready(int fd) {
    for (LoopFd* w : watches_) {
        if (w != nullptr && w->fd == fd) {
            w->cb(w, LOOP_FD_READ);
            return true;
        }
    }
    return false;
}

void SimLoop::fire_due(int64_t until_ms) {
    while (!ended_) {
        LoopTimer* t = timers_.first();
        if (t == nullptr || t->expires_ms > until_ms)
            break;
        if (t->expires_ms > now_ms_)
            now_ms_ = t->expires_ms;
        timers_.remove(t);
        if (watch_ != nullptr)
            watch_->before_fire(t);
        t->cb(t);
        if (watch_ != nullptr)
            watch_->after_fire(t);
    }
}

void SimLoop::advance(int64_t ms) {
    int64_t until = now_ms_ + ms;
    fire_due(until);
    if (!ended_ && now_ms_ < until)
        now_ms_ = until;
}

void SimLoop::run() {
    running_ = true;
    fire_due(stop_ms_);
    if (!ended_ && stop_ms_ != INT64_MAX && now_ms_ < stop_ms_)
        now_ms_ = stop_ms_;
    ended_ = false;
    running_ = false;
}

}  // namespace lynd
