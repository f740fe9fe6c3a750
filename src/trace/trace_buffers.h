// What a trace needs while it is on, taken from the heap when a start may
// record and given back when no trace is on, so an idle recorder costs no
// memory. Nothing here grows on a period run: only the start's records
// (kept until the configuration says where they go) grow, up to a cap.
#pragma once
#include <cstddef>

#include "trace/bus_requests.h"
#include "trace/trace_file.h"
#include "trace/trace_line.h"

namespace lynd {

// The start's records: a configuration file of the largest size read twice,
// and room for the rest.
constexpr size_t TRACE_PENDING_MAX = 4 * TRACE_LINE_MAX;

class TracePending {
public:
    TracePending() = default;
    ~TracePending();
    TracePending(const TracePending&) = delete;
    TracePending& operator=(const TracePending&) = delete;
    // Appends a record; once one does not fit (or no memory), all are lost.
    void keep(const char* data, size_t len);
    void clear();
    const char* data() const { return data_ != nullptr ? data_ : ""; }
    size_t size() const { return len_; }
    bool lost() const { return lost_; }

private:
    char* data_ = nullptr;
    size_t len_ = 0;
    size_t cap_ = 0;
    bool lost_ = false;
};

struct TraceBuffers {
    TraceLine line;
    TraceLine header;  // its own: a rotation writes it while a record waits
    TraceReply reply;  // a method's reply as it is built
    TraceReply msg;    // a message's attributes
    TraceFile file;
    TracePending pending;
};

// All of them, or null when any could not be had.
TraceBuffers* trace_buffers_take();
void trace_buffers_give(TraceBuffers* b);
// What they take while a trace is on (the start's records aside).
size_t trace_buffers_bytes();

}  // namespace lynd
