// lynd-sim replay FILE [--config OTHER.json] [daemon options]: the real
// daemon against seams that answer from a trace.
#pragma once
#include <string>
#include <vector>

#include "sim/timeline/timeline_trace.h"
#include "sim/desk/trace_reader.h"

namespace lynd {

struct ReplayResult {
    bool identical = false;
    int exit_status = 0;
    size_t records = 0;
    std::string report;  // what to print
};

// Reads a trace file whole and parses it; false with error on any fault.
bool trace_load(const char* path, Trace* trace, std::string* error);
// Reads the files of one recording (part 1 first) as one trace.
bool trace_load_parts(const std::vector<std::string>& paths, Trace* trace, std::string* error);
// Replays trace against the real daemon; extra options go after the
// recorded ones.
ReplayResult replay_trace(const Trace& trace, const std::vector<std::string>& extra);
// What-if: the same inputs under another configuration text (empty: the
// recorded one) and extra options; the report lists the decisions that differ.
// With timeline set, the run is watched for the timeline picture.
ReplayResult what_if_trace(const Trace& trace, const std::string& config, const std::vector<std::string>& extra,
                           TimelineTrace* timeline = nullptr);
// A daemon that exits from inside (a fatal error): the replay's report.
bool replay_active();
ReplayResult replay_conclude(int exit_status);

}  // namespace lynd
