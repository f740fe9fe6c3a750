// Recording a simulated run and playing it back against the real daemon.
#include <gtest/gtest.h>
#include <unistd.h>

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "file_text.h"
#include "scenario_text.h"
#include "replay_child.h"
#include "sim/desk/replay_run.h"
#include "sim/scenario/scenario.h"
#include "sim/sim_node.h"
#include "sim/desk/trace_anonymize.h"
#include "temp_dir.h"
#include "trace/trace_recorder.h"

namespace {

size_t slurp_size(const std::string& path) {
    struct stat st {};
    return stat(path.c_str(), &st) == 0 ? static_cast<size_t>(st.st_size) : 0;
}

class TraceReplayTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_FALSE(tmp.path.empty()); }

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
        if (!config.empty() || !extra.empty())
            return lynd::what_if_trace(lynd::trace_text(text), config, extra);
        return lynd::replay_trace(lynd::trace_text(text), extra);
    }

    TempDir tmp;
    const std::string& dir = tmp.path;
};

TEST_F(TraceReplayTest, ARecordedRunReplaysIdenticallyAndAChangedOutputIsCaught) {
    std::string text = record(bundled("ps_weak_5g"));
    ASSERT_NE(std::string::npos, text.find("02:00:00:00:0a:01"));
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

    // Anonymized, it hides every client and still replays.
    std::string anon, error;
    ASSERT_TRUE(lynd::trace_anonymize(text, &anon, &error)) << error;
    EXPECT_EQ(std::string::npos, anon.find("02:00:00:00:0a:01"));
    EXPECT_EQ(std::string::npos, anon.find("0200000000a01"));
    lynd::ReplayResult r = replay(anon);
    EXPECT_TRUE(r.identical) << r.report;
}

// The configuration with a period four times as long.
std::string slower(std::string config) {
    size_t at = config.find("\"period\":");
    EXPECT_NE(std::string::npos, at);
    return config.replace(config.find("10", at), 2, "40");
}

TEST_F(TraceReplayTest, WhatIfShowsNoDifferenceUnderTheSameConfigAndSomeUnderAnother) {
    lynd::Scenario sc = bundled("ps_weak_5g");
    std::string text = record(sc);
    lynd::ReplayResult same = replay(text, sc.config_text);
    EXPECT_EQ(0u, same.report.find("decisions that differ (- recorded only, + what-if only): 0\n")) << same.report;
    EXPECT_NE(std::string::npos, same.report.find("client moves: 2 / 2")) << same.report;

    // A period four times as long decides later: the first moves are gone.
    lynd::ReplayResult other = replay(text, slower(sc.config_text));
    EXPECT_EQ(std::string::npos, other.report.find("differ (- recorded only, + what-if only): 0\n")) << other.report;
    EXPECT_NE(std::string::npos, other.report.find("  - 70.000 s  move ")) << other.report;
    EXPECT_NE(std::string::npos, other.report.find("client moves: 2 / 0")) << other.report;
}

// Path states are told whatever level the router logged at.
TEST_F(TraceReplayTest, WhatIfSeesPathStatesInATraceAtTheDefaultLogLevel) {
    lynd::Scenario sc = bundled("ps_weak_5g");
    sc.args = {};
    std::string text = record(sc);
    ASSERT_EQ(std::string::npos, text.find("into to WEAKLINK"));
    lynd::ReplayResult r = replay(text, slower(sc.config_text));
    size_t states = r.report.find("path state changes: ");
    ASSERT_NE(std::string::npos, states) << r.report;
    EXPECT_NE(0u, std::strtoul(r.report.c_str() + states + 20, nullptr, 10)) << r.report;
    EXPECT_NE(std::string::npos, r.report.find(" path ath")) << r.report;
}

