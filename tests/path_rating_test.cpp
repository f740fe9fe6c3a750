// Rating paths from samples and counters, their quotas, and the best path.

#include "modules/path_selection/best_path.h"
#include "modules/path_selection/path_state.h"
#include "modules/path_selection/sampling.h"
#include "ps_fixture.h"

namespace {

class PathRatingTest : public PathSelectionTest {
protected:
    void SetUp() override {
        PathSelectionTest::SetUp();
        hc_path& p = hc_paths[IF_TYPE_5G];
        p.linkquality_smoothing_factor = 3;
        p.abnormal_threshold_txrate = 13;
        p.abnormal_threshold_rxrate = 13;
        p.weaklink_threshold_rssi = -85;
        p.weaklink_threshold_snr = 15;
        p.weaklink_threshold_rate = 100;
        p.weaklink_hold_threshold_rssi = -83;
        p.weaklink_hold_threshold_snr = 17;
        p.last_state = PATH_NORMAL;
        conf.param.delta_threshold = 10;
        conf.param.high_threshold = 70;
    }
    // One period: three samples at rssi and rate, then the rating.
    uint8_t period(int16_t rssi, uint16_t rate, bool traffic = true) {
        hc_path& p = hc_paths[IF_TYPE_5G];
        for (int i = 0; i < 3; i++)
            *ring_append(&p.path_history, true) = link_sample{rate, rate, rate, rssi, -95, static_cast<int16_t>(rssi + 95)};
        p.last_txbytes = p.cur_txbytes;
        p.cur_txbytes += traffic ? 1000 : 0;
        path_selection_evaluate_path_state(&conf.bridges[0], hc_paths);
        return p.state;
    }
};

TEST_F(PathRatingTest, AWeakeningLinkTakesTwoVerdictsHoldsAndRecoversInOne) {
    EXPECT_EQ(PATH_NORMAL, period(-70, 50));
    EXPECT_EQ(PATH_NORMAL, period(-88, 50));  // the first weak verdict only counts
    EXPECT_EQ(1, hc_paths[IF_TYPE_5G].weak_count);
    EXPECT_EQ(PATH_WEAKLINK, period(-88, 50));
    EXPECT_EQ(PATH_NORMAL, hc_paths[IF_TYPE_5G].last_state);
    EXPECT_EQ(PATH_WEAKLINK, period(-84, 50));  // between the weak and the hold thresholds
    EXPECT_EQ(PATH_NORMAL, period(-84, 100));    // fast enough: rated by its traffic
}

// Rates compare as unsigned: a negative rate threshold read from the file
// is larger than every rate, so every rate is under it.
TEST_F(PathRatingTest, RateThresholdsCompareUnsigned) {
    struct Case {
        int32_t weak_rate;
        int16_t rssi;
        uint16_t rate;
        uint8_t after_two;
    };
    const Case cases[] = {
        {-1, -88, 60000, PATH_WEAKLINK},  {-100, -88, 50, PATH_WEAKLINK}, {-1, -75, 1000, PATH_NORMAL},
        {-1, -70, 65535, PATH_NORMAL},    {100, -88, 100, PATH_NORMAL},   {100, -88, 99, PATH_WEAKLINK},
        {0, -88, 0, PATH_ABNORMAL},  // not weak: nothing is under 0, but both rates are at the floor
    };
    for (const Case& c : cases) {
        hc_path& p = hc_paths[IF_TYPE_5G];
        p.state = PATH_NORMAL;
        p.weak_count = 0;
        p.abnormal_count = 0;
        p.path_history = sample_ring{};
        p.weaklink_threshold_rate = c.weak_rate;
        p.abnormal_threshold_txrate = 0;
        p.abnormal_threshold_rxrate = 0;
        period(c.rssi, c.rate);
        EXPECT_EQ(c.after_two, period(c.rssi, c.rate)) << c.weak_rate << " " << c.rssi << " " << c.rate;
    }
    // A negative abnormal threshold: both rates are always at or under it.
    hc_path& p = hc_paths[IF_TYPE_5G];
    p.state = PATH_NORMAL;
    p.weaklink_threshold_rate = 100;
    p.abnormal_threshold_txrate = static_cast<uint32_t>(-1);
    p.abnormal_threshold_rxrate = static_cast<uint32_t>(-1);
    period(-60, 65535);
    EXPECT_EQ(PATH_ABNORMAL, period(-60, 65535));
}

TEST_F(PathRatingTest, AStalledCounterMakesWeakAbnormalAndFlowingBytesUndoIt) {
    period(-88, 50);
    period(-88, 50);
    EXPECT_EQ(PATH_WEAKLINK_ABNORMAL, period(-88, 50, false));
    EXPECT_EQ(PATH_WEAKLINK_ABNORMAL, period(-88, 50, false));
    EXPECT_EQ(PATH_WEAKLINK, period(-88, 50));
    EXPECT_EQ(PATH_WEAKLINK, period(-60, 10));  // both rates at the floor: a first abnormal verdict
    EXPECT_EQ(PATH_ABNORMAL, period(-60, 10));
    EXPECT_EQ(PATH_NORMAL, period(-60, 200));
    EXPECT_EQ(PATH_NORMAL, period(-60, 200, false));  // one abnormal verdict counts, the second acts
    EXPECT_EQ(PATH_ABNORMAL, period(-60, 200, false));
}

TEST_F(PathRatingTest, ARecentLinkIsRatedOnlyWithEnoughSamples) {
    hc_path& p = hc_paths[IF_TYPE_5G];
    p.last_state = PATH_UNLINK;
    p.linkquality_smoothing_factor = 18;
    g_lynd_dgb_lvl = LYND_LVL_LOG;
    EXPECT_EQ(PATH_NORMAL, period(-90, 10, false));
    EXPECT_TRUE(host.logged("] Path is unlink last time, not enough data(path_history num=3)"));
}

TEST_F(PathRatingTest, MeansOverTheNewestSamplesCostOnePassWhateverN) {
    sample_ring r{};
    for (int i = 0; i < 25; i++)
        *ring_append(&r, true) = link_sample{0, 0, static_cast<uint16_t>(i), static_cast<int16_t>(-i), 0, 0};
    EXPECT_EQ(20, r.num);
    EXPECT_EQ(5, r.start);
    EXPECT_EQ(-23, path_selection_ring_means(r, 3).rssi);  // 24, 23, 22
    EXPECT_EQ(-14, path_selection_ring_means(r, 20).rssi);  // 5..24
    EXPECT_EQ(-14, path_selection_ring_means(r, 40).rssi);  // the ring twice
    EXPECT_EQ(0, path_selection_ring_means(r, 0).rssi);
    ring_means huge = path_selection_ring_means(r, static_cast<uint32_t>(-18));  // a negative factor read as u32
    EXPECT_EQ(-14, huge.rssi);
}

TEST_F(PathRatingTest, AWiredClientMovesOnlyForMoreThanTheDeltaThreshold) {
    hc_path& two = hc_paths[IF_TYPE_2G];
    hc_path& five = hc_paths[IF_TYPE_5G];
    two.priority = five.priority = 1;
    two.quota = five.quota = 10000;
    two.rate = 100;
    hc_client* wired = client(1, IF_TYPE_2G, 3);
    wired->sta_type = IF_TYPE_ETH;
    const std::pair<uint16_t, uint8_t> rows[] = {{108, IF_TYPE_2G}, {110, IF_TYPE_2G}, {111, IF_TYPE_5G}};
    for (const auto& r : rows) {
        five.rate = r.first;
        (void)path_selection_find_best_path_v2(hc_paths);
        EXPECT_EQ(r.second, wired->best_path) << r.first;
        EXPECT_EQ(g_hc_magic, wired->magic);
    }
}

TEST_F(PathRatingTest, TheNodesBestComesFromItsOwnRecordUnlessAllIsOverloaded) {
    hc_paths[IF_TYPE_5G].quota = 5000;
    hc_paths[IF_TYPE_5G].rate = 400;
    hc_client* self = client(1, IF_TYPE_2G, 2);
    self->sta_type = PATH_NONE;
    EXPECT_EQ(&hc_paths[IF_TYPE_5G], path_selection_find_best_path_v2(hc_paths));
    hc_paths[IF_TYPE_2G].overload = hc_paths[IF_TYPE_5G].overload = 1;
    g_lynd_dgb_lvl = LYND_LVL_LOG;
    EXPECT_EQ(nullptr, path_selection_find_best_path_v2(hc_paths));
    EXPECT_TRUE(host.logged("] best path:nil"));
}

TEST_F(PathRatingTest, AStationRatesByItsRingAndAWiredOneAtAGigabit) {
    hc_client* c = client(1, IF_TYPE_5G);
    EXPECT_EQ(0u, path_selection_get_wl_sta_info_rate(c));
    for (uint16_t rate : {0, 0, 300, 200, 100})
        ring_append(&c->sta_history, false)->rate = rate;
    EXPECT_EQ(200u, path_selection_get_wl_sta_info_rate(c));
    c->sta_type = IF_TYPE_ETH;
    EXPECT_EQ(1000u, path_selection_get_wl_sta_info_rate(c));
    c->sta_type = PATH_NONE;
    EXPECT_EQ(0u, path_selection_get_wl_sta_info_rate(c));
}

}  // namespace
