// The two views of a run: every event and move for runs up to an hour,
// counts per time bucket past it; each followed by its table of moves.
#pragma once
#include <string>

#include "sim/timeline/timeline_draw.h"

namespace lynd {

constexpr double kSummaryAfter = 3600;  // seconds of run that still fit the detailed view
constexpr size_t kDetailTableRows = 200;
constexpr size_t kSummaryTableRows = 50;

// Each draws into out below the lanes' top and returns where its table ends.
double draw_detail(std::string& out, const TimelineTrace& tr, const Layout& l);
double draw_summary(std::string& out, const TimelineTrace& tr, const Layout& l);

// A numbered row per move (the number its mark shows), at most max_rows;
// a line saying how many more there were. Returns the y under the table.
double moves_table(std::string& out, const TimelineTrace& tr, double top, size_t max_rows);

}  // namespace lynd
