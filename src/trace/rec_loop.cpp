#include "trace/rec_loop.h"

#include "trace/trace_sink.h"

namespace lynd {

namespace {

RecLoop* g_self = nullptr;

int record_rc(const char* kind, int id, int rc) {
    TraceLine& l = trace_begin(kind);
    l.num("id", id);
    l.num("rc", rc);
    trace_emit();
    return rc;
}

}  // namespace

void RecLoop::release() {
    for (int i = 0; i < timer_ids_.count(); i++)
        unwrap_timer(i);
    for (int i = 0; i < fd_ids_.count(); i++)
        unwrap_fd(i);
    timer_ids_.reset();
    fd_ids_.reset();
    g_self = nullptr;
}

void RecLoop::unwrap_timer(int id) {
    if (id < 0 || !timer_wrapped_[id])
        return;
    auto* t = static_cast<LoopTimer*>(const_cast<void*>(timer_ids_.at(id)));
    t->cb = timer_cb_[id];
    timer_wrapped_[id] = false;
}

void RecLoop::unwrap_fd(int id) {
    if (id < 0 || !fd_wrapped_[id])
        return;
    auto* f = static_cast<LoopFd*>(const_cast<void*>(fd_ids_.at(id)));
    f->cb = fd_cb_[id];
    fd_wrapped_[id] = false;
}

void RecLoop::on_timer(LoopTimer* t) {
    int id = g_self != nullptr ? g_self->timer_ids_.find(t) : -1;
    if (id < 0)
        return;
    TraceLine& l = trace_begin("timer");
    l.num("id", id);
    trace_emit();
    // Its own handler again before it runs: it may re-arm or free the timer.
    g_self->unwrap_timer(id);
    t->cb(t);
}

void RecLoop::on_fd(LoopFd* f, unsigned events) {
    int id = g_self != nullptr ? g_self->fd_ids_.find(f) : -1;
    if (id < 0)
        return;
    TraceLine& l = trace_begin("fd");
    l.num("id", id);
    l.num("ev", events);
    trace_emit();
    g_self->fd_cb_[id](f, events);
}

int RecLoop::init() { return record_rc("loop_init", 0, in_->init()); }

void RecLoop::done() {
    trace_begin("loop_done");
    trace_emit();
    in_->done();
}

int RecLoop::timer_set(LoopTimer* t, int msecs) {
    g_self = this;
    int id = timer_ids_.id_of(t);
    if (id >= 0 && t->cb != on_timer) {
        timer_cb_[id] = t->cb;
        t->cb = on_timer;
        timer_wrapped_[id] = true;
    }
    int rc = in_->timer_set(t, msecs);
    TraceLine& l = trace_begin("timer_set");
    l.num("id", id);
    l.num("ms", msecs);
    l.num("rc", rc);
    trace_emit();
    return rc;
}

int RecLoop::timer_cancel(LoopTimer* t) {
    int id = timer_ids_.find(t);
    int rc = in_->timer_cancel(t);
    unwrap_timer(id);
    return record_rc("timer_cancel", id, rc);
}

int64_t RecLoop::timer_remaining(const LoopTimer* t) {
    int64_t left = in_->timer_remaining(t);
    TraceLine& l = trace_begin("timer_left");
    l.num("id", timer_ids_.find(t));
    l.num("rc", left);
    trace_emit();
    return left;
}

int RecLoop::fd_add(LoopFd* f, unsigned events) {
    g_self = this;
    int id = fd_ids_.id_of(f);
    if (id >= 0 && f->cb != on_fd) {
        fd_cb_[id] = f->cb;
        f->cb = on_fd;
        fd_wrapped_[id] = true;
    }
    int rc = in_->fd_add(f, events);
    TraceLine& l = trace_begin("fd_add");
    l.num("id", id);
    l.num("fd", f->fd);
    l.num("ev", events);
    l.num("rc", rc);
    trace_emit();
    return rc;
}

int RecLoop::fd_delete(LoopFd* f) {
    int id = fd_ids_.find(f);
    int rc = in_->fd_delete(f);
    unwrap_fd(id);
    return record_rc("fd_del", id, rc);
}

void RecLoop::run() {
    in_->run();
    trace_begin("run_end");
    trace_emit();
}

void RecLoop::end() {
    trace_begin("loop_end");
    trace_emit();
    in_->end();
}

}  // namespace lynd
