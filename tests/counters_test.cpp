// The daemon's counters: each kind counted apart, out-of-range kinds
// ignored. (On the bus, across a reconnect: bus_restart_test.)
#include <gtest/gtest.h>

#include "core/counters.h"

namespace {

TEST(Counters, MovesAreCountedByReasonAndEvacuationsApart) {
    lynd_counters_reset();
    lynd_count_move(MOVE_BETTER_PATH);
    lynd_count_move(MOVE_PATH_ABNORMAL);
    lynd_count_move(MOVE_PATH_UNLINKED);
    lynd_count_move(MOVE_REASON_COUNT);  // out of range: counted as a move only
    EXPECT_EQ(4u, g_counters.moves);
    EXPECT_EQ(2u, g_counters.evacuations);
    EXPECT_EQ(1u, g_counters.moves_by_reason[MOVE_BETTER_PATH]);
    lynd_count_state_change(COUNTER_STATES);  // out of range: ignored
    lynd_count_event(COUNTER_EVENT_TYPES);
    for (int i = 0; i < COUNTER_STATES; i++)
        EXPECT_EQ(0u, g_counters.state_changes[i] + g_counters.events[i]);
    EXPECT_EQ(-1, lynd_count_tool_run(-1));
    EXPECT_EQ(1u, g_counters.tool_run_failures);
    EXPECT_EQ(0, lynd_count_tool_run(0));
    EXPECT_EQ(1u, g_counters.tool_run_failures);
}

}  // namespace
