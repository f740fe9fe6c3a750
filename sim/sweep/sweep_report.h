// The sweep's one table: scenarios run, invariants broken, and the
// distributions an operator asks for, with the flap guard off and on.
#pragma once
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "sim/sweep/sweep_run.h"

namespace lynd {

extern const char* const kSweepInvariants[];
extern const int kSweepInvariantCount;

struct SweepTotals {
    int scenarios = 0;
    std::map<std::string, int> broken;  // invariant -> scenarios that broke it
    SweepStats by_guard[2];             // off, on
};

void sweep_totals_add(SweepTotals* t, const SweepOutcome& o);
void sweep_print_table(std::FILE* out, const SweepTotals& t);
// "LABEL: INVARIANT at T s (N times): what", LABEL "seed K" or a file.
void sweep_print_violations(std::FILE* out, const std::string& label, const SweepOutcome& o);

}  // namespace lynd
