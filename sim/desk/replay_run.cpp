#include "sim/desk/replay_run.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

#include "core/decision_ring.h"
#include "daemon/lynd_main.h"
#include "platform/seams.h"
#include "sim/desk/replay_bus.h"
#include "sim/desk/replay_host.h"
#include "sim/desk/replay_krel.h"
#include "sim/desk/replay_loop.h"
#include "sim/timeline/timeline_recorder.h"
#include "sim/desk/trace_chain.h"
#include "sim/desk/what_if.h"
#include "trace/trace_recorder.h"
#include "wlan/qca/wlan_platform_qca.h"

namespace lynd {

namespace {

// The seams of one replay, installed for its lifetime.
struct ReplaySeams {
    explicit ReplaySeams(ReplayTape* tape)
        : bus(tape), loop(tape, &bus), host(tape), uci(tape), krel(tape) {
        before = install_seams({&loop, &host, &uci, &krel, &bus});
        wlan_platform_ops = &wlan_platform_qca;
        trace_forbid(true);
    }
    ~ReplaySeams() {
        trace_forbid(false);
        (void)install_seams(before);
    }
    ReplayBus bus;
    ReplayLoop loop;
    ReplayHost host;
    ReplayUci uci;
    ReplayKrel krel;
    Seams before;
};

struct Active {
    ReplayTape* tape = nullptr;
} g_active;

std::string seconds(int64_t ms) {
    char b[32];
    std::snprintf(b, sizeof b, "%" PRId64 ".%03d s", ms / 1000, static_cast<int>(ms % 1000));
    return b;
}

// The records before the trace's end that the daemon never came to.
size_t left_over(const ReplayTape& tape) {
    const auto& recs = tape.trace().records;
    size_t n = 0;
    for (size_t i = tape.taken(); i < recs.size() && recs[i].kind != "stop" && recs[i].kind != "cut"; i++)
        n++;
    return n;
}

}  // namespace

bool trace_load(const char* path, Trace* trace, std::string* error) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    if (!in) {
        *error = "cannot read the file";
        return false;
    }
    std::string s = text.str();
    return trace_parse(s.data(), s.size(), trace, error);
}

bool trace_load_parts(const std::vector<std::string>& paths, Trace* trace, std::string* error) {
    std::vector<Trace> parts(paths.size());
    for (size_t i = 0; i < paths.size(); i++) {
        if (!trace_load(paths[i].c_str(), &parts[i], error)) {
            *error = paths[i] + ": " + *error + "\n";
            return false;
        }
    }
    return trace_chain(std::move(parts), paths, trace, error);
}

bool replay_active() { return g_active.tape != nullptr; }

ReplayResult replay_conclude(int exit_status) {
    ReplayResult res;
    ReplayTape& tape = *g_active.tape;
    res.exit_status = exit_status;
    res.records = tape.taken();
    const Divergence& d = tape.divergence();
    if (d.found) {
        std::string where = d.part > 1 ? "part " + std::to_string(d.part) + ", line " : "trace line ";
        res.report = "DIVERGED at " + seconds(d.at_ms) + " (" + where + std::to_string(d.line) +
                     ")\n  expected: " + d.expected + "\n  actual:   " + d.actual + "\n  inputs just before:\n";
        for (const auto& b : d.before)
            res.report += "    " + b + "\n";
    } else if (size_t rest = left_over(tape)) {
        const TraceRecord& next = tape.trace().records[tape.taken()];
        res.report = "DIVERGED at " + seconds(tape.now_ms()) + ": the daemon stopped with " + std::to_string(rest) +
                     " records to go, next " + trace_record_text(next) + "\n";
    } else {
        res.identical = true;
        res.report = "identical: " + std::to_string(res.records) + " records over " + seconds(tape.now_ms()) +
                     ", exit status " + std::to_string(exit_status) + "\n";
    }
    g_active = Active{};
    trace_forbid(false);
    return res;
}

namespace {

// Checks that trace can be replayed here: empty when it can, else why not.
std::string unreplayable(const Trace& trace) {
    if (trace.header.part != 1)
        return trace_chain_missing_start("the trace", trace.header.part);
    if (trace.header.start != "boot" && trace.header.start != "call")
        return "the trace starts mid-run (" + trace.header.start + "): a replay needs a trace from the daemon's start\n";
    return "";
}

int run_daemon(const Trace& trace, const std::vector<std::string>& extra) {
    std::vector<std::string> args = trace.header.args;
    args.insert(args.end(), extra.begin(), extra.end());
    std::vector<char*> argv;
    for (auto& a : args)
        argv.push_back(&a[0]);
    argv.push_back(nullptr);
    return lynd_main(static_cast<int>(args.size()), argv.data());
}

}  // namespace

namespace {

// Path states come from the daemon's own decisions, so they are there at
// any log level the trace was recorded at.
struct Watch {
    ReplayTape* tape = nullptr;
    std::vector<Decision> states;
} g_watch;

void note_path_state(const decision& d) {
    if (d.kind == DECISION_PATH_STATE && g_watch.tape != nullptr)
        g_watch.states.push_back(Decision{g_watch.tape->now_ms(), "path", d.subject, d.to});
}

// One replay that answers every question and compares nothing: its decisions.
std::vector<Decision> what_if_run(const Trace& trace, const std::string& config, const std::vector<std::string>& extra,
                                  TimelineTrace* timeline, int* exit_status) {
    ReplayTape tape(trace);
    tape.set_what_if();
    ReplaySeams seams(&tape);
    if (!config.empty())
        seams.host.set_config(config);
    TimelineRecorder recorder;
    Scenario named;
    named.name = "replay";
    if (timeline != nullptr)
        recorder.start(&seams.loop, named);
    g_watch = Watch{};
    g_watch.tape = &tape;
    decision_ring_observe(note_path_state);
    *exit_status = run_daemon(trace, extra);
    decision_ring_observe(nullptr);
    if (timeline != nullptr)
        *timeline = recorder.finish(tape.now_ms());
    std::vector<Decision> ds = decisions_of(tape.outputs());
    ds.insert(ds.end(), g_watch.states.begin(), g_watch.states.end());
    g_watch = Watch{};
    return ds;
}

}  // namespace

ReplayResult what_if_trace(const Trace& trace, const std::string& config, const std::vector<std::string>& extra,
                           TimelineTrace* timeline) {
    ReplayResult res;
    res.exit_status = 2;
    res.report = unreplayable(trace);
    if (!res.report.empty())
        return res;
    // The recorded run is replayed too: it gives the same decisions the
    // router made, read the same way as the other run's.
    int recorded_status = 0;
    std::vector<Decision> base = what_if_run(trace, "", {}, nullptr, &recorded_status);
    std::vector<Decision> other = what_if_run(trace, config, extra, timeline, &res.exit_status);
    int64_t end_ms = trace.records.empty() ? 0 : trace.records.back().t;
    res.report = what_if_report(base, other, end_ms);
    res.identical = true;
    return res;
}

ReplayResult replay_trace(const Trace& trace, const std::vector<std::string>& extra) {
    ReplayResult bad;
    bad.exit_status = 2;
    bad.report = unreplayable(trace);
    if (!bad.report.empty())
        return bad;
    ReplayTape tape(trace);
    ReplaySeams seams(&tape);
    g_active.tape = &tape;

    return replay_conclude(run_daemon(trace, extra));
}

}  // namespace lynd
