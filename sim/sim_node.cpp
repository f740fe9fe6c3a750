#include "sim/sim_node.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "core/mac.h"
#include "daemon/lynd_run.h"
#include "daemon/process_state.h"
#include "event/bridge_events.h"
#include "platform/seams.h"
#include "sim/node/netlink_craft.h"
#include "sim/scenario/scenario_radios.h"
#include "trace/trace_recorder.h"
#include "wlan/qca/wlan_platform_qca.h"

namespace lynd {

size_t RunOutcome::failed() const {
    return static_cast<size_t>(std::count_if(results.begin(), results.end(), [](const ExpectResult& r) {
        return !r.passed;
    }));
}

SimNode::SimNode(const Scenario& sc) : sc_(sc) {
    lynd_process_state_reset();
    host_.set_clock(&loop_);
    host_.set_cpu(&cpu_);
    host_.set_driver(&wlan_);
    bridge_.set_host(&host_);
    build_node();
    install_seams({&loop_, &host_, &uci_, &bridge_, &bus_});
    // The QCA back-end itself: the simulated radios answer its requests.
    wlan_platform_ops = &wlan_platform_qca;
    loop_.set_stop_time(sc.duration_s * 1000);
}

void SimNode::build_node() {
    for (const auto& i : sc_.interfaces)
        host_.add_interface(i);
    for (const auto& t : sc_.tools)
        host_.set_tool(t.cmdline, t.output, t.status, t.mode);
    for (const auto& kv : sc_.uci)
        uci_.set(kv.first, kv.second);
    for (const auto& b : sc_.bridges) {
        bridge_.add_bridge(b.name, b.active);
        for (const auto& p : b.ports)
            bridge_.add_port(b.name, p);
    }
    for (const auto& kv : sc_.bridge_failures)
        bridge_.set_result(kv.first, kv.second);
    for (const auto& f : sc_.failure_rules)
        bridge_.add_failure(f);
    cpu_.set_points(sc_.cpu);
    host_.set_fs_space(static_cast<uint64_t>(sc_.fs_avail), static_cast<uint64_t>(sc_.fs_total));
    for (const auto& kv : sc_.links)
        wlan_.set_link(kv.first, kv.second);
    for (const auto& kv : sc_.stations)
        wlan_.set_stations(kv.first, kv.second);
    if (sc_.has_config)
        host_.set_file("/etc/lynd.json", sc_.config_text);
    for (const auto& kv : sc_.files)
        host_.set_file(kv.first, kv.second);
    for (int proto : sc_.netlink_squat)
        (void)host_.squat_nl_port(proto, static_cast<uint32_t>(host_.pid()));
    for (const auto& f : sc_.file_squats)
        host_.set_file_obstacle(f.first, f.second);
}

void SimNode::arm_timeline() {
    // Reserved once: the loop keeps pointers to these timers.
    timers_.clear();
    timers_.reserve(sc_.timeline.size() + sc_.expect.size());
    for (const auto& e : sc_.timeline)
        timers_.push_back(TimelineTimer{LoopTimer{}, this, &e, nullptr});
    for (const auto& x : sc_.expect)
        if (x.at_ms >= 0)
            timers_.push_back(TimelineTimer{LoopTimer{}, this, nullptr, &x});
    for (auto& t : timers_) {
        loop_.keep(&t.timer);
        t.timer.cb = fire;
        loop_.timer_set(&t.timer, static_cast<int>(t.entry ? t.entry->at_ms : t.expect->at_ms));
    }
}

void SimNode::fire(LoopTimer* t) {
    auto* tt = reinterpret_cast<TimelineTimer*>(t);
    if (tt->entry != nullptr)
        tt->node->play(*tt->entry);
    else
        tt->node->timed_results_.push_back(tt->node->judge(*tt->expect, 0));
}

void SimNode::play(const TimelineEntry& e) {
    switch (e.kind) {
    case TimelineKind::UBUS:
        (void)bus_.send(e.name, e.data);
        break;
    case TimelineKind::NETLINK:
        // The bridge announces a client; another process only pretends to.
        for (const hc_entry& held : e.from == 0 ? announced_hc_entries(e.data) : std::vector<hc_entry>{})
            clients_.announced(held);
        host_.queue_datagram(HYFI_EVENT_PROTOCOL, e.data, e.from);
        (void)loop_.fd_ready(host_.nl_fd(HYFI_EVENT_PROTOCOL));
        break;
    case TimelineKind::STATION_EXPIRED: {
        const auto* station = e.data.size() == 6 ? reinterpret_cast<const uint8_t*>(e.data.data()) : nullptr;
        host_.queue_datagram(0, craft_station_expired(host_.if_nametoindex(e.name.c_str()), station), e.from);
        (void)loop_.fd_ready(host_.nl_fd(0));
        break;
    }
    case TimelineKind::KERNEL_LINK:
        host_.queue_datagram(0, e.data, e.from);
        (void)loop_.fd_ready(host_.nl_fd(0));
        break;
    case TimelineKind::LINK:
        change_link(e);
        break;
    case TimelineKind::UCI:
        change_uci(e);
        break;
    case TimelineKind::CLIENT:
        break;
    case TimelineKind::UBUS_CALL:
        call(e);
        break;
    case TimelineKind::FILE:
        host_.set_file(e.name, e.data);
        break;
    case TimelineKind::SQUAT:
        host_.set_file_obstacle(e.name, std::atoi(e.data.c_str()));
        break;
    case TimelineKind::BUS:
        if (e.name == "down")
            bus_.daemon_down();
        else
            bus_.daemon_up();
        break;
    }
}

// The scenario's fields over the link as it stands (a new link starts from
// the defaults); the parser has checked them already.
void SimNode::change_link(const TimelineEntry& e) {
    const SimLink* now = wlan_.link(e.name);
    SimLink link = now != nullptr ? *now : SimLink{};
    json_object* set = json_tokener_parse(e.data.c_str());
    std::string error;
    JsonReader r{&error};
    (void)apply_link_fields(r, set, &link);
    json_object_put(set);
    wlan_.set_link(e.name, link);
}

// The parser has checked the values already; they read as on the node.
void SimNode::change_uci(const TimelineEntry& e) {
    json_object* set = json_tokener_parse(e.data.c_str());
    json_object_object_foreach(set, path, val) {
        uci_.set(path, json_is(val, json_type_string) ? json_object_get_string(val) : json_object_to_json_string(val));
    }
    json_object_put(set);
}

ExpectResult SimNode::judge(const Expectation& e, int exit_status) const {
    ExpectResult r{&e, false, ""};
    size_t n = 0;
    switch (e.kind) {
    case ExpectKind::LOG_CONTAINS:
    case ExpectKind::LOG_ABSENT:
        n = host_.count_logged(e.text);
        break;
    case ExpectKind::CALL:
        n = count_calls(e);
        break;
    case ExpectKind::RUN:
        n = static_cast<size_t>(std::count(host_.runs().begin(), host_.runs().end(), e.text));
        break;
    case ExpectKind::EXIT:
        r.passed = exit_status == e.value;
        r.why = "exit status " + std::to_string(exit_status);
        return r;
    case ExpectKind::CLIENT_PATH:
    case ExpectKind::CLIENT_MOVES:
        return judge_client(e);
    case ExpectKind::BRIDGE_STATE:
    case ExpectKind::WDS_DELETED:
    case ExpectKind::PATH_STATE:
    case ExpectKind::PREFERRED:
    case ExpectKind::SAMPLES:
    case ExpectKind::POOL:
        return judge_state(e);
    case ExpectKind::UBUS_REPLY:
        return judge_reply(e);
    case ExpectKind::STEERING:
        n = steering_actions();
        r.passed = n == static_cast<size_t>(e.value);
        r.why = std::to_string(n) + " steering actions";
        return r;
    case ExpectKind::FILE_EQUALS:
        return judge_file(e);
    }
    if (e.kind == ExpectKind::LOG_ABSENT)
        r.passed = n == 0;
    else
        r.passed = e.count < 0 ? n > 0 : n == static_cast<size_t>(e.count);
    r.why = "seen " + std::to_string(n) + " times";
    return r;
}

ExpectResult SimNode::judge_client(const Expectation& e) const {
    ExpectResult r{&e, false, ""};
    uint8_t mac[6] = {};
    (void)lynd_parse_mac_text(e.text.c_str(), ':', mac);
    if (e.kind == ExpectKind::CLIENT_PATH) {
        std::string path = clients_.path_of(mac);
        r.passed = path == e.equals;
        r.why = path.empty() ? "the client has no entry" : "its entry points at " + path;
        return r;
    }
    size_t n = static_cast<size_t>(std::count_if(clients_.moves().begin(), clients_.moves().end(), [&](const SimMove& m) {
        return std::memcmp(m.mac, mac, 6) == 0 && m.at_ms >= e.from_ms && (e.to_ms < 0 || m.at_ms <= e.to_ms);
    }));
    r.passed = e.count < 0 ? n > 0 : n == static_cast<size_t>(e.count);
    r.why = "moved " + std::to_string(n) + " times";
    return r;
}

RunOutcome SimNode::finish(int exit_status) {
    RunOutcome out;
    out.exit_status = exit_status;
    out.virtual_ms = loop_.now_ms();
    out.results = timed_results_;
    for (const auto& e : sc_.expect) {
        bool timed_and_judged = e.at_ms >= 0 && std::any_of(timed_results_.begin(), timed_results_.end(),
                                                             [&](const ExpectResult& r) { return r.expect == &e; });
        if (timed_and_judged)
            continue;
        ExpectResult r = judge(e, exit_status);
        if (e.at_ms >= 0 && r.passed) {
            r.passed = false;
            r.why = "the run ended before " + std::to_string(e.at_ms / 1000) + " s";
        }
        out.results.push_back(r);
    }
    return out;
}

TimelineTrace SimNode::timeline() {
    if (!record_timeline_)
        return TimelineTrace{};
    record_timeline_ = false;
    return recorder_.finish(loop_.now_ms());
}

RunOutcome SimNode::run(const std::string& argv0, const std::vector<std::string>& extra) {
    arm_timeline();
    if (record_timeline_) {
        recorder_.start(&loop_, sc_);
        loop_.keep(recorder_.tick_timer());
    }
    clients_.start(sc_.clients, sc_.hc_model);
    // Never the PC's /tmp/lynd: the run's own directory, or none until asked.
    trace_set_dir("");
    if (sc_.config_text.find("\"record\"") != std::string::npos)
        use_trace_dir();
    std::vector<std::string> args{argv0};
    args.insert(args.end(), sc_.args.begin(), sc_.args.end());
    args.insert(args.end(), extra.begin(), extra.end());
    std::vector<char*> argv;
    for (auto& a : args)
        argv.push_back(&a[0]);
    argv.push_back(nullptr);
    int rc = lynd_run(static_cast<int>(args.size()), argv.data());
    trace_forget_requests();
    return finish(rc);
}

}  // namespace lynd
