// The shrinker keeps only what the failure needs: the run cut short after
// it, the one event, client and path it depends on; the scenario it was
// given stays as it was.
#include <gtest/gtest.h>

#include <string>

#include "sim/sweep/sweep_generate.h"
#include "sim/sweep/sweep_shrink.h"

namespace {

json_object* member(json_object* o, const char* key) {
    json_object* v = nullptr;
    return json_object_object_get_ex(o, key, &v) ? v : nullptr;
}

bool has_item(json_object* array, const char* key, const std::string& value) {
    for (size_t i = 0; array != nullptr && i < json_object_array_length(array); i++) {
        json_object* v = member(json_object_array_get_idx(array, i), key);
        if (v != nullptr && value == json_object_get_string(v))
            return true;
    }
    return false;
}

const char* const kClient = "02:00:00:00:0a:99";

// The "failure": a bus outage at 123 s, one client, and the 2.4G path.
bool still_breaks(json_object* doc) {
    return has_item(member(doc, "timeline"), "bus", "down") && has_item(member(doc, "clients"), "mac", kClient) &&
           member(member(member(doc, "config"), "interfaces"), "ath02") != nullptr;
}

json_object* seeded() {
    // Seed 2 draws 2.4G and 5G backhauls, clients and a busy timeline.
    json_object* doc = lynd::sweep_generate(2, 3600);
    json_object* outage = json_tokener_parse(R"({"at": 123, "bus": "down"})");
    json_object_array_add(member(doc, "timeline"), outage);
    json_object* client = json_tokener_parse(R"({"mac": "02:00:00:00:0a:99", "port": "ath0", "mbps": 5, "join": 100})");
    json_object_array_add(member(doc, "clients"), client);
    return doc;
}

TEST(SweepShrink, KeepsOnlyWhatTheFailureNeeds) {
    json_object* doc = seeded();
    ASSERT_NE(nullptr, member(member(member(doc, "config"), "interfaces"), "ath12"));
    size_t events = json_object_array_length(member(doc, "timeline"));
    ASSERT_GT(events, 10u);
    int runs = 0;
    json_object* small = lynd::sweep_shrink(doc, 123000, [&](json_object* d) {
        runs++;
        return still_breaks(d);
    });
    EXPECT_TRUE(still_breaks(small));
    EXPECT_EQ(1u, json_object_array_length(member(small, "timeline")));
    EXPECT_EQ(1u, json_object_array_length(member(small, "clients")));
    EXPECT_EQ(nullptr, member(member(member(small, "config"), "interfaces"), "ath12"));
    EXPECT_EQ(nullptr, member(member(small, "links"), "ath12"));
    int64_t period = json_object_get_int64(member(member(member(small, "config"), "param"), "period"));
    EXPECT_EQ(123 + 2 * period, json_object_get_int64(member(small, "duration")));
    EXPECT_EQ(events, json_object_array_length(member(doc, "timeline")));
    EXPECT_LT(runs, 400);
    json_object_put(small);
    json_object_put(doc);
}

TEST(SweepShrink, AFailureThatNeedsEverythingKeepsEverything) {
    json_object* doc = seeded();
    std::string before = json_object_to_json_string(doc);
    json_object* same = lynd::sweep_shrink(doc, 3600000, [&](json_object* d) {
        return before == json_object_to_json_string(d);
    });
    EXPECT_EQ(before, json_object_to_json_string(same));
    json_object_put(same);
    json_object_put(doc);
}

}  // namespace
