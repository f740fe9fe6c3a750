#include "sim/sweep/sweep_report.h"

#include <algorithm>

namespace lynd {

const char* const kSweepInvariants[] = {"no_crash",      "hc_towards_live_path", "worse_path_evacuated",
                                        "preferred_live", "flap_budget",          "pool_agrees",
                                        "decisions_agree", "no_allocation",       "timer_runs"};
const int kSweepInvariantCount = sizeof kSweepInvariants / sizeof kSweepInvariants[0];

namespace {

void merge(SweepStats* into, const SweepStats& s) {
    into->hours += s.hours;
    into->client_hours += s.client_hours;
    into->moves += s.moves;
    into->returns += s.returns;
    into->steering_returns += s.steering_returns;
    into->preferred_changes += s.preferred_changes;
    into->runs += s.runs;
    into->evacuation_periods.insert(into->evacuation_periods.end(), s.evacuation_periods.begin(),
                                    s.evacuation_periods.end());
}

double per(double n, double d) { return d > 0 ? n / d : 0; }

// The nearest-rank percentile of sorted values.
int64_t percentile(const std::vector<int64_t>& sorted, int pct) {
    if (sorted.empty())
        return 0;
    size_t rank = (sorted.size() * static_cast<size_t>(pct) + 99) / 100;
    return sorted[rank == 0 ? 0 : rank - 1];
}

void row(std::FILE* out, const char* what, double off, double on, double all) {
    std::fprintf(out, "| %-46s | %9.2f | %9.2f | %9.2f |\n", what, off, on, all);
}

std::string evacuation_cell(std::vector<int64_t> v) {
    std::sort(v.begin(), v.end());
    char cell[64];
    std::snprintf(cell, sizeof cell, "%lld/%lld/%lld", static_cast<long long>(percentile(v, 50)),
                  static_cast<long long>(percentile(v, 99)), static_cast<long long>(v.empty() ? 0 : v.back()));
    return cell;
}

}  // namespace

void sweep_totals_add(SweepTotals* t, const SweepOutcome& o) {
    t->scenarios++;
    for (const auto& v : o.violations)
        t->broken[v.invariant]++;
    merge(&t->by_guard[o.stats.guard ? 1 : 0], o.stats);
}

void sweep_print_table(std::FILE* out, const SweepTotals& t) {
    SweepStats all;
    merge(&all, t.by_guard[0]);
    merge(&all, t.by_guard[1]);
    std::fprintf(out, "| %-46s | %9s | %9s | %9s |\n", "scenarios run", "", "", std::to_string(t.scenarios).c_str());
    std::fprintf(out, "|%s|%s|%s|%s|\n", std::string(48, '-').c_str(), std::string(11, '-').c_str(),
                 std::string(11, '-').c_str(), std::string(11, '-').c_str());
    for (int i = 0; i < kSweepInvariantCount; i++) {
        auto it = t.broken.find(kSweepInvariants[i]);
        std::string what = std::string("violated: ") + kSweepInvariants[i];
        std::fprintf(out, "| %-46s | %9s | %9s | %9d |\n", what.c_str(), "", "", it == t.broken.end() ? 0 : it->second);
    }
    const SweepStats& off = t.by_guard[0];
    const SweepStats& on = t.by_guard[1];
    std::fprintf(out, "| %-46s | %9s | %9s | %9s |\n", "flap guard", "off", "on", "all");
    row(out, "virtual hours", off.hours, on.hours, all.hours);
    row(out, "moves per client-hour", per(off.moves, off.client_hours), per(on.moves, on.client_hours),
        per(all.moves, all.client_hours));
    row(out, "A->B->A returns within 5 min per client-hour", per(off.returns, off.client_hours),
        per(on.returns, on.client_hours), per(all.returns, all.client_hours));
    row(out, "  of which back by steering, not evacuation", per(off.steering_returns, off.client_hours),
        per(on.steering_returns, on.client_hours), per(all.steering_returns, all.client_hours));
    row(out, "preferred-port changes per hour", per(off.preferred_changes, off.hours),
        per(on.preferred_changes, on.hours), per(all.preferred_changes, all.hours));
    row(out, "period runs per hour", per(off.runs, off.hours), per(on.runs, on.hours), per(all.runs, all.hours));
    std::fprintf(out, "| %-46s | %9s | %9s | %9s |\n", "ABNORMAL/UNLINK to last client off p50/p99/max",
                 evacuation_cell(off.evacuation_periods).c_str(), evacuation_cell(on.evacuation_periods).c_str(),
                 evacuation_cell(all.evacuation_periods).c_str());
    std::fprintf(out, "| %-46s | %9zu | %9zu | %9zu |\n", "  (periods; paths emptied)", off.evacuation_periods.size(),
                 on.evacuation_periods.size(), all.evacuation_periods.size());
}

void sweep_print_violations(std::FILE* out, const std::string& label, const SweepOutcome& o) {
    for (size_t i = 0; i < o.violations.size(); i++)
        std::fprintf(out, "%s: %s at %lld s (%zu times): %s\n", label.c_str(),
                     o.violations[i].invariant.c_str(), static_cast<long long>(o.violations[i].at_ms / 1000),
                     o.counts[i], o.violations[i].what.c_str());
}

}  // namespace lynd
