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

// Rate in Mbit/s, utilisation in percent, as the daemon last rated them.
struct TracePoint {
    double t;
    double rate;
    double util;
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

// One of the scenario's timeline events.
struct TraceTick {
    double t;
    std::string label;
};

struct TimelineTrace {
    std::string title;
    double duration = 0;
    std::vector<TracePath> paths;
    std::vector<TraceMove> moves;
    std::vector<TraceMarker> markers;
    std::vector<TraceTick> ticks;
};

// One self-contained SVG document: no script, no outside reference.
std::string timeline_svg(const TimelineTrace& trace);

}  // namespace lynd
