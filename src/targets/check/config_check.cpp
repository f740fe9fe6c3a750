#include "targets/check/config_check.h"

#include <cstring>

#include "config/config.h"
#include "targets/check/check_printer.h"
#include "targets/check/mesh_checks.h"

namespace {

void print_note(void* ctx, config_severity severity, const char* where, const char* text) {
    auto* p = static_cast<check_printer*>(ctx);
    const char* label = severity == config_severity::REFUSED ? "refused"
                        : severity == config_severity::ERROR ? "error"
                                                             : "warning";
    check_line(p, label, where, "%s", text);
}

}  // namespace

int config_check_file(const char* path, const config_check_options& opt, std::FILE* out) {
    check_printer p{out, opt.brief};
    config_report report{};
    report.sink = print_note;
    report.ctx = &p;
    static lynd_config conf;
    conf = lynd_config{};
    if (!opt.brief)
        std::fprintf(out, "%s\n", path);
    config_parse_result rc = config_read(&conf, path, &report);
    if (rc != config_parse_result::OK) {
        if (opt.brief)
            std::fprintf(out, "%s: refused: %s\n", path, report.refusal);
        else
            std::fprintf(out, "the daemon refuses this file and does not start\n");
        return CHECK_REFUSED;
    }
    uint32_t warnings = report.warnings + report.errors + mesh_checks(conf, &p);
    if (!opt.brief) {
        print_effective(conf, out);
        std::fprintf(out, "%u warning%s\n", warnings, warnings == 1 ? "" : "s");
    } else if (warnings > 0) {
        std::fprintf(out, "%s: %u warning%s\n", path, warnings, warnings == 1 ? "" : "s");
    }
    return warnings > 0 && opt.strict ? CHECK_WARNINGS : CHECK_CLEAN;
}
