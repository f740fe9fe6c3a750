// The flap guard: each rule holds a steering move and says for how long;
// moves off a broken path never wait; a held move is listed once.
#include <algorithm>

#include "core/counters.h"
#include "core/decision_ring.h"
#include "modules/path_selection/client_log.h"
#include "modules/path_selection/client_moves.h"
#include "modules/path_selection/explain_records.h"
#include "modules/path_selection/flap_guard.h"
#include "modules/path_selection/path_state.h"
#include "modules/path_selection/preferred_guard.h"
#include "ps_fixture.h"

namespace {

constexpr int64_t kMin = 60 * 1000;

class FlapGuardTest : public PathSelectionTest {
protected:
    void SetUp() override {
        PathSelectionTest::SetUp();
        decision_ring_reset();
        lynd_counters_reset();
        hc_paths[IF_TYPE_5G].quota = 6000;
        hc_paths[IF_TYPE_5G].rate = 400;
        hc_paths[IF_TYPE_2G].quota = 6000;
        hc_paths[IF_TYPE_2G].rate = 400;
        loop.advance(10 * kMin);
        c = client(1, IF_TYPE_2G);
    }
    // A newly associated client, so the mover wants it at once.
    void steer_to(uint8_t best) {
        c->flags = HC_FLAG_ASSOC_NEWLY;
        c->best_path = best;
        c->magic = g_hc_magic;
        path_selection_update_uplink_hc_table_v2(&conf, &conf.bridges[0], &hc_paths[best], hc_paths, 0);
    }
    // The client's last move, as the log keeps it.
    void moved(uint8_t from, uint8_t to) { client_log_move(*c, from, to, MOVE_BETTER_PATH); }
    int held_decisions() {
        int n = 0;
        for (int k = 0; k < decision_count(); k++)
            n += decision_at(k)->kind == DECISION_CLIENT_HELD ? 1 : 0;
        return n;
    }
    conf_flap_guard& guard() { return conf.param.flap_guard; }
    // Steered towards `to` and held on `stays` by rule, for left_ms more.
    void expect_held(uint8_t to, uint8_t stays, uint8_t rule, int64_t left_ms) {
        steer_to(to);
        EXPECT_TRUE(on(c, stays));
        EXPECT_EQ(OUTCOME_FLAP_HELD, explain_of(c).outcome);
        EXPECT_EQ(rule, explain_of(c).guard_rule);
        EXPECT_EQ(left_ms, explain_of(c).guard_left_ms);
    }

