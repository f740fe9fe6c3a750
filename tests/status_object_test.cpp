#include <json-c/json.h>
#include <malloc.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <iterator>

#include "bridge/steering_gate.h"
#include "core/decision_ring.h"
#include "core/shadow.h"
#include "daemon/restart_request.h"
#include "daemon/status_object.h"
#include "daemon/replies/status_replies.h"
#include "event/ubus_receive.h"
#include "modules/path_selection/best_path.h"
#include "modules/path_selection/client_log.h"
#include "modules/path_selection/client_moves.h"
#include "modules/path_selection/path_insight.h"
#include "ps_fixture.h"
#include "temp_dir.h"

namespace {

// A reply decoded, and a value read from it by a dotted path.
class Reply {
public:
    explicit Reply(const std::string& text) : doc_(json_tokener_parse(text.c_str())) {}
    ~Reply() { json_object_put(doc_); }
    json_object* at(const std::string& path) const {
        json_object* cur = doc_;
        size_t pos = 0;
        while (cur != nullptr && pos < path.size()) {
            size_t dot = path.find('.', pos);
            std::string key = path.substr(pos, dot == std::string::npos ? std::string::npos : dot - pos);
            if (json_object_is_type(cur, json_type_array))
                cur = json_object_array_get_idx(cur, std::stoul(key));
            else if (!json_object_object_get_ex(cur, key.c_str(), &cur))
                cur = nullptr;
            pos = dot == std::string::npos ? path.size() : dot + 1;
        }
        return cur;
    }
    std::string str(const std::string& path) const {
        json_object* o = at(path);
        return o != nullptr ? json_object_get_string(o) : "(none)";
    }
    int64_t num(const std::string& path) const {
        json_object* o = at(path);
        EXPECT_TRUE(o != nullptr && json_object_is_type(o, json_type_int)) << path;
        return o != nullptr ? json_object_get_int64(o) : -1;
    }
    bool flag(const std::string& path) const {
        json_object* o = at(path);
        EXPECT_TRUE(o != nullptr && json_object_is_type(o, json_type_boolean)) << path;
        return o != nullptr && json_object_get_boolean(o);
    }
    size_t size(const std::string& path) const {
        json_object* o = at(path);
        return o != nullptr && json_object_is_type(o, json_type_array) ? json_object_array_length(o) : 0;
    }

private:
    json_object* doc_;
};

class StatusObjectTest : public PathSelectionTest {
protected:
    void SetUp() override {
        PathSelectionTest::SetUp();
        decision_ring_reset();
        lynd_shadow_reset();
        ASSERT_EQ(0, bus.connect());
        lynd_status_object_start(&conf, 0);
        hc_paths[IF_TYPE_2G].rate = 100;
        hc_paths[IF_TYPE_5G].rate = 400;
        conf.param.delta_threshold = 10;
        conf.param.high_threshold = 70;
    }
    void TearDown() override {
        lynd_shadow_reset();
        PathSelectionTest::TearDown();
    }
    std::string call(const std::string& method, const std::string& args = "", int want = lynd::BUS_STATUS_OK) {
        std::string reply;
        EXPECT_EQ(want, bus.call("lynd", method, args, &reply)) << method << " " << args;
        return reply;
    }
    // One rating of every client and the moves that follow, as a period run ends.
    void rate_and_move(int has_busy = 0) {
        // The node's own record is not here, so no node best: 5G stands in.
        hc_path* best = path_selection_find_best_path_v2(hc_paths);
        EXPECT_EQ(nullptr, best);
        path_selection_update_uplink_hc_table_v2(&conf, &conf.bridges[0], &hc_paths[IF_TYPE_5G], hc_paths, has_busy);
    }
    static std::string mac_arg(uint8_t last) { return "{\"mac\":\"" + mac_of(last) + "\"}"; }
};

TEST_F(StatusObjectTest, PathsAndClientsDescribeTheRecordsAsTheyStand) {
    hc_paths[IF_TYPE_5G].util = 35;
    hc_paths[IF_TYPE_5G].quota = 6500;
    hc_paths[IF_TYPE_5G].overload = 1;
    g_path_insight[IF_TYPE_5G].rating.ma_rssi = -61;
    g_path_insight[IF_TYPE_5G].rating.ma_snr = 34;
    loop.advance(10 * 60 * 1000);
    hc_paths[IF_TYPE_5G].state = PATH_WEAKLINK;
    path_insight_state_changed(hc_paths[IF_TYPE_5G], PATH_NORMAL, "weak");
    loop.advance(65 * 60 * 1000);  // the first change leaves the hour window here
    hc_paths[IF_TYPE_5G].state = PATH_NORMAL;
    path_insight_state_changed(hc_paths[IF_TYPE_5G], PATH_WEAKLINK, "normal");
    hc_paths[IF_TYPE_5G].state = PATH_ABNORMAL;
    path_insight_state_changed(hc_paths[IF_TYPE_5G], PATH_NORMAL, "abnormal");
    loop.advance(90 * 1000);
    hc_client* a = client(1, IF_TYPE_5G);
    a->hc.bytes = 64000000;
    client(2, IF_TYPE_2G);
    client_log_move(*a, IF_TYPE_2G, IF_TYPE_5G, MOVE_BETTER_PATH);

    Reply paths(call("paths"));
    ASSERT_EQ(2u, paths.size("paths"));
    EXPECT_EQ("ath12", paths.str("paths.1.name"));
    EXPECT_EQ("5g", paths.str("paths.1.type"));
    EXPECT_EQ("ABNORMAL", paths.str("paths.1.state"));
    EXPECT_EQ(90, paths.num("paths.1.state_seconds"));
    EXPECT_EQ(2, paths.num("paths.1.changes_last_hour"));
    EXPECT_EQ(-61, paths.num("paths.1.ma_rssi"));
    EXPECT_EQ(34, paths.num("paths.1.ma_snr"));
    EXPECT_EQ(400, paths.num("paths.1.rate"));
    EXPECT_EQ(35, paths.num("paths.1.util"));
    EXPECT_EQ(6500, paths.num("paths.1.quota"));
    EXPECT_TRUE(paths.flag("paths.1.overload"));
    EXPECT_EQ(1, paths.num("paths.1.clients"));
    EXPECT_EQ(0, paths.num("paths.0.changes_last_hour"));

    Reply clients(call("clients"));
    ASSERT_EQ(2u, clients.size("clients"));
    EXPECT_EQ(mac_of(2), clients.str("clients.0.mac"));
    EXPECT_EQ("ath02", clients.str("clients.0.path"));
    EXPECT_EQ(0, clients.num("clients.0.moves"));
    EXPECT_EQ(nullptr, clients.at("clients.0.last_move"));
    EXPECT_EQ(mac_of(1), clients.str("clients.1.mac"));
    EXPECT_EQ("5g", clients.str("clients.1.sta_type"));
    EXPECT_EQ(100, clients.num("clients.1.rate"));  // 64 MB over the 10 s period
    EXPECT_EQ(1, clients.num("clients.1.moves"));
    EXPECT_EQ(75 * 60 + 90, clients.num("clients.1.last_move"));
    EXPECT_EQ("ath02", clients.str("clients.1.last_move_from"));
    EXPECT_EQ("better path", clients.str("clients.1.last_move_reason"));
}

TEST_F(StatusObjectTest, StatusNamesModesFlagsAndTheBridgesPorts) {
    loop.advance(42000);
    conf.pathsel_mode = 1;
    g_lynd_dgb_lvl = 4;
    Reply r(call("status"));
    EXPECT_EQ("RE", r.str("work_mode"));
    EXPECT_EQ(42, r.num("uptime"));
    EXPECT_EQ(4, r.num("log_level"));
    EXPECT_EQ(1, r.num("pathsel_mode"));
    EXPECT_FALSE(r.flag("shadow"));
    EXPECT_NE("", r.str("version"));
    EXPECT_EQ("br-lan", r.str("bridges.0.name"));
    EXPECT_TRUE(r.flag("bridges.0.loop_avoidance"));
    EXPECT_TRUE(r.flag("bridges.0.hc"));
    EXPECT_FALSE(r.flag("bridges.0.tcp_sp"));
}

TEST_F(StatusObjectTest, ExplainTellsWhyAClientMovedWaitedOrWasLeft) {
    hc_paths[IF_TYPE_2G].quota = 3000;
    hc_paths[IF_TYPE_5G].quota = 6000;
    hc_client* fresh = client(1, IF_TYPE_2G);
    fresh->flags = HC_FLAG_ASSOC_NEWLY;
    hc_client* waiting = client(2, IF_TYPE_2G);
    hc_client* settled = client(3, IF_TYPE_5G);
    rate_and_move();
    ASSERT_TRUE(on(fresh, IF_TYPE_5G));

    Reply moved(call("explain", mac_arg(1)));
    EXPECT_TRUE(moved.flag("moved"));
    EXPECT_EQ("moved to its best path", moved.str("outcome"));
    EXPECT_TRUE(moved.flag("assoc_newly"));
    EXPECT_EQ("ath02", moved.str("path"));
    EXPECT_EQ("ath12", moved.str("best_path"));
    ASSERT_EQ(2u, moved.size("candidates"));
    // weight 140 for priority 3; backhaul quality = free/100 * rate * weight
    EXPECT_EQ(140, moved.num("candidates.1.weight"));
    EXPECT_EQ(60 * 400 * 140, moved.num("candidates.1.bq"));
    EXPECT_TRUE(moved.flag("candidates.1.ranked_first"));
    EXPECT_EQ("lower quality", moved.str("candidates.0.why"));

    Reply held(call("explain", mac_arg(2)));
    EXPECT_FALSE(held.flag("moved"));
    EXPECT_EQ("a better path: waiting for the idle count", held.str("outcome"));
    EXPECT_EQ(1, held.num("count"));
    EXPECT_EQ(3, held.num("count_needed"));
    EXPECT_EQ(1, waiting->idle_count);

    Reply stays(call("explain", mac_arg(3)));
    EXPECT_EQ("on its best path", stays.str("outcome"));
    (void)settled;
}

TEST_F(StatusObjectTest, ExplainTellsOfAnOverloadedPathAndTheClientsItHolds) {
    path(IF_TYPE_6G, "ath32", 2);
    hc_paths[IF_TYPE_6G].rate = 400;
    hc_paths[IF_TYPE_6G].overload = 1;
    hc_paths[IF_TYPE_5G].quota = 6000;
    client(4, IF_TYPE_6G);
    client(5, IF_TYPE_2G);
    rate_and_move(1);
    Reply busy(call("explain", mac_arg(4)));
    EXPECT_EQ("its path is overloaded: waiting for the busy count", busy.str("outcome"));
    EXPECT_EQ(1, busy.num("count"));
    EXPECT_TRUE(busy.flag("candidates.2.overloaded"));
    EXPECT_EQ("ath32", busy.str("candidates.2.path"));
    Reply idle(call("explain", mac_arg(5)));
    EXPECT_EQ("not busy: clients wait on an overloaded path, or there is no best path", idle.str("outcome"));
}

TEST_F(StatusObjectTest, ExplainOfAPathGivesTheFiguresAndThresholdsOfItsLastRating) {
    hc_path& p = hc_paths[IF_TYPE_5G];
    p.weaklink_threshold_rssi = -85;
    p.weaklink_threshold_rate = 100;
    path_rating& g = g_path_insight[IF_TYPE_5G].rating;
    g = path_rating{};
    g.rule = RULE_WEAK;
    g.state_before = PATH_NORMAL;
    g.state_after = PATH_WEAKLINK;
    g.ma_rssi = -90;
    g.weak = true;
    Reply r(call("explain", "{\"path\":\"ath12\"}"));
    EXPECT_EQ(rating_rule_texts[RULE_WEAK], r.str("rule"));
    EXPECT_EQ("WEAKLINK", r.str("state_after"));
    EXPECT_EQ(-90, r.num("ma_rssi"));
    EXPECT_EQ(-85, r.num("thresholds.weaklink_rssi"));
    EXPECT_TRUE(r.flag("below.weaklink"));
    EXPECT_FALSE(r.flag("below.no_traffic"));
    (void)call("explain", "{\"path\":\"ath22\"}", lynd::BUS_STATUS_NOT_FOUND);
}

TEST_F(StatusObjectTest, BadArgumentsAreRefusedAndChangeNothing) {
    client(1, IF_TYPE_2G);
    rate_and_move();
    int decisions = decision_count();
    const char* invalid[] = {"{\"mac\":\"10:00:00:00:00\"}", "{\"mac\":\"10:00:00:00:00:011\"}",
                             "{\"mac\":5}", "{\"mac\":\"10:00:00:00:00:zz\"}", "{\"mac\":\"10:00-00:00:00:01\"}",
                             "{}", "{\"mac\":\"10:00:00:00:00:01\",\"path\":\"ath12\"}", "{\"path\":\"\"}",
                             "{\"path\":\"a-name-longer-than-15\"}", "{\"path\":true}"};
    for (const char* args : invalid)
        (void)call("explain", args, lynd::BUS_STATUS_INVALID_ARGUMENT);
    (void)call("explain", mac_arg(9), lynd::BUS_STATUS_NOT_FOUND);
    (void)call("explain", "{\"mac\":\"10-00-00-00-00-01\"}");
    (void)call("shadow", "{\"enable\":1}", lynd::BUS_STATUS_INVALID_ARGUMENT);
    (void)call("shadow", "", lynd::BUS_STATUS_INVALID_ARGUMENT);
    (void)call("nothing", "", lynd::BUS_STATUS_METHOD_NOT_FOUND);
    EXPECT_EQ(decisions, decision_count());
    EXPECT_FALSE(lynd_shadow_mode());
}

TEST_F(StatusObjectTest, AnswersAllocateNothingAndLeaveTheAlgorithmAlone) {
    hc_paths[IF_TYPE_5G].quota = 6000;
    for (uint8_t i = 1; i <= 40; i++)
        client(i, i % 2 ? IF_TYPE_2G : IF_TYPE_5G);
    rate_and_move();
    uint8_t magic = g_hc_magic;
    uint32_t rand_state = g_hc_rand_state;
    // A reply that keeps nothing, so only the daemon's side is weighed.
    struct NullReply : lynd::BusReply {
        void open_table(const char*) override {}
        void open_array(const char*) override {}
        void close() override {}
        void put_string(const char*, const char*) override {}
        void put_int(const char*, int64_t) override {}
        void put_bool(const char*, bool) override {}
        void put_double(const char*, double) override {}
    } sink;
    lynd::BusAttr mac{"mac", lynd::BusType::STRING, "10:00:00:00:00:07", 0, 0};
    lynd::BusMessage explain_args{&mac, 1, false};
    lynd::BusMessage none{nullptr, 0, false};
    const lynd::BusObject* object = conf.ev.bus_object;
    ASSERT_NE(nullptr, object);
    size_t before = mallinfo2().uordblks;
    for (int i = 0; i < 1000; i++) {
        const char* methods[] = {"status", "paths", "clients", "decisions"};
        EXPECT_EQ(0, object->handler(object->ctx, methods[i % 4], none, sink));
        EXPECT_EQ(0, object->handler(object->ctx, "explain", explain_args, sink));
    }
    EXPECT_EQ(before, mallinfo2().uordblks);
    EXPECT_EQ(magic, g_hc_magic);
    EXPECT_EQ(rand_state, g_hc_rand_state);
}

TEST_F(StatusObjectTest, ShadowIsSwitchedOverTheBus) {
    lynd::steering_gate_install();
    Reply on(call("shadow", "{\"enable\":true}"));
    EXPECT_TRUE(on.flag("shadow"));
    EXPECT_TRUE(lynd_shadow_mode());
    EXPECT_TRUE(conf.shadow);
    hc_paths[IF_TYPE_5G].quota = 6000;
    client(1, IF_TYPE_2G)->flags = HC_FLAG_ASSOC_NEWLY;
    rate_and_move();
    EXPECT_EQ(0u, bridge.count_calls("bridgeSetHCTableEntries"));
    EXPECT_EQ(2u, lynd_shadow_held_count());  // the entry and its flow-cache flush
    Reply moves(call("decisions"));
    EXPECT_EQ("newly associated", moves.str("decisions.0.reason"));
    conf.bridges[0].preferred_ifindex = 12;
    (void)call("shadow", "{\"enable\":false}");
    EXPECT_FALSE(lynd_shadow_mode());
    EXPECT_EQ(0u, conf.bridges[0].preferred_ifindex);  // written again by the next run
    Reply status(call("status"));
    EXPECT_FALSE(status.flag("shadow"));
    EXPECT_EQ(2, status.num("shadow_held"));
    lynd::steering_gate_remove();
    EXPECT_EQ(&bridge, &lynd::krel());
}

TEST_F(StatusObjectTest, TheDecisionRingKeepsTheNewest256InOrder) {
    for (int i = 1; i <= 300; i++)
        decision_record(DECISION_PATH_STATE, std::to_string(i).c_str(), "a", "b", "r");
    EXPECT_EQ(DECISION_RING_SIZE, decision_count());
    EXPECT_EQ(45u, decision_at(0)->seq);
    EXPECT_STREQ("300", decision_at(255)->subject);
    EXPECT_EQ(nullptr, decision_at(256));
    Reply r(call("decisions"));
    ASSERT_EQ(256u, r.size("decisions"));
    EXPECT_EQ(45, r.num("decisions.0.seq"));
    EXPECT_EQ("300", r.str("decisions.255.subject"));
    EXPECT_EQ("path", r.str("decisions.255.kind"));
    decision_record(DECISION_CLIENT_MOVE, "a-subject-far-longer-than-its-field", "x", "y", nullptr);
    EXPECT_EQ(std::string("a-subject-far-lon"), decision_at(255)->subject);
    EXPECT_STREQ("", decision_at(255)->reason);
}

TEST_F(StatusObjectTest, TheMoveTableDropsTheLongestUntouchedClientWhenFull) {
    hc_client c{};
    for (int i = 0; i < HC_MAX_CLIENTS + 1; i++) {
        c.hc.mac[4] = static_cast<uint8_t>(i >> 8);
        c.hc.mac[5] = static_cast<uint8_t>(i);
        client_log_move(c, IF_TYPE_2G, IF_TYPE_5G, MOVE_BETTER_PATH);
        if (i == 10) {  // the first client moves again and is kept
            c.hc.mac[4] = 0;
            c.hc.mac[5] = 0;
            client_log_move(c, IF_TYPE_5G, IF_TYPE_2G, MOVE_BETTER_PATH);
        }
    }
    uint8_t first[6] = {0, 0, 0, 0, 0, 0};
    uint8_t second[6] = {0, 0, 0, 0, 0, 1};
    uint8_t last[6] = {0, 0, 0, 0, 1, 0};
    ASSERT_NE(nullptr, client_log_find(first));
    EXPECT_EQ(2u, client_log_find(first)->moves);
    EXPECT_EQ(nullptr, client_log_find(second));
    ASSERT_NE(nullptr, client_log_find(last));
    EXPECT_EQ(1u, client_log_find(last)->moves);
    for (int i = 2; i < HC_MAX_CLIENTS; i++) {
        uint8_t kept[6] = {0, 0, 0, 0, static_cast<uint8_t>(i >> 8), static_cast<uint8_t>(i)};
        ASSERT_NE(nullptr, client_log_find(kept)) << i;
    }
}

TEST_F(StatusObjectTest, TheObjectIsAddedAgainWhenTheBusComesBack) {
    EXPECT_EQ(1, bus.objects_added());
    lynd_list_init(&conf.ev.listeners);
    conf.ev.bus_retry.cb = event_ubus_retry;
    bus.set_lost_handler(event_ubus_lost, &conf.ev);
    bus.daemon_down();
    (void)call("status", "", lynd::BUS_STATUS_NOT_FOUND);
    bus.daemon_up();
    loop.advance(UBUS_RETRY_FIRST_MS);
    EXPECT_EQ(2, bus.objects_added());
    (void)call("status");
}

}  // namespace

