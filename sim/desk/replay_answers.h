// The answers of a what-if run: each question is answered by the newest
// recorded answer to the same question at the run's time, or by the first
// one when it was never asked before; datagrams are read once each. The
// trace streams by in time order; only one answer per question is held
// (a few per question of datagrams), within a bound on the bytes held.
#pragma once
#include <cstdint>
#include <deque>
#include <string>
#include <unordered_map>

#include "sim/desk/trace_reader_stream.h"
#include "trace/trace_line.h"

namespace lynd {

// What one pass over a trace tells every what-if run of it.
struct WhatIfIndex {
    TraceHeader header;
    std::unordered_map<uint64_t, TraceRecord> first;  // by question: its first answer
    size_t held = 0;                                   // bytes of first
    size_t dropped = 0;                                // questions past the bound
    int64_t end_ms = 0;
    size_t records = 0;
    bool has_wall = false;
    int64_t wall_base = 0;  // the first wall reading, s
    int64_t wall_base_ms = 0;
};

// Reads source through once, every line checked; false with error.
bool what_if_index(const TraceSource& source, WhatIfIndex* index, std::string* error);

class ReplayAnswers {
public:
    ReplayAnswers(const TraceSource& source, const WhatIfIndex& index) : in_(source, false), index_(index) {}
    bool open() { return in_.open(); }

    // The answer to request (of kind) at now_ms, or null. Valid until the
    // next call.
    const TraceRecord* answer(const TraceLine& request, const char* kind, int64_t now_ms);
    int64_t wall_at(int64_t now_ms) const;
    size_t dropped() const { return dropped_ + index_.dropped; }

private:
    void absorb(int64_t now_ms);
    void keep(const TraceRecord& r);
    uint64_t key_of(const TraceLine& request);

    TraceStream in_;
    const WhatIfIndex& index_;
    TraceRecord ahead_;
    bool has_ahead_ = false;
    std::unordered_map<uint64_t, TraceRecord> latest_;
    std::unordered_map<uint64_t, std::deque<TraceRecord>> unread_;  // datagrams
    std::unordered_map<std::string, uint64_t> asked_;
    size_t held_ = 0;
    size_t dropped_ = 0;
    TraceRecord out_;
};

// The hash a question is held by.
uint64_t trace_question_key(const TraceRecord& r);

}  // namespace lynd
