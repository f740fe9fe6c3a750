// Pinned and excluded clients, from the file to the moves: bad entries are
// named in a WARN, an excluded client is never written, a pinned one
// follows its pin while that path is live and is evacuated when it is not.
#include "config/config.h"
#include "config/config_steering.h"
#include "modules/path_selection/best_path.h"
#include "modules/path_selection/client_moves.h"
#include "modules/path_selection/client_rules.h"
#include "modules/path_selection/explain_records.h"
#include "modules/path_selection/path_state.h"
#include "ps_fixture.h"

namespace {

class ClientRulesTest : public PathSelectionTest {
protected:
    void SetUp() override {
        PathSelectionTest::SetUp();
        g_lynd_dgb_lvl = 2;
        for (uint32_t t : {IF_TYPE_2G, IF_TYPE_5G}) {
            hc_paths[t].quota = 6000;
            hc_paths[t].rate = 400;
        }
    }
    void load(const std::string& text) {
        lynd_config parsed{};
        ASSERT_EQ(config_parse_result::OK, config_parse(&parsed, text.data(), text.size()));
        conf.clients = parsed.clients;
        conf.param.flap_guard = parsed.param.flap_guard;
    }
    const conf_client_rule* rule(uint8_t last) {
        uint8_t mac[6] = {0x10, 0, 0, 0, 0, last};
        return conf_client_rule_find(conf.clients, mac);
    }
    void steer(hc_client* c, uint8_t best) {
        c->flags = HC_FLAG_ASSOC_NEWLY;
        c->best_path = best;
        c->magic = g_hc_magic;
        path_selection_update_uplink_hc_table_v2(&conf, &conf.bridges[0], &hc_paths[best], hc_paths, 0);
    }
};

TEST_F(ClientRulesTest, TheFileNamesEachBadMemberAndKeepsTheGoodOnes) {
    load(R"({"param": {"flap_guard": {"min_dwell": 120, "moves_per_hour": 99, "return_window": "x",
                                      "return_hold": 600, "bogus": 1}},
             "clients": [{"mac": "10:00:00:00:00:01", "pin": "5g"}, {"mac": "10:00:00:00:00:02", "exclude": true},
                         {"mac": "10:00:00:00:00:03", "pin": "7g"}, {"mac": "10:00:00:00:00"},
                         {"mac": "10:00:00:00:00:01", "exclude": true},
                         {"mac": "10:00:00:00:00:04", "pin": "2.4g", "exclude": true}, 5]})");
    EXPECT_EQ(120000u, conf.param.flap_guard.min_dwell_ms);
    EXPECT_EQ(0, conf.param.flap_guard.moves_per_hour);
    EXPECT_EQ(600000u, conf.param.flap_guard.return_hold_ms);
    EXPECT_TRUE(host.logged("] flap_guard.moves_per_hour = 99 is outside 0..32, ignored"));
    EXPECT_TRUE(host.logged("] flap_guard.return_window is not a whole number, ignored"));
    EXPECT_TRUE(host.logged("] flap_guard.bogus is not a known member, ignored"));
    EXPECT_TRUE(host.logged("] flap_guard.return_window and flap_guard.return_hold work only together"));
    EXPECT_TRUE(host.logged("] clients[2].pin is not one of ethernet, 2.4g, 5g, 5g_2, 6g: not pinned"));
    EXPECT_TRUE(host.logged("] clients[3].mac is missing or not xx:xx:xx:xx:xx:xx, entry ignored"));
    EXPECT_TRUE(host.logged("] clients[4] repeats a MAC, entry ignored"));
    EXPECT_TRUE(host.logged("] clients[5] is both pinned and excluded: excluded"));
    EXPECT_TRUE(host.logged("] clients[6].mac is missing"));
    ASSERT_EQ(3u, conf.clients.n);
    EXPECT_EQ(IF_TYPE_5G, rule(1)->pin);
    EXPECT_TRUE(rule(2)->exclude);
    EXPECT_TRUE(rule(4)->exclude);
    EXPECT_EQ(IF_TYPE_MAX, rule(4)->pin);
    EXPECT_EQ(nullptr, rule(3));
}

