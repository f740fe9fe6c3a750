#include <cerrno>
#include <cstring>
#include <memory>
#include <new>

#include "config/config.h"
#include "core/log.h"
#include "platform/seams.h"

config_parse_result config_read(lynd_config* conf, const char* filename, config_report* report) {
    // One byte more than allowed tells an oversized file from a full one.
    std::unique_ptr<char[]> text(new (std::nothrow) char[LYND_CONFIG_MAX_SIZE + 1]);
    if (!text) {
        config_note(report, config_severity::REFUSED, "file", "no memory to read it");
        return config_parse_result::BAD_JSON;
    }
    errno = 0;
    long len = lynd::host().read_file(filename, text.get(), LYND_CONFIG_MAX_SIZE + 1);
    if (len < 0) {
        config_note(report, config_severity::REFUSED, "file", "cannot be opened%s%s", errno != 0 ? ": " : "",
                    errno != 0 ? std::strerror(errno) : "");
        return config_parse_result::BAD_JSON;
    }
    if (static_cast<size_t>(len) >= LYND_CONFIG_MAX_SIZE) {
        long size = lynd::host().file_size(filename);
        config_note(report, config_severity::REFUSED, "file", "%ld bytes; a configuration must be under %zu (256 KiB)",
                    size > len ? size : len, LYND_CONFIG_MAX_SIZE);
        return config_parse_result::BAD_JSON;
    }
    return config_parse(conf, text.get(), static_cast<size_t>(len), report);
}

namespace {

void discard(void*, config_severity, const char*, const char*) {}

}  // namespace

void config_load(lynd_config* conf, const char* filename) {
    // A first, silent look finds the sink, so the file's own warnings go
    // where its lines go.
    config_report quiet{};
    quiet.sink = discard;
    int level = g_lynd_dgb_lvl;
    g_lynd_dgb_lvl = 0;  // the loader's own lines come with the second look
    // A file that does not parse sets nothing, its switch included.
    bool parsed = config_read(conf, filename, &quiet) != config_parse_result::BAD_JSON;
    g_lynd_dgb_lvl = level;
    lynd_log_to_syslog(parsed && conf->syslog);

    config_report report{};
    switch (config_read(conf, filename, &report)) {
    case config_parse_result::OK:
        return;
    case config_parse_result::BAD_JSON:
        LYND_FATAL_LINE("parse config");
        break;
    case config_parse_result::BAD_INTERFACE_TYPE:
        LYND_FATAL_LINE("invalid interface type");
        break;
    }
    LYND_FATAL("%s: %s", filename, report.refusal);
}

void config_free(lynd_config* conf) {
    conf->n_bridges = 0;
    conf->n_interfaces = 0;
}
