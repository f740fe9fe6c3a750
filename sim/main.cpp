// lynd-sim: the daemon on a simulated node.
//   lynd-sim run [--out DIR] [--timeline FILE.svg] [--record FILE] SCENARIO [daemon options]
//   lynd-sim check SCENARIO...
//   lynd-sim replay TRACE [TRACE...] [daemon options]
//   lynd-sim roundtrip [--keep DIR] SCENARIO...   (record, replay, compare)
//   lynd-sim sweep [--seeds N] [--first K] [--hours H] [--jobs J] | --seed K [--hours H] [--keep FILE]
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "sim/bus_calls_file.h"
#include "sim/desk/replay_run.h"
#include "sim/report.h"
#include "sim/scenario/scenario.h"
#include "sim/desk/trace_anonymize.h"
#include "sim/sim_node.h"
#include "sim/sweep/sweep_alloc.h"
#include "sim/sweep/sweep_command.h"
#include "sim/node/state_dir.h"
#include "sim/timeline/timeline_trace.h"
#include "sim/node/trace_dir.h"
#include "trace/trace_recorder.h"

namespace {

enum class Mode { RUN, CHECK };

struct RunFiles {
    const char* out_dir = nullptr;
    const char* timeline = nullptr;
    const char* record = nullptr;
    std::string trace_dir;  // where a record call's trace goes
};

// Virtual time makes a run take well under a second; one still busy after
// this is stuck, and the alarm ends the process.
constexpr unsigned kCheckTimeLimitS = 120;
constexpr unsigned kRoundtripTimeLimitS = 900;

void save_state(lynd::SimNode& node, const char* dir) {
    std::string error;
    if (dir == nullptr)
        return;
    bool ok = lynd::write_state_dir(node.host(), dir, &error);
    const auto& calls = node.bus_calls();
    if (ok && !calls.empty())
        ok = lynd::write_whole_file(std::string(dir) + "/ubus_calls.json", lynd::bus_calls_json(calls), &error);
    if (!ok)
        std::fprintf(stderr, "lynd-sim: --out: %s\n", error.c_str());
}

void save_timeline(lynd::SimNode& node, const char* path) {
    std::string error;
    if (path != nullptr && !lynd::write_whole_file(path, lynd::timeline_svg(node.timeline()), &error))
        std::fprintf(stderr, "lynd-sim: --timeline: %s\n", error.c_str());
}

bool load(const char* path, lynd::Scenario* sc, std::string* error) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    if (!in) {
        *error = "cannot read the file";
        return false;
    }
    if (!lynd::scenario_parse(text.str().data(), text.str().size(), sc, error))
        return false;
    if (sc->name.empty())
        sc->name = path;
    return true;
}

// A simulated run's trace is not bounded as a router's is: the whole run
// stays replayable.
constexpr size_t kSimTraceSize = SIZE_MAX;

int run_one(const lynd::Scenario& sc, Mode mode, const RunFiles& files, const std::vector<std::string>& extra) {
    lynd::SimNode node(sc);
    node.host().set_echo(mode == Mode::RUN);
    node.set_trace_dir(files.trace_dir);
    if (files.timeline != nullptr)
        node.record_timeline();
    if (mode == Mode::RUN && !sc.description.empty()) {
        std::printf("lynd-sim: scenario \"%s\": %s\n", sc.name.c_str(), sc.description.c_str());
        std::fflush(stdout);
    }
    lynd::RunOutcome o = node.run("lynd", extra);
    if (mode == Mode::CHECK)
        return lynd::print_check_line(stdout, sc, o) ? 0 : 1;
    std::fflush(stderr);
    save_state(node, files.out_dir);
    save_timeline(node, files.timeline);
    lynd::print_report(stdout, sc, o, node);
    if (files.trace_dir.empty() && !node.trace_dir().empty())
        std::fprintf(stderr, "lynd-sim: the record call's trace is in %s\n", node.trace_dir().c_str());
    return o.exit_status;
}

int run(int argc, char** argv) {
    RunFiles files;
    while (argc >= 2 && argv[0][0] == '-' && argv[0][1] == '-') {
        if (std::strcmp(argv[0], "--out") == 0)
            files.out_dir = argv[1];
        else if (std::strcmp(argv[0], "--timeline") == 0)
            files.timeline = argv[1];
        else if (std::strcmp(argv[0], "--record") == 0)
            files.record = argv[1];
        else
            return -1;
        argc -= 2;
        argv += 2;
    }
    if (files.record != nullptr)
        lynd::trace_request(files.record, kSimTraceSize);
    if (argc < 1)
        return -1;
    lynd::Scenario sc;
    std::string error;
    if (!load(argv[0], &sc, &error)) {
        std::fprintf(stderr, "lynd-sim: %s: %s\n", argv[0], error.c_str());
        return 2;
    }
    if (files.out_dir != nullptr)
        files.trace_dir = files.out_dir;
    return run_one(sc, Mode::RUN, files, std::vector<std::string>(argv + 1, argv + argc));
}

