// Recording a simulated run and playing it back against the real daemon.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "file_text.h"
#include "sim/desk/replay_run.h"
#include "sim/scenario/scenario.h"
#include "sim/sim_node.h"
#include "sim/desk/trace_anonymize.h"
#include "temp_dir.h"
#include "trace/trace_recorder.h"

namespace {

class TraceReplayTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_FALSE(tmp.path.empty()); }

    lynd::Scenario scenario(const char* name) {
        lynd::Scenario sc;
        std::string text = slurp(std::string(LYND_SOURCE_DIR) + "/scenarios/" + name + ".json"), error;
        EXPECT_TRUE(lynd::scenario_parse(text.data(), text.size(), &sc, &error)) << error;
        return sc;
    }

    // The run's trace as text.
    std::string record(const lynd::Scenario& sc) {
        std::string path = dir + "/trace";
        lynd::trace_request(path.c_str(), size_t{1} << 30);
        {
            lynd::SimNode node(sc);
            (void)node.run("lynd", {});
        }
        lynd::trace_request(nullptr, 0);
        return slurp(path);
    }

    lynd::ReplayResult replay(const std::string& text, const std::string& config = "",
                              const std::vector<std::string>& extra = {}) {
        lynd::Trace t;
        std::string error;
        EXPECT_TRUE(lynd::trace_parse(text.data(), text.size(), &t, &error)) << error;
        if (!config.empty() || !extra.empty())
            return lynd::what_if_trace(t, config, extra);
        return lynd::replay_trace(t, extra);
    }

    TempDir tmp;
    const std::string& dir = tmp.path;
};

TEST_F(TraceReplayTest, ARecordedRunReplaysIdenticallyAndAChangedOutputIsCaught) {
    std::string text = record(scenario("ps_weak_5g"));
    lynd::ReplayResult same = replay(text);
    EXPECT_TRUE(same.identical) << same.report;
    EXPECT_EQ(0u, same.report.find("identical: ")) << same.report;

    // The recorded preferred port, changed: the replay must name that line.
    size_t at = text.find("\"fn\":\"bridgeSetHcPreferred\"");
    ASSERT_NE(std::string::npos, at);
    size_t n = text.find("\"n\":", at);
    std::string bad = text;
    bad.replace(n, 6, "\"n\":99");
    size_t line = static_cast<size_t>(std::count(bad.begin(), bad.begin() + static_cast<long>(n), '\n')) + 1;
    lynd::ReplayResult diff = replay(bad);
    EXPECT_FALSE(diff.identical);
    EXPECT_NE(std::string::npos, diff.report.find("DIVERGED at ")) << diff.report;
    EXPECT_NE(std::string::npos, diff.report.find("(trace line " + std::to_string(line) + ")")) << diff.report;
    EXPECT_NE(std::string::npos, diff.report.find("\"n\":99")) << diff.report;
    EXPECT_NE(std::string::npos, diff.report.find("inputs just before:\n    {")) << diff.report;
}

TEST_F(TraceReplayTest, WhatIfShowsNoDifferenceUnderTheSameConfigAndSomeUnderAnother) {
    lynd::Scenario sc = scenario("ps_weak_5g");
    std::string text = record(sc);
    lynd::ReplayResult same = replay(text, sc.config_text);
    EXPECT_EQ(0u, same.report.find("decisions that differ (- recorded only, + what-if only): 0\n")) << same.report;
    EXPECT_NE(std::string::npos, same.report.find("client moves: 2 / 2")) << same.report;

    // A period four times as long decides later: the first moves are gone.
    std::string slow = sc.config_text;
    size_t at = slow.find("\"period\":");
    ASSERT_NE(std::string::npos, at);
    size_t digits = slow.find("10", at);
    slow.replace(digits, 2, "40");
    lynd::ReplayResult other = replay(text, slow);
    EXPECT_EQ(std::string::npos, other.report.find("differ (- recorded only, + what-if only): 0\n")) << other.report;
    EXPECT_NE(std::string::npos, other.report.find("  - 70.000 s  move ")) << other.report;
    EXPECT_NE(std::string::npos, other.report.find("client moves: 2 / 0")) << other.report;
}

