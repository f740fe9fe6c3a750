// The two hot paths of path selection on a busy extender: the short-period
// sampling and the period run, with every path slot live, full rings and
// 256 hc entries. Allocations are counted inside the daemon's code only.
#include <benchmark/benchmark.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cstdio>
#include <string>
#include <vector>

#include "bench/alloc_counter.h"
#include "bench/quiet_seams.h"
#include "config/config.h"
#include "core/log.h"
#include "modules/path_selection/hc_records.h"
#include "modules/path_selection/period_drive.h"
#include "modules/path_selection/startup.h"
#include "trace/trace_recorder.h"
#include "wlan/wlan.h"

namespace {

constexpr int kClients = 255;  // and the node's own entry
const char* const kConfig = R"({"enable": true,
    "bridges": {"br-lan": {"loop_avoidance": true, "path_selection": true, "hc_enable": true}},
    "param": {"period": 10, "short_period": 2, "wlan_enable": true%s},
    "interfaces": {"eth1": {"type": "ethernet", "path": true, "nonrelay": true},
        "ath02": {"type": "2.4g", "path": true, "nonrelay": true},
        "ath12": {"type": "5g", "path": true, "nonrelay": true},
        "ath13": {"type": "5g_2", "path": true, "nonrelay": true},
        "ath22": {"type": "6g", "path": true, "nonrelay": true},
        "ath0": {"type": "2.4g"}, "ath1": {"type": "5g"}, "ath2": {"type": "6g"}}%s})";
// Every steering limit on, and a full list of client rules to look up.
const char* const kGuard = R"(, "flap_guard": {"min_dwell": 120, "return_window": 300, "return_hold": 900,
    "moves_per_hour": 4, "preferred_return": 300})";

std::string config_text(bool guarded) {
    std::string rules;
    for (int i = 0; guarded && i < LYND_MAX_CLIENT_RULES; i++) {
        char r[80];
        std::snprintf(r, sizeof r, R"(%s{"mac": "10:00:00:00:%02x:%02x", %s})", i == 0 ? "" : ", ", (i * 4) >> 8,
                      (i * 4) & 0xff, i % 2 ? R"("pin": "5g")" : R"("exclude": true)");
        rules += r;
    }
    std::string clients = guarded ? R"(, "clients": [)" + rules + "]" : "";
    std::vector<char> text(std::strlen(kConfig) + std::strlen(kGuard) + clients.size() + 1);
    std::snprintf(text.data(), text.size(), kConfig, guarded ? kGuard : "", clients.c_str());
    return text.data();
}

struct PsNode {
    SimSeams sim;
    QuietHost host{&sim.host};
    QuietUci uci{&sim.uci};
    QuietBridge bridge;
    lynd_config conf{};

    explicit PsNode(bool guarded = false) {
        lynd::install_seams({&sim.loop, &host, &uci, &bridge, &sim.bus, &qca_driver_requests});
        g_lynd_dgb_lvl = LYND_LVL_ERR;
        sim.uci.set("sysmode.sysmode.mode", "repeater");
        const std::pair<const char*, unsigned> ifs[] = {{"br-lan", 2}, {"eth1", 3}, {"ath02", 11}, {"ath12", 12},
                                                        {"ath13", 13}, {"ath22", 14}, {"ath0", 20},  {"ath1", 21},
                                                        {"ath2", 22}};
        for (const auto& i : ifs) {
            sim.host.add_interface({i.first, i.second, {0x02, 0, 0, 0, 0, static_cast<uint8_t>(i.second)}});
            if (i.second != 2)
                bridge.ports.push_back(i.second);
        }
        std::string text = config_text(guarded);
        (void)config_parse(&conf, text.data(), text.size());
        for (const char* l : {"ath02", "ath12", "ath13", "ath22"}) {
            lynd::SimLink link;
            link.txrate = 400;
            link.rxrate = 300;
            link.tx_mbps = 20;
            sim.wlan.set_link(l, link);
        }
        fill_tables();
        path_selection_init_hc(&conf);
        for (auto& p : hc_paths) {
            p.state = PATH_NORMAL;
            p.last_state = PATH_NORMAL;
            for (int k = 0; k < HC_RING_SIZE; k++)
                *ring_append(&p.path_history, true) = link_sample{400, 300, 400, -60, -95, 35};
        }
        path_selection_timer_period_hc(&conf);  // the records follow the table from now on
    }