bool check_one(const char* path) {
    lynd::Scenario sc;
    std::string error;
    if (!load(path, &sc, &error)) {
        std::printf("FAIL %s: %s\n", path, error.c_str());
        return false;
    }
    RunFiles files;
    files.trace_dir = lynd::trace_dir_make();
    alarm(kCheckTimeLimitS);
    bool passed = run_one(sc, Mode::CHECK, files, {}) == 0;
    alarm(0);
    lynd::trace_dir_remove(files.trace_dir);
    return passed;
}

int check(int argc, char** argv) {
    int passed = 0, failed = 0;
    for (int i = 0; i < argc; i++)
        check_one(argv[i]) ? passed++ : failed++;
    std::printf("%d passed, %d failed\n", passed, failed);
    return failed == 0 ? 0 : 1;
}

// The trace files come first: the parts of one recording, part 1 first.
bool read_text_file(const char* path, std::string* out) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    if (!in) {
        std::fprintf(stderr, "lynd-sim: %s: cannot read the file\n", path);
        return false;
    }
    *out = text.str();
    return true;
}

int replay(int argc, char** argv) {
    std::vector<std::string> files{argv[0]};
    while (argc > 1 && argv[1][0] != '-') {
        files.push_back(argv[1]);
        argv++;
        argc--;
    }
    lynd::TraceSource trace = lynd::trace_files(files);
    std::string error;
    std::string config;
    bool other_config = false;
    const char* timeline = nullptr;
    // --timeline and --config in either order; what follows is the daemon's.
    int first = 1;
    for (; first + 1 < argc; first += 2) {
        if (std::strcmp(argv[first], "--timeline") == 0) {
            timeline = argv[first + 1];
        } else if (std::strcmp(argv[first], "--config") == 0) {
            if (!read_text_file(argv[first + 1], &config))
                return 2;
            other_config = true;
        } else {
            break;
        }
    }
    std::vector<std::string> extra(argv + first, argv + argc);
    // Other parameters make it a what-if: differences are the answer. The
    // picture is drawn from one too (its sampling timer is no part of the
    // record), under the recorded configuration it decides the same.
    if (other_config || !extra.empty() || timeline != nullptr) {
        lynd::TimelineTrace picture;
        lynd::ReplayResult r = lynd::what_if_trace(trace, config, extra, timeline != nullptr ? &picture : nullptr);
        if (timeline != nullptr && !lynd::write_whole_file(timeline, lynd::timeline_svg(picture), &error))
            std::fprintf(stderr, "lynd-sim: --timeline: %s\n", error.c_str());
        std::fputs(r.report.c_str(), r.identical ? stdout : stderr);
        return r.identical ? 0 : 2;
    }
    lynd::ReplayResult r = lynd::replay_trace(trace, extra);
    std::fputs(r.report.c_str(), r.exit_status == 2 ? stderr : stdout);
    if (r.exit_status == 2 && !r.identical)
        return 2;
    return r.identical ? 0 : 1;
}

