// The timeline picture: lanes of paths over virtual time, drawn as plain
// SVG so that any browser shows it with nothing fetched and nothing run.
#include <cmath>

#include "sim/timeline/svg_text.h"
#include "sim/timeline/timeline_views.h"

namespace lynd {

namespace {

const char* const kStyle =
    "<style>\n"
    "text{font:12px sans-serif;fill:#212121}\n.title{font-size:15px;font-weight:bold}\n"
    ".axis,.eventlabel,.markerlabel,.hint{font-size:10px;fill:#555}\n.lanename{font-weight:bold}\n"
    ".rowname{font-size:11px;fill:#424242}\n.tablehead{font-size:13px;font-weight:bold}\n"
    ".tablecols text{font-weight:bold}\n.tablerule{stroke:#9e9e9e}\n"
    ".ratescale{font-size:10px;fill:#1565c0}\n.utilscale{font-size:10px;fill:#8e24aa}\n"
    ".cpuscale,.countscale{font-size:10px;fill:#424242}\n.scaletick{stroke:#757575}\n"
    ".grid{stroke:#e0e0e0}\n.lane{fill:none;stroke:#9e9e9e}\n.state{fill-opacity:0.35}\n"
    ".rate{fill:none;stroke:#1565c0;stroke-width:1.4}\n.rateband{fill:#1565c0;fill-opacity:0.18}\n"
    ".util{fill:none;stroke:#8e24aa;stroke-width:1;stroke-dasharray:4 2}\n"
    ".cpu{fill:none;stroke:#37474f;stroke-width:1.4}\n.cpuband{fill:#37474f;fill-opacity:0.18}\n"
    ".threshold{stroke:#c62828;stroke-width:1.2;stroke-dasharray:6 3}\n.thresholdlabel{font-size:10px;fill:#c62828}\n"
    ".event{stroke:#90a4ae;stroke-dasharray:2 3}\n.move,.movekey{stroke:#d81b60;stroke-width:1.5}\n"
    ".moveleader{stroke:#d81b60;stroke-width:0.6;stroke-dasharray:1 2}\n"
    ".badge{fill:#fce4ec;stroke:#d81b60}\n.badgetext{font-size:10px;fill:#880e4f;font-weight:bold}\n"
    ".countbar{fill:#d81b60;fill-opacity:0.7}\n.eventbar{fill:#90a4ae}\n.counttext{font-size:9px;fill:#424242}\n"
    ".bcast{fill:#00897b}\n.preferred{fill:#f4511e}\n"
    "</style>\n"
    "<defs><marker id=\"arrow\" viewBox=\"0 0 10 10\" refX=\"9\" refY=\"5\" markerWidth=\"6\" markerHeight=\"6\" "
    "orient=\"auto\"><path d=\"M0,0 L10,5 L0,10 z\" fill=\"#d81b60\"/></marker></defs>\n";

void key(std::string& out, double& x, const char* cls, const std::string& what) {
    out += svg_line(cls, x, 38, x + 20, 38);
    out += svg_text_at(x + 24, 42, what);
    x += 34 + 6.5 * static_cast<double>(what.size());
}

void legend(std::string& out, const TimelineTrace& tr, const Layout& l) {
    std::string kind = l.summary ? "summary per time bucket" : "every event";
    out += svg_text_at(8, 22, tr.title + " (" + clock_text(l.duration, l.duration >= 3600) + ", " + kind + ")",
                       " class=\"title\"");
    double x = 8;
    for (int s = 0; s < 6; s++) {
        out += "<rect" + attr("x", x) + attr("y", 32) + attr("width", 12) + attr("height", 12) + " fill=\"" +
               kStateColours[s] + "\" fill-opacity=\"0.5\"/>\n";
        out += svg_text_at(x + 16, 42, kStateNames[s]);
        x += 30 + 7.6 * static_cast<double>(std::string(kStateNames[s]).size());
    }
    key(out, x, "rate", l.summary ? "rate Mbit/s (mean; band min-max)" : "rate Mbit/s (left scale)");
    key(out, x, "util", "utilisation % (right scale)");
    key(out, x, "cpu", "CPU %");
    key(out, x, "threshold", "cpu_threshold");
}

}  // namespace

std::string timeline_svg(const TimelineTrace& tr) {
    double duration = std::isfinite(tr.duration) && tr.duration > 0 ? tr.duration : 0;
    Layout l{duration, tr.paths.size(), duration > kSummaryAfter};
    std::string body;
    legend(body, tr, l);
    double height = l.summary ? draw_summary(body, tr, l) : draw_detail(body, tr, l);
    std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\"" +
                      attr("width", kSvgWidth) + attr("height", height) + " viewBox=\"0 0 " + svg_num(kSvgWidth) +
                      " " + svg_num(height) + "\">\n";
    out += kStyle;
    out += "<rect x=\"0\" y=\"0\" width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n";
    out += body;
    out += "</svg>\n";
    return out;
}

}  // namespace lynd
