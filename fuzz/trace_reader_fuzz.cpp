// Trace files as a customer sends them: any bytes, one error or records. A
// form feed splits the input into the parts of a recording, chained. What
// reads as a recording is replayed too, plainly or as a what-if, as
// lynd-sim replay runs it: the replay must end by itself, without a fault.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/fuzz_check.h"
#include "sim/desk/replay_run.h"
#include "sim/desk/trace_chain.h"
#include "sim/desk/trace_reader_stream.h"
#include "trace/trace_hex.h"

namespace {

void check_records(const lynd::Trace& trace) {
    int64_t last = 0;
    for (const auto& r : trace.records) {
        fuzz_check(r.t >= last && r.t <= lynd::TRACE_TIME_MAX, "records in time order, within range");
        last = r.t;
        fuzz_check(r.bytes("data", 64).size() <= 64, "a field decodes to no more than its room");
        fuzz_check(r.text("line").size() <= lynd::TRACE_FIELD_MAX, "a field decodes to no more than the cap");
    }
}

// A replay of a few records ends in seconds, even a what-if that runs to its
// bound of timers: tools/run-fuzzers gives it -timeout=30 as the deadline.
void replay(const lynd::TraceSource& source, bool what_if) {
    lynd::ReplayResult r = what_if ? lynd::what_if_trace(source, "", {"-l", "6"}) : lynd::replay_trace(source, {});
    fuzz_check(!r.report.empty(), "a replay always reports");
    fuzz_check(r.report.back() == '\n', "a report ends its line");
}

// Any bytes written as a record writes them read back the same.
void check_hex_round_trip(const uint8_t* data, size_t size) {
    static char text[4096 * 2];
    static uint8_t back[4096];
    if (size > sizeof back)
        return;
    size_t len = lynd::trace_hex(text, sizeof text, data, size);
    fuzz_check(len <= sizeof text, "two characters a byte at most");
    size_t n = 0;
    fuzz_check(lynd::trace_unhex(text, len, back, sizeof back, &n) && n == size && std::memcmp(back, data, size) == 0,
               "bytes read back as written");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    check_hex_round_trip(data, size);
    const char* text = reinterpret_cast<const char*>(data);
    std::vector<lynd::Trace> parts;
    lynd::TraceSource source;
    size_t records = 0;
    for (size_t pos = 0; pos <= size;) {
        const void* ff = std::memchr(text + pos, '\f', size - pos);
        size_t end = ff != nullptr ? static_cast<size_t>(static_cast<const char*>(ff) - text) : size;
        lynd::Trace trace;
        std::string error;
        bool ok = lynd::trace_parse(text + pos, end - pos, &trace, &error);
        fuzz_check(ok == error.empty(), "an error exactly when the parse fails");
        fuzz_check(ok || error.compare(0, 5, "line ") == 0, "the error names its line");
        if (!ok)
            return 0;
        check_records(trace);
        records += trace.records.size();
        parts.push_back(std::move(trace));
        source.push_back(lynd::TracePart{"", std::make_shared<const std::string>(text + pos, end - pos)});
        pos = end + 1;
    }
    lynd::Trace chained;
    std::string error;
    bool ok = lynd::trace_chain(std::move(parts), {}, &chained, &error);
    fuzz_check(ok == error.empty(), "an error exactly when the chain fails");
    fuzz_check(!ok || (chained.header.part == 1 && chained.records.size() == records), "a chain holds every part");
    check_records(chained);
    if (ok)
        replay(source, (size & 1) != 0);
    return 0;
}
