// The detailed view: each event, port change and move where it happened.
#include <algorithm>
#include <cmath>

#include "sim/timeline/svg_text.h"
#include "sim/timeline/timeline_views.h"

namespace lynd {

namespace {

constexpr int kLabelRows = 3;
// Room for "hc entry 02:..:0a:01 ath0 → ath12" and its like.
constexpr size_t kLabelChars = 36;
constexpr double kCharWidth = 6.2;  // of the 10 px labels, near enough

std::string title(const std::string& s) { return "<title>" + svg_escape(s) + "</title>"; }

// Labels go to the first of three rows where they do not run into the
// last one; ticks on one pixel share a label that counts them. Every tick
// keeps its whole text as a tooltip.
void events(std::string& out, const TimelineTrace& tr, const Layout& l) {
    out += svg_text_at(kPlotLeft - 8, kEventsTop + 14, "events", " text-anchor=\"end\" class=\"rowname\"");
    std::vector<const TraceTick*> order;
    for (const TraceTick& t : tr.ticks)
        order.push_back(&t);
    std::stable_sort(order.begin(), order.end(), [](const TraceTick* a, const TraceTick* b) { return a->t < b->t; });
    double until[kLabelRows] = {-1, -1, -1};
    for (size_t i = 0; i < order.size(); i++) {
        const TraceTick& t = *order[i];
        double x = l.x(t.t);
        out += "<line class=\"event\"" + attr("x1", x) + attr("y1", kEventsTop) + attr("x2", x) +
               attr("y2", l.bottom()) + ">" +
               title(clock_text(t.t, false) + " " + (t.detail.empty() ? t.label : t.detail)) + "</line>\n";
        if (i > 0 && l.x(order[i - 1]->t) > x - 1)
            continue;
        size_t same = 0;
        while (i + same + 1 < order.size() && l.x(order[i + same + 1]->t) <= x + 1)
            same++;
        std::string label = short_label(t.label, kLabelChars) + (same > 0 ? " (+" + std::to_string(same) + ")" : "");
        for (double& u : until) {
            if (x <= u)
                continue;
            double y = kEventsTop + 11 + 13 * static_cast<double>(&u - until);
            out += svg_text_at(x + 2, y, label, " class=\"eventlabel\"");
            u = x + 6 + kCharWidth * static_cast<double>(label.size());
            break;
        }
    }
}

void markers(std::string& out, const TimelineTrace& tr, const Layout& l) {
    out += svg_text_at(kPlotLeft - 8, kBcastY + 4, "broadcast port", " text-anchor=\"end\" class=\"rowname\"");
    out += svg_text_at(kPlotLeft - 8, kPreferredY + 4, "preferred port", " text-anchor=\"end\" class=\"rowname\"");
    double until[2] = {-1, -1};
    for (const TraceMarker& m : tr.markers) {
        bool bcast = m.kind == "bcast";
        double x = l.x(m.t), y = bcast ? kBcastY : kPreferredY;
        std::string port = m.port.empty() ? "none" : short_label(m.port, 16);
        out += "<circle class=\"" + std::string(bcast ? "bcast" : "preferred") + "\"" + attr("cx", x) + attr("cy", y) +
               attr("r", 4) + ">" + title(clock_text(m.t, false) + " " + m.bridge + ": " + port) + "</circle>\n";
        double& u = until[bcast ? 0 : 1];
        if (x > u) {
            out += svg_text_at(x + 6, y + 4, port, " class=\"markerlabel\"");
            u = x + 10 + kCharWidth * static_cast<double>(port.size());
        }
    }
}

void lane(std::string& out, const TracePath& p, const Layout& l, size_t i) {
    double top = l.lane_top(i);
    lane_box(out, top, kLaneHeight, p.name, "path");
    for (const TraceStateSpan& s : p.states) {
        int st = s.state >= 0 && s.state < 6 ? s.state : 0;
        double x1 = l.x(s.from), x2 = std::max(l.x(s.to), x1 + 1);
        out += "<rect class=\"state\"" + attr("x", x1) + attr("y", top) + attr("width", x2 - x1) +
               attr("height", kLaneHeight) + " fill=\"" + kStateColours[st] + "\">" +
               title(p.name + " " + kStateNames[st] + " " + clock_text(s.from, false) + "-" + clock_text(s.to, false)) +
               "</rect>\n";
    }
    Series rate = rate_series(p);
    double max = 1;
    for (const auto& r : rate)
        if (std::isfinite(r.second))
            max = std::max(max, r.second);
    max = nice_ceiling(max);
    value_scale(out, top, kLaneHeight, max, "Mbit/s", false, "ratescale");
    value_scale(out, top, kLaneHeight, 100, "%", true, "utilscale");
    if (!rate.empty()) {
        out += series_line(rate, l, top, kLaneHeight, max, "rate");
        out += series_line(util_series(p), l, top, kLaneHeight, 100, "util");
    }
}

double lane_mid(const TimelineTrace& tr, const Layout& l, const std::string& name, double edge) {
    for (size_t i = 0; i < tr.paths.size(); i++)
        if (tr.paths[i].name == name)
            return l.lane_top(i) + kLaneHeight / 2;
    return edge;
}

std::string move_text(const TraceMove& m, size_t n) {
    return "#" + std::to_string(n) + " " + clock_text(m.t, false) + " " + m.client + " " + m.from + " -> " + m.to +
           " (" + m.reason + ")";
}

// A group of more than one shows its numbers and how many it holds.
std::string mark_label(size_t first, size_t last) {
    std::string label = "#" + std::to_string(first + 1);
    if (last > first)
        label += "-" + std::to_string(last + 1) + " (" + std::to_string(last - first + 1) + ")";
    return label;
}

double badge_width(size_t first, size_t last) {
    return 8 + kCharWidth * static_cast<double>(mark_label(first, last).size());
}

// One numbered mark per group of moves too close to tell apart.
void mark(std::string& out, const TimelineTrace& tr, const Layout& l, size_t first, size_t last) {
    double x = l.x(tr.moves[first].t);
    std::string label = mark_label(first, last);
    double w = badge_width(first, last);
    std::string tip;
    for (size_t k = first; k <= last && k < first + 10; k++)
        tip += move_text(tr.moves[k], k + 1) + "\n";
    out += "<g class=\"movemark\">" + title(tip) + svg_rect("badge", x - 1, kMovesY - 8, w, 15) +
           svg_text_at(x + 3, kMovesY + 3.5, label, " class=\"badgetext\"") + "</g>\n";
    out += svg_line("moveleader", x, kMovesY + 7, x, kLanesTop);
}

void moves(std::string& out, const TimelineTrace& tr, const Layout& l) {
    out += svg_text_at(kPlotLeft - 8, kMovesY + 4, "client moves", " text-anchor=\"end\" class=\"rowname\"");
    for (size_t i = 0; i < tr.moves.size(); i++) {
        const TraceMove& m = tr.moves[i];
        double x = l.x(m.t);
        double y1 = lane_mid(tr, l, m.from, kLanesTop), y2 = lane_mid(tr, l, m.to, l.cpu_top());
        out += "<line class=\"move\"" + attr("x1", x) + attr("y1", y1) + attr("x2", x) + attr("y2", y2) +
               " marker-end=\"url(#arrow)\">" + title(move_text(m, i + 1)) + "</line>\n";
    }
    size_t first = 0;
    while (first < tr.moves.size()) {
        size_t last = first;
        double x0 = l.x(tr.moves[first].t);
        while (last + 1 < tr.moves.size() && l.x(tr.moves[last + 1].t) < x0 + badge_width(first, last) + 4)
            last++;
        mark(out, tr, l, first, last);
        first = last + 1;
    }
}

}  // namespace

double draw_detail(std::string& out, const TimelineTrace& tr, const Layout& l) {
    time_axis(out, l);
    for (size_t i = 0; i < tr.paths.size(); i++)
        lane(out, tr.paths[i], l, i);
    cpu_lane(out, cpu_series(tr), tr.cpu_threshold, l);
    events(out, tr, l);
    markers(out, tr, l);
    moves(out, tr, l);
    return moves_table(out, tr, l.bottom() + 34, kDetailTableRows);
}

}  // namespace lynd
