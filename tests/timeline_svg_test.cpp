#include <expat.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "core/decision_ring.h"
#include "sim/sim_node.h"
#include "sim/timeline/svg_text.h"
#include "sim/timeline/timeline_labels.h"
#include "sim/timeline/timeline_trace.h"
#include "scenario_text.h"

namespace {

// What a real XML parser makes of a document: whether it is well formed,
// how many elements of each class it holds, and anything that reaches out.
struct Parsed {
    bool well_formed = false;
    int elements = 0;
    std::map<std::string, int> classes;
    // The text under each element of a class, one string per element.
    std::map<std::string, std::vector<std::string>> texts;
    std::map<std::string, std::vector<std::string>> points;
    std::vector<std::string> open;  // the class each open element is in
    int scripts = 0;
    int outside_refs = 0;
    std::string root;
};

void on_start(void* data, const XML_Char* name, const XML_Char** atts) {
    auto* p = static_cast<Parsed*>(data);
    if (p->root.empty())
        p->root = name;
    p->elements++;
    std::string cls = p->open.empty() ? "" : p->open.back();
    p->scripts += std::strcmp(name, "script") == 0 || std::strcmp(name, "foreignObject") == 0;
    for (int i = 0; atts[i] != nullptr; i += 2) {
        std::string key = atts[i], value = atts[i + 1];
        if (key == "class") {
            p->classes[value]++;
            cls = value;
            p->texts[value].emplace_back();
        }
        if (key == "points")
            p->points[cls].push_back(value);
        bool is_ns = key == "xmlns" && value == "http://www.w3.org/2000/svg";
        if (!is_ns && (value.find("http") != std::string::npos || key.find("href") != std::string::npos ||
                       key.rfind("on", 0) == 0))
            p->outside_refs++;
    }
    p->open.push_back(cls);
}

void on_end(void* data, const XML_Char*) { static_cast<Parsed*>(data)->open.pop_back(); }

void on_text(void* data, const XML_Char* s, int len) {
    auto* p = static_cast<Parsed*>(data);
    if (!p->open.empty() && !p->open.back().empty())
        p->texts[p->open.back()].back().append(s, static_cast<size_t>(len));
}

Parsed parse_svg(const std::string& svg) {
    Parsed p;
    XML_Parser parser = XML_ParserCreate("UTF-8");
    XML_SetUserData(parser, &p);
    XML_SetElementHandler(parser, on_start, on_end);
    XML_SetCharacterDataHandler(parser, on_text);
    p.well_formed = XML_Parse(parser, svg.data(), static_cast<int>(svg.size()), 1) == XML_STATUS_OK;
    XML_ParserFree(parser);
    return p;
}

// The number of elements of each class named.
void expect_classes(Parsed& p, const std::map<std::string, int>& want) {
    for (const auto& w : want)
        EXPECT_EQ(w.second, p.classes[w.first]) << w.first;
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
    // A rate line per path and the legend's.
    expect_classes(p, {{"move", 2}, {"state", 3}, {"bcast", 1}, {"preferred", 1}, {"event", 1}, {"rate", 3},
                       {"movemark", 2}, {"moverow", 2}});
    EXPECT_EQ(0, p.scripts);
    EXPECT_EQ(0, p.outside_refs);

    lynd::TimelineTrace empty;
    Parsed e = parse_svg(lynd::timeline_svg(empty));
    EXPECT_TRUE(e.well_formed);
    EXPECT_EQ(0, e.classes["move"]);
}

TEST(TimelineSvgTest, HostileNamesStayText) {
    lynd::TimelineTrace t = small_trace();
    t.cpu.push_back({10, 50});
    t.cpu_threshold = 80;
    std::string evil = "<script>alert('x')</script>&\"\x01\x7f\xff\xc3(";
    t.title = evil;
    t.paths[0].name = evil;
    t.moves[0].client = evil;
    t.moves[0].reason = evil;
    t.markers[0].port = evil;
    t.ticks[0].label = evil + evil + evil;
    t.duration = std::nan("");
    t.paths[1].points[0].rate = INFINITY;
    std::string svg = lynd::timeline_svg(t);
    Parsed p = parse_svg(svg);
    ASSERT_TRUE(p.well_formed);
    EXPECT_EQ(0, p.scripts);
    ASSERT_EQ(2u, p.texts["moverow"].size());
    EXPECT_NE(std::string::npos, p.texts["moverow"][0].find("<script>alert('x')"));
    EXPECT_EQ(std::string::npos, svg.find("nan"));
    EXPECT_EQ(std::string::npos, svg.find("inf"));
    EXPECT_EQ("&lt;a&gt;&amp;&quot;&apos;??", lynd::svg_escape("<a>&\"'\x01\xff"));
    EXPECT_EQ("ab\xe2\x80\xa6", lynd::svg_shorten("abc", 2));
}

TEST(TimelineSvgTest, TheCpuLaneShowsTheSampledLoadAgainstTheThreshold) {
    lynd::TimelineTrace t = small_trace();
    t.cpu = {{10, 20}, {70, 95}};
    t.cpu_threshold = 90;
    Parsed p = parse_svg(lynd::timeline_svg(t));
    ASSERT_TRUE(p.well_formed);
    ASSERT_EQ(1u, p.points["cpu"].size());
    EXPECT_EQ(2, p.classes["threshold"]);  // the lane's line and the legend's
    ASSERT_EQ(1u, p.texts["thresholdlabel"].size());
    EXPECT_EQ("cpu_threshold 90 %", p.texts["thresholdlabel"][0]);

    t.cpu.clear();
    t.cpu_threshold = 0;
    Parsed off = parse_svg(lynd::timeline_svg(t));
    expect_classes(off, {{"cpu", 1}, {"threshold", 1}});  // the legend's only
}

// Each path lane has a rate scale and a utilisation scale, the CPU lane a
// percent scale: 0, half and the top, the top with its unit.
TEST(TimelineSvgTest, EveryLaneHasAValueScaleWithUnits) {
    Parsed p = parse_svg(lynd::timeline_svg(small_trace()));
    ASSERT_TRUE(p.well_formed);
    std::vector<std::string> rate = p.texts["ratescale"], util = p.texts["utilscale"], cpu = p.texts["cpuscale"];
    ASSERT_EQ(6u, rate.size());
    EXPECT_EQ("0", rate[0]);
    EXPECT_EQ("100 Mbit/s", rate[2]);  // ath02's top rate is 100
    EXPECT_EQ("1000 Mbit/s", rate[5]);  // ath12's 866, rounded up
    ASSERT_EQ(6u, util.size());
    EXPECT_EQ("100 %", util[2]);
    ASSERT_EQ(3u, cpu.size());
    EXPECT_EQ("50", cpu[1]);
}

TEST(TimelineSvgTest, SimultaneousMovesShareOneMarkThatCountsThem) {
    lynd::TimelineTrace t = small_trace();
    t.moves.clear();
    for (int k = 0; k < 3; k++)
        t.moves.push_back({30, "02:00:00:00:0a:0" + std::to_string(k), "ath12", "ath02", "path weak " + std::to_string(k)});
    t.moves.push_back({100, "02:00:00:00:0b:01", "ath02", "ath12", "better path"});
    Parsed p = parse_svg(lynd::timeline_svg(t));
    ASSERT_TRUE(p.well_formed);
    ASSERT_EQ(2, p.classes["movemark"]);
    ASSERT_EQ(2u, p.texts["badgetext"].size());
    EXPECT_EQ("#1-3 (3)", p.texts["badgetext"][0]);
    EXPECT_EQ("#4", p.texts["badgetext"][1]);
    ASSERT_EQ(4u, p.texts["moverow"].size());
    for (int k = 0; k < 3; k++) {
        const std::string& row = p.texts["moverow"][static_cast<size_t>(k)];
        EXPECT_NE(std::string::npos, row.find("02:00:00:00:0a:0" + std::to_string(k))) << row;
        EXPECT_NE(std::string::npos, row.find("path weak " + std::to_string(k))) << row;
    }
}

TEST(TimelineSvgTest, EventLabelsAreShortWordsNeverJson) {
    lynd::TimelineEntry link;
    link.kind = lynd::TimelineKind::LINK;
    link.name = "ath12";
    link.data = "{\"rssi\": -88}";
    EXPECT_EQ("link ath12 rssi -88", lynd::event_label(link));
    link.data = "{\"up\": false}";
    EXPECT_EQ("link ath12 down {\"up\": false}", lynd::event_detail(link));
    link.kind = lynd::TimelineKind::UBUS;
    link.name = "lynd.link_state";
    EXPECT_EQ("ubus lynd.link_state", lynd::event_label(link));
    EXPECT_EQ("02:..:0a:01", lynd::short_mac("02:00:00:00:0a:01"));

    lynd::TimelineTrace t = small_trace();
    t.ticks.push_back({16, "ubus lynd.x {\"a\": {\"b\": 1}}"});
    t.ticks.push_back({80, "{\"raw\": true}"});
    Parsed p = parse_svg(lynd::timeline_svg(t));
    ASSERT_TRUE(p.well_formed);
    ASSERT_FALSE(p.texts["eventlabel"].empty());
    for (const std::string& label : p.texts["eventlabel"])
        EXPECT_EQ(std::string::npos, label.find('{')) << label;
}

// The y of each point of a polyline.
std::vector<double> ys(const std::string& points) {
    std::vector<double> out;
    for (size_t i = points.find(','); i != std::string::npos; i = points.find(',', i + 1))
        out.push_back(std::stod(points.substr(i + 1)));
    return out;
}

TEST(TimelineSvgTest, TheRateFallsToZeroWhileTheLinkIsDown) {
    lynd::TimelineTrace t = small_trace();
    t.paths[1].points = {{0, 866, 20}, {40, 866, 20}, {50, 866, 20, false}, {90, 866, 20}};
    t.paths[0].states = {{0, 60, 2}, {60, 100, 1}, {100, 120, 2}};
    t.paths[0].points = {{0, 100, 10}, {50, 100, 10}, {80, 100, 10}, {110, 100, 10}};
    Parsed p = parse_svg(lynd::timeline_svg(t));
    ASSERT_TRUE(p.well_formed);
    ASSERT_EQ(2u, p.points["rate"].size());
    for (size_t lane = 0; lane < 2; lane++) {
        std::vector<double> y = ys(p.points["rate"][lane]);
        ASSERT_EQ(4u, y.size());
        EXPECT_EQ(y[0], y[1]);
        EXPECT_GT(y[2] - y[0], 60) << "lane " << lane << " stays up";  // the lane is 90 high
        EXPECT_EQ(y[0], y[3]);
    }
}

TEST(TimelineSvgTest, ADayIsSummedUpPerBucketInABoundedPicture) {
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
    for (int m = 0; m < 2000; m++) {
        t.moves.push_back({m * 43.0, "02:00:00:00:00:01", "ath02", "ath12", "better path"});
        t.ticks.push_back({m * 43.0, "link ath12 rssi -88"});
        t.markers.push_back({m * 43.0, "bcast", "br-lan", "ath02"});
    }
    t.cpu.push_back({10, 95});
    std::string svg = lynd::timeline_svg(t);
    EXPECT_LT(svg.size(), 1024u * 1024);
    Parsed p = parse_svg(svg);
    ASSERT_TRUE(p.well_formed);
    EXPECT_LT(p.elements, 8000);
    expect_classes(p, {{"move", 0}, {"event", 0}, {"movemark", 0}, {"countbar", 96}, {"bucketrow", 96},
                       {"moverow", 50}, {"ratescale", 5 * 3}, {"countscale", 3}});
    EXPECT_EQ(1u, p.points["cpu"].size());

    t.duration = 3600;  // an hour still shows every move
    Parsed hour = parse_svg(lynd::timeline_svg(t));
    EXPECT_EQ(0, hour.classes["countbar"]);
    EXPECT_GT(hour.classes["movemark"], 0);
}

// The simulator's own picture of a run shows every move the daemon made.
TEST(TimelineSvgTest, ARunsPictureShowsEachMoveTheDaemonMade) {
    lynd::Scenario sc = bundled("ps_weak_5g");
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
    EXPECT_EQ(moves, static_cast<int>(p.texts["moverow"].size()));
    for (const std::string& label : p.texts["eventlabel"])
        EXPECT_EQ(std::string::npos, label.find('{')) << label;
}

// A link the scenario takes down shows at rate 0 from then on, though the
// daemon keeps the rate it last measured.
TEST(TimelineSvgTest, ARunsPictureDropsTheRateOfALinkThatWentDown) {
    lynd::Scenario sc = bundled("ps_peer_lost");
    lynd::SimNode node(sc);
    node.record_timeline();
    (void)node.run("lynd", {});
    lynd::TimelineTrace trace = node.timeline();
    ASSERT_EQ(2u, trace.paths.size());
    const lynd::TracePath& lost = trace.paths[1];
    ASSERT_EQ("ath12", lost.name);
    for (const lynd::TracePoint& pt : lost.points)
        EXPECT_EQ(pt.t < 45, pt.link_up) << pt.t;
    EXPECT_GT(lost.points.back().rate, 0);  // what the daemon holds
    std::vector<double> y = ys(parse_svg(lynd::timeline_svg(trace)).points["rate"][1]);
    EXPECT_GT(y.back(), y[y.size() / 4]);
}

}  // namespace
