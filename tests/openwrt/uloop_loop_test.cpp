// The loop seam on the real uloop: a SIGTERM that lands while one run tears
// down and the next starts (a record call's restart) still ends the daemon.
#include <gtest/gtest.h>

#include <csignal>
#include <ctime>

#include "targets/openwrt/uloop_loop.h"

namespace {

lynd::UloopLoop* g_loop = nullptr;

void end_loop(lynd::LoopTimer*) { g_loop->end(); }

int64_t run_ms(lynd::UloopLoop& loop, lynd::LoopTimer* guard) {
    guard->cb = end_loop;
    (void)loop.timer_set(guard, 3000);  // a loop that does not end on its own
    int64_t start = loop.now_ms();
    loop.run();
    return loop.now_ms() - start;
}

TEST(UloopLoop, ASignalBetweenTwoRunsEndsTheSecondAtOnce) {
    lynd::UloopLoop loop;
    g_loop = &loop;
    lynd::LoopTimer quick{}, guard{};
    ASSERT_EQ(0, loop.init());
    quick.cb = end_loop;
    (void)loop.timer_set(&quick, 0);  // as a record call ends the run
    EXPECT_LT(run_ms(loop, &guard), 1000);
    (void)loop.timer_cancel(&guard);
    ASSERT_EQ(0, std::raise(SIGTERM));  // during the tear-down, uloop's handler still in
    loop.done();
    ASSERT_EQ(0, loop.init());
    EXPECT_LT(run_ms(loop, &guard), 1000);
    (void)loop.timer_cancel(&guard);

    // A run with no signal before it waits for its own end.
    lynd::LoopTimer later{};
    later.cb = end_loop;
    (void)loop.timer_set(&later, 200);
    EXPECT_GE(run_ms(loop, &guard), 150);
    loop.done();
    g_loop = nullptr;
}

}  // namespace
