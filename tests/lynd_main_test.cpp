#include <cerrno>
#include <string>
#include <vector>

#include "config/lynd_config.h"
#include "daemon/lynd_main.h"
#include "event/bridge_events.h"
#include "event/event_dispatch.h"
#include "sim_fixture.h"

namespace {

std::vector<std::string> g_trail;
lynd::SimBridge* g_bridge;
lynd::SimBus* g_bus;

void heard(lynd_config*, event_listener* l, uint32_t type, void*) {
    g_trail.push_back(std::string(lynd_module_of_listener(l)->name) + " event " + std::to_string(type));
}

void finit(lynd_module* m) {
    // What had been torn down when this module stopped.
    g_trail.push_back(std::string(m->name) + " finit after " + std::to_string(g_bridge->count_calls("bridgeStopAPS")) +
                      " stops, bus freed " + std::to_string(g_bus->free_count()) +
                      (m->list.next == nullptr ? ", unlinked" : ", linked"));
    event_del_listener(&m->listener);
    delete m;
}

lynd_module* make_module(lynd_config* conf, const char* name, uint32_t id) {
    auto* m = new lynd_module{};
    m->name = name;
    m->id = id;
    m->finit = finit;
    m->listener.cb = heard;
    event_add_listener(&conf->ev, &m->listener);
    g_trail.push_back(std::string(name) + " init");
    return m;
}

lynd_module* la_init(lynd_config* conf) { return make_module(conf, "Loop avoidance", 0); }
lynd_module* ps_init(lynd_config* conf) { return make_module(conf, "Path Selection", 1); }
lynd_module* failing_init(lynd_config*) {
    g_trail.push_back("failing init");
    return nullptr;
}

class LyndMainTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        g_trail.clear();
        g_bridge = &bridge;
        g_bus = &bus;
        loop.set_stop_time(5000);
    }
    int run(std::vector<std::string> args, const lynd_module_table& modules) {
        args.insert(args.begin(), "lynd");
        std::vector<char*> argv;
        for (auto& a : args)
            argv.push_back(&a[0]);
        argv.push_back(nullptr);
        return lynd_main_with(static_cast<int>(args.size()), argv.data(), modules);
    }
    void config(const char* enable) {
        host.set_file("/etc/lynd.json", std::string("{\"enable\": ") + enable +
                                            ", \"bridges\": {\"br-lan\": {}, \"br-guest\": {}}}");
    }
};

const lynd_module_init_fn two_inits[] = {la_init, ps_init};
const lynd_module_table two_modules = {two_inits, 2};

TEST_F(LyndMainTest, StartsInTableOrderAndStopsNewestFirstAfterTheBridges) {
    config("true");
    EXPECT_EQ(0, run({"-l", "2"}, two_modules));
    const std::vector<std::string> want = {
        "Loop avoidance init",
        "Path Selection init",
        "Path Selection event 0",
        "Loop avoidance event 0",
        "Path Selection finit after 2 stops, bus freed 0, unlinked",
        "Loop avoidance finit after 2 stops, bus freed 0, unlinked",
    };
    EXPECT_EQ(want, g_trail);
    EXPECT_EQ(1, loop.done_count());
    EXPECT_EQ(1, bus.free_count());
    EXPECT_EQ((std::vector<std::string>{"bridgeStopAPS br-lan", "bridgeStopAPS br-guest"}),
              bridge.calls_matching("bridgeStopAPS"));
    EXPECT_TRUE(host.logged("<LYND_WARN>[main, "));
    EXPECT_TRUE(host.logged("] Path Selection initialized"));
    EXPECT_EQ(nullptr, l_ev);
}

TEST_F(LyndMainTest, AModuleThatFailsIsSimplyAbsent) {
    config("true");
    const lynd_module_init_fn inits[] = {failing_init, ps_init};
    EXPECT_EQ(0, run({}, lynd_module_table{inits, 2}));
    EXPECT_EQ((std::vector<std::string>{"failing init", "Path Selection init", "Path Selection event 0",
                                        "Path Selection finit after 2 stops, bus freed 0, unlinked"}),
              g_trail);
}

TEST_F(LyndMainTest, DisabledConfigurationExitsZeroBeforeAnythingStarts) {
    for (const char* enable : {"false", "0"}) {
        config(enable);
        EXPECT_EQ(0, run({}, two_modules));
        EXPECT_TRUE(host.logged("] lynd disabled"));
    }
    // Valid JSON of another kind has no "enable" either.
    for (const char* text : {"[1, 2]", "7\n", "\"x\"", "{}"}) {
        host.set_file("/etc/lynd.json", text);
        EXPECT_EQ(0, run({}, two_modules)) << text;
        EXPECT_FALSE(host.logged("<LYND_FATAL>")) << text;
    }
    EXPECT_TRUE(g_trail.empty());
    EXPECT_EQ(0, loop.init_count());
    EXPECT_TRUE(bridge.calls().empty());
    EXPECT_TRUE(host.runs().empty());
}

TEST_F(LyndMainTest, LevelIsHandedToTheBridgeLibrary) {
    config("false");
    EXPECT_EQ(0, run({"-l", "5"}, two_modules));
    EXPECT_EQ(5, g_dgb_lvl);
    EXPECT_TRUE(host.logged("] set libkrel g_dgb_lvl=5!"));
    run({"-l", "3"}, two_modules);
    EXPECT_EQ(3, g_dgb_lvl);
    EXPECT_FALSE(host.logged("g_dgb_lvl=3!"));
}

TEST_F(LyndMainTest, UsageAndHelpExitWithoutLoading) {
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(1, run({"-x"}, two_modules));
    EXPECT_EQ(0, run({"-h"}, two_modules));
    EXPECT_EQ(0, run({"-t", "-c", "/nonexistent"}, two_modules));
    ::testing::internal::GetCapturedStderr();
    EXPECT_TRUE(g_trail.empty());
}

// A fatal start returns 1 with nothing left running, so the same process
// can start the daemon again.
TEST_F(LyndMainTest, AFatalStartEndsWithOneAndTheNextRunStartsClean) {
    EXPECT_EQ(1, run({"-c", "/nonexistent.json"}, two_modules));
    EXPECT_EQ(1u, host.count_logged("] parse config"));
    EXPECT_EQ(0, loop.init_count());
    config("true");
    host.set_nl_bind_error(HYFI_EVENT_PROTOCOL, EADDRINUSE);
    EXPECT_EQ(1, run({}, two_modules));
    EXPECT_TRUE(g_trail.empty());  // no module started
    EXPECT_EQ(1, loop.done_count());
    EXPECT_EQ(1, bus.free_count());
    EXPECT_FALSE(bus.connected());
    EXPECT_EQ(nullptr, l_ev);
    host.set_nl_bind_error(HYFI_EVENT_PROTOCOL, 0);
    EXPECT_EQ(0, run({}, two_modules));
    EXPECT_EQ(6u, g_trail.size());  // both modules start, hear the start and stop
    EXPECT_EQ(2, loop.done_count());
}

}  // namespace
