#include <cstring>

#include "modules/path_selection/client_moves.h"
#include "modules/path_selection/explain_records.h"
#include "ps_fixture.h"

namespace {

class ClientMovesTest : public PathSelectionTest {
protected:
    void SetUp() override {
        PathSelectionTest::SetUp();
        fresh();
    }
    // Back to the two paths with no clients, for the next case of a table.
    void fresh() {
        path_selection_state_reset();
        g_ps_conf = &conf;
        conf.param.period = 10000;
        conf.param.handle_count = 1;
        path(IF_TYPE_2G, "ath02", 1);
        path(IF_TYPE_5G, "ath12", 3);
        hc_paths[IF_TYPE_5G].quota = 6000;
        hc_paths[IF_TYPE_5G].rate = 400;
        g_hc_magic = 7;
        bridge.clear_calls();
        host.clear_console();
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

// One client on 2.4G whose best path is 5G (quota 6000, 400 Mbps: it may
// take 3000), met by one run. Bytes per Mbps over the 10 s period:
constexpr uint64_t kBytesPerMbps = 640000;

struct CountCase {
    const char* rule;
    bool overloaded;  // the client's own path
    bool others_wait; // some overloaded path carries clients
    uint8_t best;
    bool newly;
    uint8_t busy, idle;  // before the run
    bool moved;
    uint8_t busy_after, idle_after;
    uint8_t outcome;
};

const CountCase kCountCases[] = {
    {"on its best path both counts restart and it is no longer new", false, false, IF_TYPE_2G, true, 2, 2, false, 0,
     0, OUTCOME_ON_BEST},
    {"with no best path both counts restart", false, false, PATH_NONE, false, 2, 2, false, 0, 0, OUTCOME_NOT_BUSY},
    {"while others wait on a busy path, a client of a calm one restarts both counts", false, true, IF_TYPE_5G, false,
     2, 2, false, 0, 0, OUTCOME_NOT_BUSY},
    {"on an overloaded path the idle count restarts and the busy count grows", true, true, IF_TYPE_5G, false, 0, 2,
     false, 1, 0, OUTCOME_BUSY_WAIT},
    {"the busy count moves the client when it reaches the threshold", true, true, IF_TYPE_5G, false, 2, 0, true, 0, 0,
     OUTCOME_MOVED},
    {"the busy count restarts when the path stops being overloaded", false, false, IF_TYPE_5G, false, 2, 0, false, 0,
     1, OUTCOME_IDLE_WAIT},
    {"the idle count moves the client when it reaches the threshold", false, false, IF_TYPE_5G, false, 0, 2, true, 0,
     0, OUTCOME_MOVED},
    {"a newly associated client leaves a calm path at once", false, false, IF_TYPE_5G, true, 0, 0, true, 0, 0,
     OUTCOME_MOVED},
    {"a newly associated client on an overloaded path waits out the busy count", true, true, IF_TYPE_5G, true, 0, 0,
     false, 1, 0, OUTCOME_BUSY_WAIT},
};

TEST_F(ClientMovesTest, TheBusyAndIdleCountsRestartOnTheBranchesThatSaySo) {
    for (const CountCase& k : kCountCases) {
        SCOPED_TRACE(k.rule);
        fresh();
        hc_client* c = client(1, IF_TYPE_2G);
        hc_paths[IF_TYPE_2G].overload = k.overloaded ? 1 : 0;
        c->flags = k.newly ? HC_FLAG_ASSOC_NEWLY : 0;
        c->busy_count = k.busy;
        c->idle_count = k.idle;
        c->best_path = k.best;
        c->magic = g_hc_magic;
        path_selection_update_uplink_hc_table_v2(&conf, &conf.bridges[0], &hc_paths[IF_TYPE_5G], hc_paths,
                                                 k.others_wait ? 1 : 0);
        EXPECT_EQ(k.moved, on(c, IF_TYPE_5G));
        EXPECT_EQ(k.moved ? 1u : 0u, bridge.count_calls("bridgeSetHCTableEntries"));
        EXPECT_EQ(k.busy_after, c->busy_count);
        EXPECT_EQ(k.idle_after, c->idle_count);
        EXPECT_EQ(k.outcome, explain_of(c).outcome);
        bool still_new = k.newly && !k.moved && k.best != IF_TYPE_2G;
        EXPECT_EQ(still_new, (c->flags & HC_FLAG_ASSOC_NEWLY) != 0);
        if (k.outcome == OUTCOME_BUSY_WAIT || k.outcome == OUTCOME_IDLE_WAIT) {
            EXPECT_EQ(k.busy_after + k.idle_after, explain_of(c).count);  // the count the explain answer shows
        }
    }
}

struct FitCase {
    const char* rule;
    uint64_t mbps_over_10s;  // the entry's bytes, in Mbps had they come in 10 s
    int64_t interval_ms;     // measured between the last two runs
    uint32_t period_ms;
    bool moved;
    uint32_t rate_mbps;  // as the explain answer shows it
    uint32_t quota;
};

const FitCase kFitCases[] = {
    {"a client below the adjusted quota fits", 119, 0, 10000, true, 119, 2975},
    {"a client whose quota equals the adjusted quota still fits", 120, 0, 10000, true, 120, 3000},
    {"a client above the adjusted quota stays", 121, 0, 10000, false, 121, 3025},
    {"a run later than the period spreads the bytes over the longer time", 240, 20000, 10000, true, 120, 3000},
    {"a run earlier than the period still counts the whole period", 120, 5000, 10000, true, 120, 3000},
    {"a run with no time base counts the client's rate as nothing", 121, 0, 0, true, 0, 0},
};

TEST_F(ClientMovesTest, TheClientRateOverTheRunsTimeBaseMustFitTheAdjustedQuota) {
    for (const FitCase& k : kFitCases) {
        SCOPED_TRACE(k.rule);
        fresh();
        conf.param.period = k.period_ms;
        g_timer_interval = k.interval_ms;
        hc_client* c = client(1, IF_TYPE_2G);
        c->flags = HC_FLAG_ASSOC_NEWLY;
        c->hc.bytes = k.mbps_over_10s * kBytesPerMbps;
        run(c, IF_TYPE_5G);
        EXPECT_EQ(k.moved, on(c, IF_TYPE_5G));
        EXPECT_EQ(k.rate_mbps, explain_of(c).rate_mbps);
        EXPECT_EQ(k.quota, explain_of(c).quota);
        EXPECT_EQ(k.moved ? OUTCOME_MOVED : OUTCOME_TOO_HEAVY, explain_of(c).outcome);
        EXPECT_EQ(3000, explain_of(c).adjust_quota);
    }
}

TEST_F(ClientMovesTest, WithNoMovesLeftAClientIsNotWeighedAtAll) {
    g_lynd_dgb_lvl = LYND_LVL_LOG;
    conf.param.handle_count = 0;
    hc_client* c = client(1, IF_TYPE_2G);
    c->flags = HC_FLAG_ASSOC_NEWLY;
    c->hc.bytes = 121 * kBytesPerMbps;  // too heavy, but that is never asked
    run(c, IF_TYPE_5G);
    EXPECT_EQ(OUTCOME_NO_HANDLE, explain_of(c).outcome);
    EXPECT_FALSE(host.logged("] adjust_quota: "));
    EXPECT_TRUE(on(c, IF_TYPE_2G));
}

struct PriorityCase {
    const char* rule;
    uint8_t from_priority;  // the best path, 5G, has priority 3
    uint8_t moved;          // which of the two: 1 the light, 2 the heavy
};

const PriorityCase kPriorityCases[] = {
    {"moving up in priority takes the heaviest client first", 2, 2},
    {"moving between equal priorities takes the lightest first", 3, 1},
    {"moving down in priority takes the lightest client first", 6, 1},
};

TEST_F(ClientMovesTest, WhichOfTwoFittingClientsMovesFollowsThePriorityStep) {
    for (const PriorityCase& k : kPriorityCases) {
        SCOPED_TRACE(k.rule);
        fresh();
        path(IF_TYPE_5G_2, "ath22", k.from_priority);
        hc_client* light = client(1, IF_TYPE_5G_2);
        hc_client* heavy = client(2, IF_TYPE_5G_2);
        light->hc.bytes = 1000;
        heavy->hc.bytes = 3000;
        for (hc_client* c : {heavy, light}) {
            c->flags = HC_FLAG_ASSOC_NEWLY;
            c->best_path = IF_TYPE_5G;
            c->magic = g_hc_magic;
        }
        path_selection_update_uplink_hc_table_v2(&conf, &conf.bridges[0], &hc_paths[IF_TYPE_5G], hc_paths, 0);
        EXPECT_EQ(k.moved == 1, on(light, IF_TYPE_5G));
        EXPECT_EQ(k.moved == 2, on(heavy, IF_TYPE_5G));
    }
}

TEST_F(ClientMovesTest, ADownedPathsClientsFollowTheEmergencyChoiceOrTheTableIsFlushed) {
    g_lynd_dgb_lvl = LYND_LVL_ERR;
    hc_client* c = client(1, IF_TYPE_2G);
    hc_client* nameless = client(2, IF_TYPE_2G, 99);  // its access port has no name: it stays
    hc_paths[IF_TYPE_2G].state = PATH_UNLINK;
    path_selection_pre_update_uplink_path_for_hc_v2(&conf.bridges[0], hc_paths, IF_TYPE_5G);
    EXPECT_TRUE(on(c, IF_TYPE_5G));
    EXPECT_TRUE(on(nameless, IF_TYPE_2G));
    EXPECT_TRUE(host.logged("] if_indextoname(hc->src_port:99, ifname:) == NULL!"));
    EXPECT_EQ(1u, bridge.count_calls("bridgeSetHCTableEntries br-lan " + mac_of(1) + " " + mac_of(1) + " ath1 ath12"));
    g_lynd_dgb_lvl = LYND_LVL_WARN;
    path_selection_pre_update_uplink_path_for_hc_v2(&conf.bridges[0], hc_paths, PATH_NONE);
    EXPECT_TRUE(host.logged("] not find best path"));
    EXPECT_EQ(1u, bridge.count_calls("bridgeFlushHCTable br-lan"));
}

}  // namespace

namespace {

// "A moved client's bridge entry points at the node's best path; its record
// joins its own best's list" (the next sync files it under the entry). A
// pinned client is sent where it is pinned.
TEST_F(ClientMovesTest, TheEntryGoesByTheNodesBestUnlessTheClientIsPinned) {
    for (bool pinned : {false, true}) {
        fresh();
        path(IF_TYPE_5G_2, "ath22", 3);
        hc_paths[IF_TYPE_5G_2].quota = 6000;
        hc_paths[IF_TYPE_5G_2].rate = 400;
        hc_client* c = client(1, IF_TYPE_2G);
        c->hc.bytes = 64000;
        conf.clients = conf_client_rules{};
        if (pinned) {
            conf.clients.n = 1;
            std::memcpy(conf.clients.rules[0].mac, c->hc.mac, 6);
            conf.clients.rules[0].pin = IF_TYPE_5G_2;
        }
        for (int i = 0; i < 3; i++)
            run(c, IF_TYPE_5G_2);  // its own best is 5g_2; the node's is 5g
        std::string to = pinned ? "ath22" : "ath12";
        EXPECT_EQ(std::vector<std::string>{"bridgeSetHCTableEntries br-lan " + mac_of(1) + " " + mac_of(1) + " ath1 " + to},
                  bridge.calls_matching("bridgeSetHCTableEntries"))
            << pinned;
        EXPECT_TRUE(on(c, IF_TYPE_5G_2)) << pinned;
    }
    conf.clients = conf_client_rules{};
}

}  // namespace