// Path states are told whatever level the router logged at.
TEST_F(TraceReplayTest, WhatIfSeesPathStatesInATraceAtTheDefaultLogLevel) {
    lynd::Scenario sc = scenario("ps_weak_5g");
    sc.args = {};
    std::string text = record(sc);
    ASSERT_EQ(std::string::npos, text.find("into to WEAKLINK"));
    std::string tight = sc.config_text;
    size_t at = tight.find("\"period\":");
    ASSERT_NE(std::string::npos, at);
    tight.replace(tight.find("10", at), 2, "40");
    lynd::ReplayResult r = replay(text, tight);
    size_t states = r.report.find("path state changes: ");
    ASSERT_NE(std::string::npos, states) << r.report;
    EXPECT_NE(0u, std::strtoul(r.report.c_str() + states + 20, nullptr, 10)) << r.report;
    EXPECT_NE(std::string::npos, r.report.find(" path ath")) << r.report;
}

TEST_F(TraceReplayTest, AnAnonymizedTraceHidesEveryClientAndStillReplays) {
    std::string text = record(scenario("ps_weak_5g"));
    ASSERT_NE(std::string::npos, text.find("02:00:00:00:0a:01"));
    std::string anon, error;
    ASSERT_TRUE(lynd::trace_anonymize(text, &anon, &error)) << error;
    EXPECT_EQ(std::string::npos, anon.find("02:00:00:00:0a:01"));
    EXPECT_EQ(std::string::npos, anon.find("0200000000a01"));
    lynd::ReplayResult r = replay(anon);
    EXPECT_TRUE(r.identical) << r.report;
}

TEST_F(TraceReplayTest, TheConfiguredTraceRotatesAtItsSizeAndItsPartsReplayChained) {
    lynd::Scenario sc = scenario("ps_weak_5g");
    std::string path = dir + "/trace";
    sc.config_text.insert(sc.config_text.find('{') + 1,
                          "\"record\": \"" + path + "\", \"record_size\": 262144,");
    {
        lynd::SimNode node(sc);
        (void)node.run("lynd", {});
    }
    std::string now = slurp(path), before = slurp(path + ".1");
    EXPECT_GT(before.size(), 250000u);
    EXPECT_LE(before.size(), 262144u);
    EXPECT_LE(now.size(), 262144u);
    EXPECT_EQ(0u, now.find("{\"t\":")) << now.substr(0, 80);
    EXPECT_NE(std::string::npos, now.substr(0, now.find('\n')).find("\"start\":\"rotated\",\"part\":2"));
    lynd::ReplayResult r = replay(now);
    EXPECT_EQ(2, r.exit_status);
    EXPECT_NE(std::string::npos, r.report.find("the daemon's state at this file's start is not in the trace"))
        << r.report;
    lynd::Trace chained;
    std::string error;
    ASSERT_TRUE(lynd::trace_load_parts({path + ".1", path}, &chained, &error)) << error;
    lynd::ReplayResult whole = lynd::replay_trace(chained, {});
    EXPECT_TRUE(whole.identical) << whole.report;

    // A difference in the second part is named by its part and line there.
    size_t at = now.rfind("\"fn\":\"bridgeStopAPS\"");
    ASSERT_NE(std::string::npos, at);
    std::string bad = now;
    bad.replace(at, 20, "\"fn\":\"bridgeStopAPX\"");
    std::ofstream(path) << bad;
    ASSERT_TRUE(lynd::trace_load_parts({path + ".1", path}, &chained, &error)) << error;
    size_t line = static_cast<size_t>(std::count(bad.begin(), bad.begin() + static_cast<long>(at), '\n')) + 1;
    lynd::ReplayResult diff = lynd::replay_trace(chained, {});
    EXPECT_NE(std::string::npos, diff.report.find("(part 2, line " + std::to_string(line) + ")")) << diff.report;
}

}  // namespace
