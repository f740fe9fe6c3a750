// A simulated node behind every seam, for one benchmark.
#pragma once
#include "platform/seams.h"
#include "sim/sim_bridge.h"
#include "sim/sim_bus.h"
#include "sim/sim_cpu.h"
#include "sim/sim_host.h"
#include "sim/sim_loop.h"
#include "sim/sim_uci.h"
#include "sim/wlan_platform_sim.h"

struct SimSeams {
    lynd::SimLoop loop;
    lynd::SimHost host;
    lynd::SimUci uci;
    lynd::SimBridge bridge;
    lynd::SimBus bus;
    lynd::SimWlan wlan{&host, &loop};
    SimSeams() {
        host.set_clock(&loop);
        host.set_driver(&wlan);
        lynd::install_seams({&loop, &host, &uci, &bridge, &bus});
    }
};
