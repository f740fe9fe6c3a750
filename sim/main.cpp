// lynd-sim: the daemon on a simulated node.
//   lynd-sim run SCENARIO [daemon options]
//   lynd-sim check SCENARIO...
#include <sys/wait.h>
#include <unistd.h>

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

namespace {

enum class Mode { RUN, CHECK };

// The run in progress, for a daemon that exits from inside (a fatal error).
struct ActiveRun {
    lynd::SimNode* node = nullptr;
    const lynd::Scenario* sc = nullptr;
    Mode mode = Mode::RUN;
} g_active;

constexpr int kExitCheckFailed = 3;

int conclude(const lynd::RunOutcome& o) {
    if (g_active.mode == Mode::RUN) {
        std::fflush(stderr);
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

bool load(const char* path, lynd::Scenario* sc) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    std::string error;
    if (!in || !lynd::scenario_parse(text.str().data(), text.str().size(), sc, &error)) {
        std::fprintf(stderr, "lynd-sim: %s: %s\n", path, in ? error.c_str() : "cannot read the file");
        return false;
    }
    if (sc->name.empty())
        sc->name = path;
    return true;
}

int run_one(const lynd::Scenario& sc, Mode mode, const std::vector<std::string>& extra) {
    lynd::SimNode node(sc);
    node.host().set_echo(mode == Mode::RUN);
    g_active = ActiveRun{&node, &sc, mode};
    lynd::RunOutcome o = node.run("lynd", extra);
    int status = conclude(o);
    g_active = ActiveRun{};
    return status;
}

// Each scenario runs in a child of its own, so a fatal exit is one result.
int check(int argc, char** argv) {
    int passed = 0, failed = 0;
    for (int i = 0; i < argc; i++) {
        std::fflush(stdout);
        pid_t pid = fork();
        if (pid == 0) {
            lynd::Scenario sc;
            if (!load(argv[i], &sc))
                _exit(kExitCheckFailed);
            int status = run_one(sc, Mode::CHECK, {});
            std::fflush(stdout);
            _exit(status);
        }
        int status = 0;
        bool ok = pid > 0 && waitpid(pid, &status, 0) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0;
        ok ? passed++ : failed++;
    }
    std::printf("%d passed, %d failed\n", passed, failed);
    return failed == 0 ? 0 : 1;
}

int usage() {
    std::fprintf(stderr, "usage: lynd-sim run SCENARIO [daemon options]\n       lynd-sim check SCENARIO...\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    std::atexit(on_daemon_exit);
    if (argc >= 3 && std::strcmp(argv[1], "run") == 0) {
        lynd::Scenario sc;
        if (!load(argv[2], &sc))
            return 2;
        return run_one(sc, Mode::RUN, std::vector<std::string>(argv + 3, argv + argc));
    }
    if (argc >= 3 && std::strcmp(argv[1], "check") == 0)
        return check(argc - 2, argv + 2);
    return usage();
}
