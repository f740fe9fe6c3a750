// The promises a sweep checks after every period run, each resting on a
// documented rule of the daemon. A checker adds what it finds to out;
// history holds the views before now, oldest first.
#pragma once
#include <vector>

#include "sim/sweep/sweep_view.h"

namespace lynd {

using SweepHistory = std::vector<PeriodView>;

// Every hc entry the run wrote names a configured path (a VLAN interface
// PATH.VID counts as PATH), and one live at that run: destinations are the
// node's or a client's best path, chosen among live paths only, or the
// best path an evacuation moves to.
void check_hc_towards_live_path(const SweepFacts& f, const PeriodView& now, std::vector<SweepViolation>* out);

// When the best live path is NORMAL or WEAKLINK, no client is left on a
// live path in a worse state after the run: the evacuation step moves the
// clients of every worse path at once. Kept: excluded clients, clients
// pinned to a live path (any live state: the pin keeps them off every
// other path), and clients whose move the flap guard holds (it
// holds steering off a WEAKLINK path, never an evacuation off an ABNORMAL
// one; a hold is listed once while it lasts).
void check_worse_path_evacuated(const SweepFacts& f, const SweepHistory& h, const PeriodView& now,
                                std::vector<SweepViolation>* out);

// The bridge's preferred port is unset or a configured path; it is a live
// one whenever some path is NORMAL or WEAKLINK (the preferred port is the
// best path chosen among live paths; with none usable it stays).
void check_preferred_live(const SweepFacts& f, const PeriodView& now, std::vector<SweepViolation>* out);

// With the flap guard's moves_per_hour, no client makes more guarded moves
// than that in any hour. Evacuations off an ABNORMAL or downed path are
// never held, so they are not counted here.
void check_flap_budget(const SweepFacts& f, const SweepHistory& h, const PeriodView& now,
                       std::vector<SweepViolation>* out);

// The pool never holds more records than its size, and each record sits on
// the path its bridge entry points at (a flush, or the bridge's own entry
// following a preferred-port change in this run, excepted).
void check_pool_agrees(const SweepFacts& f, const PeriodView& now, std::vector<SweepViolation>* out);

// The moves counter grew by the client moves the decisions list, and every
// move of the run wrote that client's entry.
void check_decisions_agree(const SweepFacts& f, const PeriodView& now, std::vector<SweepViolation>* out);

// A period run allocates nothing on the heap.
void check_no_allocation(const SweepFacts& f, const PeriodView& now, std::vector<SweepViolation>* out);

// The period timer keeps running: runs at most two periods apart (a
// configure event restarts it), the first within two periods of start.
void check_timer_runs(const SweepFacts& f, const SweepHistory& h, const PeriodView& now,
                      std::vector<SweepViolation>* out);
// At the end: the last run was no more than two periods before it.
void check_timer_at_end(const SweepFacts& f, const SweepHistory& h, int64_t end_ms, std::vector<SweepViolation>* out);

// All of the above for one view.
void sweep_check_period(const SweepFacts& f, const SweepHistory& h, const PeriodView& now,
                        std::vector<SweepViolation>* out);

// The path interface a destination names: "ath12.10" is ath12.
std::string sweep_base_port(const std::string& port);

}  // namespace lynd
