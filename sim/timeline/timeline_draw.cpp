#include "sim/timeline/timeline_draw.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "sim/timeline/svg_text.h"

namespace lynd {

const char* const kStateNames[6] = {"UNINITED", "UNLINK", "NORMAL", "WEAKLINK", "WEAKLINK+ABNORMAL", "ABNORMAL"};
const char* const kStateColours[6] = {"#bdbdbd", "#757575", "#66bb6a", "#ffca28", "#ff7043", "#e53935"};

double Layout::x(double t) const {
    return kPlotLeft + (duration > 0 ? std::min(std::max(t, 0.0), duration) / duration : 0) * kPlotWidth;
}

double Layout::lane_top(size_t i) const { return kLanesTop + static_cast<double>(i) * (kLaneHeight + kLaneGap); }

double Layout::y(double top, double height, double value, double max) {
    double v = max > 0 && std::isfinite(value) ? std::min(std::max(value / max, 0.0), 1.0) : 0;
    return top + 4 + (height - 8) * (1 - v);
}

std::string attr(const char* name, double v) { return std::string(" ") + name + "=\"" + svg_num(v) + "\""; }

std::string svg_text_at(double x, double y, const std::string& s, const char* extra) {
    return "<text" + attr("x", x) + attr("y", y) + extra + ">" + svg_escape(s) + "</text>\n";
}

std::string svg_line(const char* cls, double x1, double y1, double x2, double y2) {
    return std::string("<line class=\"") + cls + "\"" + attr("x1", x1) + attr("y1", y1) + attr("x2", x2) +
           attr("y2", y2) + "/>\n";
}

std::string svg_rect(const char* cls, double x, double y, double w, double h, const std::string& more) {
    return std::string("<rect class=\"") + cls + "\"" + attr("x", x) + attr("y", y) + attr("width", w) +
           attr("height", h) + more + "/>\n";
}

std::string clock_text(double t, bool hours, bool seconds) {
    auto s = std::isfinite(t) && t > 0 ? static_cast<long long>(t) : 0LL;
    char buf[40];
    if (hours && seconds)
        std::snprintf(buf, sizeof buf, "%lld:%02lld:%02lld", s / 3600, s / 60 % 60, s % 60);
    else if (hours)
        std::snprintf(buf, sizeof buf, "%lld:%02lld", s / 3600, s / 60 % 60);
    else
        std::snprintf(buf, sizeof buf, "%lld:%02lld", s / 60, s % 60);
    return buf;
}

double nice_ceiling(double v) {
    if (!std::isfinite(v) || v <= 1)
        return 1;
    double p = std::pow(10.0, std::floor(std::log10(v)));
    for (double m : {1.0, 2.0, 5.0, 10.0})
        if (m * p >= v)
            return m * p;
    return 10 * p;
}

std::string plain_num(double v) {
    std::string n = svg_num(v);
    if (n.size() > 2 && n.compare(n.size() - 2, 2, ".0") == 0)
        n.resize(n.size() - 2);
    return n;
}

std::string short_label(const std::string& text, size_t max) {
    std::string s = text.substr(0, text.find('{'));
    while (!s.empty() && s.back() == ' ')
        s.pop_back();
    return svg_shorten(s, max);
}

void lane_box(std::string& out, double top, double height, const std::string& name, const std::string& hint) {
    out += svg_rect("lane", kPlotLeft, top, kPlotWidth, height);
    out += svg_text_at(8, top + height / 2, svg_shorten(name, 14), " class=\"lanename\"");
    if (!hint.empty())
        out += svg_text_at(8, top + height / 2 + 14, hint, " class=\"hint\"");
}

void value_scale(std::string& out, double top, double height, double max, const char* unit, bool right_side,
                 const char* cls) {
    double edge = right_side ? kPlotLeft + kPlotWidth : kPlotLeft;
    double dir = right_side ? 1 : -1;
    const char* anchor = right_side ? " text-anchor=\"start\" class=\"" : " text-anchor=\"end\" class=\"";
    std::string extra = std::string(anchor) + cls + "\"";
    for (double f : {0.0, 0.5, 1.0}) {
        double y = Layout::y(top, height, f * max, max);
        out += svg_line("scaletick", edge, y, edge + 4 * dir, y);
        std::string n = plain_num(f * max);
        out += svg_text_at(edge + 6 * dir, y + 3.5, n + (f == 1.0 ? std::string(" ") + unit : ""), extra.c_str());
    }
}

// Grid lines a dozen or fewer apart, on round values of time.
void time_axis(std::string& out, const Layout& l) {
    const double steps[] = {1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 10800, 21600, 43200, 86400};
    double step = steps[sizeof steps / sizeof steps[0] - 1];
    for (double s : steps) {
        if (l.duration / s <= 12) {
            step = s;
            break;
        }
    }
    bool hours = l.duration >= 3600;
    out += svg_text_at(kPlotLeft - 24, l.bottom() + 16, hours ? "time h:mm" : "time m:ss",
                       " text-anchor=\"end\" class=\"axis\"");
    for (double t = 0; t <= l.duration + 1e-9 && l.duration > 0; t += step) {
        double x = l.x(t);
        out += svg_line("grid", x, kEventsTop, x, l.bottom());
        out += svg_text_at(x, l.bottom() + 16, clock_text(t, hours), " text-anchor=\"middle\" class=\"axis\"");
    }
}

std::string series_line(const Series& s, const Layout& l, double top, double height, double max, const char* cls) {
    std::string d;
    size_t i = 0;
    while (i < s.size()) {
        long column = std::lround(l.x(s[i].first));
        size_t lo = i, hi = i;
        for (; i < s.size() && std::lround(l.x(s[i].first)) == column; i++) {
            if (s[i].second < s[lo].second)
                lo = i;
            if (s[i].second > s[hi].second)
                hi = i;
        }
        for (size_t k : {std::min(lo, hi), std::max(lo, hi)}) {
            d += svg_num(l.x(s[k].first)) + "," + svg_num(Layout::y(top, height, s[k].second, max)) + " ";
            if (lo == hi)
                break;
        }
    }
    return std::string("<polyline class=\"") + cls + "\" points=\"" + d + "\"/>\n";
}

void cpu_lane(std::string& out, const Series& load, double threshold, const Layout& l) {
    double top = l.cpu_top();
    lane_box(out, top, kCpuHeight, "CPU", "sampled load");
    value_scale(out, top, kCpuHeight, 100, "%", false, "cpuscale");
    if (threshold > 0) {
        double y = Layout::y(top, kCpuHeight, threshold, 100);
        out += svg_line("threshold", kPlotLeft, y, kPlotLeft + kPlotWidth, y);
        out += svg_text_at(kPlotLeft + kPlotWidth - 4, threshold > 50 ? y + 11 : y - 3,
                           "cpu_threshold " + plain_num(threshold) + " %",
                           " text-anchor=\"end\" class=\"thresholdlabel\"");
    }
    if (load.empty()) {
        out += svg_text_at(kPlotLeft + 8, top + kCpuHeight / 2 + 4,
                           threshold > 0 ? "no sample yet" : "not sampled: cpu_threshold is 0 (guard off)",
                           " class=\"hint\"");
        return;
    }
    // A sample holds until the next one.
    Series steps;
    for (size_t i = 0; i < load.size(); i++) {
        if (i > 0)
            steps.emplace_back(load[i].first, load[i - 1].second);
        steps.push_back(load[i]);
    }
    steps.emplace_back(l.duration, load.back().second);
    out += series_line(steps, l, top, kCpuHeight, 100, "cpu");
}

Series rate_series(const TracePath& p) {
    Series s;
    s.reserve(p.points.size());
    size_t k = 0;
    for (const TracePoint& pt : p.points) {
        while (k < p.states.size() && p.states[k].to < pt.t)
            k++;
        bool down = !pt.link_up || (k < p.states.size() && p.states[k].from <= pt.t && p.states[k].state == kUnlinkState);
        s.emplace_back(pt.t, down ? 0.0 : pt.rate);
    }
    return s;
}

Series util_series(const TracePath& p) {
    Series s;
    s.reserve(p.points.size());
    for (const TracePoint& pt : p.points)
        s.emplace_back(pt.t, pt.util);
    return s;
}

Series cpu_series(const TimelineTrace& tr) {
    Series s;
    for (const TraceCpuPoint& c : tr.cpu)
        s.emplace_back(c.t, c.percent);
    return s;
}

}  // namespace lynd
