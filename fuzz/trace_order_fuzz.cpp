// Recorded bytes of any shape: turning them to the trace's order and back
// stays inside them and gives them back unchanged, by each kind of bytes and
// by each layout the QCA back-end describes.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "fuzz/fuzz_check.h"
#include "trace/trace_order.h"
#include "wlan/qca/qca_layouts.h"

namespace {

constexpr int kKinds = static_cast<int>(lynd::TraceBytes::OPAQUE) + 1;

template <typename Order>
void check_turns(Order order, const std::vector<uint8_t>& b) {
    for (bool from_big : {true, false}) {
        std::vector<uint8_t> t = b;
        lynd::trace_swap_fields(order, t.data(), t.size(), from_big);
        lynd::trace_swap_fields(order, t.data(), t.size(), !from_big);
        fuzz_check(t == b, "turned twice, the bytes are back");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1)
        return 0;
    std::vector<uint8_t> b(data + 1, data + size);
    size_t pick = data[0] % (kKinds + qca_driver_requests.count);
    if (pick < kKinds)
        check_turns(static_cast<lynd::TraceBytes>(pick), b);
    else
        check_turns(qca_driver_requests.rows[pick - kKinds].layout, b);
    return 0;
}
