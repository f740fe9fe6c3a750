// lynd-sim: the daemon on a simulated node.
//   lynd-sim run [--out DIR] SCENARIO [daemon options]
//   lynd-sim check SCENARIO...
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "sim/report.h"
#include "sim/scenario.h"
#include "sim/sim_node.h"
#include "sim/state_dir.h"

namespace {

enum class Mode { RUN, CHECK };

// The run in progress, for a daemon that exits from inside (a fatal error).
struct ActiveRun {
    lynd::SimNode* node = nullptr;
    const lynd::Scenario* sc = nullptr;
    Mode mode = Mode::RUN;
    const char* out_dir = nullptr;
} g_active;

constexpr int kExitCheckFailed = 3;
// Virtual time makes a run take well under a second; a child that is still
// busy after this is stuck.
constexpr unsigned kCheckTimeLimitS = 120;

void save_state(const char* dir) {
    std::string error;
    if (dir != nullptr && !lynd::write_state_dir(g_active.node->host(), dir, &error))
        std::fprintf(stderr, "lynd-sim: --out: %s\n", error.c_str());
}

int conclude(const lynd::RunOutcome& o) {
    if (g_active.mode == Mode::RUN) {
        std::fflush(stderr);
        save_state(g_active.out_dir);
        lynd::print_report(stdout, *g_active.sc, o, *g_active.node);
        return o.exit_status;
    }
    return lynd::print_check_line(stdout, *g_active.sc, o) ? 0 : kExitCheckFailed;
}

// Fatal start-up errors exit with status 1 on the spot, as on the router.
void on_daemon_exit() {
    if (g_active.node == nullptr)
        return;
    int status = conclude(g_active.node->finish(1));
    std::fflush(stdout);
    _exit(status);
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

int run_one(const lynd::Scenario& sc, Mode mode, const char* out_dir, const std::vector<std::string>& extra) {
    lynd::SimNode node(sc);
    node.host().set_echo(mode == Mode::RUN);
    g_active = ActiveRun{&node, &sc, mode, out_dir};
    lynd::RunOutcome o = node.run("lynd", extra);
    int status = conclude(o);
    g_active = ActiveRun{};
    return status;
}

int run(int argc, char** argv) {
    const char* out_dir = nullptr;
    if (argc >= 2 && std::strcmp(argv[0], "--out") == 0) {
        out_dir = argv[1];
        argc -= 2;
        argv += 2;
    }
    if (argc < 1)
        return -1;
    lynd::Scenario sc;
    std::string error;
    if (!load(argv[0], &sc, &error)) {
        std::fprintf(stderr, "lynd-sim: %s: %s\n", argv[0], error.c_str());
        return 2;
    }
    return run_one(sc, Mode::RUN, out_dir, std::vector<std::string>(argv + 1, argv + argc));
}

// The child's own line covers a pass and an expectation that failed; any
// other end is reported here.
bool judge_child(const lynd::Scenario& sc, int status) {
    if (WIFEXITED(status) && (WEXITSTATUS(status) == 0 || WEXITSTATUS(status) == kExitCheckFailed))
        return WEXITSTATUS(status) == 0;
    if (WIFSIGNALED(status))
        std::printf("FAIL %s: the run died of signal %d (%s)\n", sc.name.c_str(), WTERMSIG(status),
                    strsignal(WTERMSIG(status)));
    else
        std::printf("FAIL %s: the run ended with status %d\n", sc.name.c_str(), WEXITSTATUS(status));
    return false;
}

bool check_one(const char* path) {
    lynd::Scenario sc;
    std::string error;
    if (!load(path, &sc, &error)) {
        std::printf("FAIL %s: %s\n", path, error.c_str());
        return false;
    }
    std::fflush(stdout);
    pid_t pid = fork();
    if (pid == 0) {
        alarm(kCheckTimeLimitS);
        int status = run_one(sc, Mode::CHECK, nullptr, {});
        std::fflush(stdout);
        _exit(status);
    }
    int status = 0;
    if (pid < 0 || waitpid(pid, &status, 0) != pid) {
        std::printf("FAIL %s: could not run it: %s\n", sc.name.c_str(), std::strerror(errno));
        return false;
    }
    return judge_child(sc, status);
}

// Each scenario runs in a child of its own, so a fatal exit is one result.
int check(int argc, char** argv) {
    int passed = 0, failed = 0;
    for (int i = 0; i < argc; i++)
        check_one(argv[i]) ? passed++ : failed++;
    std::printf("%d passed, %d failed\n", passed, failed);
    return failed == 0 ? 0 : 1;
}

int usage() {
    std::fprintf(stderr,
                 "usage: lynd-sim run [--out DIR] SCENARIO [daemon options]\n"
                 "       lynd-sim check SCENARIO...\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    std::atexit(on_daemon_exit);
    int status = -1;
    if (argc >= 3 && std::strcmp(argv[1], "run") == 0)
        status = run(argc - 2, argv + 2);
    else if (argc >= 3 && std::strcmp(argv[1], "check") == 0)
        status = check(argc - 2, argv + 2);
    return status < 0 ? usage() : status;
}
