// The record as a replay walks it: the daemon's next question or output must
// be the next record, asked the same way; the first difference ends the
// comparison and is kept with the inputs just before it. The trace streams
// by: only the next record, the one just taken and those few inputs are held.
#pragma once
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "sim/desk/trace_reader_stream.h"
#include "trace/trace_line.h"

namespace lynd {

class ReplayAnswers;

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
    // stream: opened, not yet read.
    explicit ReplayTape(TraceStream* stream) : stream_(stream) {}

    // The next record, or null at the end (or after a divergence).
    const TraceRecord* peek();
    // Takes the next record as the loop dispatches it.
    const TraceRecord* next();
    // The next record when it matches the request begun with begin(): its
    // kind and every member the request has, the time aside. Null on a
    // difference (recorded as the divergence) or when the trace is over.
    // The record stays valid until the next call.
    const TraceRecord* take(TraceLine& request);
    // Starts a request at the replay's time.
    TraceLine& begin(const char* kind);
    void diverge(const std::string& expected, const std::string& actual);
    // A recorded value no daemon could have been told: the replay ends there.
    void refuse(const TraceRecord& r, const std::string& why);

    // What-if: questions are answered by answers at the replay's time,
    // outputs are handed to on_output instead of compared, and the stream
    // gives only the events from outside (next_outside).
    void set_what_if(ReplayAnswers* answers, std::function<void(int64_t, const char*, const std::string&)> on_output);
    bool what_if() const { return answers_ != nullptr; }
    bool next_outside(TraceRecord* r);
    void set_now(int64_t ms) { now_ms_ = ms; }
    // The wall clock at now, from the recorded readings.
    int64_t wall_now() const;
    // Why a what-if run ended before the trace did ("" when it did not).
    void stop_early(const std::string& why);
    const std::string& stopped_early() const { return early_; }

    bool over();
    int64_t now_ms() const { return now_ms_; }
    size_t taken() const { return taken_; }
    const Divergence& divergence() const { return divergence_; }
    const TraceHeader& header() const { return stream_->header(); }
    // A fault met in the trace on the way ("" when none).
    const std::string& damage() const { return damage_; }
    // The records before the trace's end (or its stop) that the daemon never
    // came to, read through to count them; first: the next one's text.
    size_t left_over(std::string* first);

private:
    bool load();
    void advance();
    void remember(const TraceRecord& r);
    const TraceRecord* compare(TraceLine& request);

    TraceStream* stream_;
    TraceRecord cur_;  // the next record, when loaded
    bool has_cur_ = false;
    bool ended_ = false;
    TraceRecord last_;  // the record just taken
    size_t taken_ = 0;
    int64_t now_ms_ = 0;
    bool stopped_ = false;
    Divergence divergence_;
    std::string damage_;
    std::string early_;
    std::deque<std::shared_ptr<const std::string>> recent_;
    TraceLine line_;
    const char* line_kind_ = "";
    ReplayAnswers* answers_ = nullptr;
    std::function<void(int64_t, const char*, const std::string&)> on_output_;
};

// A record's question: its type and every member but the time and the answer.
std::string trace_question(json_object* record);
bool trace_kind_is_output(const std::string& kind);

// The record's own text, for a report.
std::string trace_record_text(const TraceRecord& r);

}  // namespace lynd
