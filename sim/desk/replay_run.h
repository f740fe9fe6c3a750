// lynd-sim replay FILE [--config OTHER.json] [daemon options]: the real
// daemon against seams that answer from a trace.
#pragma once
#include <string>
#include <vector>

#include "sim/timeline/timeline_trace.h"
#include "sim/desk/trace_reader_stream.h"

namespace lynd {

struct ReplayResult {
    bool identical = false;
    int exit_status = 0;
    size_t records = 0;
    std::string report;  // what to print
};

// Replays the trace of source (streamed, never held whole) against the real
// daemon; extra options go after the recorded ones.
ReplayResult replay_trace(const TraceSource& source, const std::vector<std::string>& extra);
// What-if: the same inputs under another configuration text (empty: the
// recorded one) and extra options; the report lists the decisions that differ.
// With timeline set, the run is watched for the timeline picture.
ReplayResult what_if_trace(const TraceSource& source, const std::string& config, const std::vector<std::string>& extra,
                           TimelineTrace* timeline = nullptr);

}  // namespace lynd