TEST_F(TraceReplayTest, TheConfiguredTraceRotatesAtItsSizeAndItsPartsReplayChained) {
    lynd::Scenario sc = bundled("ps_weak_5g");
    std::string path = dir + "/trace";
    sc.config_text.insert(sc.config_text.find('{') + 1,
                          "\"record\": \"trace\", \"record_size\": 262144,");
    {
        lynd::SimNode node(sc);
        node.set_trace_dir(dir);
        (void)node.run("lynd", {});
    }
    std::string now = slurp(path), before = slurp(path + ".1");
    // The size counts the records; each file's header comes on top.
    EXPECT_GT(before.size(), 250000u);
    EXPECT_LE(before.size(), 262144u + before.find('\n') + 1);
    EXPECT_LE(now.size(), 262144u + now.find('\n') + 1);
    EXPECT_EQ(0u, now.find("{\"t\":")) << now.substr(0, 80);
    EXPECT_NE(std::string::npos, now.substr(0, now.find('\n')).find("\"start\":\"rotated\",\"part\":2"));
    lynd::ReplayResult r = replay(now);
    EXPECT_EQ(2, r.exit_status);
    EXPECT_NE(std::string::npos, r.report.find("the daemon's state at this file's start is not in the trace"))
        << r.report;
    lynd::ReplayResult whole = lynd::replay_trace(lynd::trace_files({path + ".1", path}), {});
    EXPECT_TRUE(whole.identical) << whole.report;

    // A difference in the second part is named by its part and line there.
    size_t at = now.rfind("\"fn\":\"bridgeStopAPS\"");
    ASSERT_NE(std::string::npos, at);
    std::string bad = now;
    bad.replace(at, 20, "\"fn\":\"bridgeStopAPX\"");
    std::ofstream(path) << bad;
    size_t line = static_cast<size_t>(std::count(bad.begin(), bad.begin() + static_cast<long>(at), '\n')) + 1;
    lynd::ReplayResult diff = lynd::replay_trace(lynd::trace_files({path + ".1", path}), {});
    EXPECT_NE(std::string::npos, diff.report.find("(part 2, line " + std::to_string(line) + ")")) << diff.report;
}

// The trace streams by: replaying one many times larger than the memory it
// may take holds no more than replaying a small one.
constexpr long kReplayGrowthKb = 16 * 1024;
constexpr size_t kBigTrace = 160u << 20;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitized = true;  // freed memory is held back in quarantine
#elif defined(__has_feature)
constexpr bool kSanitized = __has_feature(address_sanitizer);
#else
constexpr bool kSanitized = false;
#endif

// Every record of text with a member no replay reads, padded to make the
// file at least size bytes.
void write_padded(const std::string& text, const std::string& path, size_t size) {
    size_t lines = static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
    std::string pad = ",\"pad\":\"" + std::string(size / lines + 1, 'p') + "\"}\n";
    std::ofstream out(path, std::ios::binary);
    size_t pos = text.find('\n') + 1;
    out << text.substr(0, pos);
    while (pos < text.size()) {
        size_t end = text.find('\n', pos);
        out.write(text.data() + pos, static_cast<std::streamsize>(end - 1 - pos));
        out << pad;
        pos = end + 1;
    }
}

TEST_F(TraceReplayTest, ATraceManyTimesItsMemoryBoundReplaysWithinIt) {
    if (kSanitized)
        GTEST_SKIP() << "the sanitizer's quarantine holds freed memory";
    std::string small = dir + "/small", big = dir + "/big";
    std::string text = record(bundled("ps_weak_5g"));
    std::ofstream(small, std::ios::binary) << text;
    write_padded(text, big, kBigTrace);
    ASSERT_GE(slurp_size(big), kBigTrace);
    ReplayChild a = replay_in_child([&] { return lynd::replay_trace(lynd::trace_files({small}), {}); }, 60);
    ReplayChild b = replay_in_child([&] { return lynd::replay_trace(lynd::trace_files({big}), {}); }, 60);
    EXPECT_EQ(0, a.status) << a.report;
    EXPECT_EQ(0, b.status) << b.report;
    EXPECT_LT(b.max_rss_kb - a.max_rss_kb, kReplayGrowthKb) << a.max_rss_kb << " KiB, then " << b.max_rss_kb;
    std::printf("replay of %zu MiB: max RSS %ld KiB (%ld KiB for %zu KiB)\n", slurp_size(big) >> 20, b.max_rss_kb,
                a.max_rss_kb, text.size() >> 10);
}

}  // namespace
