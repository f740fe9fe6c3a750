#include "sim/timeline_recorder.h"

#include <algorithm>

#include "core/decision_ring.h"
#include "core/mac.h"
#include "modules/path_selection/hc_records.h"

namespace lynd {

namespace {

constexpr int kSampleMs = 1000;

double seconds(int64_t ms) { return static_cast<double>(ms) / 1000.0; }

std::string tick_label(const TimelineEntry& e) {
    switch (e.kind) {
    case TimelineKind::UBUS:
        return "ubus " + e.name + " " + e.data;
    case TimelineKind::NETLINK:
        return "netlink message";
    case TimelineKind::STATION_EXPIRED:
        return "station expired on " + e.name;
    case TimelineKind::LINK:
        return "link " + e.name + " " + e.data;
    case TimelineKind::UCI:
        return "uci " + e.data;
    case TimelineKind::BUS:
        return "bus " + e.name;
    case TimelineKind::CLIENT:
        return "client joins or leaves";
    case TimelineKind::UBUS_CALL:
        return "ubus call " + e.name + " " + e.method;
    }
    return "";
}

}  // namespace

void TimelineRecorder::start(Loop* loop, const Scenario& sc) {
    loop_ = loop;
    trace_ = TimelineTrace{};
    trace_.title = sc.name;
    // Decisions carry the daemon's monotonic time; the trace counts from the loop's start.
    clock_offset_ms_ = lynd_monotonic_ms() - loop->now_ms();
    add_ticks(sc);
    tick_.self = this;
    tick_.timer.cb = on_tick;
    (void)loop_->timer_set(&tick_.timer, kSampleMs);
}

void TimelineRecorder::add_ticks(const Scenario& sc) {
    for (const auto& e : sc.timeline)
        trace_.ticks.push_back(TraceTick{seconds(e.at_ms), tick_label(e)});
    for (const auto& c : sc.clients) {
        char mac[LYND_MAC_TEXT_LEN];
        lynd_mac_text(c.mac, mac);
        if (c.join_ms > 0)
            trace_.ticks.push_back(TraceTick{seconds(c.join_ms), std::string("client_join ") + mac});
        if (c.leave_ms >= 0)
            trace_.ticks.push_back(TraceTick{seconds(c.leave_ms), std::string("client_leave ") + mac});
    }
}

void TimelineRecorder::on_tick(LoopTimer* t) {
    auto* tick = reinterpret_cast<Tick*>(t);
    tick->self->sample(tick->self->loop_->now_ms());
    (void)tick->self->loop_->timer_set(t, kSampleMs);
}

// Paths are traced in slot order; a slot joins the trace when first configured.
void TimelineRecorder::sample(int64_t now_ms) {
    double t = seconds(now_ms);
    for (int s = 0; s < static_cast<int>(IF_TYPE_MAX); s++) {
        const hc_path& p = hc_paths[s];
        if (p.state == PATH_UNINITED)
            continue;
        TracePath* tp = nullptr;
        for (auto& x : trace_.paths)
            if (x.name == p.name)
                tp = &x;
        if (tp == nullptr) {
            trace_.paths.push_back(TracePath{p.name, {}, {}});
            tp = &trace_.paths.back();
        }
        // A state holds until the next one is seen, so the bands meet.
        if (tp->states.empty() || tp->states.back().state != p.state)
            tp->states.push_back(
                TraceStateSpan{tp->states.empty() ? std::max(0.0, t - seconds(kSampleMs)) : tp->states.back().to, t, p.state});
        tp->states.back().to = t;
        tp->points.push_back(TracePoint{t, static_cast<double>(p.rate), static_cast<double>(p.util)});
    }
    take_decisions();
}

void TimelineRecorder::take_decisions() {
    for (int k = 0; k < decision_count(); k++) {
        const decision* d = decision_at(k);
        if (d->seq <= seen_seq_)
            continue;
        seen_seq_ = d->seq;
        double t = seconds(d->at_ms - clock_offset_ms_);
        if (d->kind == DECISION_CLIENT_MOVE)
            trace_.moves.push_back(TraceMove{t, d->subject, d->from, d->to, d->reason});
        else if (d->kind == DECISION_BCAST_PORT)
            trace_.markers.push_back(TraceMarker{t, "bcast", d->subject, d->to});
        else if (d->kind == DECISION_PREFERRED_PORT)
            trace_.markers.push_back(TraceMarker{t, "preferred", d->subject, d->to});
    }
}

TimelineTrace TimelineRecorder::finish(int64_t end_ms) {
    if (loop_ != nullptr && tick_.timer.pending)
        (void)loop_->timer_cancel(&tick_.timer);
    sample(end_ms);
    trace_.duration = seconds(end_ms);
    loop_ = nullptr;
    return trace_;
}

}  // namespace lynd
