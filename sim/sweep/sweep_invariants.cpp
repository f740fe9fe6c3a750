#include "sim/sweep/sweep_invariants.h"

#include <algorithm>
#include <map>

namespace lynd {

namespace {

const char* const kStates[] = {"UNINITED", "UNLINK", "NORMAL", "WEAKLINK", "WEAKLINK+ABNORMAL", "ABNORMAL"};
constexpr int kUnknown = 99;
constexpr int kNormal = 2;
constexpr int kWeak = 3;
constexpr int64_t kHourMs = 3600 * 1000;
constexpr int64_t kHourS = 3600;

int rank(const std::string& state) {
    for (int i = 0; i < 6; i++)
        if (state == kStates[i])
            return i;
    return kUnknown;
}

bool live(int r) { return r > 1 && r != kUnknown; }

int state_of(const PeriodView& v, const std::string& path) {
    for (const auto& p : v.paths)
        if (p.name == path)
            return rank(p.state);
    return kUnknown;
}

// The lowest state among live paths; kUnknown when none is live.
int best_state(const PeriodView& v) {
    int best = kUnknown;
    for (const auto& p : v.paths)
        if (live(rank(p.state)))
            best = std::min(best, rank(p.state));
    return best;
}

bool configured(const SweepFacts& f, const std::string& port) {
    return std::find(f.paths.begin(), f.paths.end(), sweep_base_port(port)) != f.paths.end();
}

bool excluded(const SweepFacts& f, const std::string& mac) {
    return std::find(f.excluded.begin(), f.excluded.end(), mac) != f.excluded.end();
}

// A client pinned to a live path goes nowhere else: an evacuation leaves
// it where it is.
bool pinned_live(const SweepFacts& f, const PeriodView& v, const std::string& mac) {
    for (const auto& p : f.pinned)
        if (p.first == mac)
            return live(state_of(v, p.second));  // the first rule of a MAC holds
    return false;
}

bool decided(const PeriodView& v, const char* kind, const std::string& subject) {
    return std::any_of(v.decisions.begin(), v.decisions.end(), [&](const SweepDecision& d) {
        return d.kind == kind && (subject.empty() || d.subject == subject);
    });
}

// Moves the flap guard may hold: all but those off an ABNORMAL or downed
// path.
bool guarded_move(const SweepDecision& d) {
    return d.kind == "client" && d.reason != "path abnormal" && d.reason != "path unlinked";
}

void add(std::vector<SweepViolation>* out, const char* inv, const PeriodView& v, const std::string& what) {
    out->push_back(SweepViolation{inv, v.at_ms, what});
}

}  // namespace

std::string sweep_base_port(const std::string& port) {
    size_t dot = port.find('.');
    return dot == std::string::npos ? port : port.substr(0, dot);
}

void check_hc_towards_live_path(const SweepFacts& f, const PeriodView& now, std::vector<SweepViolation>* out) {
    for (const auto& w : now.writes) {
        if (!configured(f, w.port))
            add(out, "hc_towards_live_path", now, "entry of " + w.mac + " written towards " + w.port + ", not a path");
        else if (now.answered && !live(state_of(now, sweep_base_port(w.port))))
            add(out, "hc_towards_live_path", now, "entry of " + w.mac + " written towards " + w.port + ", not live");
    }
    for (const auto& w : now.writes_between)
        if (!configured(f, w.port))
            add(out, "hc_towards_live_path", now, "entry of " + w.mac + " written towards " + w.port + ", not a path");
}

// A hold is listed once for as long as it lasts: the client's held moves
// within the guard's longest hold.
bool held_lately(const SweepFacts& f, const SweepHistory& h, const PeriodView& now, const std::string& mac) {
    if (decided(now, "client_held", mac))
        return true;
    for (auto v = h.rbegin(); v != h.rend() && v->at_ms >= now.at_ms - f.guard_hold_ms; ++v)
        if (decided(*v, "client_held", mac))
            return true;
    return false;
}

void check_worse_path_evacuated(const SweepFacts& f, const SweepHistory& h, const PeriodView& now,
                                std::vector<SweepViolation>* out) {
    int best = best_state(now);
    if (!now.answered || (best != kNormal && best != kWeak))
        return;
    for (const auto& c : now.clients) {
        int s = state_of(now, sweep_base_port(c.path));
        if (!live(s) || s == kUnknown || s <= best || excluded(f, c.mac) || pinned_live(f, now, c.mac))
            continue;
        if (s == kWeak && f.guard && held_lately(f, h, now, c.mac))
            continue;
        add(out, "worse_path_evacuated", now,
            c.mac + " left on " + c.path + " (" + kStates[s] + ") while the best path is " + kStates[best]);
    }
}

void check_preferred_live(const SweepFacts& f, const PeriodView& now, std::vector<SweepViolation>* out) {
    if (now.preferred.empty())
        return;
    if (!configured(f, now.preferred)) {
        add(out, "preferred_live", now, "preferred port " + now.preferred + " is not a path");
        return;
    }
    int best = best_state(now);
    if (now.answered && (best == kNormal || best == kWeak) && !live(state_of(now, sweep_base_port(now.preferred))))
        add(out, "preferred_live", now, "preferred port " + now.preferred + " is not live");
}

void check_flap_budget(const SweepFacts& f, const SweepHistory& h, const PeriodView& now,
                       std::vector<SweepViolation>* out) {
    if (!f.guard || f.moves_per_hour <= 0)
        return;
    for (const auto& d : now.decisions) {
        if (!guarded_move(d))
            continue;
        // Guarded moves of this client in the hour that ends with d.
        int n = 0;
        auto count = [&](const PeriodView& v) {
            for (const auto& e : v.decisions)
                n += guarded_move(e) && e.subject == d.subject && e.at_s > d.at_s - kHourS && e.at_s <= d.at_s;
        };
        for (const auto& v : h)
            if (v.at_ms > now.at_ms - 2 * kHourMs)
                count(v);
        count(now);
        if (n > f.moves_per_hour)
            add(out, "flap_budget", now,
                d.subject + " made " + std::to_string(n) + " moves in an hour, budget " +
                    std::to_string(f.moves_per_hour));
    }
}

// A move sends the client by the node's best path while its record joins
// its own best's list; the next sync files the record under the entry.
bool moved_by_node_best(const PeriodView& now, const std::string& mac) {
    std::string best = sweep_base_port(now.preferred);
    return std::any_of(now.writes.begin(), now.writes.end(),
                       [&](const SweepEntry& w) { return w.mac == mac && sweep_base_port(w.port) == best; });
}

void check_pool_agrees(const SweepFacts&, const PeriodView& now, std::vector<SweepViolation>* out) {
    if (!now.answered)
        return;
    if (now.pool_used > now.pool_size || static_cast<int>(now.clients.size()) > now.pool_size)
        add(out, "pool_agrees", now,
            std::to_string(now.pool_used) + " records in use of " + std::to_string(now.pool_size));
    if (now.flushed)
        return;
    bool preferred_moved = decided(now, "preferred_port", "");
    std::multimap<std::string, std::string> table;
    for (const auto& e : now.hc)
        table.emplace(e.mac, sweep_base_port(e.port));
    for (const auto& c : now.clients) {
        auto range = table.equal_range(c.mac);
        bool agrees = std::any_of(range.first, range.second, [&](const auto& kv) { return kv.second == c.path; });
        if (range.first == range.second)
            add(out, "pool_agrees", now, c.mac + " has a record on " + c.path + " and no bridge entry");
        else if (!agrees && !preferred_moved && !moved_by_node_best(now, c.mac))
            add(out, "pool_agrees", now,
                c.mac + " has a record on " + c.path + ", its entry points at " + range.first->second);
    }
}

void check_decisions_agree(const SweepFacts&, const PeriodView& now, std::vector<SweepViolation>* out) {
    if (!now.answered || now.decisions_lost)
        return;
    uint64_t listed = 0;
    for (const auto& d : now.decisions) {
        if (d.kind != "client")
            continue;
        listed++;
        bool written = std::any_of(now.writes.begin(), now.writes.end(), [&](const SweepEntry& w) { return w.mac == d.subject; }) ||
                       std::any_of(now.writes_between.begin(), now.writes_between.end(),
                                   [&](const SweepEntry& w) { return w.mac == d.subject; });
        if (!written)
            add(out, "decisions_agree", now, "move of " + d.subject + " to " + d.to + " listed, no entry written");
    }
    if (listed != now.moves)
        add(out, "decisions_agree", now,
            "counters grew by " + std::to_string(now.moves) + " moves, decisions list " + std::to_string(listed));
}

void check_no_allocation(const SweepFacts&, const PeriodView& now, std::vector<SweepViolation>* out) {
    if (now.allocations != 0)
        add(out, "no_allocation", now, "the period run allocated " + std::to_string(now.allocations) + " times");
}

void check_timer_runs(const SweepFacts& f, const SweepHistory& h, const PeriodView& now,
                      std::vector<SweepViolation>* out) {
    int64_t before = h.empty() ? 0 : h.back().at_ms;
    if (now.at_ms - before > 2 * f.period_ms)
        add(out, "timer_runs", now,
            "no period run for " + std::to_string((now.at_ms - before) / 1000) + " s");
}

void check_timer_at_end(const SweepFacts& f, const SweepHistory& h, int64_t end_ms, std::vector<SweepViolation>* out) {
    int64_t last = h.empty() ? 0 : h.back().at_ms;
    if (end_ms - last > 2 * f.period_ms)
        out->push_back(SweepViolation{"timer_runs", end_ms,
                                      "no period run in the last " + std::to_string((end_ms - last) / 1000) + " s"});
}

void sweep_check_period(const SweepFacts& f, const SweepHistory& h, const PeriodView& now,
                        std::vector<SweepViolation>* out) {
    check_hc_towards_live_path(f, now, out);
    check_worse_path_evacuated(f, h, now, out);
    check_preferred_live(f, now, out);
    check_flap_budget(f, h, now, out);
    check_pool_agrees(f, now, out);
    check_decisions_agree(f, now, out);
    check_no_allocation(f, now, out);
    check_timer_runs(f, h, now, out);
}

}  // namespace lynd
