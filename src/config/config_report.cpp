#include "config/config_report.h"

#include <cstdarg>
#include <cstdio>

#include "core/log.h"

namespace {

// Every line about the file names it as the loader does.
constexpr const char* kFn = "config_load";

void log_note(config_severity severity, const char* where, const char* text) {
    switch (severity) {
    case config_severity::WARNING:
        LYND_WARN_AS(kFn, "%s: %s", where, text);
        break;
    case config_severity::ERROR:
        LYND_ERR_AS(kFn, "%s: %s", where, text);
        break;
    case config_severity::REFUSED:
        break;  // the loader's FATAL lines tell it
    }
}

}  // namespace

void config_where(char* out, const char* where, const char* key) {
    std::snprintf(out, CONFIG_WHERE_MAX, "%s%s%s", where, where[0] != '\0' ? "." : "", key);
}

void config_note(config_report* r, config_severity severity, const char* where, const char* format, ...) {
    char text[CONFIG_TEXT_MAX];
    va_list ap;
    va_start(ap, format);
    std::vsnprintf(text, sizeof text, format, ap);
    va_end(ap);
    if (r != nullptr) {
        if (severity == config_severity::WARNING)
            r->warnings++;
        else if (severity == config_severity::ERROR)
            r->errors++;
        else
            std::snprintf(r->refusal, sizeof r->refusal, "%s: %s", where, text);
    }
    if (r != nullptr && r->sink != nullptr)
        r->sink(r->ctx, severity, where, text);
    else
        log_note(severity, where, text);
}
