// Recorded bytes of any shape: turning them to the trace's order and back
// stays inside them and gives them back unchanged.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "fuzz/fuzz_check.h"
#include "trace/trace_order.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1)
        return 0;
    auto kind = static_cast<lynd::TraceBytes>(data[0] % (static_cast<int>(lynd::TraceBytes::OPAQUE) + 1));
    std::vector<uint8_t> b(data + 1, data + size);
    for (bool from_big : {true, false}) {
        std::vector<uint8_t> t = b;
        lynd::trace_swap_fields(kind, t.data(), t.size(), from_big);
        lynd::trace_swap_fields(kind, t.data(), t.size(), !from_big);
        fuzz_check(t == b, "turned twice, the bytes are back");
    }
    return 0;
}
