// What a short-period run pays per wireless read: the driver requests of the
// QCA back-end, answered by the simulated radios.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "bench/alloc_counter.h"
#include "bench/bench_seams.h"
#include "wlan/qca/link_stats_qca.h"
#include "wlan/qca/qca_ioctl.h"
#include "wlan/qca/sta_table_parse.h"

namespace {

struct RadioSeams : SimSeams {
    RadioSeams() {
        wlan.set_link("ath12", lynd::SimLink{});
        std::vector<lynd::SimStation> stations(16);
        for (size_t i = 0; i < stations.size(); i++)
            stations[i].mac[5] = static_cast<uint8_t>(i + 1);
        wlan.set_stations("ath1", stations);
    }
};

void report_allocs(benchmark::State& state, size_t before) {
    state.counters["allocs/run"] = double(bench_allocations() - before) / double(state.iterations());
}

void BM_StaTableWalk16(benchmark::State& state) {
    uint8_t reply[16 * QCA_STA_RECORD_MIN] = {};
    for (size_t i = 0; i < 16; i++) {
        uint16_t len = QCA_STA_RECORD_MIN;
        std::memcpy(reply + i * QCA_STA_RECORD_MIN, &len, sizeof len);
    }
    wlan_link_info links[16];
    size_t before = bench_allocations();
    for (auto _ : state)
        benchmark::DoNotOptimize(qca_read_sta_table(reply, sizeof reply, links, 16));
    report_allocs(state, before);
}
BENCHMARK(BM_StaTableWalk16);

// One read, over and over, on a node with a backhaul link and 16 stations.
template <typename Read>
void measure_read(benchmark::State& state, Read read) {
    RadioSeams seams;
    size_t before = bench_allocations();
    for (auto _ : state)
        benchmark::DoNotOptimize(read());
    report_allocs(state, before);
}

void BM_BackhaulPeer(benchmark::State& state) {
    wlan_link_info l;
    measure_read(state, [&] { return wlan_get_links_v2("ath12", &l); });
}
BENCHMARK(BM_BackhaulPeer);

void BM_AccessPointStations16(benchmark::State& state) {
    wlan_link_info links[16];
    measure_read(state, [&] { return wlan_get_sta_links("ath1", links, 16); });
}
BENCHMARK(BM_AccessPointStations16);

void BM_ChannelUtilisation(benchmark::State& state) {
    uint8_t util;
    measure_read(state, [&] { return wlan_get_channel_utilization_qca("ath12", &util, 2, true); });
}
BENCHMARK(BM_ChannelUtilisation);

void BM_Association(benchmark::State& state) {
    measure_read(state, [] { return lynd_get_wireless_link_state("ath12"); });
}
BENCHMARK(BM_Association);

}  // namespace
