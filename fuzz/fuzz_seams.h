// A quiet simulated node behind the seams, so parsers can log while fuzzed.
#pragma once
#include "core/log.h"
#include "platform/seams.h"
#include "sim/node/sim_bridge.h"
#include "sim/node/sim_bus.h"
#include "sim/node/sim_host.h"
#include "sim/node/sim_loop.h"
#include "sim/node/sim_uci.h"
#include "wlan/qca/qca_layouts.h"

struct FuzzSeams {
    lynd::SimLoop loop;
    lynd::SimHost host;
    lynd::SimUci uci;
    lynd::SimBridge bridge;
    lynd::SimBus bus;
    FuzzSeams() {
        lynd::install_seams({&loop, &host, &uci, &bridge, &bus, &qca_driver_requests});
        g_lynd_dgb_lvl = LYND_LVL_TRACE;  // every log line's format runs too
    }
};

// Log lines pile up in the simulated host; a fuzzer forgets them per input.
inline FuzzSeams& fuzz_seams() {
    static FuzzSeams seams;
    seams.host.clear_console();
    seams.bridge.clear_calls();
    return seams;
}
