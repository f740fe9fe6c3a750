#include <string>
#include <vector>

#include "config/lynd_config.h"
#include "event/event_dispatch.h"
#include "event/event_hub.h"
#include "sim_fixture.h"

namespace {

struct Heard {
    std::string who;
    uint32_t type;
    void* data;
};
std::vector<Heard> g_heard;

struct NamedListener {
    event_listener l;
    const char* name;
};

void record(lynd_config*, event_listener* l, uint32_t type, void* data) {
    g_heard.push_back({reinterpret_cast<NamedListener*>(l)->name, type, data});
}

class EventHubTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        g_heard.clear();
        conf = lynd_config{};
        event_init(&conf.ev);
    }
    void TearDown() override {
        event_free(&conf.ev);
        SimNodeTest::TearDown();
    }
    lynd_config conf;
    NamedListener la{{{nullptr, nullptr}, record}, "la"};
    NamedListener ps{{{nullptr, nullptr}, record}, "ps"};
};

TEST_F(EventHubTest, LatestListenerHearsFirstWithTheContext) {
    event_add_listener(&conf.ev, &la.l);
    event_add_listener(&conf.ev, &ps.l);
    uint32_t need_reconfig = 1;
    event_run_cb(&conf.ev, EVENT_TS, &need_reconfig);
    ASSERT_EQ(2u, g_heard.size());
    EXPECT_EQ("ps", g_heard[0].who);
    EXPECT_EQ("la", g_heard[1].who);
    EXPECT_EQ(&need_reconfig, g_heard[1].data);
    EXPECT_EQ(&conf, event_hub_config(&conf.ev));
}

lynd::LoopTimer g_timer;
void timer_fired(lynd::LoopTimer*) { g_heard.push_back({"timer", 99, nullptr}); }

TEST_F(EventHubTest, StartupComesOnceWithNoPayloadBeforeAnyTimer) {
    event_add_listener(&conf.ev, &la.l);
    event_add_listener(&conf.ev, &ps.l);
    g_timer.cb = timer_fired;
    loop.timer_set(&g_timer, 0);
    loop.set_stop_time(1000);
    event_loop(&conf.ev);
    ASSERT_EQ(3u, g_heard.size());
    EXPECT_EQ(EVENT_STARTUP, g_heard[0].type);
    EXPECT_EQ(nullptr, g_heard[0].data);
    EXPECT_EQ(EVENT_STARTUP, g_heard[1].type);
    EXPECT_EQ("timer", g_heard[2].who);
}

NamedListener g_inner{{{nullptr, nullptr}, record}, "inner"};
void raise_nested(lynd_config*, event_listener*, uint32_t type, void*) {
    g_heard.push_back({"outer", type, nullptr});
    if (type == EVENT_STARTUP)
        event_run_cb(l_ev, EVENT_CONFIGURE, nullptr);
}

TEST_F(EventHubTest, NestedDeliveryReachesEveryoneBeforeTheRaiserReturns) {
    NamedListener outer{{{nullptr, nullptr}, raise_nested}, "outer"};
    event_add_listener(&conf.ev, &g_inner.l);
    event_add_listener(&conf.ev, &outer.l);
    l_ev = &conf.ev;
    event_run_cb(&conf.ev, EVENT_STARTUP, nullptr);
    l_ev = nullptr;
    std::vector<std::string> order;
    for (auto& h : g_heard)
        order.push_back(h.who + ":" + std::to_string(h.type));
    EXPECT_EQ((std::vector<std::string>{"outer:0", "outer:1", "inner:1", "inner:0"}), order);
}

TEST_F(EventHubTest, RemovedListenerHearsNothingMore) {
    event_add_listener(&conf.ev, &la.l);
    event_del_listener(&la.l);
    event_del_listener(&la.l);  // twice is harmless
    event_run_cb(&conf.ev, EVENT_DEBUG, nullptr);
    EXPECT_TRUE(g_heard.empty());
}

}  // namespace
