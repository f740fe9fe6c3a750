// Installs a fresh simulated node behind every seam for one test.
#pragma once
#include <gtest/gtest.h>

#include "core/log.h"
#include "platform/seams.h"
#include "sim/node/sim_bridge.h"
#include "sim/node/sim_bus.h"
#include "sim/node/sim_host.h"
#include "sim/node/sim_loop.h"
#include "sim/node/sim_uci.h"

class SimNodeTest : public ::testing::Test {
protected:
    void SetUp() override {
        host.set_clock(&loop);
        bridge.set_host(&host);
        prev_ = lynd::install_seams({&loop, &host, &uci, &bridge, &bus});
        g_lynd_dgb_lvl = 1;
        g_dgb_lvl = 0;
    }
    void TearDown() override {
        lynd::install_seams(prev_);
        g_lynd_dgb_lvl = 1;
        g_dgb_lvl = 0;
    }

    lynd::SimLoop loop;
    lynd::SimHost host;
    lynd::SimUci uci;
    lynd::SimBridge bridge;
    lynd::SimBus bus;

private:
    lynd::Seams prev_;
};
