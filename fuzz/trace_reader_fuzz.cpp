// Trace files as a customer sends them: any bytes, one error or records. A
// form feed splits the input into the parts of a recording, chained.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/fuzz_check.h"
#include "sim/desk/trace_chain.h"
#include "sim/desk/trace_reader.h"

namespace {

void check_records(const lynd::Trace& trace) {
    int64_t last = INT64_MIN;
    for (const auto& r : trace.records) {
        fuzz_check(r.t >= last, "records in time order");
        last = r.t;
        (void)r.bytes("data");
        (void)r.text("line");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const char* text = reinterpret_cast<const char*>(data);
    std::vector<lynd::Trace> parts;
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
        pos = end + 1;
    }
    lynd::Trace chained;
    std::string error;
    bool ok = lynd::trace_chain(std::move(parts), {}, &chained, &error);
    fuzz_check(ok == error.empty(), "an error exactly when the chain fails");
    fuzz_check(!ok || (chained.header.part == 1 && chained.records.size() == records), "a chain holds every part");
    check_records(chained);
    return 0;
}
