// A wireless client's own ranking of the paths: the tie between paths its
// own link limits, and the damping rule that keeps it where it is.
#include "modules/path_selection/best_path.h"
#include "modules/path_selection/path_insight.h"
#include "modules/path_selection/sampling.h"
#include "node/host_stats.h"
#include "ps_fixture.h"
#include "sim/node/sim_cpu.h"

namespace {

class PathRankingTest : public PathSelectionTest {
protected:
    void SetUp() override {
        PathSelectionTest::SetUp();
        conf.param.delta_threshold = 10;
        fresh();
    }
    // 2.4G and 5G_2 weigh the same and both outrun the client's link, so
    // each rates at the station's quality; 5G is its own radio.
    void fresh() {
        path_selection_state_reset();
        g_ps_conf = &conf;
        path(IF_TYPE_2G, "ath02", 1);
        path(IF_TYPE_5G, "ath12", 3);
        path(IF_TYPE_5G_2, "ath22", 1);
        for (uint32_t t = 0; t < IF_TYPE_MAX; t++)
            lynd_list_init(&hc_paths[t].clients);
        for (uint32_t t : {IF_TYPE_2G, IF_TYPE_5G_2}) {
            hc_paths[t].quota = 10000;
            hc_paths[t].rate = 100;
        }
        hc_paths[IF_TYPE_5G].quota = 1000;
        hc_paths[IF_TYPE_5G].rate = 100;
    }
    hc_client* station_on(uint32_t type) {
        hc_client* c = client(1, type);
        c->sta_type = IF_TYPE_5G;
        ring_append(&c->sta_history, false)->rate = 100;
        return c;
    }
};

// "Between paths the client's own link limits alike, the better backhaul
// ranks first; the move must still gain more than the delta threshold in
// backhaul quality, and a path no better in either is no reason to move."
TEST_F(PathRankingTest, ATieOfLimitedPathsGoesByBackhaulThroughTheDamping) {
    struct Case {
        uint32_t here;
        uint16_t rate_5g_2;  // 2.4G's backhaul runs at 100
        uint32_t best;
    } cases[] = {
        {IF_TYPE_2G, 105, IF_TYPE_2G},    // 5 % better: damped
        {IF_TYPE_2G, 120, IF_TYPE_5G_2},  // 20 % better
        {IF_TYPE_2G, 300, IF_TYPE_5G_2},  // more than doubled
        {IF_TYPE_5G_2, 100, IF_TYPE_5G_2},  // 2.4G ranks first but is no better
    };
    for (const Case& k : cases) {
        fresh();
        hc_paths[IF_TYPE_5G_2].rate = k.rate_5g_2;
        hc_client* c = station_on(k.here);
        (void)path_selection_find_best_path_v2(hc_paths);
        EXPECT_EQ(k.best, c->best_path) << k.here << " " << k.rate_5g_2;
    }
}

// "Under CPU overload the paths answer names the CPU as why 2.4G is closed."
TEST_F(PathRankingTest, ACpuOverloadIsTheNamedReasonTwoFourIsClosed) {
    lynd::SimCpu cpu;
    host.set_cpu(&cpu);
    cpu.set_points({{0, 10}, {10000, 97}});
    conf.param.cpu_threshold = 90;
    loop.advance(10000);
    (void)lynd_calculate_cpu_occupy();
    loop.advance(10000);
    path_selection_init_path_quota_v2(&conf.bridges[0], hc_paths);
    EXPECT_EQ(QUOTA_CPU, g_path_insight[IF_TYPE_2G].quota_block);
    EXPECT_EQ(QUOTA_OPEN, g_path_insight[IF_TYPE_5G].quota_block);
}

}  // namespace
