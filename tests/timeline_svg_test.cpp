#include <expat.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <map>

#include "core/decision_ring.h"
#include "sim/sim_node.h"
#include "sim/svg_text.h"
#include "sim/timeline_trace.h"
#include "scenario_text.h"

namespace {

// What a real XML parser makes of a document: whether it is well formed,
// how many elements of each class it holds, and anything that reaches out.
struct Parsed {
    bool well_formed = false;
    std::map<std::string, int> classes;
    int scripts = 0;
    int outside_refs = 0;
    std::string root;
};

void on_start(void* data, const XML_Char* name, const XML_Char** atts) {
    auto* p = static_cast<Parsed*>(data);
    if (p->root.empty())
        p->root = name;
    p->scripts += std::strcmp(name, "script") == 0 || std::strcmp(name, "foreignObject") == 0;
    for (int i = 0; atts[i] != nullptr; i += 2) {
        std::string key = atts[i], value = atts[i + 1];
        if (key == "class")
            p->classes[value]++;
        bool is_ns = key == "xmlns" && value == "http://www.w3.org/2000/svg";
        if (!is_ns && (value.find("http") != std::string::npos || key.find("href") != std::string::npos ||
                       key.rfind("on", 0) == 0))
            p->outside_refs++;
    }
}

Parsed parse_svg(const std::string& svg) {
    Parsed p;
    XML_Parser parser = XML_ParserCreate("UTF-8");
    XML_SetUserData(parser, &p);
    XML_SetStartElementHandler(parser, on_start);
    p.well_formed = XML_Parse(parser, svg.data(), static_cast<int>(svg.size()), 1) == XML_STATUS_OK;
    XML_ParserFree(parser);
    return p;
}

lynd::TimelineTrace small_trace() {
    lynd::TimelineTrace t;
    t.title = "small";
    t.duration = 120;
    t.paths.push_back({"ath02", {{0, 60, 2}, {60, 120, 3}}, {{0, 100, 10}, {60, 50, 80}, {120, 40, 90}}});
    t.paths.push_back({"ath12", {{0, 120, 5}}, {{0, 866, 20}}});
    t.moves.push_back({30, "02:00:00:00:0a:01", "ath12", "ath02", "path abnormal"});
    t.moves.push_back({90, "02:00:00:00:0a:02", "", "ath12", "start-up"});
    t.markers.push_back({10, "bcast", "br-lan", "ath02"});
    t.markers.push_back({20, "preferred", "br-lan", ""});
    t.ticks.push_back({15, "link ath12 {\"rssi\": -90}"});
    return t;
}

TEST(TimelineSvgTest, APictureIsOneWellFormedDocumentWithAMarkPerMoveAndNothingFromOutside) {
    Parsed p = parse_svg(lynd::timeline_svg(small_trace()));
    ASSERT_TRUE(p.well_formed);
    EXPECT_EQ("svg", p.root);
    EXPECT_EQ(2, p.classes["move"]);
    EXPECT_EQ(3, p.classes["state"]);
    EXPECT_EQ(1, p.classes["bcast"]);
    EXPECT_EQ(1, p.classes["preferred"]);
    EXPECT_EQ(1, p.classes["event"]);
    EXPECT_EQ(3, p.classes["rate"]);  // a line per path and the legend's
    EXPECT_EQ(0, p.scripts);
    EXPECT_EQ(0, p.outside_refs);

    lynd::TimelineTrace empty;
    Parsed e = parse_svg(lynd::timeline_svg(empty));
    EXPECT_TRUE(e.well_formed);
    EXPECT_EQ(0, e.classes["move"]);
}

TEST(TimelineSvgTest, HostileNamesStayText) {
    lynd::TimelineTrace t = small_trace();
    std::string evil = "<script>alert('x')</script>&\"\x01\x7f\xff\xc3(";
    t.title = evil;
    t.paths[0].name = evil;
    t.moves[0].client = evil;
    t.markers[0].port = evil;
    t.ticks[0].label = evil + evil + evil;
    t.duration = std::nan("");
    t.paths[1].points[0].rate = INFINITY;
    std::string svg = lynd::timeline_svg(t);
    Parsed p = parse_svg(svg);
    ASSERT_TRUE(p.well_formed);
    EXPECT_EQ(0, p.scripts);
    EXPECT_EQ(std::string::npos, svg.find("nan"));
    EXPECT_EQ(std::string::npos, svg.find("inf"));
    EXPECT_EQ("&lt;a&gt;&amp;&quot;&apos;??", lynd::svg_escape("<a>&\"'\x01\xff"));
    EXPECT_EQ("ab\xe2\x80\xa6", lynd::svg_shorten("abc", 2));
}

TEST(TimelineSvgTest, ADayOfFivePathsStaysSmall) {
    lynd::TimelineTrace t;
    t.title = "day";
    t.duration = 86400;
    const char* names[] = {"eth1", "ath02", "ath12", "ath22", "ath32"};
    for (const char* n : names) {
        lynd::TracePath p{n, {}, {}};
        for (int s = 0; s < 86400; s++) {
            p.points.push_back({static_cast<double>(s), 400.0 + s % 97, static_cast<double>(s % 101)});
            if (s % 600 == 0)
                p.states.push_back({static_cast<double>(s), s + 600.0, 2 + (s / 600) % 4});
        }
        t.paths.push_back(p);
    }
    for (int m = 0; m < 2000; m++)
        t.moves.push_back({m * 43.0, "02:00:00:00:00:01", "ath02", "ath12", "better path"});
    std::string svg = lynd::timeline_svg(t);
    EXPECT_LT(svg.size(), 2u * 1024 * 1024);
    Parsed p = parse_svg(svg);
    ASSERT_TRUE(p.well_formed);
    EXPECT_EQ(2000, p.classes["move"]);
}

// The simulator's own picture of a run shows every move the daemon made.
TEST(TimelineSvgTest, ARunsPictureShowsEachMoveTheDaemonMade) {
    lynd::Scenario sc;
    std::string error;
    std::ifstream in(std::string(LYND_SOURCE_DIR) + "/scenarios/ps_weak_5g.json");
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    ASSERT_TRUE(parse(text, &sc, &error)) << error;
    lynd::SimNode node(sc);
    node.record_timeline();
    (void)node.run("lynd", {});
    int moves = 0;
    for (int k = 0; k < decision_count(); k++)
        moves += decision_at(k)->kind == DECISION_CLIENT_MOVE;
    lynd::TimelineTrace trace = node.timeline();
    ASSERT_EQ(2u, trace.paths.size());
    EXPECT_EQ("ath12", trace.paths[1].name);
    EXPECT_EQ(260.0, trace.duration);
    Parsed p = parse_svg(lynd::timeline_svg(trace));
    ASSERT_TRUE(p.well_formed);
    EXPECT_GE(moves, 4);  // each client away and back; the own entry follows the preferred port
    EXPECT_EQ(moves, p.classes["move"]);
    EXPECT_EQ(static_cast<int>(sc.timeline.size() + 2), p.classes["event"]);  // two clients join
}

}  // namespace
