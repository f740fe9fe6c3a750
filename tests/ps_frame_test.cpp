// The module frame: its timers follow the "pathsel" switch and the period.
#include <gtest/gtest.h>

#include <cstddef>

#include "conf_builder.h"
#include "core/log.h"
#include "event/event_dispatch.h"
#include "modules/module.h"
#include "modules/path_selection/hc_records.h"
#include "modules/path_selection/path_selection.h"
#include "sim_fixture.h"

namespace {

class PsFrameTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        path_selection_state_reset();
        lynd_list_init(&conf.ev.listeners);
        lynd_list_init(&conf.modules);
        add_bridge(conf, "br-lan", BR_FLAG_LOOP_AVOIDANCE | BR_FLAG_PATH_SELECTION).ps_flags = PS_FLAG_HC;
        conf.param.period = 10000;
        conf.param.short_period = 2000;
    }
    void TearDown() override {
        if (module != nullptr)
            module->finit(module);
        SimNodeTest::TearDown();
    }
    ps_module* start() {
        module = path_selection_init(&conf);
        lynd_list_add_tail(&module->list, &conf.modules);
        path_selection_arm_timers(module);
        return static_cast<ps_module*>(lynd_container_of(module, offsetof(ps_module, base)));
    }
    void pathsel(uint8_t mode) {
        debug_event ev{};
        ev.subtype = DBG_PATHSEL_MODE;
        ev.mode = mode;
        path_selection_event_debug(&conf, &ev);
    }

    lynd_config conf{};
    lynd_module* module = nullptr;
};

TEST_F(PsFrameTest, OnlyOneStopsTheTimersAndOnlyZeroRestartsThem) {
    ps_module* m = start();
    pathsel(2);
    EXPECT_EQ(0, conf.pathsel_mode);
    EXPECT_TRUE(m->period_timer.pending);
    EXPECT_TRUE(m->short_period_timer.pending);
    pathsel(1);
    EXPECT_EQ(1, conf.pathsel_mode);
    EXPECT_FALSE(m->period_timer.pending);
    EXPECT_FALSE(m->short_period_timer.pending);
    pathsel(2);
    pathsel(1);
    EXPECT_EQ(1, conf.pathsel_mode);
    EXPECT_FALSE(m->short_period_timer.pending);
    pathsel(0);
    EXPECT_EQ(0, conf.pathsel_mode);
    EXPECT_EQ(10000, loop.timer_remaining(&m->period_timer));
    EXPECT_EQ(2000, loop.timer_remaining(&m->short_period_timer));
}

TEST_F(PsFrameTest, AZeroPeriodLeavesThatTimerIdleAndSaysSoOnce) {
    conf.param.period = 0;
    g_lynd_dgb_lvl = LYND_LVL_WARN;
    ps_module* m = start();
    path_selection_arm_timers(module);
    EXPECT_FALSE(m->period_timer.pending);
    EXPECT_TRUE(m->short_period_timer.pending);
    EXPECT_EQ(1u, host.count_logged("] period is 0 (\"param\" or its \"period\" missing, 0 or not a number): the "
                                    "period timer stays idle"));
}

TEST_F(PsFrameTest, ItHearsEveryEventBeforeTheModulesRegisteredEarlier) {
    event_listener earlier{};
    event_add_listener(&conf.ev, &earlier);
    start();
    EXPECT_EQ(&module->listener.list, conf.ev.listeners.next);
    EXPECT_EQ(&earlier.list, module->listener.list.next);
    event_del_listener(&earlier);
}

TEST_F(PsFrameTest, NoShortPeriodMeansNoSampling) {
    conf.param.short_period = 0;
    ps_module* m = start();
    EXPECT_TRUE(m->period_timer.pending);
    EXPECT_FALSE(m->short_period_timer.pending);
}

}  // namespace
