// What a period run pays for the host's own figures: CPU load and counters.
#include <benchmark/benchmark.h>

#include "bench/alloc_counter.h"
#include "bench/bench_seams.h"
#include "node/host_stats.h"

namespace {

void BM_CpuOccupancy(benchmark::State& state) {
    SimSeams seams;
    seams.host.set_file("/proc/stat", "cpu  2255 34 2290 22625563 6290 127 456 0 0 0\ncpu0 1 2 3 4 5 6 7\n");
    size_t before = bench_allocations();
    for (auto _ : state)
        benchmark::DoNotOptimize(lynd_calculate_cpu_occupy());
    state.counters["allocs/run"] = double(bench_allocations() - before) / double(state.iterations());
}
BENCHMARK(BM_CpuOccupancy);

void BM_InterfaceCounters(benchmark::State& state) {
    SimSeams seams;
    seams.host.add_interface({"eth0", 2, {}});
    seams.host.add_interface({"eth1", 3, {}});
    seams.host.add_interface({"ath02", 11, {}});
    seams.host.add_interface({"ath12", 12, {}});
    seams.wlan.set_link("ath12", lynd::SimLink{});
    size_t before = bench_allocations();
    for (auto _ : state) {
        if_stat s;
        benchmark::DoNotOptimize(lynd_get_if_stat("ath12", &s));
        benchmark::DoNotOptimize(s);
    }
    state.counters["allocs/run"] = double(bench_allocations() - before) / double(state.iterations());
}
BENCHMARK(BM_InterfaceCounters);

}  // namespace
