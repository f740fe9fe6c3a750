// What a run looked like over virtual time, gathered by the simulator for
// the timeline picture. Times are seconds from the start of the run.
#pragma once
#include <string>
#include <vector>

namespace lynd {

// A path's state held from `from` to `to`; state numbered as the daemon
// numbers it (0 UNINITED .. 5 ABNORMAL).
struct TraceStateSpan {
    double from;
    double to;
    int state;
};

// Rate in Mbit/s, utilisation in percent, as the daemon last rated them;
// whether the link itself was up (the daemon keeps its last rate when not).
struct TracePoint {
    double t;
    double rate;
    double util;
    bool link_up = true;
};

struct TracePath {
    std::string name;
    std::vector<TraceStateSpan> states;
    std::vector<TracePoint> points;
};

// A client moved between two paths; a name that is no traced path (or
// empty) means the move came from or went to somewhere else.
struct TraceMove {
    double t;
    std::string client;
    std::string from;
    std::string to;
    std::string reason;
};

// A broadcast-port ("bcast") or preferred-port ("preferred") change.
struct TraceMarker {
    double t;
    std::string kind;
    std::string bridge;
    std::string port;
};

// One of the scenario's timeline events: a short label for the picture
// and, when there is more to say, the whole of it for the tooltip.
struct TraceTick {
    double t;
    std::string label;
    std::string detail{};
};

// CPU occupancy in percent as the daemon sampled it.
struct TraceCpuPoint {
    double t;
    double percent;
};

struct TimelineTrace {
    std::string title;
    double duration = 0;
    std::vector<TracePath> paths;
    std::vector<TraceMove> moves;
    std::vector<TraceMarker> markers;
    std::vector<TraceTick> ticks;
    std::vector<TraceCpuPoint> cpu;
    double cpu_threshold = 0;  // percent; 0: the guard is off and nothing is sampled
};

// One self-contained SVG document: no script, no outside reference.
std::string timeline_svg(const TimelineTrace& trace);

}  // namespace lynd
