#include "sim/sweep/sweep_wire.h"

#include <cstdio>
#include <sstream>

namespace lynd {

std::string sweep_outcome_text(const SweepOutcome& o) {
    const SweepStats& s = o.stats;
    std::ostringstream t;
    t << "stats " << (s.guard ? 1 : 0) << ' ' << s.hours << ' ' << s.client_hours << ' ' << s.moves << ' '
      << s.returns << ' ' << s.steering_returns << ' ' << s.preferred_changes << ' ' << s.runs << '\n';
    t << "evac";
    for (int64_t p : s.evacuation_periods)
        t << ' ' << p;
    t << '\n';
    for (size_t i = 0; i < o.violations.size(); i++)
        t << "v " << o.violations[i].invariant << ' ' << o.counts[i] << ' ' << o.violations[i].at_ms << ' '
          << o.violations[i].what << '\n';
    if (!o.error.empty())
        t << "error " << o.error << '\n';
    t << "end\n";
    return t.str();
}

bool sweep_outcome_parse(const std::string& text, SweepOutcome* o) {
    std::istringstream in(text);
    std::string line;
    bool ended = false;
    while (std::getline(in, line)) {
        std::istringstream l(line);
        std::string tag;
        l >> tag;
        SweepStats& s = o->stats;
        if (tag == "stats") {
            int guard = 0;
            l >> guard >> s.hours >> s.client_hours >> s.moves >> s.returns >> s.steering_returns >> s.preferred_changes >> s.runs;
            s.guard = guard != 0;
        } else if (tag == "evac") {
            int64_t p = 0;
            while (l >> p)
                s.evacuation_periods.push_back(p);
        } else if (tag == "v") {
            SweepViolation v;
            size_t n = 0;
            l >> v.invariant >> n >> v.at_ms;
            std::getline(l >> std::ws, v.what);
            o->violations.push_back(v);
            o->counts.push_back(n);
        } else if (tag == "error") {
            std::getline(l >> std::ws, o->error);
        } else if (tag == "end") {
            ended = true;
        }
    }
    return ended;
}

}  // namespace lynd
