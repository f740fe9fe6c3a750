// The daemon's last decisions, for an operator asking why: which client or
// path changed, from what to what, and the rule that made it.
#pragma once
#include <cstdint>

#include "core/types.h"

constexpr int DECISION_RING_SIZE = 256;
constexpr int DECISION_SUBJECT_LEN = 18;  // a MAC as text and its terminator

enum decision_kind : uint8_t {
    DECISION_CLIENT_MOVE = 0,
    DECISION_PATH_STATE = 1,
    DECISION_BCAST_PORT = 2,
    DECISION_PREFERRED_PORT = 3,
    DECISION_CLIENT_HELD = 4,  // a move the flap guard did not make
    DECISION_KINDS = 5,
};
extern const char* const decision_kind_names[DECISION_KINDS];

struct decision {
    int64_t at_ms;  // monotonic
    uint32_t seq;   // 1 for the first decision of the process
    uint8_t kind;
    char subject[DECISION_SUBJECT_LEN];
    char from[LYND_NAME_LEN + 2];  // a path or port, or a state name
    char to[LYND_NAME_LEN + 2];
    const char* reason;  // static text
};

struct decision_ring {
    decision entries[DECISION_RING_SIZE];
    uint32_t next_seq;
    bool log_lines;  // each decision is also a log line
};
extern decision_ring g_decisions;
void decision_ring_reset();
void decision_ring_log_lines(bool on);

// Called with each decision as it is made; none unless a tool asks.
using decision_observer = void (*)(const decision& d);
void decision_ring_observe(decision_observer fn);

// Texts longer than their field are cut, always terminated.
void decision_record(uint8_t kind, const char* subject, const char* from, const char* to, const char* reason);
// Records a port change of subject given by interface index (0 for none);
// nothing when the index stayed.
void decision_record_port(uint8_t kind, const char* subject, uint32_t before, uint32_t after, const char* reason);
// Decisions held, at most DECISION_RING_SIZE.
int decision_count();
// The k-th oldest decision held (0 the oldest), or null.
const decision* decision_at(int k);

// Monotonic milliseconds, from the host seam.
int64_t lynd_monotonic_ms();
