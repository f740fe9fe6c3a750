#include "core/log.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "platform/seams.h"

extern "C" {
int g_lynd_dgb_lvl = 1;
__attribute__((visibility("default"))) int g_dgb_lvl = 0;
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
    line[len++] = '\n';
    lynd::host().console_write(line, len);
}

void lynd_fatal_exit() { std::exit(1); }
