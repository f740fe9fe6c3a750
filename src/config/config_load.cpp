#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "config/config.h"
#include "core/log.h"
#include "platform/seams.h"

namespace {

// The text of the configuration in use, exactly as long as the file was.
struct RunningText {
    char* text = nullptr;
    size_t len = 0;
} g_running;

// The whole file into text: its length, or -1 with the reason in report.
long read_text(const char* filename, std::unique_ptr<char[]>* text, config_report* report) {
    // One byte more than allowed tells an oversized file from a full one.
    text->reset(new (std::nothrow) char[LYND_CONFIG_MAX_SIZE + 1]);
    if (!*text) {
        config_note(report, config_severity::REFUSED, "file", "no memory to read it");
        return -1;
    }
    errno = 0;
    long len = lynd::host().read_file(filename, text->get(), LYND_CONFIG_MAX_SIZE + 1);
    if (len < 0) {
        config_note(report, config_severity::REFUSED, "file", "cannot be opened%s%s", errno != 0 ? ": " : "",
                    errno != 0 ? std::strerror(errno) : "");
        return -1;
    }
    if (static_cast<size_t>(len) >= LYND_CONFIG_MAX_SIZE) {
        long size = lynd::host().file_size(filename);
        config_note(report, config_severity::REFUSED, "file", "%ld bytes; a configuration must be under %zu (256 KiB)",
                    size > len ? size : len, LYND_CONFIG_MAX_SIZE);
        return -1;
    }
    return len;
}

void discard(void*, config_severity, const char*, const char*) {}

// A first, silent look finds the sink, so the file's own warnings go where
// its lines go.
void pick_log_sink(lynd_config* conf, const char* filename) {
    config_report quiet{};
    quiet.sink = discard;
    int level = g_lynd_dgb_lvl;
    g_lynd_dgb_lvl = 0;  // the loader's own lines come with the second look
    // A file that does not parse sets nothing, its switch included.
    bool parsed = config_read(conf, filename, &quiet) != config_parse_result::BAD_JSON;
    g_lynd_dgb_lvl = level;
    lynd_log_to_syslog(parsed && conf->syslog);
}

// Loads filename and keeps its text; the result, with report filled.
config_parse_result load_file(lynd_config* conf, const char* filename, config_report* report) {
    std::unique_ptr<char[]> text;
    long len = read_text(filename, &text, report);
    if (len < 0)
        return config_parse_result::BAD_JSON;
    config_parse_result rc = config_parse(conf, text.get(), static_cast<size_t>(len), report);
    if (rc == config_parse_result::OK && !config_set_running_text(text.get(), static_cast<size_t>(len)))
        LYND_ERR("%s: no memory to keep its text: a restart cannot fall back to it", filename);
    return rc;
}

const char* refusal_line(config_parse_result rc) {
    return rc == config_parse_result::BAD_INTERFACE_TYPE ? "invalid interface type" : "parse config";
}

}  // namespace

config_parse_result config_read(lynd_config* conf, const char* filename, config_report* report) {
    std::unique_ptr<char[]> text;
    long len = read_text(filename, &text, report);
    if (len < 0)
        return config_parse_result::BAD_JSON;
    return config_parse(conf, text.get(), static_cast<size_t>(len), report);
}

const char* config_running_text(size_t* len) {
    *len = g_running.len;
    return g_running.text != nullptr ? g_running.text : "";
}

bool config_set_running_text(const char* text, size_t len) {
    char* copy = nullptr;
    if (text != nullptr && len > 0) {
        copy = static_cast<char*>(std::malloc(len));
        if (copy == nullptr)
            return false;
        std::memcpy(copy, text, len);
    }
    std::free(g_running.text);
    g_running.text = copy;
    g_running.len = copy != nullptr ? len : 0;
    return true;
}

bool config_load(lynd_config* conf, const char* filename) {
    pick_log_sink(conf, filename);
    config_report report{};
    config_parse_result rc = load_file(conf, filename, &report);
    if (rc == config_parse_result::OK)
        return true;
    LYND_FATAL("%s", refusal_line(rc));
    LYND_FATAL("%s: %s", filename, report.refusal);
    return false;
}

bool config_load_keeping(lynd_config* conf, const char* filename) {
    size_t len = 0;
    (void)config_running_text(&len);
    if (len == 0)
        return config_load(conf, filename);
    pick_log_sink(conf, filename);
    config_report report{};
    config_parse_result rc = load_file(conf, filename, &report);
    if (rc == config_parse_result::OK)
        return true;
    LYND_ERR("%s no longer loads (%s): the running configuration stays", filename, report.refusal);
    *conf = lynd_config{};
    lynd_list_init(&conf->modules);
    // The running text loaded once; it loads the same again.
    config_report again{};
    rc = config_parse(conf, g_running.text, g_running.len, &again);
    lynd_log_to_syslog(conf->syslog);
    if (rc == config_parse_result::OK)
        return true;
    LYND_FATAL("%s", refusal_line(rc));
    LYND_FATAL("%s: %s", filename, again.refusal);
    return false;
}

void config_free(lynd_config* conf) {
    conf->n_bridges = 0;
    conf->n_interfaces = 0;
}
