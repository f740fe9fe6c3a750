// The record as a replay walks it: the daemon's next question or output must
// be the next record, asked the same way; the first difference ends the
// comparison and is kept with the inputs just before it.
#pragma once
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "sim/desk/trace_reader.h"
#include "trace/trace_line.h"

namespace lynd {

struct Divergence {
    bool found = false;
    int64_t at_ms = 0;
    int line = 0;
    int part = 1;
    std::string expected;
    std::string actual;
    std::deque<std::string> before;  // the inputs just before, oldest first
};

class ReplayTape {
public:
    explicit ReplayTape(const Trace& trace) : trace_(trace) {}

    // The next record, or null at the end (or after a divergence).
    const TraceRecord* peek() const;
    // Takes the next record as the loop dispatches it.
    const TraceRecord* next();
    // The next record when it matches the request begun with begin(): its
    // kind and every member the request has, the time aside. Null on a
    // difference (recorded as the divergence) or when the trace is over.
    const TraceRecord* take(TraceLine& request);
    // Starts a request at the replay's time.
    TraceLine& begin(const char* kind);
    void diverge(const std::string& expected, const std::string& actual);

    // What-if: questions are answered by what the record holds for the same
    // question at the replay's time, outputs are kept instead of compared.
    void set_what_if();
    bool what_if() const { return what_if_; }
    void set_now(int64_t ms) { now_ms_ = ms; }
    // The outputs a what-if run gave, in order, with their times.
    const std::vector<std::pair<int64_t, std::string>>& outputs() const { return outputs_; }
    // The wall clock at now, from the recorded readings.
    int64_t wall_now() const;

    bool over() const { return divergence_.found || pos_ >= trace_.records.size() || stopped_; }
    int64_t now_ms() const { return now_ms_; }
    size_t taken() const { return pos_; }
    const Divergence& divergence() const { return divergence_; }
    const Trace& trace() const { return trace_; }

private:
    void remember(const TraceRecord& r);
    void advance(const TraceRecord& r);
    const TraceRecord* answer(TraceLine& request);

    const Trace& trace_;
    size_t pos_ = 0;
    int64_t now_ms_ = 0;
    bool stopped_ = false;
    Divergence divergence_;
    std::deque<std::string> recent_;
    TraceLine line_;
    bool what_if_ = false;
    struct Answers {
        std::vector<size_t> at;  // record indexes, in time order
        size_t next = 0;
    };
    std::map<std::string, Answers> answers_;
    std::vector<std::pair<int64_t, std::string>> outputs_;
    int64_t wall_base_ = 0;
    int64_t wall_base_ms_ = 0;
};

// A record's question: its type and every member but the time and the answer.
std::string trace_question(json_object* record);
bool trace_kind_is_output(const std::string& kind);

// The record's own text, for a report.
std::string trace_record_text(const TraceRecord& r);

}  // namespace lynd
