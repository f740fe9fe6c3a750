#include "trace/trace_kinds.h"

#include <cstdint>
#include <cstring>

namespace lynd {

namespace {

const char* const kDispatch[] = {"timer", "fd", "event", "call", "lost", "run_end"};

const char* const kCalls[] = {
    "header", "stop", "cut",
    // loop
    "loop_init", "loop_done", "timer_set", "timer_cancel", "timer_left", "fd_add", "fd_del", "loop_end", "now",
    // host
    "run", "status", "log", "syslog", "ifindex", "hwaddr", "ifname", "read", "fsize", "fs", "write", "close", "dgram", "ioctl", "packet",
    "send", "nl_socket", "nl_bind", "nl_recv", "mono", "wall", "pid", "sigpipe",
    // uci
    "uci",
    // bridge library
    "k_alloc", "k_table", "k_nlmsg", "krel",
    // bus
    "b_connect", "b_handler", "b_strerror", "b_loop", "b_free", "b_lost", "b_reconnect", "b_object", "reply"};

bool in(const char* const* list, size_t n, const char* kind) {
    for (size_t i = 0; i < n; i++)
        if (std::strcmp(list[i], kind) == 0)
            return true;
    return false;
}

}  // namespace

bool trace_host_is_big() {
    const uint16_t probe = 1;
    uint8_t first;
    std::memcpy(&first, &probe, 1);
    return first == 0;
}

const char* trace_host_byte_order() { return trace_host_is_big() ? "big" : "little"; }

bool trace_kind_is_dispatch(const char* kind) {
    return in(kDispatch, sizeof kDispatch / sizeof kDispatch[0], kind);
}

bool trace_kind_is_known(const char* kind) {
    return trace_kind_is_dispatch(kind) || in(kCalls, sizeof kCalls / sizeof kCalls[0], kind);
}

}  // namespace lynd
