#include "sim/desk/replay_run.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "core/decision_ring.h"
#include "config/config.h"
#include "daemon/lynd_main.h"
#include "daemon/restart_request.h"
#include "platform/seams.h"
#include "sim/desk/replay_answers.h"
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

// A message ends its line, whichever reader made it.
std::string line_of(std::string s) {
    if (s.empty() || s.back() != '\n')
        s += '\n';
    return s;
}

ReplayResult replay_conclude(int exit_status) {
    ReplayResult res;
    ReplayTape& tape = *g_active.tape;
    res.exit_status = exit_status;
    res.records = tape.taken();
    const Divergence& d = tape.divergence();
    std::string first;
    size_t rest = 0;
    if (!tape.damage().empty()) {
        res.exit_status = 2;
        res.report = line_of(tape.damage()) + "the replay stopped there, after " + std::to_string(res.records) +
                     " records\n";
    } else if (d.found) {
        std::string where = d.part > 1 ? "part " + std::to_string(d.part) + ", line " : "trace line ";
        res.report = "DIVERGED at " + seconds(d.at_ms) + " (" + where + std::to_string(d.line) +
                     ")\n  expected: " + d.expected + "\n  actual:   " + d.actual + "\n  inputs just before:\n";
        for (const auto& b : d.before)
            res.report += "    " + b + "\n";
    } else if ((rest = tape.left_over(&first)) != 0) {
        res.report = "DIVERGED at " + seconds(tape.now_ms()) + ": the daemon stopped with " + std::to_string(rest) +
                     " records to go, next " + first + "\n";
    } else if (!tape.damage().empty()) {
        // Met while reading what the daemon never came to.
        res.exit_status = 2;
        res.report = line_of(tape.damage());
    } else {
        res.identical = true;
        res.report = "identical: " + std::to_string(res.records) + " records over " + seconds(tape.now_ms()) +
                     ", exit status " + std::to_string(exit_status) + "\n";
    }
    g_active = Active{};
    trace_forbid(false);
    return res;
}

// Checks that a trace can be replayed here: empty when it can, else why not.
std::string unreplayable(const TraceHeader& header) {
    if (header.start != "boot" && header.start != "call")
        return "the trace starts mid-run (" + header.start + "): a replay needs a trace from the daemon's start\n";
    return "";
}

int run_daemon(const TraceHeader& header, const std::vector<std::string>& extra) {
    std::vector<std::string> args = header.args;
    args.insert(args.end(), extra.begin(), extra.end());
    std::vector<char*> argv;
    for (auto& a : args)
        argv.push_back(&a[0]);
    argv.push_back(nullptr);
    // A record call's restart: a configuration file that no longer loads
    // fell back to the one the daemon ran with, which the header holds.
    bool call = header.start == "call";
    lynd_set_restarting(call);
    (void)config_set_running_text(call ? header.config.data() : nullptr, call ? header.config.size() : 0);
    int rc = lynd_main(static_cast<int>(args.size()), argv.data());
    lynd_set_restarting(false);
    return rc;
}

// Path states come from the daemon's own decisions, so they are there at
// any log level the trace was recorded at.
struct Watch {
    ReplayTape* tape = nullptr;
    DecisionLog* log = nullptr;
} g_watch;

void note_path_state(const decision& d) {
    if (d.kind == DECISION_PATH_STATE && g_watch.tape != nullptr)
        g_watch.log->state(Decision{g_watch.tape->now_ms(), "path", d.subject, d.to});
}

struct WhatIfRun {
    std::vector<Decision> decisions;
    int exit_status = 0;
    std::string notes;  // why it ended early, what it could not hold
};

// One replay that answers every question and compares nothing: its decisions.
WhatIfRun what_if_run(const TraceSource& source, const WhatIfIndex& index, const std::string& config,
                      const std::vector<std::string>& extra, TimelineTrace* timeline) {
    WhatIfRun run;
    TraceStream in(source, false);
    ReplayAnswers answers(source, index);
    if (!in.open() || !answers.open()) {
        run.exit_status = 2;
        run.notes = line_of(in.error());
        return run;
    }
    DecisionLog log;
    ReplayTape tape(&in);
    tape.set_what_if(&answers, [&log](int64_t at, const char* kind, const std::string& record) {
        log.output(at, kind, record);
    });
    ReplaySeams seams(&tape);
    seams.loop.set_what_if_span(index.end_ms, index.records);
    if (!config.empty())
        seams.host.set_config(config);
    TimelineRecorder recorder;
    Scenario named;
    named.name = "replay";
    if (timeline != nullptr)
        recorder.start(&seams.loop, named);
    g_watch = Watch{&tape, &log};
    decision_ring_observe(note_path_state);
    run.exit_status = run_daemon(in.header(), extra);
    decision_ring_observe(nullptr);
    g_watch = Watch{};
    if (timeline != nullptr)
        *timeline = recorder.finish(tape.now_ms());
    run.decisions = log.all();
    if (!tape.stopped_early().empty())
        run.notes += tape.stopped_early() + "\n";
    if (log.dropped() != 0)
        run.notes += std::to_string(log.dropped()) + " decisions past the first " +
                     std::to_string(run.decisions.size()) + " were not compared\n";
    if (answers.dropped() != 0)
        run.notes += std::to_string(answers.dropped()) + " recorded answers were more than a replay holds\n";
    return run;
}

}  // namespace

ReplayResult what_if_trace(const TraceSource& source, const std::string& config, const std::vector<std::string>& extra,
                           TimelineTrace* timeline) {
    ReplayResult res;
    res.exit_status = 2;
    WhatIfIndex index;
    if (!what_if_index(source, &index, &res.report)) {
        res.report = line_of(res.report);
        return res;
    }
    res.report = unreplayable(index.header);
    if (!res.report.empty())
        return res;
    // The recorded run is replayed too: it gives the same decisions the
    // router made, read the same way as the other run's.
    WhatIfRun base = what_if_run(source, index, "", {}, nullptr);
    WhatIfRun other = what_if_run(source, index, config, extra, timeline);
    res.exit_status = other.exit_status;
    res.report = what_if_report(base.decisions, other.decisions, index.end_ms);
    if (!base.notes.empty())
        res.report += "recorded configuration: " + base.notes;
    if (!other.notes.empty())
        res.report += "what-if: " + other.notes;
    res.identical = true;
    return res;
}

ReplayResult replay_trace(const TraceSource& source, const std::vector<std::string>& extra) {
    ReplayResult bad;
    bad.exit_status = 2;
    TraceStream in(source, true);
    bad.report = in.open() ? unreplayable(in.header()) : line_of(in.error());
    if (!bad.report.empty())
        return bad;
    ReplayTape tape(&in);
    ReplaySeams seams(&tape);
    g_active.tape = &tape;
    return replay_conclude(run_daemon(in.header(), extra));
}

}  // namespace lynd
