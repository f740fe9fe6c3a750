// Console logging. Every call site tests the level itself, so a message that
// is off costs one comparison; FATAL lines print always and end the process.
#pragma once
#include <cstddef>

extern "C" {
extern int g_lynd_dgb_lvl;  // the daemon's level, 1 by default
extern int g_dgb_lvl;       // read by the bridge library as its own level
}

constexpr int LYND_LVL_ERR = 1;
constexpr int LYND_LVL_WARN = 2;
constexpr int LYND_LVL_INFO = 3;
constexpr int LYND_LVL_LOG = 4;
constexpr int LYND_LVL_DEBUG = 5;
constexpr int LYND_LVL_TRACE = 6;

// A message holds at most this many characters; longer ones are cut.
constexpr size_t LYND_LOG_MSG_MAX = 2047;

void lynd_printf(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Lines go to the system log instead of the console (off by default).
void lynd_log_to_syslog(bool on);
// The syslog priority of a line by its level tag (LOG_INFO when it has none).
int lynd_log_priority(const char* line);

inline bool lynd_log_on(int level) { return g_lynd_dgb_lvl >= level; }

// fn names the operation a line belongs to; a helper that logs on behalf of
// the operation it serves passes that operation's name (the _AS forms).
#define LYND_LOG_AT_FN(level, tag, fn, fmt, ...)                           \
    do {                                                                   \
        if (__builtin_expect(lynd_log_on(level), 0))                       \
            lynd_printf(tag "[%s, %d] " fmt, fn, __LINE__, ##__VA_ARGS__); \
    } while (0)
#define LYND_LOG_AT(level, tag, fmt, ...) LYND_LOG_AT_FN(level, tag, __func__, fmt, ##__VA_ARGS__)

#define LYND_ERR(fmt, ...) LYND_LOG_AT(LYND_LVL_ERR, "<LYND_ERR>", fmt, ##__VA_ARGS__)
#define LYND_WARN(fmt, ...) LYND_LOG_AT(LYND_LVL_WARN, "<LYND_WARN>", fmt, ##__VA_ARGS__)
#define LYND_INFO(fmt, ...) LYND_LOG_AT(LYND_LVL_INFO, "<LYND_INFO>", fmt, ##__VA_ARGS__)
#define LYND_LOG(fmt, ...) LYND_LOG_AT(LYND_LVL_LOG, "<LYND_LOG>", fmt, ##__VA_ARGS__)
#define LYND_DEBUG(fmt, ...) LYND_LOG_AT(LYND_LVL_DEBUG, "<LYND_DEBUG>", fmt, ##__VA_ARGS__)
#define LYND_TRACE(fmt, ...) LYND_LOG_AT(LYND_LVL_TRACE, "<LYND_TRACE>", fmt, ##__VA_ARGS__)

// A decision as it is made (opt-in): printed from the default level on.
#define LYND_DECISION(fmt, ...) LYND_LOG_AT(LYND_LVL_ERR, "<LYND_DECISION>", fmt, ##__VA_ARGS__)

#define LYND_ERR_AS(fn, fmt, ...) LYND_LOG_AT_FN(LYND_LVL_ERR, "<LYND_ERR>", fn, fmt, ##__VA_ARGS__)
#define LYND_WARN_AS(fn, fmt, ...) LYND_LOG_AT_FN(LYND_LVL_WARN, "<LYND_WARN>", fn, fmt, ##__VA_ARGS__)
#define LYND_INFO_AS(fn, fmt, ...) LYND_LOG_AT_FN(LYND_LVL_INFO, "<LYND_INFO>", fn, fmt, ##__VA_ARGS__)
#define LYND_LOG_AS(fn, fmt, ...) LYND_LOG_AT_FN(LYND_LVL_LOG, "<LYND_LOG>", fn, fmt, ##__VA_ARGS__)
#define LYND_DEBUG_AS(fn, fmt, ...) LYND_LOG_AT_FN(LYND_LVL_DEBUG, "<LYND_DEBUG>", fn, fmt, ##__VA_ARGS__)
#define LYND_TRACE_AS(fn, fmt, ...) LYND_LOG_AT_FN(LYND_LVL_TRACE, "<LYND_TRACE>", fn, fmt, ##__VA_ARGS__)

// A start-up error the daemon cannot run past: the caller returns it up to
// lynd_main, which ends the run with status 1.
#define LYND_FATAL_AS(fn, fmt, ...) lynd_printf("<LYND_FATAL>[%s, %d] " fmt, fn, __LINE__, ##__VA_ARGS__)
#define LYND_FATAL(fmt, ...) LYND_FATAL_AS(__func__, fmt, ##__VA_ARGS__)
