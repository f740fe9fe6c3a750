#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "sim/node/sim_loop.h"

namespace {

std::vector<std::string> g_fired;
lynd::SimLoop* g_loop;

struct Named {
    lynd::LoopTimer t;  // first: the timer is the record
    const char* name;
    int rearm_ms;
};

void fired(lynd::LoopTimer* t) {
    auto* n = reinterpret_cast<Named*>(t);
    g_fired.push_back(std::string(n->name) + "@" + std::to_string(g_loop->now_ms()));
    if (n->rearm_ms > 0)
        g_loop->timer_set(t, n->rearm_ms);
}

class SimLoopTest : public ::testing::Test {
protected:
    void SetUp() override {
        g_fired.clear();
        g_loop = &loop;
    }
    Named make(const char* name, int rearm = 0) { return Named{{fired}, name, rearm}; }
    lynd::SimLoop loop;
};

TEST_F(SimLoopTest, TimersFireInTimeOrderAndTiesInArmingOrder) {
    Named a = make("a"), b = make("b"), c = make("c");
    loop.timer_set(&a.t, 300);
    loop.timer_set(&b.t, 100);
    loop.timer_set(&c.t, 300);
    loop.advance(1000);
    EXPECT_EQ((std::vector<std::string>{"b@100", "a@300", "c@300"}), g_fired);
    EXPECT_EQ(1000, loop.now_ms());
}

TEST_F(SimLoopTest, RearmingMovesATimerAndCancelStopsIt) {
    Named a = make("a"), b = make("b");
    loop.timer_set(&a.t, 100);
    loop.timer_set(&b.t, 200);
    loop.timer_set(&a.t, 500);  // re-arming replaces the earlier expiry
    EXPECT_EQ(500, loop.timer_remaining(&a.t));
    EXPECT_EQ(0, loop.timer_cancel(&b.t));
    EXPECT_EQ(-1, loop.timer_cancel(&b.t));
    EXPECT_EQ(-1, loop.timer_remaining(&b.t));
    loop.advance(1000);
    EXPECT_EQ((std::vector<std::string>{"a@500"}), g_fired);
    EXPECT_FALSE(a.t.pending);
}

TEST_F(SimLoopTest, PeriodicTimerRunsUntilTheStopTime) {
    Named p = make("p", 2000);
    loop.timer_set(&p.t, 2000);
    loop.set_stop_time(7000);
    loop.run();
    EXPECT_EQ((std::vector<std::string>{"p@2000", "p@4000", "p@6000"}), g_fired);
    EXPECT_EQ(7000, loop.now_ms());
    EXPECT_TRUE(p.t.pending);
    loop.done();
    EXPECT_FALSE(p.t.pending);
}

// A handler may arm a timer due at once and cancel one due later; both take
// effect within the same run.
Named* g_armed;
Named* g_cancelled;
void arm_and_cancel(lynd::LoopTimer*) {
    g_fired.push_back("x@" + std::to_string(g_loop->now_ms()));
    g_loop->timer_set(&g_armed->t, 0);
    g_loop->timer_cancel(&g_cancelled->t);
}

TEST_F(SimLoopTest, HandlersMayArmAndCancelOtherTimers) {
    Named now = make("now"), later = make("later");
    lynd::LoopTimer x{arm_and_cancel};
    g_armed = &now;
    g_cancelled = &later;
    loop.timer_set(&x, 100);
    loop.timer_set(&later.t, 100);  // same expiry, armed after x
    loop.advance(500);
    EXPECT_EQ((std::vector<std::string>{"x@100", "now@100"}), g_fired);
    EXPECT_FALSE(later.t.pending);
}

void ender(lynd::LoopTimer*) { g_loop->end(); }

TEST_F(SimLoopTest, EndStopsTheRunAtOnce) {
    Named later = make("later");
    lynd::LoopTimer stop{ender};
    loop.timer_set(&stop, 50);
    loop.timer_set(&later.t, 60);
    loop.run();
    EXPECT_TRUE(g_fired.empty());
    EXPECT_EQ(50, loop.now_ms());
}

// A daemon that restarts within the process drops its own timers; the
// node's timeline and clients go on at their times.
TEST_F(SimLoopTest, TheNodesTimersOutliveTheEndOfADaemonsRun) {
    Named daemon = make("daemon"), node = make("node");
    lynd::LoopTimer stop{ender};
    loop.keep(&node.t);
    loop.timer_set(&stop, 50);
    loop.timer_set(&daemon.t, 60);
    loop.timer_set(&node.t, 70);
    loop.run();
    loop.done();
    EXPECT_FALSE(daemon.t.pending);
    loop.run();
    EXPECT_EQ((std::vector<std::string>{"node@70"}), g_fired);
}

}  // namespace
