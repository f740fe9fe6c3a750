#include "modules/path_selection/client_moves.h"
#include "ps_fixture.h"

namespace {

class ClientMovesTest : public PathSelectionTest {
protected:
    void SetUp() override {
        PathSelectionTest::SetUp();
        hc_paths[IF_TYPE_5G].quota = 6000;
        hc_paths[IF_TYPE_5G].rate = 400;
        g_hc_magic = 7;
    }
    // One period's walk, as if the best path had just been chosen.
    void run(hc_client* c, uint8_t best) {
        c->best_path = best;
        c->magic = g_hc_magic;
        path_selection_update_uplink_hc_table_v2(&conf, &conf.bridges[0], &hc_paths[IF_TYPE_5G], hc_paths, 0);
    }
};

TEST_F(ClientMovesTest, AFittingClientMovesOnlyAfterThreeRunsAndPaysItsQuota) {
    hc_client* c = client(1, IF_TYPE_2G);
    c->hc.bytes = 64000000;  // 100 Mbps over the 10 s period: quota 2500 of the 3000 it may take
    run(c, IF_TYPE_5G);
    run(c, IF_TYPE_5G);
    EXPECT_EQ(0u, bridge.count_calls("bridgeSetHCTableEntries"));
    EXPECT_EQ(2, c->idle_count);
    run(c, IF_TYPE_5G);
    EXPECT_EQ(std::vector<std::string>{"bridgeSetHCTableEntries br-lan " + mac_of(1) + " " + mac_of(1) + " ath1 ath12"},
              bridge.calls_matching("bridgeSetHCTableEntries"));
    EXPECT_TRUE(on(c, IF_TYPE_5G));
    EXPECT_EQ(3500, hc_paths[IF_TYPE_5G].quota);
    EXPECT_EQ(0, c->idle_count);
    run(c, IF_TYPE_5G);  // on its best path now: nothing more
    EXPECT_EQ(1u, bridge.count_calls("bridgeSetHCTableEntries"));
}

TEST_F(ClientMovesTest, ANewWirelessClientMovesAtOnceAndAHeavyOneNever) {
    hc_client* fresh = client(1, IF_TYPE_2G);
    fresh->flags = HC_FLAG_ASSOC_NEWLY;
    run(fresh, IF_TYPE_5G);
    EXPECT_TRUE(on(fresh, IF_TYPE_5G));
    EXPECT_EQ(0, fresh->flags & HC_FLAG_ASSOC_NEWLY);
    hc_client* heavy = client(2, IF_TYPE_2G);
    heavy->hc.bytes = 64000000ull * 2;  // 5000 of quota: more than half of 6000 - 0
    heavy->flags = HC_FLAG_ASSOC_NEWLY;
    run(heavy, IF_TYPE_5G);
    EXPECT_TRUE(on(heavy, IF_TYPE_2G));
}

TEST_F(ClientMovesTest, OneMovePerRunThenTheLightestWhenMovingDown) {
    path(IF_TYPE_5G_2, "ath22", 6);
    hc_paths[IF_TYPE_5G_2].quota = 6000;
    hc_paths[IF_TYPE_5G_2].rate = 400;
    g_hc_magic = 9;
    hc_client* a = client(1, IF_TYPE_5G_2, 21);
    hc_client* b = client(2, IF_TYPE_5G_2, 21);
    hc_client* far = client(3, IF_TYPE_2G);
    a->hc.bytes = 3000;
    b->hc.bytes = 1000;
    for (hc_client* c : {a, b, far}) {
        c->flags = HC_FLAG_ASSOC_NEWLY;
        c->best_path = IF_TYPE_5G;
        c->magic = g_hc_magic;
    }
    path_selection_update_uplink_hc_table_v2(&conf, &conf.bridges[0], &hc_paths[IF_TYPE_5G], hc_paths, 0);
    EXPECT_TRUE(on(far, IF_TYPE_5G));  // path order: 2.4G is walked first and takes the one move
    EXPECT_TRUE(on(a, IF_TYPE_5G_2));
    conf.param.handle_count = 2;
    for (hc_client* c : {a, b})
        c->magic = g_hc_magic;
    path_selection_update_uplink_hc_table_v2(&conf, &conf.bridges[0], &hc_paths[IF_TYPE_5G], hc_paths, 0);
    EXPECT_TRUE(on(b, IF_TYPE_5G));  // from priority 6 down to 3: the fewest bytes first
    EXPECT_TRUE(on(a, IF_TYPE_5G_2));
}

TEST_F(ClientMovesTest, WhileAnOverloadedPathHasClientsOnlyTheyAreConsidered) {
    g_lynd_dgb_lvl = LYND_LVL_INFO;
    hc_client* c = client(1, IF_TYPE_2G);
    c->best_path = IF_TYPE_5G;
    c->magic = g_hc_magic;
    c->idle_count = 2;
    path_selection_update_uplink_hc_table_v2(&conf, &conf.bridges[0], &hc_paths[IF_TYPE_5G], hc_paths, 1);
    EXPECT_TRUE(host.logged("] not busy, not adjust :ath02"));
    EXPECT_EQ(0, c->idle_count);
    EXPECT_TRUE(on(c, IF_TYPE_2G));
    hc_paths[IF_TYPE_5G].path = 0;
    path_selection_update_uplink_hc_table_v2(&conf, &conf.bridges[0], &hc_paths[IF_TYPE_5G], hc_paths, 0);
    EXPECT_TRUE(host.logged("<LYND_ERR>[path_selection_update_uplink_hc_table_v2, "));
}

TEST_F(ClientMovesTest, ClientRateIsBytesPerMillisecondShiftedBySix) {
    EXPECT_EQ(100u, path_selection_client_rate(64000000, 10000));
    EXPECT_EQ(0u, path_selection_client_rate(64000000, 0));
    EXPECT_EQ(static_cast<uint32_t>(UINT64_MAX >> 6), path_selection_client_rate(UINT64_MAX, 1));
}

TEST_F(ClientMovesTest, ADownedPathsClientsFollowTheEmergencyChoiceOrTheTableIsFlushed) {
    hc_client* c = client(1, IF_TYPE_2G);
    hc_paths[IF_TYPE_2G].state = PATH_UNLINK;
    path_selection_pre_update_uplink_path_for_hc_v2(&conf.bridges[0], hc_paths, IF_TYPE_5G);
    EXPECT_TRUE(on(c, IF_TYPE_5G));
    EXPECT_EQ(1u, bridge.count_calls("bridgeSetHCTableEntries br-lan " + mac_of(1) + " " + mac_of(1) + " ath1 ath12"));
    g_lynd_dgb_lvl = LYND_LVL_WARN;
    path_selection_pre_update_uplink_path_for_hc_v2(&conf.bridges[0], hc_paths, PATH_NONE);
    EXPECT_TRUE(host.logged("] not find best path"));
    EXPECT_EQ(1u, bridge.count_calls("bridgeFlushHCTable br-lan"));
}

}  // namespace