TEST_F(ClientRulesTest, RulesAreFoundWhateverTheirOrderInTheFile) {
    std::string list;
    for (int i = 40; i > 0; i -= 3)
        list += (list.empty() ? "" : ", ") + std::string(R"({"mac": ")") + mac_of(static_cast<uint8_t>(i)) +
                R"(", "exclude": true})";
    load(R"({"clients": [)" + list + "]}");
    ASSERT_EQ(14u, conf.clients.n);
    for (int i = 0; i <= 41; i++)
        EXPECT_EQ(i % 3 == 1, rule(static_cast<uint8_t>(i)) != nullptr) << i;
}

TEST_F(ClientRulesTest, WithoutTheKeysNothingIsPinnedOrExcluded) {
    load(R"({"param": {}})");
    EXPECT_EQ(0u, conf.clients.n);
    EXPECT_FALSE(flap_guard_on(conf.param.flap_guard));
    EXPECT_EQ(0u, host.count_logged("<LYND_WARN>["));
}

TEST_F(ClientRulesTest, AnExcludedClientIsNeverWrittenEvenWhenItsPathGoesDown) {
    load(R"({"clients": [{"mac": "10:00:00:00:00:01", "exclude": true}]})");
    hc_client* c = client(1, IF_TYPE_2G);
    steer(c, IF_TYPE_5G);
    EXPECT_EQ(OUTCOME_EXCLUDED, explain_of(c).outcome);
    hc_paths[IF_TYPE_2G].state = PATH_ABNORMAL;
    path_selection_pre_update_weak_abnormal_path(&conf.bridges[0], hc_paths);
    hc_paths[IF_TYPE_2G].state = PATH_UNLINK;
    path_selection_pre_update_uplink_path_for_hc_v2(&conf.bridges[0], hc_paths, IF_TYPE_5G);
    EXPECT_TRUE(on(c, IF_TYPE_2G));
    EXPECT_EQ(0u, bridge.count_calls("bridgeSetHCTableEntries"));
}

TEST_F(ClientRulesTest, APinnedClientStaysOnItsLivePathAndIsEvacuatedWhenItGoesDown) {
    load(R"({"clients": [{"mac": "10:00:00:00:00:01", "pin": "5g"}]})");
    hc_client* c = client(1, IF_TYPE_5G);
    hc_paths[IF_TYPE_5G].quota = 1000;  // 2.4G ranks first by far
    hc_paths[IF_TYPE_5G].overload = 0;
    (void)path_selection_find_best_path_v2(hc_paths);
    EXPECT_EQ(IF_TYPE_2G, explain_of(c).ranked);
    EXPECT_EQ(IF_TYPE_5G, c->best_path);
    EXPECT_EQ(IF_TYPE_5G, explain_of(c).pinned);
    hc_paths[IF_TYPE_5G].state = PATH_WEAKLINK;  // weak but live: it stays
    path_selection_pre_update_weak_abnormal_path(&conf.bridges[0], hc_paths);
    EXPECT_TRUE(on(c, IF_TYPE_5G));
    hc_paths[IF_TYPE_5G].state = PATH_UNLINK;  // down: like any other
    EXPECT_EQ(PATH_NONE, client_pinned_slot(*c));
    path_selection_pre_update_uplink_path_for_hc_v2(&conf.bridges[0], hc_paths, IF_TYPE_2G);
    EXPECT_TRUE(on(c, IF_TYPE_2G));
    hc_paths[IF_TYPE_5G].state = PATH_NORMAL;  // back: the mover takes it home
    steer(c, client_pinned_slot(*c));
    EXPECT_TRUE(on(c, IF_TYPE_5G));
}

}  // namespace
