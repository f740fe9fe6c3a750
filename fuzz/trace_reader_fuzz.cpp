// Trace files as a customer sends them: any bytes, one error or records.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/fuzz_check.h"
#include "sim/trace_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    lynd::Trace trace;
    std::string error;
    bool ok = lynd::trace_parse(reinterpret_cast<const char*>(data), size, &trace, &error);
    fuzz_check(ok == error.empty(), "an error exactly when the parse fails");
    fuzz_check(ok || error.compare(0, 5, "line ") == 0, "the error names its line");
    int64_t last = INT64_MIN;
    for (const auto& r : trace.records) {
        fuzz_check(r.t >= last, "records in time order");
        last = r.t;
        (void)r.bytes("data");
        (void)r.text("line");
    }
    return 0;
}
