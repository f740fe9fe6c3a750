// What both views of the timeline picture share: where things sit on the
// page, and the pieces of SVG they are drawn with.
#pragma once
#include <string>
#include <utility>
#include <vector>

#include "sim/timeline/timeline_trace.h"

namespace lynd {

constexpr double kSvgWidth = 1600;
constexpr double kPlotLeft = 170;
constexpr double kPlotRight = 56;
constexpr double kPlotWidth = kSvgWidth - kPlotLeft - kPlotRight;
constexpr double kEventsTop = 56;
constexpr double kEventsHeight = 44;
constexpr double kBcastY = 114;
constexpr double kPreferredY = 134;
constexpr double kMovesY = 156;
constexpr double kLanesTop = 176;
constexpr double kLaneHeight = 90;
constexpr double kLaneGap = 18;
constexpr double kCpuHeight = 70;
constexpr double kCountHeight = 60;
constexpr int kUnlinkState = 1;

extern const char* const kStateNames[6];
extern const char* const kStateColours[6];

// A value over time, for one line of a lane.
using Series = std::vector<std::pair<double, double>>;

struct Layout {
    double duration;
    size_t paths;
    bool summary;
    double x(double t) const;
    double lane_top(size_t i) const;
    double cpu_top() const { return lane_top(paths); }
    // The summary's lane of move counts, under the CPU.
    double count_top() const { return cpu_top() + kCpuHeight + kLaneGap; }
    double bottom() const { return summary ? count_top() + kCountHeight : cpu_top() + kCpuHeight; }
    // Where value sits in a band from top to top + height scaled to max.
    static double y(double top, double height, double value, double max);
};

std::string attr(const char* name, double v);
std::string svg_text_at(double x, double y, const std::string& s, const char* extra = "");
std::string svg_line(const char* cls, double x1, double y1, double x2, double y2);
std::string svg_rect(const char* cls, double x, double y, double w, double h, const std::string& more = "");
// m:ss for runs under an hour, h:mm past it; with seconds, h:mm:ss.
std::string clock_text(double t, bool hours, bool seconds = false);
// 1, 2 or 5 times a power of ten, at least v (and at least 1).
double nice_ceiling(double v);
// v with one decimal, none when it is whole.
std::string plain_num(double v);
// What a label may show of text: the words before any JSON, shortened.
std::string short_label(const std::string& text, size_t max);

// The frame of a lane: its box and name, and numbers for 0, half and max
// at the left (right_side false) or the right edge.
void lane_box(std::string& out, double top, double height, const std::string& name, const std::string& hint);
void value_scale(std::string& out, double top, double height, double max, const char* unit, bool right_side,
                 const char* cls);
// Time grid and its numbers under the lanes.
void time_axis(std::string& out, const Layout& l);
// A line through the points, at most the lowest and the highest of each
// pixel column, in the order they came.
std::string series_line(const Series& s, const Layout& l, double top, double height, double max, const char* cls);
// The CPU lane: the samples held until the next, and the threshold.
void cpu_lane(std::string& out, const Series& load, double threshold, const Layout& l);
// The rate of a path, 0 where its link is down or the daemon saw it unlinked.
Series rate_series(const TracePath& p);
Series util_series(const TracePath& p);
Series cpu_series(const TimelineTrace& tr);

}  // namespace lynd
