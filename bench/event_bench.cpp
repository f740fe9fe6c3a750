// The per-event and per-message costs every period run pays.
#include <benchmark/benchmark.h>

#include "bench/alloc_counter.h"
#include "bench/bench_seams.h"
#include "config/lynd_config.h"
#include "core/log.h"
#include "event/event_dispatch.h"
#include "event/event_hub.h"

namespace {

void count_event(lynd_config*, event_listener*, uint32_t type, void* data) {
    benchmark::DoNotOptimize(type);
    benchmark::DoNotOptimize(data);
}

void BM_DispatchToTwoListeners(benchmark::State& state) {
    SimSeams seams;
    static lynd_config conf;
    event_init(&conf.ev);
    event_listener a{{nullptr, nullptr}, count_event};
    event_listener b{{nullptr, nullptr}, count_event};
    event_add_listener(&conf.ev, &a);
    event_add_listener(&conf.ev, &b);
    link_state_event ls{};
    size_t before = bench_allocations();
    for (auto _ : state)
        event_run_cb(&conf.ev, EVENT_LINK_STATE, &ls);
    state.counters["allocs/run"] = benchmark::Counter(double(bench_allocations() - before) / double(state.iterations()));
    event_free(&conf.ev);
}
BENCHMARK(BM_DispatchToTwoListeners);

// At the default level a debug line must cost a comparison, nothing more.
void BM_DebugLineAtDefaultLevel(benchmark::State& state) {
    SimSeams seams;
    g_lynd_dgb_lvl = 1;
    size_t before = bench_allocations();
    for (auto _ : state)
        LYND_DEBUG("uplink info %s txrate:%d", "ath12", 866);
    state.counters["allocs/run"] = benchmark::Counter(double(bench_allocations() - before) / double(state.iterations()));
    state.counters["lines"] = double(seams.host.console_lines().size());
}
BENCHMARK(BM_DebugLineAtDefaultLevel);

}  // namespace
