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

void lynd_printf(const char* format, ...) {
    // The text goes to the sink as it is: nothing here ever reaches a shell.
    char line[LYND_LOG_MSG_MAX + 2];
    va_list ap;
    va_start(ap, format);
    int n = std::vsnprintf(line, LYND_LOG_MSG_MAX + 1, format, ap);
    va_end(ap);
    if (n < 0)
        return;
    size_t len = static_cast<size_t>(n) > LYND_LOG_MSG_MAX ? LYND_LOG_MSG_MAX : static_cast<size_t>(n);
    if (g_to_syslog) {
        to_syslog(line, len);
        return;
    }
    line[len++] = '\n';
    lynd::host().console_write(line, len);
}
