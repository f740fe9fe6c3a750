// Scenario files of any shape through the simulator's parser, and the
// datagrams and words it makes of the timeline.
#include <cstddef>
#include <cstdint>
#include <string>

#include "event/netlink_datagram.h"
#include "fuzz/fuzz_check.h"
#include "sim/node/netlink_craft.h"
#include "sim/scenario/scenario.h"
#include "sim/timeline/timeline_labels.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    lynd::Scenario sc;
    std::string error;
    if (lynd::scenario_parse(reinterpret_cast<const char*>(data), size, &sc, &error)) {
        for (const auto& e : sc.expect)
            (void)lynd::describe(e);
        for (const auto& t : sc.timeline) {
            if (t.kind == lynd::TimelineKind::NETLINK || t.kind == lynd::TimelineKind::KERNEL_LINK)
                fuzz_check(t.data.size() <= NL_RECV_BUF_SIZE, "a crafted datagram fits a receive");
            if (t.kind == lynd::TimelineKind::NETLINK)
                (void)lynd::announced_hc_entries(t.data);
            fuzz_check(lynd::event_label(t).find('{') == std::string::npos, "no JSON in a label");
            (void)lynd::event_detail(t);
        }
    } else if (error.empty()) {
        __builtin_trap();  // a refusal always says why
    }
    return 0;
}
