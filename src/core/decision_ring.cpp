#include "core/decision_ring.h"

#include <cstring>

#include "core/log.h"
#include "platform/seams.h"

decision_ring g_decisions;

const char* const decision_kind_names[DECISION_KINDS] = {"client", "path", "bcast_port", "preferred_port",
                                                         "client_held"};

namespace {

decision_observer g_observer = nullptr;

void copy_text(char* dst, size_t size, const char* src) {
    size_t len = src != nullptr ? strnlen(src, size - 1) : 0;
    std::memcpy(dst, src != nullptr ? src : "", len);
    dst[len] = '\0';
}

}  // namespace

void decision_ring_reset() { g_decisions = decision_ring{}; }

void decision_ring_log_lines(bool on) { g_decisions.log_lines = on; }

int64_t lynd_monotonic_ms() {
    timespec t = lynd::host().monotonic_now();
    return static_cast<int64_t>(t.tv_sec) * 1000 + t.tv_nsec / 1000000;
}

void decision_record(uint8_t kind, const char* subject, const char* from, const char* to, const char* reason) {
    uint32_t seq = ++g_decisions.next_seq;
    decision& d = g_decisions.entries[(seq - 1) % DECISION_RING_SIZE];
    d.at_ms = lynd_monotonic_ms();
    d.seq = seq;
    d.kind = kind;
    copy_text(d.subject, sizeof d.subject, subject);
    copy_text(d.from, sizeof d.from, from);
    copy_text(d.to, sizeof d.to, to);
    d.reason = reason != nullptr ? reason : "";
    if (g_decisions.log_lines)
        LYND_DECISION("%s %s %s -> %s: %s", decision_kind_names[kind < DECISION_KINDS ? kind : 0], d.subject,
                      d.from[0] != '\0' ? d.from : "none", d.to[0] != '\0' ? d.to : "none", d.reason);
    if (g_observer != nullptr)
        g_observer(d);
}

void decision_ring_observe(decision_observer fn) { g_observer = fn; }

void decision_record_port(uint8_t kind, const char* subject, uint32_t before, uint32_t after, const char* reason) {
    if (before == after)
        return;
    char from[LYND_NAME_LEN] = {};
    char to[LYND_NAME_LEN] = {};
    if (before != 0 && !lynd::host().if_indextoname(before, from))
        from[0] = '\0';
    if (after != 0 && !lynd::host().if_indextoname(after, to))
        to[0] = '\0';
    decision_record(kind, subject, from, to, reason);
}

int decision_count() {
    return g_decisions.next_seq < DECISION_RING_SIZE ? static_cast<int>(g_decisions.next_seq) : DECISION_RING_SIZE;
}

const decision* decision_at(int k) {
    int n = decision_count();
    if (k < 0 || k >= n)
        return nullptr;
    uint32_t seq = g_decisions.next_seq - static_cast<uint32_t>(n) + static_cast<uint32_t>(k) + 1;
    return &g_decisions.entries[(seq - 1) % DECISION_RING_SIZE];
}
