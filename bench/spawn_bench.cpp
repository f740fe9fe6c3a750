// What one tool run costs a process the daemon's size (128 MiB of heap in
// use): the fork and exec the daemon once used, against its spawn now, whose
// child shares the daemon's memory until it execs. Both run /bin/true and
// reap it.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include <benchmark/benchmark.h>

#include "platform/host.h"
#include "targets/linux/tool_run.h"

namespace {

constexpr size_t kHeapBytes = 128u << 20;
const char* const kTrue[] = {"/bin/true", nullptr};

// Heap in use, every page touched, for as long as a benchmark runs.
class DaemonSized : public benchmark::Fixture {
public:
    void SetUp(const benchmark::State&) override {
        heap_ = static_cast<char*>(std::malloc(kHeapBytes));
        if (heap_ != nullptr)
            std::memset(heap_, 1, kHeapBytes);
    }
    void TearDown(const benchmark::State&) override { std::free(heap_); }

private:
    char* heap_ = nullptr;
};

// The old way: a whole copy of the process, which then execs.
int fork_exec_true() {
    pid_t pid = fork();
    if (pid == 0) {
        execv(kTrue[0], const_cast<char* const*>(kTrue));
        _exit(127);
    }
    int status = 0;
    if (pid < 0 || waitpid(pid, &status, 0) < 0)
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

BENCHMARK_DEFINE_F(DaemonSized, ForkExec)(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(fork_exec_true());
}
BENCHMARK_REGISTER_F(DaemonSized, ForkExec)->Unit(benchmark::kMicrosecond);

BENCHMARK_DEFINE_F(DaemonSized, ToolSpawn)(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(lynd::tool_run_status(kTrue, lynd::TOOL_DEADLINE_MS));
}
BENCHMARK_REGISTER_F(DaemonSized, ToolSpawn)->Unit(benchmark::kMicrosecond);

}  // namespace
