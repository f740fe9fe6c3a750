#include "sim/desk/replay_loop.h"

#include "trace/trace_kinds.h"

namespace lynd {

int ReplayLoop::rc_of(TraceLine& l, int def) {
    const TraceRecord* r = tape_->take(l);
    return r != nullptr ? static_cast<int>(r->num("rc", def)) : def;
}

int ReplayLoop::init() {
    TraceLine& l = tape_->begin("loop_init");
    l.num("id", 0);
    return rc_of(l, -1);
}

void ReplayLoop::done() { (void)tape_->take(tape_->begin("loop_done")); }

int ReplayLoop::timer_set(LoopTimer* t, int msecs) {
    int id = timer_ids_.id_of(t);
    if (tape_->what_if()) {
        (void)timers_.remove(t);
        timers_.add(t, tape_->now_ms() + (msecs > 0 ? msecs : 0));
        return 0;
    }
    TraceLine& l = tape_->begin("timer_set");
    l.num("id", id);
    l.num("ms", msecs);
    int rc = rc_of(l, -1);
    if (rc == 0) {
        t->pending = true;
        t->expires_ms = tape_->now_ms() + msecs;
    }
    return rc;
}

int ReplayLoop::timer_cancel(LoopTimer* t) {
    if (tape_->what_if())
        return timers_.remove(t) ? 0 : -1;
    TraceLine& l = tape_->begin("timer_cancel");
    l.num("id", timer_ids_.find(t));
    t->pending = false;
    return rc_of(l, -1);
}

int64_t ReplayLoop::timer_remaining(const LoopTimer* t) {
    if (tape_->what_if())
        return t->pending ? t->expires_ms - tape_->now_ms() : -1;
    TraceLine& l = tape_->begin("timer_left");
    l.num("id", timer_ids_.find(t));
    const TraceRecord* r = tape_->take(l);
    return r != nullptr ? r->num("rc", -1) : -1;
}

int ReplayLoop::fd_add(LoopFd* f, unsigned events) {
    int id = fd_ids_.id_of(f);
    TraceLine& l = tape_->begin("fd_add");
    l.num("id", id);
    l.num("fd", f->fd);
    l.num("ev", events);
    int rc = rc_of(l, -1);
    f->registered = rc == 0;
    return rc;
}

int ReplayLoop::fd_delete(LoopFd* f) {
    TraceLine& l = tape_->begin("fd_del");
    l.num("id", fd_ids_.find(f));
    f->registered = false;
    return rc_of(l, -1);
}

void ReplayLoop::end() {
    ended_ = true;
    (void)tape_->take(tape_->begin("loop_end"));
}

size_t ReplayLoop::next_outside(size_t from) const {
    const auto& recs = tape_->trace().records;
    while (from < recs.size() && (!trace_kind_is_dispatch(recs[from].kind.c_str()) || recs[from].kind == "timer"))
        from++;
    return from;
}

void ReplayLoop::run_what_if() {
    const auto& recs = tape_->trace().records;
    size_t i = next_outside(0);
    // The recorded run is all there is to answer from.
    int64_t end_ms = recs.empty() ? 0 : recs.back().t;
    ended_ = false;
    while (!ended_) {
        LoopTimer* t = timers_.first();
        bool outside = i < recs.size() && (t == nullptr || recs[i].t < t->expires_ms);
        if (!outside && (t == nullptr || t->expires_ms > end_ms))
            return;
        if (outside) {
            TraceRecord r = recs[i];
            i = next_outside(i + 1);
            tape_->set_now(r.t);
            if (r.kind == "run_end")
                return;
            dispatch(r);
            r.release();
            continue;
        }
        tape_->set_now(t->expires_ms);
        LoopTimer* due = timers_.pop_due(t->expires_ms);
        if (due != nullptr && due->cb != nullptr)
            due->cb(due);
    }
}

void ReplayLoop::dispatch(const TraceRecord& r) {
    if (r.kind == "timer") {
        auto* t = static_cast<LoopTimer*>(const_cast<void*>(timer_ids_.at(static_cast<int>(r.num("id", -1)))));
        if (t == nullptr || !t->pending || t->cb == nullptr)
            return tape_->diverge(trace_record_text(r), "no such timer armed");
        t->pending = false;
        t->cb(t);
    } else if (r.kind == "fd") {
        auto* f = static_cast<LoopFd*>(const_cast<void*>(fd_ids_.at(static_cast<int>(r.num("id", -1)))));
        if (f == nullptr || !f->registered || f->cb == nullptr)
            return tape_->diverge(trace_record_text(r), "no such descriptor watched");
        f->cb(f, static_cast<unsigned>(r.num("ev")));
    } else if (r.kind == "event") {
        bus_->deliver(r);
    } else if (r.kind == "call") {
        bus_->call(r);
    } else if (r.kind == "lost") {
        bus_->lost();
    }
}

void ReplayLoop::run() {
    if (tape_->what_if())
        return run_what_if();
    while (const TraceRecord* next = tape_->peek()) {
        if (!trace_kind_is_dispatch(next->kind.c_str())) {
            tape_->diverge(trace_record_text(*next), "the daemon waiting in its loop");
            return;
        }
        // A copy: its parsed message lives through the whole dispatch.
        TraceRecord r = *tape_->next();
        (void)r.object();
        if (r.kind == "run_end")
            return;
        dispatch(r);
    }
}

}  // namespace lynd
