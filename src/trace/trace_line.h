// One record of a trace: a JSON object on one line, built in fixed storage.
// Numbers are written as decoded values and raw bytes as hex, so a trace
// carries nothing of the recording host's word size.
#pragma once
#include <cstddef>
#include <cstdint>

namespace lynd {

// Room for a configuration file of the largest size the loader takes (256
// KiB) read whole, in hex or escaped (twice its bytes), and a full hc table.
constexpr size_t TRACE_LINE_MAX = 528 * 1024;

// The buffer is the heap's, taken when the line is made: a recorder holds
// its lines only while it records. A line of capacity 0 (or one whose
// buffer could not be had) takes nothing and is always cut.
class TraceLine {
public:
    explicit TraceLine(size_t capacity = TRACE_LINE_MAX);
    ~TraceLine();
    TraceLine(const TraceLine&) = delete;
    TraceLine& operator=(const TraceLine&) = delete;
    // False when the buffer asked for could not be had.
    bool has_buffer() const { return !lacking_; }

    // {"t":T,"k":"KIND"
    void begin(int64_t t, const char* kind);
    void str(const char* key, const char* s);
    // Text as a JSON string when it is plain printable text; else its bytes
    // in hex under key followed by "_x".
    void text(const char* key, const char* s, size_t n);
    void num(const char* key, int64_t v);
    // Bytes in hex, a run of zero bytes as z<count>. ("00ff" "z12." "01").
    void hex(const char* key, const void* p, size_t n);
    // A value already in JSON.
    void raw(const char* key, const char* json, size_t n);
    void argv(const char* key, const char* const argv[]);
    // }\n
    void end();

    const char* data() const { return buf_; }
    size_t size() const { return len_; }
    // False when the record did not fit and was cut.
    bool ok() const { return !overflow_; }

private:
    void key(const char* k);
    void put(const char* s, size_t n);
    void put_char(char c);
    void put_escaped(const char* s, size_t n);

    char* buf_ = nullptr;
    size_t cap_ = 0;
    bool lacking_ = false;
    size_t len_ = 0;
    bool overflow_ = false;
};

// True when every byte reads as itself inside a JSON string.
bool trace_is_plain_text(const char* s, size_t n);

}  // namespace lynd
