#include "core/counters.h"

lynd_counters g_counters;

const char* const move_reason_texts[MOVE_REASON_COUNT] = {
    "better path", "path overloaded", "newly associated", "path weak", "path abnormal", "path unlinked",
};

void lynd_counters_reset() { g_counters = lynd_counters{}; }

void lynd_count_move(uint8_t reason) {
    g_counters.moves++;
    if (reason >= MOVE_REASON_COUNT)
        return;
    g_counters.moves_by_reason[reason]++;
    if (move_reason_is_evacuation(reason))
        g_counters.evacuations++;
}

void lynd_count_state_change(uint8_t state) {
    if (state < COUNTER_STATES)
        g_counters.state_changes[state]++;
}

int lynd_count_tool_run(int rc) {
    if (rc < 0)
        g_counters.tool_run_failures++;
    return rc;
}

void lynd_count_event(uint32_t type) {
    if (type < COUNTER_EVENT_TYPES)
        g_counters.events[type]++;
}
