#include "sim/report.h"

namespace lynd {

void print_report(std::FILE* out, const Scenario& sc, const RunOutcome& o, SimNode& node) {
    std::fprintf(out, "\nlynd-sim: scenario \"%s\": %lld s of virtual time, daemon exit status %d\n",
                 sc.name.c_str(), static_cast<long long>(o.virtual_ms / 1000), o.exit_status);
    std::fprintf(out,
                 "lynd-sim: %zu log lines, %zu bridge calls, %zu tool runs, %zu frames sent, %zu driver actions\n",
                 node.host().console_lines().size() + node.host().syslog_lines().size(),
                 node.bridge().calls().size(), node.host().runs().size(),
                 node.host().frames().size(), node.wlan().actions().size());
    for (const auto& c : node.bus_calls())
        std::fprintf(out, "lynd-sim: ubus call %s %s %s at %lld s: %s %s\n", c.object.c_str(), c.method.c_str(),
                     c.args.c_str(), static_cast<long long>(c.at_ms / 1000), node.bus().strerror(c.status),
                     c.reply.c_str());
    for (const auto& r : o.results)
        std::fprintf(out, "lynd-sim: %s %s (%s)\n", r.passed ? "ok  " : "FAIL", describe(*r.expect).c_str(),
                     r.why.c_str());
    std::fprintf(out, "lynd-sim: expectations: %zu passed, %zu failed\n", o.results.size() - o.failed(), o.failed());
}

bool print_check_line(std::FILE* out, const Scenario& sc, const RunOutcome& o) {
    for (const auto& r : o.results) {
        if (!r.passed) {
            std::fprintf(out, "FAIL %s: %s (%s)\n", sc.name.c_str(), describe(*r.expect).c_str(), r.why.c_str());
            return false;
        }
    }
    std::fprintf(out, "PASS %s\n", sc.name.c_str());
    return true;
}

}  // namespace lynd