// Started over the bus, a trace records the calls that follow and stops when told.
// The trace itself begins at the restart (record_restart_test runs it).
TEST_F(StatusObjectTest, RecordAsksForARestartOnlyWhenItsFileCanBeMade) {
    TempDir tmp;
    ASSERT_FALSE(tmp.path.empty());
    const std::string& dir = tmp.path;
    std::string path = dir + "/trace";
    (void)call("record", "{\"file\":\"relative\",\"enable\":true}", lynd::BUS_STATUS_INVALID_ARGUMENT);
    (void)call("record", "{\"file\":\"/tmp/x\"}", lynd::BUS_STATUS_INVALID_ARGUMENT);
    (void)call("record", "{\"file\":\"" + dir + "/no/trace\",\"enable\":true}",
               lynd::BUS_STATUS_UNKNOWN_ERROR);
    EXPECT_FALSE(lynd_restart_requested());
    Reply on(call("record", "{\"file\":\"" + path + "\",\"enable\":true,\"size\":100}"));
    EXPECT_TRUE(on.flag("record"));
    EXPECT_TRUE(on.flag("restart"));
    EXPECT_EQ(path, on.str("file"));
    EXPECT_EQ(16384, on.num("size"));  // the least a part holds
    EXPECT_TRUE(lynd_restart_requested());
    EXPECT_EQ(0, access(path.c_str(), F_OK));
    EXPECT_EQ(&bridge, &lynd::krel());  // nothing recorded before the restart
    Reply off(call("record", "{\"enable\":false}"));
    EXPECT_FALSE(off.flag("record"));
    EXPECT_FALSE(off.flag("restart"));
}
