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

// One line with its level's tag, "[fn, line] " and the message. A tag is a
// function, not text in each format: the formats then do not repeat it, which
// is about 6 KB of a router's binary.
void lynd_log_fatal(const char* fn, int line, const char* format, ...) __attribute__((format(printf, 3, 4)));
void lynd_log_err(const char* fn, int line, const char* format, ...) __attribute__((format(printf, 3, 4)));
void lynd_log_warn(const char* fn, int line, const char* format, ...) __attribute__((format(printf, 3, 4)));
void lynd_log_decision(const char* fn, int line, const char* format, ...) __attribute__((format(printf, 3, 4)));
void lynd_log_info(const char* fn, int line, const char* format, ...) __attribute__((format(printf, 3, 4)));
void lynd_log_log(const char* fn, int line, const char* format, ...) __attribute__((format(printf, 3, 4)));
void lynd_log_debug(const char* fn, int line, const char* format, ...) __attribute__((format(printf, 3, 4)));
void lynd_log_trace(const char* fn, int line, const char* format, ...) __attribute__((format(printf, 3, 4)));

// fn names the operation a line belongs to; a helper that logs on behalf of
// the operation it serves passes that operation's name (the _AS forms).
#define LYND_LOG_AT_FN(level, print, fn, fmt, ...)             \
    do {                                                       \
        if (__builtin_expect(lynd_log_on(level), 0))           \
            print(fn, __LINE__, fmt, ##__VA_ARGS__);           \
    } while (0)
#define LYND_LOG_AT(level, print, fmt, ...) LYND_LOG_AT_FN(level, print, __func__, fmt, ##__VA_ARGS__)

#define LYND_ERR(fmt, ...) LYND_LOG_AT(LYND_LVL_ERR, lynd_log_err, fmt, ##__VA_ARGS__)
#define LYND_WARN(fmt, ...) LYND_LOG_AT(LYND_LVL_WARN, lynd_log_warn, fmt, ##__VA_ARGS__)
#define LYND_INFO(fmt, ...) LYND_LOG_AT(LYND_LVL_INFO, lynd_log_info, fmt, ##__VA_ARGS__)
#define LYND_LOG(fmt, ...) LYND_LOG_AT(LYND_LVL_LOG, lynd_log_log, fmt, ##__VA_ARGS__)
#define LYND_DEBUG(fmt, ...) LYND_LOG_AT(LYND_LVL_DEBUG, lynd_log_debug, fmt, ##__VA_ARGS__)
#define LYND_TRACE(fmt, ...) LYND_LOG_AT(LYND_LVL_TRACE, lynd_log_trace, fmt, ##__VA_ARGS__)

// A decision as it is made (opt-in): printed from the default level on.
#define LYND_DECISION(fmt, ...) LYND_LOG_AT(LYND_LVL_ERR, lynd_log_decision, fmt, ##__VA_ARGS__)

#define LYND_ERR_AS(fn, fmt, ...) LYND_LOG_AT_FN(LYND_LVL_ERR, lynd_log_err, fn, fmt, ##__VA_ARGS__)
#define LYND_WARN_AS(fn, fmt, ...) LYND_LOG_AT_FN(LYND_LVL_WARN, lynd_log_warn, fn, fmt, ##__VA_ARGS__)
#define LYND_INFO_AS(fn, fmt, ...) LYND_LOG_AT_FN(LYND_LVL_INFO, lynd_log_info, fn, fmt, ##__VA_ARGS__)
#define LYND_LOG_AS(fn, fmt, ...) LYND_LOG_AT_FN(LYND_LVL_LOG, lynd_log_log, fn, fmt, ##__VA_ARGS__)
#define LYND_DEBUG_AS(fn, fmt, ...) LYND_LOG_AT_FN(LYND_LVL_DEBUG, lynd_log_debug, fn, fmt, ##__VA_ARGS__)
#define LYND_TRACE_AS(fn, fmt, ...) LYND_LOG_AT_FN(LYND_LVL_TRACE, lynd_log_trace, fn, fmt, ##__VA_ARGS__)

// A start-up error the daemon cannot run past: the caller returns it up to
// lynd_main, which ends the run with status 1.
#define LYND_FATAL_AS(fn, fmt, ...) lynd_log_fatal(fn, __LINE__, fmt, ##__VA_ARGS__)
#define LYND_FATAL(fmt, ...) LYND_FATAL_AS(__func__, fmt, ##__VA_ARGS__)
