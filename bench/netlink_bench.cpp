// Per-datagram cost of the netlink readers.
#include <benchmark/benchmark.h>

#include <cstring>

#include "bench/alloc_counter.h"
#include "event/netlink_datagram.h"

namespace {

void BM_BridgeDatagram(benchmark::State& state) {
    uint8_t buf[16 + 56] = {};
    uint32_t len = sizeof buf;
    uint16_t type = 3;
    std::memcpy(buf, &len, 4);
    std::memcpy(buf + 4, &type, 2);
    size_t before = bench_allocations();
    for (auto _ : state) {
        bridge_event be;
        benchmark::DoNotOptimize(event_hyfi_datagram(buf, sizeof buf, &be));
        benchmark::DoNotOptimize(be);
    }
    state.counters["allocs/run"] = double(bench_allocations() - before) / double(state.iterations());
}
BENCHMARK(BM_BridgeDatagram);

void BM_WirelessAttributes(benchmark::State& state) {
    // Twenty attributes, the last one wireless with two events.
    uint8_t attrs[20 * 8 + 4 + 40] = {};
    for (int i = 0; i < 20; i++) {
        uint16_t l = 8, t = 3;
        std::memcpy(attrs + i * 8, &l, 2);
        std::memcpy(attrs + i * 8 + 2, &t, 2);
    }
    uint16_t wl = 44, wt = NL_IFLA_WIRELESS, el = 20, reg = 0x8C03, exp = NL_IWEVEXPIRED;
    uint8_t* w = attrs + 160;
    std::memcpy(w, &wl, 2);
    std::memcpy(w + 2, &wt, 2);
    std::memcpy(w + 4, &el, 2);
    std::memcpy(w + 6, &reg, 2);
    std::memcpy(w + 24, &el, 2);
    std::memcpy(w + 26, &exp, 2);
    for (auto _ : state)
        benchmark::DoNotOptimize(nl_wifi_parse_attrs(attrs, sizeof attrs));
}
BENCHMARK(BM_WirelessAttributes);

}  // namespace
