// Each sweep invariant, fed a hand-made run that breaks it, reports it;
// the same run without the fault, or with the rule that allows it, passes.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "sim/sweep/sweep_invariants.h"

namespace {

using lynd::PeriodView;
using lynd::SweepDecision;
using lynd::SweepEntry;
using lynd::SweepFacts;
using lynd::SweepHistory;
using lynd::SweepViolation;

const char* const kA = "02:00:00:00:0a:01";

SweepFacts facts() {
    SweepFacts f;
    f.paths = {"ath02", "ath12", "ath22"};
    f.period_ms = 10000;
    f.duration_ms = 3600 * 1000;
    return f;
}

// Both paths NORMAL, one client on ath12 agreeing with the bridge, the bus
// answering.
PeriodView calm(int64_t at_ms = 100000) {
    PeriodView v;
    v.at_ms = at_ms;
    v.answered = true;
    v.paths = {{"ath02", "NORMAL"}, {"ath12", "NORMAL"}};
    v.clients = {{kA, "ath12"}};
    v.hc = {{kA, "ath12"}};
    v.pool_used = 1;
    v.pool_size = 256;
    v.preferred = "ath12";
    return v;
}

SweepDecision move(int64_t at_s, const std::string& from, const std::string& to,
                   const std::string& reason = "better path") {
    return SweepDecision{at_s, "client", kA, from, to, reason};
}

struct Case {
    const char* name;
    const char* invariant;  // expected, or "" for none
    std::function<void(SweepFacts*, SweepHistory*, PeriodView*)> make;
};

std::vector<std::string> broken(const Case& c) {
    SweepFacts f = facts();
    SweepHistory h{calm(90000)};
    PeriodView v = calm();
    c.make(&f, &h, &v);
    std::vector<SweepViolation> out;
    lynd::sweep_check_period(f, h, v, &out);
    std::vector<std::string> names;
    for (const auto& x : out)
        names.push_back(x.invariant);
    return names;
}

const Case kCases[] = {
    {"calm run", "", [](SweepFacts*, SweepHistory*, PeriodView*) {}},
    {"write towards a port that is no path", "hc_towards_live_path",
     [](SweepFacts*, SweepHistory*, PeriodView* v) { v->writes = {{kA, "ath1"}}; }},
    {"write towards a path not live", "hc_towards_live_path",
     [](SweepFacts*, SweepHistory*, PeriodView* v) {
         v->paths[0].state = "UNLINK";
         v->writes = {{kA, "ath02.10"}};
     }},
    {"write towards a VLAN of a live path", "",
     [](SweepFacts*, SweepHistory*, PeriodView* v) { v->writes = {{kA, "ath12.20"}}; }},
    {"client left on an ABNORMAL path", "worse_path_evacuated",
     [](SweepFacts*, SweepHistory*, PeriodView* v) { v->paths[1].state = "ABNORMAL"; }},
    {"excluded client left on an ABNORMAL path", "",
     [](SweepFacts* f, SweepHistory*, PeriodView* v) {
         f->excluded = {kA};
         v->paths[1].state = "ABNORMAL";
     }},
    {"client pinned to its WEAKLINK path", "",
     [](SweepFacts* f, SweepHistory*, PeriodView* v) {
         f->pinned = {{kA, "ath12"}};
         v->paths[1].state = "WEAKLINK";
     }},
    {"client pinned to another ABNORMAL path", "",
     [](SweepFacts* f, SweepHistory*, PeriodView* v) {
         f->pinned = {{kA, "ath02"}};
         v->paths = {{"ath02", "ABNORMAL"}, {"ath12", "ABNORMAL"}, {"ath22", "NORMAL"}};
         v->preferred = "ath22";
     }},
    {"client pinned to a downed path", "worse_path_evacuated",
     [](SweepFacts* f, SweepHistory*, PeriodView* v) {
         f->pinned = {{kA, "ath02"}};
         v->paths = {{"ath02", "UNLINK"}, {"ath12", "ABNORMAL"}, {"ath22", "NORMAL"}};
         v->preferred = "ath22";
     }},
    {"client on a WEAKLINK path held longer ago than a hold lasts", "worse_path_evacuated",
     [](SweepFacts* f, SweepHistory* h, PeriodView* v) {
         f->guard = true;
         f->guard_hold_ms = 5000;
         h->front().decisions = {SweepDecision{1, "client_held", kA, "ath12", "ath02", "flap guard"}};
         v->paths[1].state = "WEAKLINK";
     }},
    {"client on a WEAKLINK path while its hold lasts", "",
     [](SweepFacts* f, SweepHistory* h, PeriodView* v) {
         f->guard = true;
         f->guard_hold_ms = 600 * 1000;
         h->front().decisions = {SweepDecision{90, "client_held", kA, "ath12", "ath02", "flap guard"}};
         v->paths[1].state = "WEAKLINK";
     }},
    {"no path NORMAL or WEAKLINK: nothing to evacuate to", "",
     [](SweepFacts*, SweepHistory*, PeriodView* v) {
         v->paths[0].state = "ABNORMAL";
         v->paths[1].state = "ABNORMAL";
         v->preferred = "ath12";
     }},
    {"preferred port that is no path", "preferred_live",
     [](SweepFacts*, SweepHistory*, PeriodView* v) { v->preferred = "ath1"; }},
    {"preferred port down while another is NORMAL", "preferred_live",
     [](SweepFacts*, SweepHistory*, PeriodView* v) {
         v->paths[1].state = "UNLINK";
         v->clients.clear();
         v->hc.clear();
     }},
    {"one move over the hour's budget", "flap_budget",
     [](SweepFacts* f, SweepHistory* h, PeriodView* v) {
         f->guard = true;
         f->moves_per_hour = 2;
         h->front().decisions = {move(30, "ath12", "ath02"), move(60, "ath02", "ath12")};
         v->decisions = {move(95, "ath12", "ath02")};
         v->hc = {{kA, "ath02"}};
         v->clients = {{kA, "ath02"}};
         v->writes = {{kA, "ath02"}};
         v->moves = 1;
     }},
    {"evacuations beyond the budget", "",
     [](SweepFacts* f, SweepHistory* h, PeriodView* v) {
         f->guard = true;
         f->moves_per_hour = 2;
         h->front().decisions = {move(30, "ath12", "ath02"), move(60, "ath02", "ath12")};
         v->decisions = {move(95, "ath12", "ath02", "path abnormal")};
         v->hc = {{kA, "ath02"}};
         v->clients = {{kA, "ath02"}};
         v->writes = {{kA, "ath02"}};
         v->moves = 1;
     }},
    {"more records than the pool holds", "pool_agrees",
     [](SweepFacts*, SweepHistory*, PeriodView* v) { v->pool_used = 257; }},
    {"record on another path than its entry", "pool_agrees",
     [](SweepFacts*, SweepHistory*, PeriodView* v) { v->hc = {{kA, "ath02"}}; }},
    {"record without an entry", "pool_agrees", [](SweepFacts*, SweepHistory*, PeriodView* v) { v->hc.clear(); }},
    {"record without an entry after a flush", "",
     [](SweepFacts*, SweepHistory*, PeriodView* v) {
         v->hc.clear();
         v->flushed = true;
     }},
    {"moves counted and none listed", "decisions_agree",
     [](SweepFacts*, SweepHistory*, PeriodView* v) { v->moves = 1; }},
    {"move listed and no entry written", "decisions_agree",
     [](SweepFacts*, SweepHistory*, PeriodView* v) {
         v->decisions = {move(95, "ath02", "ath12")};
         v->moves = 1;
     }},
    {"an allocation in the run", "no_allocation",
     [](SweepFacts*, SweepHistory*, PeriodView* v) { v->allocations = 1; }},
    {"three periods without a run", "timer_runs",
     [](SweepFacts*, SweepHistory* h, PeriodView*) { h->front().at_ms = 70000; }},
};

class SweepInvariant : public ::testing::TestWithParam<Case> {};

TEST_P(SweepInvariant, ReportsOnlyWhatBroke) {
    const Case& c = GetParam();
    std::vector<std::string> names = broken(c);
    if (std::string(c.invariant).empty())
        EXPECT_TRUE(names.empty()) << c.name << ": " << (names.empty() ? "" : names.front());
    else
        EXPECT_EQ(std::vector<std::string>{c.invariant}, names) << c.name;
}

INSTANTIATE_TEST_SUITE_P(Cases, SweepInvariant, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<Case>& i) { return "case" + std::to_string(i.index); });

TEST(SweepInvariantEnd, ATimerThatStoppedBeforeTheEndIsReported) {
    SweepFacts f = facts();
    std::vector<SweepViolation> out;
    lynd::check_timer_at_end(f, SweepHistory{calm(100000)}, 200000, &out);
    ASSERT_EQ(1u, out.size());
    EXPECT_EQ("timer_runs", out[0].invariant);
    out.clear();
    lynd::check_timer_at_end(f, SweepHistory{calm(190000)}, 200000, &out);
    EXPECT_TRUE(out.empty());
}

TEST(SweepBasePort, AVlanInterfaceIsItsPath) {
    EXPECT_EQ("ath12", lynd::sweep_base_port("ath12.10"));
    EXPECT_EQ("ath12", lynd::sweep_base_port("ath12"));
    EXPECT_EQ("", lynd::sweep_base_port(""));
}

}  // namespace