    hc_client* c = nullptr;
};

TEST_F(FlapGuardTest, MinimumDwellHoldsTheMoveAndListsItOnce) {
    guard().min_dwell_ms = 5 * kMin;
    moved(IF_TYPE_5G, IF_TYPE_2G);
    loop.advance(2 * kMin);
    expect_held(IF_TYPE_5G, IF_TYPE_2G, GUARD_DWELL, 3 * kMin);
    steer_to(IF_TYPE_5G);  // still held: not listed again
    ASSERT_EQ(1, held_decisions());
    const decision* d = decision_at(decision_count() - 1);
    EXPECT_STREQ("flap guard", d->reason);
    EXPECT_EQ(mac_of(1), d->subject);
    EXPECT_STREQ("ath02", d->from);
    EXPECT_STREQ("ath12", d->to);
    EXPECT_EQ(1u, g_counters.moves_held);
    EXPECT_EQ(0u, bridge.count_calls("bridgeSetHCTableEntries"));
    // The bridge swings the entry itself, and the mover wants it back: the
    // same hold, not listed again.
    lynd_list_del(&c->path_node);
    lynd_list_add_tail(&c->path_node, &hc_paths[IF_TYPE_5G].clients);
    c->hc.dst_port = 12;
    loop.advance(kMin);
    expect_held(IF_TYPE_2G, IF_TYPE_5G, GUARD_DWELL, 2 * kMin);
    EXPECT_EQ(1, held_decisions());
    EXPECT_EQ(1u, g_counters.moves_held);
    loop.advance(2 * kMin);
    steer_to(IF_TYPE_2G);
    EXPECT_TRUE(on(c, IF_TYPE_2G));
    EXPECT_EQ(2u, g_counters.moves);
}

TEST_F(FlapGuardTest, GoingBackWithinTheWindowKeepsTheClientOnTheBetterOfTheTwo) {
    guard().return_window_ms = 5 * kMin;
    guard().return_hold_ms = 20 * kMin;
    moved(IF_TYPE_5G, IF_TYPE_2G);
    loop.advance(kMin);
    // Both NORMAL, no better figure: it stays where it is.
    expect_held(IF_TYPE_5G, IF_TYPE_2G, GUARD_RETURN, 20 * kMin);
    loop.advance(19 * kMin);
    expect_held(IF_TYPE_5G, IF_TYPE_2G, GUARD_RETURN, kMin);
    loop.advance(kMin);
    steer_to(IF_TYPE_5G);  // the hold is over and the window long past
    EXPECT_TRUE(on(c, IF_TYPE_5G));
}

TEST_F(FlapGuardTest, GoingBackToAStrictlyBetterPathIsMadeAndThenHeldThere) {
    guard().return_window_ms = 5 * kMin;
    guard().return_hold_ms = 20 * kMin;
    moved(IF_TYPE_5G, IF_TYPE_2G);
    hc_paths[IF_TYPE_2G].state = PATH_WEAKLINK;
    loop.advance(kMin);
    steer_to(IF_TYPE_5G);
    EXPECT_TRUE(on(c, IF_TYPE_5G));
    hc_paths[IF_TYPE_2G].state = PATH_NORMAL;
    loop.advance(kMin);
    expect_held(IF_TYPE_2G, IF_TYPE_5G, GUARD_RETURN, 19 * kMin);
}

TEST_F(FlapGuardTest, TheHourlyBudgetHoldsUntilTheOldestMoveIsAnHourOld) {
    guard().moves_per_hour = 3;
    moved(IF_TYPE_5G, IF_TYPE_2G);
    loop.advance(10 * kMin);
    moved(IF_TYPE_2G, IF_TYPE_5G);
    loop.advance(10 * kMin);
    moved(IF_TYPE_5G, IF_TYPE_2G);
    loop.advance(10 * kMin);
    expect_held(IF_TYPE_5G, IF_TYPE_2G, GUARD_BUDGET, 30 * kMin);
    loop.advance(30 * kMin);
    steer_to(IF_TYPE_5G);
    EXPECT_TRUE(on(c, IF_TYPE_5G));
}

// "The longer wait decides; of two equal waits the first rule found is named."
TEST_F(FlapGuardTest, OfTwoEqualWaitsTheDwellIsNamed) {
    guard().min_dwell_ms = 60 * kMin;
    guard().moves_per_hour = 1;
    moved(IF_TYPE_5G, IF_TYPE_2G);
    loop.advance(10 * kMin);
    expect_held(IF_TYPE_5G, IF_TYPE_2G, GUARD_DWELL, 50 * kMin);
}

TEST_F(FlapGuardTest, WithTheGuardOffNothingIsHeld) {
    moved(IF_TYPE_5G, IF_TYPE_2G);
    steer_to(IF_TYPE_5G);
    EXPECT_TRUE(on(c, IF_TYPE_5G));
    EXPECT_EQ(0, held_decisions());
}

// Safety first: leaving an abnormal or downed path never waits, leaving a
// weak one does.
TEST_F(FlapGuardTest, EvacuationsFromAbnormalOrDownedPathsAreNeverHeld) {
    guard().min_dwell_ms = 60 * kMin;
    guard().moves_per_hour = 1;
    moved(IF_TYPE_2G, IF_TYPE_5G);
    hc_client_unlink_path(c);
    lynd_list_add_tail(&c->path_node, &hc_paths[IF_TYPE_5G].clients);
    hc_paths[IF_TYPE_5G].state = PATH_WEAKLINK;
    path_selection_pre_update_weak_abnormal_path(&conf.bridges[0], hc_paths);
    EXPECT_TRUE(on(c, IF_TYPE_5G));
    EXPECT_EQ(1, held_decisions());
    hc_paths[IF_TYPE_5G].state = PATH_ABNORMAL;
    path_selection_pre_update_weak_abnormal_path(&conf.bridges[0], hc_paths);
    EXPECT_TRUE(on(c, IF_TYPE_2G));
    hc_paths[IF_TYPE_2G].state = PATH_UNLINK;
    path_selection_pre_update_uplink_path_for_hc_v2(&conf.bridges[0], hc_paths, IF_TYPE_5G);
    EXPECT_TRUE(on(c, IF_TYPE_5G));
    EXPECT_EQ(3u, g_counters.moves);
    EXPECT_EQ(2u, g_counters.evacuations);
    EXPECT_EQ(1u, g_counters.moves_by_reason[MOVE_PATH_UNLINKED]);
}

class PreferredGuardTest : public FlapGuardTest {
protected:
    hc_path* choose() { return preferred_guard_choose(&conf.bridges[0], &hc_paths[IF_TYPE_2G], hc_paths); }
};

TEST_F(PreferredGuardTest, ThePortSwingsBackOnlyAfterTheWindowOrToABetterState) {
    EXPECT_EQ(&hc_paths[IF_TYPE_2G], choose());  // off by default
    guard().preferred_return_ms = 10 * kMin;
    preferred_guard_note(&conf.bridges[0], 2, 12);  // left 2.4G for 5G
    conf.bridges[0].preferred_ifindex = 12;
    loop.advance(5 * kMin);
    EXPECT_EQ(&hc_paths[IF_TYPE_5G], choose());
    hc_paths[IF_TYPE_5G].state = PATH_WEAKLINK;
    EXPECT_EQ(&hc_paths[IF_TYPE_2G], choose());
    hc_paths[IF_TYPE_5G].state = PATH_NORMAL;
    loop.advance(5 * kMin);
    EXPECT_EQ(&hc_paths[IF_TYPE_2G], choose());
}

// A restart (a record call, a new configuration) starts with no path left.
TEST_F(PreferredGuardTest, ARestartForgetsThePathThePortLeft) {
    guard().preferred_return_ms = 10 * kMin;
    preferred_guard_note(&conf.bridges[0], 2, 12);
    conf.bridges[0].preferred_ifindex = 12;
    loop.advance(kMin);
    ASSERT_EQ(&hc_paths[IF_TYPE_5G], choose());
    hc_path kept[IF_TYPE_MAX];
    std::copy(hc_paths, hc_paths + IF_TYPE_MAX, kept);
    path_selection_state_reset();
    std::copy(kept, kept + IF_TYPE_MAX, hc_paths);
    g_ps_conf = &conf;
    EXPECT_EQ(&hc_paths[IF_TYPE_2G], choose());
}

}  // namespace
