#include <string>

#include "sim/timeline/svg_text.h"
#include "sim/timeline/timeline_views.h"

namespace lynd {

namespace {

constexpr double kRowHeight = 16;
constexpr double kColumns[6] = {12, 64, 150, 300, 420, 540};
const char* const kHeads[6] = {"#", "time", "client MAC", "from", "to", "reason"};

std::string path_or_none(const std::string& p) { return p.empty() ? "(none)" : p; }

}  // namespace

double moves_table(std::string& out, const TimelineTrace& tr, double top, size_t max_rows) {
    bool hours = tr.duration >= 3600;
    std::string heading = "Client moves (" + std::to_string(tr.moves.size()) + ")";
    if (tr.moves.size() > max_rows)
        heading += ", the first " + std::to_string(max_rows) + " listed";
    out += svg_text_at(kColumns[0], top + 14, heading, " class=\"tablehead\"");
    double y = top + 34;
    out += "<g class=\"tablecols\">";
    for (int c = 0; c < 6; c++)
        out += svg_text_at(kColumns[c], y, kHeads[c]);
    out += "</g>\n";
    out += svg_line("tablerule", kColumns[0], y + 4, kSvgWidth - 12, y + 4);
    for (size_t i = 0; i < tr.moves.size() && i < max_rows; i++) {
        const TraceMove& m = tr.moves[i];
        y += kRowHeight;
        const std::string cells[6] = {std::to_string(i + 1), clock_text(m.t, hours, hours), m.client,
                                      path_or_none(m.from), path_or_none(m.to), m.reason};
        out += "<g class=\"moverow\">";
        for (int c = 0; c < 6; c++)
            out += svg_text_at(kColumns[c], y, svg_shorten(cells[c], c == 5 ? 150 : 24));
        out += "</g>\n";
    }
    if (tr.moves.size() > max_rows) {
        y += kRowHeight;
        out += svg_text_at(kColumns[0], y, "… " + std::to_string(tr.moves.size() - max_rows) + " more moves not listed",
                           " class=\"hint\"");
    }
    if (tr.moves.empty()) {
        y += kRowHeight;
        out += svg_text_at(kColumns[0], y, "no client moved", " class=\"hint\"");
    }
    return y + 12;
}

}  // namespace lynd
