// Scenario files of any shape through the simulator's parser.
#include <cstddef>
#include <cstdint>
#include <string>

#include "sim/scenario.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    lynd::Scenario sc;
    std::string error;
    if (lynd::scenario_parse(reinterpret_cast<const char*>(data), size, &sc, &error)) {
        for (const auto& e : sc.expect)
            (void)lynd::describe(e);
    } else if (error.empty()) {
        __builtin_trap();  // a refusal always says why
    }
    return 0;
}
