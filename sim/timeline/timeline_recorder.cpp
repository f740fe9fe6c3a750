#include "sim/timeline/timeline_recorder.h"

#include <algorithm>
#include <cstring>
#include <map>

#include "node/host_stats.h"
#include "core/decision_ring.h"
#include "core/mac.h"
#include "modules/path_selection/hc_records.h"
#include "sim/scenario/json_reader.h"
#include "sim/scenario/scenario_radios.h"
#include "sim/timeline/timeline_labels.h"

namespace lynd {

namespace {

constexpr int kSampleMs = 1000;

double seconds(int64_t ms) { return static_cast<double>(ms) / 1000.0; }

}  // namespace

void TimelineRecorder::start(Loop* loop, const Scenario& sc) {
    loop_ = loop;
    trace_ = TimelineTrace{};
    trace_.title = sc.name;
    // Decisions carry the daemon's monotonic time; the trace counts from the loop's start.
    clock_offset_ms_ = lynd_monotonic_ms() - loop->now_ms();
    seen_cpu_ = g_cpu_sampler;
    add_ticks(sc);
    add_link_flips(sc);
    tick_.self = this;
    tick_.timer.cb = on_tick;
    (void)loop_->timer_set(&tick_.timer, kSampleMs);
}

void TimelineRecorder::add_ticks(const Scenario& sc) {
    for (const auto& e : sc.timeline)
        trace_.ticks.push_back(TraceTick{seconds(e.at_ms), event_label(e), event_detail(e)});
    for (const auto& c : sc.clients) {
        char mac[LYND_MAC_TEXT_LEN];
        lynd_mac_text(c.mac, mac);
        if (c.join_ms > 0)
            trace_.ticks.push_back(
                TraceTick{seconds(c.join_ms), "client join " + short_mac(mac), std::string("client join ") + mac});
        if (c.leave_ms >= 0)
            trace_.ticks.push_back(
                TraceTick{seconds(c.leave_ms), "client leave " + short_mac(mac), std::string("client leave ") + mac});
    }
}

void TimelineRecorder::add_link_flips(const Scenario& sc) {
    flips_.clear();
    std::map<std::string, SimLink> links = sc.links;
    for (const auto& l : links)
        flips_.push_back(LinkFlip{0, l.first, l.second.up});
    for (const auto& e : sc.timeline) {
        if (e.kind != TimelineKind::LINK)
            continue;
        SimLink& link = links[e.name];
        bool was = link.up;
        json_object* set = json_tokener_parse(e.data.c_str());
        std::string error;
        JsonReader r{&error};
        (void)apply_link_fields(r, set, &link);
        json_object_put(set);
        if (link.up != was)
            flips_.push_back(LinkFlip{e.at_ms, e.name, link.up});
    }
}

bool TimelineRecorder::link_up(const std::string& name, int64_t now_ms) const {
    bool up = true;
    for (const LinkFlip& f : flips_)
        if (f.name == name && f.at_ms <= now_ms)
            up = f.up;
    return up;
}

void TimelineRecorder::on_tick(LoopTimer* t) {
    auto* tick = reinterpret_cast<Tick*>(t);
    tick->self->sample(tick->self->loop_->now_ms());
    tick->self->take_cpu(tick->self->loop_->now_ms());
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
        tp->points.push_back(
            TracePoint{t, static_cast<double>(p.rate), static_cast<double>(p.util), link_up(tp->name, now_ms)});
    }
    take_decisions();
}

// The daemon samples the CPU only in its period runs and only with the
// guard on; a new sample shows as a changed slot of its sampler.
void TimelineRecorder::take_cpu(int64_t now_ms) {
    if (g_ps_conf != nullptr)
        trace_.cpu_threshold = g_ps_conf->param.cpu_threshold;
    const cpu_sampler& s = g_cpu_sampler;
    bool same = s.toggle == seen_cpu_.toggle && std::memcmp(&s.a, &seen_cpu_.a, sizeof s.a) == 0 &&
                std::memcmp(&s.b, &seen_cpu_.b, sizeof s.b) == 0;
    if (same)
        return;
    seen_cpu_ = s;
    const cpu_sample& fresh = s.toggle == 1 ? s.b : s.a;
    const cpu_sample& previous = s.toggle == 1 ? s.a : s.b;
    trace_.cpu.push_back(TraceCpuPoint{seconds(now_ms), static_cast<double>(lynd_cpu_percent(previous, fresh))});
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