// Runs body in a child of its own, under a time limit; how it ended.
int in_child(const std::function<int()>& body) {
    std::fflush(stdout);
    pid_t pid = fork();
    if (pid == 0) {
        // A day's replay under the sanitizers takes minutes, not hours.
        alarm(kRoundtripTimeLimitS);
        int status = body();
        std::fflush(stdout);
        _exit(status);
    }
    int status = 0;
    if (pid < 0 || waitpid(pid, &status, 0) != pid)
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Where a roundtrip's record calls put their traces.
std::string calls_dir(const std::string& trace) { return trace + ".calls"; }

// The trace of each run a record call restarted, its parts chained; the
// directory goes after (none was made without a record call).
int replay_calls(const std::string& dir) {
    int status = 0;
    for (auto& parts : lynd::trace_dir_recordings(dir)) {
        std::printf("  %s: ", parts.back().substr(dir.size() + 1).c_str());
        std::vector<char*> argv;
        for (auto& p : parts)
            argv.push_back(&p[0]);
        status |= replay(static_cast<int>(argv.size()), argv.data());
    }
    lynd::trace_dir_remove(dir);
    return status;
}

// Records a scenario's run and replays it: both must agree to the byte.
// keep: a folder where the trace stays (as NAME.trace) for a replay elsewhere.
bool roundtrip_one(const char* path, const char* keep) {
    lynd::Scenario sc;
    std::string error;
    if (!load(path, &sc, &error)) {
        std::printf("FAIL %s: %s\n", path, error.c_str());
        return false;
    }
    std::string dir = keep != nullptr ? keep : lynd::trace_dir_make();
    if (dir.empty()) {
        std::printf("FAIL %s: no temporary directory: %s\n", path, std::strerror(errno));
        return false;
    }
    std::string trace = dir + "/" + (keep != nullptr ? sc.name + ".trace" : "trace");
    int recorded = in_child([&] {
        lynd::trace_request(trace.c_str(), kSimTraceSize);
        std::FILE* quiet = std::freopen("/dev/null", "w", stdout);
        (void)quiet;
        RunFiles files;
        files.trace_dir = calls_dir(trace);
        (void)run_one(sc, Mode::CHECK, files, {});
        return 0;
    });
    std::printf("%s: ", sc.name.c_str());
    int replayed = recorded < 0 ? -1 : in_child([&] {
        char* argv[] = {&trace[0]};
        return replay(1, argv) | replay_calls(calls_dir(trace));
    });
    if (keep == nullptr)
        lynd::trace_dir_remove(dir);
    if (recorded < 0 || replayed != 0)
        std::printf("FAIL (%s)\n", recorded < 0 ? "the recording run died" : "the replay differs");
    return recorded >= 0 && replayed == 0;
}

int roundtrip(int argc, char** argv) {
    const char* keep = nullptr;
    if (argc >= 2 && std::strcmp(argv[0], "--keep") == 0) {
        keep = argv[1];
        argc -= 2;
        argv += 2;
    }
    int passed = 0, failed = 0;
    for (int i = 0; i < argc; i++)
        roundtrip_one(argv[i], keep) ? passed++ : failed++;
    std::printf("%d identical, %d failed\n", passed, failed);
    return failed == 0 ? 0 : 1;
}

int anonymize(const char* in_path, const char* out_path) {
    std::FILE* out = nullptr;
    int write_errno = 0;
    std::string error;
    // The file is made when the first line is ready: a trace refused leaves none.
    bool ok = lynd::trace_anonymize(lynd::trace_files({in_path}), [&](const std::string& line) {
        if (out == nullptr)
            out = std::fopen(out_path, "wb");
        bool written = out != nullptr && std::fwrite(line.data(), 1, line.size(), out) == line.size();
        write_errno = written ? 0 : errno;
        return written;
    }, &error);
    if (out != nullptr && std::fclose(out) != 0 && ok) {
        ok = false;
        write_errno = errno;
    }
    if (ok)
        return 0;
    if (write_errno != 0 || out != nullptr)
        std::fprintf(stderr, "lynd-sim: %s: %s\n", out_path, std::strerror(write_errno));
    else
        std::fprintf(stderr, "lynd-sim: %s", error.c_str());
    return 2;
}

int usage() {
    std::fprintf(stderr,
                 "usage: lynd-sim run [--out DIR] [--timeline FILE.svg] [--record TRACE] SCENARIO [daemon options]\n"
                 "       lynd-sim check SCENARIO...\n"
                 "       lynd-sim replay TRACE [TRACE...] [--timeline OUT.svg] [--config OTHER.json] [daemon options]\n"
                 "       lynd-sim roundtrip [--keep DIR] SCENARIO...\n"
                 "       lynd-sim anonymize TRACE OUT\n"
                 "       lynd-sim sweep [--seeds N] [--first K] [--hours H] [--jobs J]\n"
                 "       lynd-sim sweep --seed K [--hours H] [--keep FILE]\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    int status = -1;
    if (argc >= 3 && std::strcmp(argv[1], "run") == 0)
        status = run(argc - 2, argv + 2);
    else if (argc >= 3 && std::strcmp(argv[1], "check") == 0)
        status = check(argc - 2, argv + 2);
    else if (argc >= 3 && std::strcmp(argv[1], "replay") == 0)
        status = replay(argc - 2, argv + 2);
    else if (argc == 4 && std::strcmp(argv[1], "anonymize") == 0)
        status = anonymize(argv[2], argv[3]);
    else if (argc >= 3 && std::strcmp(argv[1], "roundtrip") == 0)
        status = roundtrip(argc - 2, argv + 2);
    else if (argc >= 2 && std::strcmp(argv[1], "sweep") == 0)
        status = lynd::sweep_command(argc - 2, argv + 2, sweep_daemon_allocations);
    return status < 0 ? usage() : status;
}
