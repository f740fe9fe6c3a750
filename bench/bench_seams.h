// A simulated node behind every seam, for one benchmark.
#pragma once
#include "platform/seams.h"
#include "sim/node/sim_bridge.h"
#include "sim/node/sim_bus.h"
#include "sim/node/sim_cpu.h"
#include "sim/node/sim_host.h"
#include "sim/node/sim_loop.h"
#include "sim/node/sim_uci.h"
#include "sim/node/wlan_platform_sim.h"
#include "wlan/qca/qca_layouts.h"

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
        lynd::install_seams({&loop, &host, &uci, &bridge, &bus, &qca_driver_requests});
    }
};
