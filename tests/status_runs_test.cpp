#include <gtest/gtest.h>
#include <json-c/json.h>

#include <fstream>
#include <sstream>

#include "core/decision_ring.h"
#include "sim/sim_node.h"
#include "scenario_text.h"

namespace {

struct Seen {
    int64_t at_ms;
    std::string what;
};

std::string read_file(const std::string& path) {
    std::ifstream in(path);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

// The bundled shadow scenario with its configuration's switch set, and
// with extra timeline entries.
std::string shadow_scenario(bool shadow, const std::string& extra_timeline = "") {
    json_object* sc = json_tokener_parse(read_file(LYND_SOURCE_DIR "/scenarios/ps_shadow.json").c_str());
    json_object* config = json_object_object_get(sc, "config");
    json_object_object_add(config, "shadow", json_object_new_boolean(shadow ? 1 : 0));
    json_object_object_del(sc, "expect");
    json_object* timeline = json_object_object_get(sc, "timeline");
    json_object* extra = json_tokener_parse(extra_timeline.empty() ? "[]" : extra_timeline.c_str());
    for (size_t i = 0; i < json_object_array_length(extra); i++)
        json_object_array_add(timeline, json_object_get(json_object_array_get_idx(extra, i)));
    json_object_put(extra);
    std::string text = json_object_to_json_string(sc);
    json_object_put(sc);
    return text;
}

struct RunResult {
    std::vector<Seen> decisions;
    size_t steering = 0;
    size_t calls_answered = 0;
};

RunResult run(const std::string& text) {
    lynd::Scenario sc;
    std::string error;
    EXPECT_TRUE(parse(text, &sc, &error)) << error;
    lynd::SimNode node(sc);
    lynd::RunOutcome o = node.run("lynd", {});
    EXPECT_EQ(0, o.exit_status);
    RunResult r;
    for (int k = 0; k < decision_count(); k++) {
        const decision* d = decision_at(k);
        r.decisions.push_back(Seen{d->at_ms, std::string(decision_kind_names[d->kind]) + " " + d->subject + " " +
                                                 d->from + " -> " + d->to + " (" + d->reason + ")"});
    }
    r.steering = node.steering_actions();
    for (const auto& c : node.bus_calls())
        r.calls_answered += c.status == 0;
    return r;
}

std::vector<std::string> up_to(const RunResult& r, int64_t ms) {
    std::vector<std::string> out;
    for (const auto& d : r.decisions)
        if (d.at_ms <= ms)
            out.push_back(std::to_string(d.at_ms) + " " + d.what);
    return out;
}

TEST(StatusRunsTest, ShadowDecidesTheFirstPeriodAsANormalRunAndSteersNothing) {
    RunResult normal = run(shadow_scenario(false));
    RunResult shadow = run(shadow_scenario(true));
    std::vector<std::string> first = up_to(normal, 10000);
    ASSERT_GE(first.size(), 5u);
    EXPECT_NE(std::string::npos, first.back().find("client 02:00:00:00:0a:01 ath02 -> ath12"));
    EXPECT_EQ(first, up_to(shadow, 10000));
    EXPECT_GT(normal.steering, 20u);
    EXPECT_EQ(0u, shadow.steering);
    // Later the bridge did not follow, so the runs part.
    EXPECT_NE(normal.decisions.size(), shadow.decisions.size());
}

TEST(StatusRunsTest, AThousandCallsInOneSecondAreAnsweredAndMoveNoTimer) {
    std::string calls = "[";
    const char* methods[] = {"status", "paths", "clients", "decisions", "explain"};
    for (int i = 0; i < 1000; i++) {
        std::string data = i % 5 == 4 ? "{\"mac\":\"02:00:00:00:0a:01\"}" : "{}";
        calls += std::string(i ? "," : "") + "{\"at\":25,\"ubus_call\":\"lynd\",\"method\":\"" + methods[i % 5] +
                 "\",\"data\":" + data + "}";
    }
    calls += "]";
    RunResult quiet = run(shadow_scenario(false));
    RunResult busy = run(shadow_scenario(false, calls));
    EXPECT_EQ(quiet.calls_answered + 1000, busy.calls_answered);
    ASSERT_EQ(quiet.decisions.size(), busy.decisions.size());
    EXPECT_EQ(up_to(quiet, INT64_MAX), up_to(busy, INT64_MAX));
}

}  // namespace
