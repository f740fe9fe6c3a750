// The bus method's trace: the daemon answers, restarts its run inside the
// process, and the trace of the new run replays like a boot trace.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "file_text.h"
#include "sim/desk/replay_run.h"
#include "sim/scenario/scenario.h"
#include "sim/sim_node.h"
#include "sim/node/trace_dir.h"
#include "trace/trace_recorder.h"

namespace {

std::string first_line(const std::string& text) { return text.substr(0, text.find('\n')); }

class RecordRestartTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir = lynd::trace_dir_make();
        ASSERT_FALSE(dir.empty());
        std::string text = slurp(std::string(LYND_SOURCE_DIR) + "/scenarios/record_restart.json"), error;
        ASSERT_TRUE(lynd::scenario_parse(text.data(), text.size(), &sc, &error)) << error;
    }
    void TearDown() override {
        // The bus method's trace holds for later runs of the process.
        (void)lynd::trace_control(nullptr, 0, false);
        lynd::trace_dir_remove(dir);
    }

    // A record call at at_s with these arguments, added to the timeline.
    void call_record(int at_s, const std::string& args) {
        lynd::TimelineEntry e;
        e.at_ms = at_s * 1000;
        e.kind = lynd::TimelineKind::UBUS_CALL;
        e.name = "lynd";
        e.method = "record";
        e.data = args;
        sc.timeline.push_back(e);
    }

    void run() {
        lynd::SimNode node(sc);
        node.set_trace_dir(dir);
        exit_status = node.run("lynd", {}).exit_status;
        calls = node.bus_calls();
        starts = node.host().count_logged("Path Selection initialized");
    }

    lynd::ReplayResult replay(const std::vector<std::string>& files) {
        lynd::Trace t;
        std::string error;
        EXPECT_TRUE(lynd::trace_load_parts(files, &t, &error)) << error;
        return lynd::replay_trace(t, {});
    }

    lynd::Scenario sc;
    std::string dir;
    int exit_status = -1;
    size_t starts = 0;
    std::vector<lynd::BusCallRecord> calls;
};

TEST_F(RecordRestartTest, TheCallIsAnsweredThenTheRunRestartsAndItsTraceReplaysIdentically) {
    sc.timeline[0].data = "{\"enable\":true,\"file\":\"/tmp/lynd.trace\",\"size\":4194304}";
    run();
    EXPECT_EQ(0, exit_status);
    EXPECT_EQ(2u, starts);
    ASSERT_EQ(1u, calls.size());
    EXPECT_EQ(0, calls[0].status);
    EXPECT_EQ("{\"record\":true,\"file\":\"" + dir + "/lynd.trace\",\"size\":4194304,\"restart\":true}", calls[0].reply);
    std::string text = slurp(dir + "/lynd.trace");
    EXPECT_EQ(0u, text.find("{\"t\":40000,\"k\":\"header\"")) << first_line(text);
    EXPECT_NE(std::string::npos, first_line(text).find("\"start\":\"call\",\"part\":1,\"began\":40000"));
    // The new run read its configuration file again, from its first question on.
    EXPECT_NE(std::string::npos, text.find("\"path\":\"/etc/lynd.json\""));
    lynd::ReplayResult r = replay({dir + "/lynd.trace"});
    EXPECT_TRUE(r.identical) << r.report;
    EXPECT_NE(std::string::npos, r.report.find("over 200.000 s")) << r.report;
}

TEST_F(RecordRestartTest, DisablingEndsTheTraceWithoutARestart) {
    sc.timeline[0].data = "{\"enable\":true,\"file\":\"/tmp/lynd.trace\",\"size\":4194304}";
    call_record(100, "{\"enable\":false}");
    run();
    EXPECT_EQ(2u, starts);
    ASSERT_EQ(2u, calls.size());
    EXPECT_EQ("{\"record\":false,\"file\":\"" + dir + "/lynd.trace\",\"restart\":false}", calls[1].reply);
    std::string text = slurp(dir + "/lynd.trace");
    EXPECT_NE(std::string::npos, text.find("{\"t\":100000,\"k\":\"stop\"}\n")) << text.substr(text.size() - 200);
    EXPECT_EQ(text.size(), text.find("{\"t\":100000,\"k\":\"stop\"}\n") + 24);
}

TEST_F(RecordRestartTest, ASecondCallEndsTheFirstTraceAndRestartsIntoTheNewOne) {
    sc.timeline[0].data = "{\"enable\":true,\"file\":\"/tmp/a.trace\",\"size\":4194304}";
    call_record(100, "{\"enable\":true,\"file\":\"/tmp/b.trace\",\"size\":4194304}");
    run();
    EXPECT_EQ(3u, starts);
    std::string a = slurp(dir + "/a.trace"), b = slurp(dir + "/b.trace");
    EXPECT_NE(std::string::npos, a.find("\"method\":\"record\""));
    EXPECT_EQ(0u, b.find("{\"t\":100000,\"k\":\"header\"")) << first_line(b);
    // The first trace ends with the call that ended it, and replays to there.
    lynd::ReplayResult ra = replay({dir + "/a.trace"});
    EXPECT_TRUE(ra.identical) << ra.report;
    EXPECT_NE(std::string::npos, ra.report.find("over 100.000 s")) << ra.report;
    lynd::ReplayResult rb = replay({dir + "/b.trace"});
    EXPECT_TRUE(rb.identical) << rb.report;
}

}  // namespace
