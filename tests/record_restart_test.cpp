// The bus method's trace: the daemon answers, restarts its run inside the
// process, and the trace of the new run replays like a boot trace.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <sstream>
#include <string>

#include "full_disk.h"
#include "file_text.h"
#include "scenario_text.h"
#include "sim/desk/replay_run.h"
#include "sim/scenario/scenario.h"
#include "sim/sim_node.h"
#include "sim/node/trace_dir.h"
#include "temp_dir.h"
#include "trace/trace_file.h"
#include "trace/trace_recorder.h"

namespace {

std::string first_line(const std::string& text) { return text.substr(0, text.find('\n')); }

class RecordRestartTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir = lynd::trace_dir_make();
        ASSERT_FALSE(dir.empty());
        sc = bundled("record_restart");
        sc.timeline[0].data = "{\"enable\":true,\"file\":\"lynd.trace\",\"size\":4194304}";
    }
    void TearDown() override {
        // The bus method's trace holds for later runs of the process.
        (void)lynd::trace_control(nullptr, 0, false);
        lynd::trace_set_writer(nullptr);
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
        errors = node.host().count_logged("<LYND_ERR>");
        for (const char* needle : watch)
            seen.push_back(node.host().count_logged(needle));
    }

    lynd::ReplayResult replay(const std::vector<std::string>& files) {
        return lynd::replay_trace(lynd::trace_files(files), {});
    }

    lynd::Scenario sc;
    std::string dir;
    int exit_status = -1;
    size_t starts = 0;
    size_t errors = 0;
    std::vector<const char*> watch;  // log lines to count
    std::vector<size_t> seen;
    std::vector<lynd::BusCallRecord> calls;
};

TEST_F(RecordRestartTest, TheCallIsAnsweredThenTheRunRestartsAndItsTraceReplaysIdentically) {
    run();
    EXPECT_EQ(0, exit_status);
    EXPECT_EQ(2u, starts);
    ASSERT_EQ(1u, calls.size());
    EXPECT_EQ(0, calls[0].status);
    EXPECT_EQ("{\"record\":true,\"file\":\"lynd.trace\",\"size\":4194304,\"restart\":true}", calls[0].reply);
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
    sc.timeline[0].data = "{\"enable\":true,\"file\":\"a.trace\",\"size\":4194304}";
    call_record(100, "{\"enable\":true,\"file\":\"b.trace\",\"size\":4194304}");
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

// What the bus may not make the daemon do: write outside its directory,
// replace a file that is not its trace, take more than the cap or the room.
TEST_F(RecordRestartTest, ARefusedCallTouchesNothingRestartsNothingAndSaysWhy) {
    lynd::trace_dir_remove(dir);
    struct Case {
        std::string args;
        int status;
    };
    const Case cases[] = {
        {"{\"enable\":true,\"file\":\"/tmp/victim\"}", 2},
        {"{\"enable\":true,\"file\":\"../victim\"}", 2},
        {"{\"enable\":true,\"file\":\"\"}", 2},
        {"{\"enable\":true,\"file\":\"..\"}", 2},
        {"{\"enable\":true,\"file\":\"foreign\"}", 9},
        {"{\"enable\":true,\"file\":\"lynd.trace\",\"size\":2147483647}", 2},
    };
    for (const auto& c : cases) {
        TempDir place;
        dir = place.path;
        std::string victim = dir + "/victim";
        std::string traces = dir + "/traces";
        std::ofstream(victim) << "precious";
        ASSERT_EQ(0, mkdir(traces.c_str(), 0700));
        std::ofstream(traces + "/foreign") << "{\"enable\": true}";
        sc.timeline[0].data = c.args;
        calls.clear();
        lynd::SimNode node(sc);
        node.set_trace_dir(traces);
        exit_status = node.run("lynd", {}).exit_status;
        ASSERT_EQ(1u, node.bus_calls().size()) << c.args;
        EXPECT_EQ(c.status, node.bus_calls()[0].status) << c.args;
        EXPECT_EQ(1u, node.host().count_logged("<LYND_ERR>[trace_call_request")) << c.args;
        EXPECT_EQ(1u, node.host().count_logged("Path Selection initialized")) << c.args << ": no restart";
        EXPECT_EQ("precious", slurp(victim)) << c.args;
        EXPECT_EQ("{\"enable\": true}", slurp(traces + "/foreign")) << c.args;
        struct stat st {};
        EXPECT_NE(0, stat((traces + "/lynd.trace").c_str(), &st)) << c.args;
        lynd::trace_dir_remove(traces);
        dir.clear();
    }
    dir = lynd::trace_dir_make();
}

TEST_F(RecordRestartTest, AFullFilesystemEndsTheTraceWithOneLineAndTheDaemonGoesOn) {
    g_room = 100000;
    lynd::trace_set_writer(fill_up);
    watch = {"No space left on device: the trace ends here"};
    run();
    EXPECT_EQ(0, exit_status);
    EXPECT_EQ(2u, starts);
    EXPECT_EQ(1u, seen[0]);
    EXPECT_EQ(1u, errors);
    std::string text = slurp(dir + "/lynd.trace");
    ASSERT_FALSE(text.empty());
    EXPECT_LE(text.size(), 100000u);
    EXPECT_EQ('\n', text.back()) << "cut back to its last whole line";
    EXPECT_EQ(0u, text.find("{\"t\":40000,\"k\":\"header\""));
}

TEST_F(RecordRestartTest, ARestartWhoseFileNoLongerLoadsKeepsTheRunningConfiguration) {
    lynd::TimelineEntry broken;
    broken.at_ms = 30000;
    broken.kind = lynd::TimelineKind::FILE;
    broken.name = "/etc/lynd.json";
    broken.data = "{\"enable\": true, \"bridges\": ";
    sc.timeline.insert(sc.timeline.begin(), broken);
    watch = {"/etc/lynd.json no longer loads", "the running configuration stays"};
    run();
    EXPECT_EQ(0, exit_status);
    EXPECT_EQ(2u, starts);
    EXPECT_EQ(1u, seen[0]);
    EXPECT_EQ(1u, seen[1]);
    std::string text = slurp(dir + "/lynd.trace");
    EXPECT_NE(std::string::npos, first_line(text).find("\\\"param\\\"")) << "the header holds the running configuration";
    lynd::ReplayResult r = replay({dir + "/lynd.trace"});
    EXPECT_TRUE(r.identical) << r.report;
}

TEST_F(RecordRestartTest, AConfigurationOfNearlyTheLargestSizeIsRecordedAndReplays) {
    size_t brace = sc.config_text.rfind('}');
    sc.config_text.insert(brace, std::string(250 * 1024, ' ') + "\n");
    run();
    ASSERT_EQ(1u, calls.size());
    EXPECT_EQ(0, calls[0].status);
    EXPECT_EQ(2u, starts);
    std::string text = slurp(dir + "/lynd.trace");
    EXPECT_GT(first_line(text).size(), 250u * 1024);
    lynd::ReplayResult r = replay({dir + "/lynd.trace"});
    EXPECT_TRUE(r.identical) << r.report;
}

}  // namespace
