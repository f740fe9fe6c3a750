// Scenario files of any shape through the simulator's parser.
#include <cstddef>
#include <cstdint>
#include <string>

#include "sim/node/netlink_craft.h"
#include "sim/scenario/scenario.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    lynd::Scenario sc;
    std::string error;
    if (lynd::scenario_parse(reinterpret_cast<const char*>(data), size, &sc, &error)) {
        for (const auto& e : sc.expect)
            (void)lynd::describe(e);
        hc_entry held;
        for (const auto& t : sc.timeline)
            if (t.kind == lynd::TimelineKind::NETLINK)
                (void)lynd::announced_hc_entry(t.data, &held);
    } else if (error.empty()) {
        __builtin_trap();  // a refusal always says why
    }
    return 0;
}
