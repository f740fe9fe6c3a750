// The timeline picture: lanes of paths over virtual time, drawn as plain
// SVG so that any browser shows it with nothing fetched and nothing run.
#include <algorithm>
#include <cmath>

#include "sim/svg_text.h"
#include "sim/timeline_trace.h"

namespace lynd {

namespace {

constexpr double kWidth = 1600;
constexpr double kLeft = 130;
constexpr double kRight = 20;
constexpr double kPlot = kWidth - kLeft - kRight;
constexpr double kTickTop = 58;
constexpr double kBcastY = 100;
constexpr double kPreferredY = 122;
constexpr double kLaneTop = 145;
constexpr double kLaneHeight = 90;
constexpr double kLaneGap = 12;

const char* const kStateNames[6] = {"UNINITED", "UNLINK", "NORMAL", "WEAKLINK", "WEAKLINK+ABNORMAL", "ABNORMAL"};
const char* const kStateColours[6] = {"#bdbdbd", "#757575", "#66bb6a", "#ffca28", "#ff7043", "#e53935"};

struct Frame {
    double duration;
    double max_rate;
    size_t lanes;
    double x(double t) const { return kLeft + (duration > 0 ? std::min(std::max(t, 0.0), duration) / duration : 0) * kPlot; }
    double lane_top(size_t i) const { return kLaneTop + static_cast<double>(i) * (kLaneHeight + kLaneGap); }
    double bottom() const { return lane_top(lanes) - kLaneGap; }
};

std::string attr(const char* name, double v) { return std::string(" ") + name + "=\"" + svg_num(v) + "\""; }

std::string text(double x, double y, const std::string& s, const char* extra = "") {
    return "<text" + attr("x", x) + attr("y", y) + extra + ">" + svg_escape(s) + "</text>\n";
}

std::string clock_text(double t, bool hours) {
    auto s = static_cast<long long>(t);
    char buf[32];
    if (hours)
        std::snprintf(buf, sizeof buf, "%lld:%02lld", s / 3600, s / 60 % 60);
    else
        std::snprintf(buf, sizeof buf, "%lld:%02lld", s / 60, s % 60);
    return buf;
}

// Grid lines a dozen or fewer apart, on round values of time.
void axis(std::string& out, const Frame& f) {
    const double steps[] = {1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 10800, 21600, 43200, 86400};
    double step = steps[sizeof steps / sizeof steps[0] - 1];
    for (double s : steps) {
        if (f.duration / s <= 12) {
            step = s;
            break;
        }
    }
    bool hours = f.duration >= 3600;
    out += text(kLeft - 24, f.bottom() + 16, hours ? "h:mm" : "m:ss", " text-anchor=\"end\" class=\"axis\"");
    for (double t = 0; t <= f.duration + 1e-9 && f.duration > 0; t += step) {
        double x = f.x(t);
        out += "<line class=\"grid\"" + attr("x1", x) + attr("y1", kTickTop) + attr("x2", x) + attr("y2", f.bottom()) +
               "/>\n";
        out += text(x, f.bottom() + 16, clock_text(t, hours), " text-anchor=\"middle\" class=\"axis\"");
    }
}

void legend(std::string& out, const TimelineTrace& tr, const Frame& f) {
    out += text(kLeft, 22, tr.title + " (" + clock_text(f.duration, f.duration >= 3600) + ")", " class=\"title\"");
    double x = kLeft;
    for (int s = 0; s < 6; s++) {
        out += "<rect" + attr("x", x) + attr("y", 32) + attr("width", 12) + attr("height", 12) + " fill=\"" +
               kStateColours[s] + "\"/>\n";
        out += text(x + 16, 42, kStateNames[s]);
        x += 30 + 8.0 * static_cast<double>(std::string(kStateNames[s]).size());
    }
    out += "<line class=\"rate\"" + attr("x1", x) + attr("y1", 38) + attr("x2", x + 20) + attr("y2", 38) + "/>\n";
    out += text(x + 24, 42, "rate (max " + svg_num(f.max_rate) + " Mbit/s)");
    x += 200;
    out += "<line class=\"util\"" + attr("x1", x) + attr("y1", 38) + attr("x2", x + 20) + attr("y2", 38) + "/>\n";
    out += text(x + 24, 42, "utilisation (0-100 %)");
    x += 170;
    out += "<line class=\"movekey\"" + attr("x1", x) + attr("y1", 32) + attr("x2", x) + attr("y2", 44) + "/>\n";
    out += text(x + 6, 42, "client move");
}

// Labels are written only where they do not run into the last one shown;
// every tick keeps its full text as a tooltip.
void ticks(std::string& out, const TimelineTrace& tr, const Frame& f) {
    out += text(kLeft - 8, kTickTop + 12, "events", " text-anchor=\"end\"");
    double shown_until = -1;
    for (const TraceTick& t : tr.ticks) {
        double x = f.x(t.t);
        out += "<line class=\"event\"" + attr("x1", x) + attr("y1", kTickTop) + attr("x2", x) + attr("y2", f.bottom()) +
               "><title>" + svg_escape(clock_text(t.t, false) + " " + t.label) + "</title></line>\n";
        if (x > shown_until) {
            std::string label = svg_shorten(t.label, 22);
            out += text(x + 2, kTickTop + 12, label, " class=\"eventlabel\"");
            shown_until = x + 6.5 * static_cast<double>(label.size());
        }
    }
}

void markers(std::string& out, const TimelineTrace& tr, const Frame& f) {
    out += text(kLeft - 8, kBcastY + 4, "broadcast port", " text-anchor=\"end\"");
    out += text(kLeft - 8, kPreferredY + 4, "preferred port", " text-anchor=\"end\"");
    double shown_until[2] = {-1, -1};
    for (const TraceMarker& m : tr.markers) {
        bool bcast = m.kind == "bcast";
        double x = f.x(m.t), y = bcast ? kBcastY : kPreferredY;
        out += "<circle class=\"" + std::string(bcast ? "bcast" : "preferred") + "\"" + attr("cx", x) + attr("cy", y) +
               attr("r", 4) + "><title>" +
               svg_escape(clock_text(m.t, false) + " " + m.bridge + ": " + (m.port.empty() ? "none" : m.port)) +
               "</title></circle>\n";
        double& until = shown_until[bcast ? 0 : 1];
        if (x > until) {
            out += text(x + 6, y + 4, m.port.empty() ? "none" : m.port, " class=\"markerlabel\"");
            until = x + 6 + 7.0 * static_cast<double>(m.port.size() + 1);
        }
    }
}

double lane_y(const Frame& f, size_t lane, double value, double max) {
    double top = f.lane_top(lane) + 8, height = kLaneHeight - 12;
    double v = max > 0 && std::isfinite(value) ? std::min(std::max(value / max, 0.0), 1.0) : 0;
    return top + height * (1 - v);
}

// At most the lowest and the highest value of each pixel column, in the
// order they came: a day of samples stays a few hundred kilobytes.
std::string polyline(const std::vector<TracePoint>& pts, const Frame& f, size_t lane, bool rate) {
    std::string d;
    size_t i = 0;
    while (i < pts.size()) {
        long column = std::lround(f.x(pts[i].t));
        size_t lo = i, hi = i;
        for (; i < pts.size() && std::lround(f.x(pts[i].t)) == column; i++) {
            double v = rate ? pts[i].rate : pts[i].util;
            if (v < (rate ? pts[lo].rate : pts[lo].util))
                lo = i;
            if (v > (rate ? pts[hi].rate : pts[hi].util))
                hi = i;
        }
        for (size_t k : {std::min(lo, hi), std::max(lo, hi)}) {
            d += svg_num(f.x(pts[k].t)) + "," +
                 svg_num(lane_y(f, lane, rate ? pts[k].rate : pts[k].util, rate ? f.max_rate : 100)) + " ";
            if (lo == hi)
                break;
        }
    }
    return "<polyline class=\"" + std::string(rate ? "rate" : "util") + "\" points=\"" + d + "\"/>\n";
}

void lane(std::string& out, const TracePath& p, const Frame& f, size_t i) {
    double top = f.lane_top(i);
    out += "<rect class=\"lane\"" + attr("x", kLeft) + attr("y", top) + attr("width", kPlot) +
           attr("height", kLaneHeight) + "/>\n";
    out += text(kLeft - 8, top + kLaneHeight / 2 + 4, p.name, " text-anchor=\"end\" class=\"lanename\"");
    for (const TraceStateSpan& s : p.states) {
        int st = s.state >= 0 && s.state < 6 ? s.state : 0;
        double x1 = f.x(s.from), x2 = std::max(f.x(s.to), x1 + 1);
        out += "<rect class=\"state\"" + attr("x", x1) + attr("y", top) + attr("width", x2 - x1) +
               attr("height", kLaneHeight) + " fill=\"" + kStateColours[st] + "\"><title>" +
               svg_escape(p.name + " " + kStateNames[st] + " " + clock_text(s.from, false) + "-" +
                          clock_text(s.to, false)) +
               "</title></rect>\n";
    }
    if (!p.points.empty()) {
        out += polyline(p.points, f, i, true);
        out += polyline(p.points, f, i, false);
    }
}

// A move runs from the middle of one lane to the middle of the other; an
// end that is no lane sits on the edge of the plot.
void moves(std::string& out, const TimelineTrace& tr, const Frame& f) {
    auto lane_mid = [&](const std::string& name, double edge) {
        for (size_t i = 0; i < tr.paths.size(); i++)
            if (tr.paths[i].name == name)
                return f.lane_top(i) + kLaneHeight / 2;
        return edge;
    };
    for (const TraceMove& m : tr.moves) {
        double x = f.x(m.t);
        double y1 = lane_mid(m.from, kLaneTop), y2 = lane_mid(m.to, f.bottom());
        out += "<line class=\"move\"" + attr("x1", x) + attr("y1", y1) + attr("x2", x) + attr("y2", y2) +
               " marker-end=\"url(#arrow)\"><title>" +
               svg_escape(clock_text(m.t, false) + " " + m.client + " " + m.from + " -> " + m.to + " (" + m.reason +
                          ")") +
               "</title></line>\n";
    }
}

const char* const kStyle =
    "<style>\n"
    "text{font:12px sans-serif;fill:#212121}\n.title{font-size:15px;font-weight:bold}\n"
    ".axis,.eventlabel,.markerlabel{font-size:10px;fill:#555}\n.lanename{font-weight:bold}\n"
    ".grid{stroke:#e0e0e0}\n.lane{fill:none;stroke:#9e9e9e}\n.state{fill-opacity:0.35}\n"
    ".rate{fill:none;stroke:#1565c0;stroke-width:1.2}\n"
    ".util{fill:none;stroke:#8e24aa;stroke-width:1;stroke-dasharray:4 2}\n"
    ".event{stroke:#90a4ae;stroke-dasharray:2 3}\n.move,.movekey{stroke:#d81b60;stroke-width:1.5}\n"
    ".bcast{fill:#00897b}\n.preferred{fill:#f4511e}\n"
    "</style>\n"
    "<defs><marker id=\"arrow\" viewBox=\"0 0 10 10\" refX=\"9\" refY=\"5\" markerWidth=\"6\" markerHeight=\"6\" "
    "orient=\"auto\"><path d=\"M0,0 L10,5 L0,10 z\" fill=\"#d81b60\"/></marker></defs>\n";

}  // namespace

std::string timeline_svg(const TimelineTrace& tr) {
    Frame f{std::isfinite(tr.duration) && tr.duration > 0 ? tr.duration : 0, 1, tr.paths.size()};
    for (const TracePath& p : tr.paths)
        for (const TracePoint& pt : p.points)
            if (std::isfinite(pt.rate))
                f.max_rate = std::max(f.max_rate, pt.rate);
    double height = f.bottom() + 30;
    std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\"" +
                      attr("width", kWidth) + attr("height", height) + " viewBox=\"0 0 " + svg_num(kWidth) + " " +
                      svg_num(height) + "\">\n";
    out += kStyle;
    out += "<rect x=\"0\" y=\"0\" width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n";
    legend(out, tr, f);
    axis(out, f);
    for (size_t i = 0; i < tr.paths.size(); i++)
        lane(out, tr.paths[i], f, i);
    ticks(out, tr, f);
    markers(out, tr, f);
    moves(out, tr, f);
    out += "</svg>\n";
    return out;
}

}  // namespace lynd
