// Bus messages and method replies as a record writes them: each attribute as
// [name, blobmsg type, value], so a replay hands the daemon the same types.
#pragma once
#include <cstddef>

#include "platform/bus.h"
#include "trace/trace_line.h"

namespace lynd {

class TraceReply;

// The top-level attributes of msg under key, built in scratch; nested tables
// and arrays carry their type only.
void bus_msg_json(TraceLine& l, const char* key, const BusMessage& msg, TraceReply& scratch);

constexpr size_t TRACE_REPLY_MAX = 64 * 1024;

// A reply as JSON text, passed on to fwd as it is built (fwd may be null).
// Its buffer is the heap's, taken when it is made.
class TraceReply : public BusReply {
public:
    explicit TraceReply(BusReply* fwd = nullptr, size_t capacity = TRACE_REPLY_MAX);
    ~TraceReply() override;
    TraceReply(const TraceReply&) = delete;
    TraceReply& operator=(const TraceReply&) = delete;
    bool has_buffer() const { return buf_ != nullptr; }
    // Empty again, passing on to fwd.
    void reset(BusReply* fwd);
    void open_table(const char* name) override;
    void open_array(const char* name) override;
    void close() override;
    void put_string(const char* name, const char* value) override;
    void put_int(const char* name, int64_t value) override;
    void put_bool(const char* name, bool value) override;
    void put_double(const char* name, double value) override;
    // The text so far, tables left open closed.
    const char* text();
    size_t size() const { return len_; }

private:
    void item(const char* name);
    void push(bool array);
    void put(const char* s, size_t n);
    void put_str(const char* s);

    static constexpr int kDepth = 16;
    BusReply* fwd_ = nullptr;
    char* buf_ = nullptr;
    size_t cap_ = 0;
    size_t len_ = 0;
    bool overflow_ = false;
    int depth_ = 0;
    bool in_array_[kDepth] = {};
    bool first_[kDepth] = {true};
};

}  // namespace lynd
