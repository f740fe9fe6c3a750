// The answers of the daemon's bus object. Each reads the records the
// daemon keeps and never reruns a step of the algorithm.
#pragma once
#include <cstdint>
#include <initializer_list>

#include "config/lynd_config.h"
#include "core/mac.h"
#include "platform/bus.h"

struct status_context {
    lynd_config* conf;
    int64_t started_ms;  // monotonic, at the object's start
};

void status_reply_status(const status_context& ctx, lynd::BusReply& r);
void status_reply_paths(const status_context& ctx, lynd::BusReply& r);
void status_reply_clients(const status_context& ctx, lynd::BusReply& r);
void status_reply_decisions(const status_context& ctx, lynd::BusReply& r);
// The counters since start: the answer of the counters method.
void status_put_counters(lynd::BusReply& r);
// BUS_STATUS_NOT_FOUND when no path or client of that name or MAC.
int status_reply_explain_path(const status_context& ctx, const char* path, lynd::BusReply& r);
int status_reply_explain_client(const status_context& ctx, const uint8_t* mac, lynd::BusReply& r);

// What an explain call asks about: exactly one of a MAC or a path name.
struct explain_query {
    bool by_mac;
    uint8_t mac[LYND_MAC_LEN];
    char path[LYND_NAME_LEN];
};
// Pure: BUS_STATUS_OK, or BUS_STATUS_INVALID_ARGUMENT for a missing,
// doubled or mistyped argument or a MAC not written as six hex pairs.
int explain_query_parse(const lynd::BusMessage& args, explain_query* out);
// Pure: BUS_STATUS_OK with *enable, or BUS_STATUS_INVALID_ARGUMENT.
int shadow_query_parse(const lynd::BusMessage& args, bool* enable);

// Runs of plain members of one reply table.
struct reply_int {
    const char* name;
    int64_t value;
};
struct reply_flag {
    const char* name;
    bool value;
};
void put_ints(lynd::BusReply& r, std::initializer_list<reply_int> fields);
void put_flags(lynd::BusReply& r, std::initializer_list<reply_flag> fields);

// Seconds since the object's start, for a monotonic time.
int64_t status_uptime_s(const status_context& ctx, int64_t at_ms);
// Build facts.
const char* lynd_version();
const char* lynd_revision();