    // The node's own entry, then clients spread over three bands, each
    // associated with its access point.
    void fill_tables() {
        const uint32_t dst[] = {11, 12, 14};
        const uint32_t src[] = {20, 21, 22};
        const char* aps[] = {"ath0", "ath1", "ath2"};
        hc_entry self{};
        std::memcpy(self.mac, "\x02\x00\x00\x00\x00\x02", 6);
        std::memcpy(self.id, self.mac, 6);
        self.src_port = 2;
        self.dst_port = 12;
        bridge.hc.push_back(self);
        std::vector<lynd::SimStation> stations[3];
        for (int i = 0; i < kClients; i++) {
            hc_entry e{};
            uint8_t mac[6] = {0x10, 0, 0, 0, static_cast<uint8_t>(i >> 8), static_cast<uint8_t>(i)};
            std::memcpy(e.mac, mac, 6);
            std::memcpy(e.id, self.mac, 6);
            e.src_port = src[i % 3];
            e.dst_port = dst[i % 3];
            e.bytes = 1000000u * static_cast<uint64_t>(i % 7);
            bridge.hc.push_back(e);
            fdb_entry f{};
            std::memcpy(f.mac, mac, 6);
            f.port_lo = static_cast<uint8_t>(src[i % 3]);
            bridge.fdb.push_back(f);
            if (stations[i % 3].size() < 16) {
                lynd::SimStation st;
                std::memcpy(st.mac, mac, 6);
                st.txrate = 300;
                st.rxrate = 200;
                stations[i % 3].push_back(st);
            }
        }
        for (int a = 0; a < 3; a++)
            sim.wlan.set_stations(aps[a], stations[a]);
    }
};

void report(benchmark::State& state, size_t allocs, size_t runs, const PsNode& n) {
    double it = double(state.iterations());
    state.counters["allocs/run"] = benchmark::Counter(double(allocs) / it);
    state.counters["processes/run"] = benchmark::Counter(double(runs) / it);
    state.counters["log lines"] = double(n.sim.host.console_lines().size());
}

void BM_ShortPeriodRun(benchmark::State& state) {
    static PsNode n;
    size_t allocs = bench_allocations(), runs = n.sim.host.runs().size();
    for (auto _ : state) {
        n.sim.loop.advance(2000);
        path_selection_timer_short_period_hc(&n.conf);
    }
    report(state, bench_allocations() - allocs, n.sim.host.runs().size() - runs, n);
}
BENCHMARK(BM_ShortPeriodRun);

// A fixed count, so that an instruction count over the run divides evenly.
void BM_PeriodRun(benchmark::State& state) {
    static PsNode n;
    size_t allocs = bench_allocations(), runs = n.sim.host.runs().size();
    for (auto _ : state) {
        n.sim.loop.advance(10000);
        hc_paths[IF_TYPE_ETH].cur_txbytes += 1000;  // nothing samples the wired slot: its traffic, by hand
        path_selection_timer_period_hc(&n.conf);
    }
    report(state, bench_allocations() - allocs, n.sim.host.runs().size() - runs, n);
}
BENCHMARK(BM_PeriodRun)->Iterations(200);

// The same with the flap guard, the preferred-port guard and 64 client rules.
void BM_GuardedPeriodRun(benchmark::State& state) {
    static PsNode n(true);
    size_t allocs = bench_allocations(), runs = n.sim.host.runs().size();
    for (auto _ : state) {
        n.sim.loop.advance(10000);
        hc_paths[IF_TYPE_ETH].cur_txbytes += 1000;
        path_selection_timer_period_hc(&n.conf);
    }
    report(state, bench_allocations() - allocs, n.sim.host.runs().size() - runs, n);
}
BENCHMARK(BM_GuardedPeriodRun)->Iterations(200);

// The same period run with every seam recorded to a trace: the cost of
// recording, and the bytes one run adds to the trace.
void BM_PeriodRunRecorded(benchmark::State& state) {
    static PsNode n;
    char dir[] = "/tmp/lynd-bench-XXXXXX";
    std::string path = mkdtemp(dir) != nullptr ? std::string(dir) + "/trace" : "";
    if (path.empty() || lynd::trace_control(path.c_str(), SIZE_MAX, true) != 0) {
        state.SkipWithError("no trace file");
        return;
    }
    size_t allocs = bench_allocations(), runs = n.sim.host.runs().size();
    for (auto _ : state) {
        n.sim.loop.advance(10000);
        hc_paths[IF_TYPE_ETH].cur_txbytes += 1000;
        path_selection_timer_period_hc(&n.conf);
    }
    lynd::trace_finish();
    struct stat st {};
    (void)stat(path.c_str(), &st);
    (void)unlink(path.c_str());
    (void)rmdir(dir);
    report(state, bench_allocations() - allocs, n.sim.host.runs().size() - runs, n);
    state.counters["trace bytes/run"] = benchmark::Counter(double(st.st_size) / double(state.iterations()));
}
BENCHMARK(BM_PeriodRunRecorded)->Iterations(200);

}  // namespace
