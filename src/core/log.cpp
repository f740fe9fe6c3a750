#include "core/log.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <syslog.h>

#include "platform/seams.h"

extern "C" {
int g_lynd_dgb_lvl = 1;
__attribute__((visibility("default"))) int g_dgb_lvl = 0;
}

namespace {

bool g_to_syslog;

struct tag_priority {
    const char* tag;
    int priority;
};
constexpr tag_priority kPriorities[] = {
    {"<LYND_FATAL>", LOG_CRIT},     {"<LYND_ERR>", LOG_ERR},     {"<LYND_WARN>", LOG_WARNING},
    {"<LYND_DECISION>", LOG_NOTICE}, {"<LYND_INFO>", LOG_NOTICE}, {"<LYND_LOG>", LOG_INFO},
    {"<LYND_DEBUG>", LOG_DEBUG},     {"<LYND_TRACE>", LOG_DEBUG},
};

// One record per line: the system log keeps no line breaks inside one.
void to_syslog(const char* text, size_t len) {
    int priority = lynd_log_priority(text);
    while (len > 0) {
        const char* nl = static_cast<const char*>(std::memchr(text, '\n', len));
        size_t n = nl != nullptr ? static_cast<size_t>(nl - text) : len;
        lynd::host().syslog_write(priority, text, n);
        if (nl == nullptr)
            break;
        text += n + 1;
        len -= n + 1;
    }
}

}  // namespace

void lynd_log_to_syslog(bool on) { g_to_syslog = on; }

int lynd_log_priority(const char* line) {
    for (const tag_priority& t : kPriorities)
        if (std::strncmp(line, t.tag, std::strlen(t.tag)) == 0)
            return t.priority;
    return LOG_INFO;
}

namespace {

// The line in text, cut at LYND_LOG_MSG_MAX characters, to the sink as it is:
// nothing here ever reaches a shell.
void emit(char* text, size_t len) {
    if (g_to_syslog) {
        to_syslog(text, len);
        return;
    }
    text[len++] = '\n';
    lynd::host().console_write(text, len);
}

size_t cut(int n) { return static_cast<size_t>(n) > LYND_LOG_MSG_MAX ? LYND_LOG_MSG_MAX : static_cast<size_t>(n); }

// As lynd_printf(tag "[%s, %d] " format, fn, line, ...) would print it.
void log_line(const char* tag, const char* fn, int line, const char* format, va_list ap) {
    char text[LYND_LOG_MSG_MAX + 2];
    int head = std::snprintf(text, LYND_LOG_MSG_MAX + 1, "%s[%s, %d] ", tag, fn, line);
    if (head < 0)
        return;
    size_t at = cut(head);
    int rest = std::vsnprintf(text + at, LYND_LOG_MSG_MAX + 1 - at, format, ap);
    if (rest < 0)
        return;
    emit(text, cut(head + rest));
}

}  // namespace

void lynd_printf(const char* format, ...) {
    char text[LYND_LOG_MSG_MAX + 2];
    va_list ap;
    va_start(ap, format);
    int n = std::vsnprintf(text, LYND_LOG_MSG_MAX + 1, format, ap);
    va_end(ap);
    if (n >= 0)
        emit(text, cut(n));
}

void lynd_log_fatal(const char* fn, int line, const char* format, ...) {
    va_list ap;
    va_start(ap, format);
    log_line("<LYND_FATAL>", fn, line, format, ap);
    va_end(ap);
}

void lynd_log_err(const char* fn, int line, const char* format, ...) {
    va_list ap;
    va_start(ap, format);
    log_line("<LYND_ERR>", fn, line, format, ap);
    va_end(ap);
}

void lynd_log_warn(const char* fn, int line, const char* format, ...) {
    va_list ap;
    va_start(ap, format);
    log_line("<LYND_WARN>", fn, line, format, ap);
    va_end(ap);
}

void lynd_log_decision(const char* fn, int line, const char* format, ...) {
    va_list ap;
    va_start(ap, format);
    log_line("<LYND_DECISION>", fn, line, format, ap);
    va_end(ap);
}

void lynd_log_info(const char* fn, int line, const char* format, ...) {
    va_list ap;
    va_start(ap, format);
    log_line("<LYND_INFO>", fn, line, format, ap);
    va_end(ap);
}

void lynd_log_log(const char* fn, int line, const char* format, ...) {
    va_list ap;
    va_start(ap, format);
    log_line("<LYND_LOG>", fn, line, format, ap);
    va_end(ap);
}

void lynd_log_debug(const char* fn, int line, const char* format, ...) {
    va_list ap;
    va_start(ap, format);
    log_line("<LYND_DEBUG>", fn, line, format, ap);
    va_end(ap);
}

void lynd_log_trace(const char* fn, int line, const char* format, ...) {
    va_list ap;
    va_start(ap, format);
    log_line("<LYND_TRACE>", fn, line, format, ap);
    va_end(ap);
}
