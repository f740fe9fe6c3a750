// The summary view: each time bucket told by its share of path states, its
// rate range, its CPU peak and how many moves, events and port changes it
// held; a table of the busy buckets and the first moves under it.
#include <algorithm>
#include <cmath>

#include "sim/timeline/svg_text.h"
#include "sim/timeline/timeline_buckets.h"
#include "sim/timeline/timeline_views.h"

namespace lynd {

namespace {

constexpr double kRowHeight = 16;

std::string title(const std::string& s) { return "<title>" + svg_escape(s) + "</title>"; }

std::string span_text(const Bucket& b) { return clock_text(b.from, true) + "-" + clock_text(b.to, true); }

// Shares of the bucket's time in each state, stacked top down.
void state_shares(std::string& out, const Bucket& b, size_t lane, const std::string& name, double top,
                  const Layout& l) {
    const PathBucket& pb = b.paths[lane];
    double total = 0;
    for (double s : pb.state_secs)
        total += s;
    if (total <= 0)
        return;
    double x = l.x(b.from), w = std::max(1.0, l.x(b.to) - x), y = top;
    for (int st = 0; st < 6; st++) {
        if (pb.state_secs[st] <= 0)
            continue;
        double h = kLaneHeight * pb.state_secs[st] / total;
        out += "<rect class=\"state\"" + attr("x", x) + attr("y", y) + attr("width", w) + attr("height", h) +
               " fill=\"" + kStateColours[st] + "\">" +
               title(name + " " + span_text(b) + " " + kStateNames[st] + " " +
                     std::to_string(std::lround(100 * pb.state_secs[st] / total)) + " %") +
               "</rect>\n";
        y += h;
    }
}

void lane(std::string& out, const std::vector<Bucket>& bs, const TracePath& p, size_t i, const Layout& l) {
    double top = l.lane_top(i);
    lane_box(out, top, kLaneHeight, p.name, "path");
    double max = 1;
    for (const Bucket& b : bs)
        max = std::max(max, b.paths[i].rate_max);
    max = nice_ceiling(max);
    value_scale(out, top, kLaneHeight, max, "Mbit/s", false, "ratescale");
    value_scale(out, top, kLaneHeight, 100, "%", true, "utilscale");
    Series mean, util;
    std::string upper, lower;
    for (const Bucket& b : bs) {
        state_shares(out, b, i, p.name, top, l);
        const PathBucket& pb = b.paths[i];
        if (pb.samples == 0)
            continue;
        double mid = (b.from + b.to) / 2;
        mean.emplace_back(mid, pb.rate_sum / pb.samples);
        util.emplace_back(mid, pb.util_sum / pb.samples);
        // The band holds across its bucket, so a drop shows as wide as it was counted.
        std::string hi = svg_num(Layout::y(top, kLaneHeight, pb.rate_max, max));
        std::string lo = svg_num(Layout::y(top, kLaneHeight, pb.rate_min, max));
        upper += svg_num(l.x(b.from)) + "," + hi + " " + svg_num(l.x(b.to)) + "," + hi + " ";
        lower = svg_num(l.x(b.to)) + "," + lo + " " + svg_num(l.x(b.from)) + "," + lo + " " + lower;
    }
    if (mean.empty())
        return;
    out += "<polygon class=\"rateband\" points=\"" + upper + lower + "\"/>\n";
    out += series_line(mean, l, top, kLaneHeight, max, "rate");
    out += series_line(util, l, top, kLaneHeight, 100, "util");
}

// A count drawn as a number where the bucket is wide enough for one.
void count_text(std::string& out, const Bucket& b, const Layout& l, double y, int n) {
    if (n > 0 && l.x(b.to) - l.x(b.from) >= 10)
        out += svg_text_at((l.x(b.from) + l.x(b.to)) / 2, y, std::to_string(n),
                           " text-anchor=\"middle\" class=\"counttext\"");
}

void event_counts(std::string& out, const std::vector<Bucket>& bs, const Layout& l) {
    out += svg_text_at(kPlotLeft - 8, kEventsTop + 14, "events per bucket", " text-anchor=\"end\" class=\"rowname\"");
    int max = 1;
    for (const Bucket& b : bs)
        max = std::max(max, b.events);
    double base = kEventsTop + kEventsHeight - 4;
    for (const Bucket& b : bs) {
        if (b.events == 0)
            continue;
        double h = (kEventsHeight - 18) * b.events / max;
        double x = l.x(b.from), w = std::max(1.0, l.x(b.to) - x - 1);
        out += "<rect class=\"eventbar\"" + attr("x", x) + attr("y", base - h) + attr("width", w) +
               attr("height", h) + ">" + title(span_text(b) + ": " + std::to_string(b.events) + " events") +
               "</rect>\n";
        count_text(out, b, l, base - h - 2, b.events);
    }
}

void port_counts(std::string& out, const std::vector<Bucket>& bs, const Layout& l) {
    const char* names[2] = {"broadcast port", "preferred port"};
    const char* cls[2] = {"bcast", "preferred"};
    const double ys[2] = {kBcastY, kPreferredY};
    for (int k = 0; k < 2; k++) {
        out += svg_text_at(kPlotLeft - 8, ys[k] + 4, std::string(names[k]) + " changes",
                           " text-anchor=\"end\" class=\"rowname\"");
        for (const Bucket& b : bs) {
            if (b.port_changes[k] == 0)
                continue;
            double x = (l.x(b.from) + l.x(b.to)) / 2;
            out += "<circle class=\"" + std::string(cls[k]) + "\"" + attr("cx", x) + attr("cy", ys[k] - 8) +
                   attr("r", 3) + ">" +
                   title(span_text(b) + ": " + std::to_string(b.port_changes[k]) + " changes, last " +
                         b.last_port[k]) +
                   "</circle>\n";
            count_text(out, b, l, ys[k] + 6, b.port_changes[k]);
        }
    }
}

void move_counts(std::string& out, const std::vector<Bucket>& bs, const Layout& l) {
    double top = l.count_top();
    lane_box(out, top, kCountHeight, "moves", "per bucket");
    int most = 1;
    for (const Bucket& b : bs)
        most = std::max(most, b.moves);
    double max = nice_ceiling(most);
    value_scale(out, top, kCountHeight, max, "moves", false, "countscale");
    for (const Bucket& b : bs) {
        if (b.moves == 0)
            continue;
        double y = Layout::y(top, kCountHeight, b.moves, max), x = l.x(b.from);
        out += "<rect class=\"countbar\"" + attr("x", x) + attr("y", y) + attr("width", std::max(1.0, l.x(b.to) - x - 1)) +
               attr("height", top + kCountHeight - 4 - y) + ">" +
               title(span_text(b) + ": " + std::to_string(b.moves) + " moves") + "</rect>\n";
        count_text(out, b, l, y - 2, b.moves);
    }
}

std::string top_reasons(const Bucket& b) {
    std::vector<std::pair<int, std::string>> r;
    for (const auto& kv : b.reasons)
        r.emplace_back(-kv.second, kv.first);
    std::sort(r.begin(), r.end());
    std::string out;
    for (size_t i = 0; i < r.size() && i < 3; i++)
        out += (i ? ", " : "") + svg_shorten(r[i].second, 40) + " x" + std::to_string(-r[i].first);
    return out;
}

// Only buckets where a client moved or a path changed state (events and
// port changes are in the picture); at most kMaxBuckets rows.
double bucket_table(std::string& out, const std::vector<Bucket>& bs, double size, double top) {
    const double cols[6] = {12, 120, 190, 260, 380, 500};
    const char* heads[6] = {"time (h:mm)", "moves", "events", "port changes", "state changes", "move reasons"};
    out += svg_text_at(12, top + 14,
                       "Per bucket of " + std::to_string(std::lround(size / 60)) + " min with moves or path state changes",
                       " class=\"tablehead\"");
    double y = top + 34;
    out += "<g class=\"tablecols\">";
    for (int c = 0; c < 6; c++)
        out += svg_text_at(cols[c], y, heads[c]);
    out += "</g>\n";
    out += svg_line("tablerule", 12, y + 4, kSvgWidth - 12, y + 4);
    for (const Bucket& b : bs) {
        int states = 0;
        for (const PathBucket& pb : b.paths)
            states += pb.state_changes;
        int ports = b.port_changes[0] + b.port_changes[1];
        if (b.moves + states == 0)
            continue;
        y += kRowHeight;
        const std::string cells[6] = {span_text(b),         std::to_string(b.moves), std::to_string(b.events),
                                      std::to_string(ports), std::to_string(states), top_reasons(b)};
        out += "<g class=\"bucketrow\">";
        for (int c = 0; c < 6; c++)
            out += svg_text_at(cols[c], y, cells[c]);
        out += "</g>\n";
    }
    return y + 12;
}

}  // namespace

double draw_summary(std::string& out, const TimelineTrace& tr, const Layout& l) {
    double size = bucket_seconds(l.duration);
    std::vector<Bucket> bs = make_buckets(tr, size);
    time_axis(out, l);
    for (size_t i = 0; i < tr.paths.size(); i++)
        lane(out, bs, tr.paths[i], i, l);
    Series peaks;
    for (const Bucket& b : bs)
        if (b.cpu_max >= 0)
            peaks.emplace_back(b.from, b.cpu_max);
    cpu_lane(out, peaks, tr.cpu_threshold, l);
    event_counts(out, bs, l);
    port_counts(out, bs, l);
    move_counts(out, bs, l);
    double y = bucket_table(out, bs, size, l.bottom() + 34);
    return moves_table(out, tr, y + 10, kSummaryTableRows);
}

}  // namespace lynd
