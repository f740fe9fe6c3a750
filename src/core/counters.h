// What the daemon did since it started, as plain 64-bit counts for a
// dashboard: they only grow, and only a new process starts them again.
#pragma once
#include <cstdint>

// Why a client was moved; each reason has its own count.
enum move_reason : uint8_t {
    MOVE_BETTER_PATH = 0,
    MOVE_PATH_OVERLOADED,
    MOVE_NEWLY_ASSOCIATED,
    MOVE_PATH_WEAK,
    MOVE_PATH_ABNORMAL,
    MOVE_PATH_UNLINKED,
    MOVE_REASON_COUNT,
};
// The reason texts as the decisions list them, by move_reason.
extern const char* const move_reason_texts[MOVE_REASON_COUNT];
// An evacuation leaves a path that is weak, abnormal or down.
inline bool move_reason_is_evacuation(uint8_t r) { return r >= MOVE_PATH_WEAK && r < MOVE_REASON_COUNT; }

constexpr int COUNTER_STATES = 6;  // path states, UNINITED to ABNORMAL
constexpr int COUNTER_EVENT_TYPES = 6;

struct lynd_counters {
    uint64_t moves;
    uint64_t moves_by_reason[MOVE_REASON_COUNT];
    uint64_t moves_held;  // by the flap guard
    uint64_t evacuations;
    uint64_t emergency_choices;
    uint64_t state_changes[COUNTER_STATES];  // by the state entered
    uint64_t bus_reconnects;
    uint64_t bridge_call_failures;
    uint64_t tool_run_failures;
    uint64_t events[COUNTER_EVENT_TYPES];  // by event type
    uint64_t malformed_datagrams;
    uint64_t foreign_datagrams;      // netlink datagrams not from the kernel, dropped
    uint64_t netlink_rebuild_failures;
    uint64_t console_lines_dropped;  // the console would have blocked
    uint64_t state_file_failures;    // writes of the state files in /tmp that failed
    uint64_t client_pool_full;       // clients refused a record: all were taken
};
extern lynd_counters g_counters;
void lynd_counters_reset();

void lynd_count_move(uint8_t reason);
void lynd_count_state_change(uint8_t state);
void lynd_count_event(uint32_t type);
// A tool run's result, counted as a failure when it could not run.
int lynd_count_tool_run(int rc);
