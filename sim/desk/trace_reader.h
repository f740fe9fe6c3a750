// Reading a trace: one JSON object per line, a header first. Pure parsers:
// text in, records out, or one error naming the line.
#pragma once
#include <json-c/json.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "trace/trace_hex.h"
#include "trace/trace_line.h"

namespace lynd {

// The recorder writes no longer line; a longer one is damage, not a record.
constexpr size_t TRACE_READ_LINE_MAX = TRACE_LINE_MAX;
// Times are milliseconds from 0 up to about 139 years: far beyond any
// recording, and far from where adding a period could overflow.
constexpr int64_t TRACE_TIME_MAX = int64_t{1} << 42;
// A recorded clock reading (seconds and nanoseconds) in the same range.
inline bool trace_clock_in_range(int64_t s, int64_t ns) {
    return s >= 0 && s <= TRACE_TIME_MAX / 1000 && ns >= 0 && ns < 1000000000;
}

// A record keeps its line's text and is parsed when first read; release()
// lets the parsed object go.
struct TraceRecord {
    int line = 0;
    int part = 1;  // of its recording: the file it was read from
    int64_t t = 0;
    std::string kind;
    std::shared_ptr<const std::string> src;  // the line, without its newline
    mutable std::shared_ptr<json_object> obj;

    json_object* object() const;
    void release() const { obj.reset(); }
    const std::string& text() const;

    // Members of the record; the fallbacks when absent or of another type.
    int64_t num(const char* key, int64_t def = 0) const;
    std::string str(const char* key) const;
    // A "text" member or its hex form (key + "_x"), at most max bytes.
    std::string text(const char* key, size_t max = TRACE_FIELD_MAX) const;
    // A hex member as bytes, at most max of them: a longer one is cut there,
    // so a record can never claim more than the field it fills.
    std::string bytes(const char* key, size_t max = TRACE_FIELD_MAX) const;
    json_object* get(const char* key) const;
};

struct TraceHeader {
    int version = 0;
    std::string daemon;
    std::string host_order;  // the recording CPU's, for the reader: bytes are little-endian
    int word_bits = 0;
    std::string start;
    int part = 1;       // 1 for a recording's first file, +1 at each rotation
    int64_t began = 0;  // the first part's time, the same in every part
    std::string config;
    std::vector<std::string> args;
};

struct Trace {
    TraceHeader header;
    std::vector<TraceRecord> records;  // the header not included
};

// One line (without its newline) as a record: its time (in range) and known
// type checked. With parse false only the leading "t" and "k" are read when
// the line starts as the recorder writes it; the rest is parsed on use.
bool trace_read_record(const char* p, size_t n, int line, bool parse, TraceRecord* r, std::string* error);
bool trace_read_header(const TraceRecord& r, TraceHeader* h, std::string* error);
// "line N: why", the form of every reader error.
std::string trace_line_error(int line, const std::string& why);

// hex text to at most max bytes (the rest is checked, not kept); false on
// an odd length, a character not hex or a zero run longer than any field.
bool trace_unhex(const char* hex, size_t len, std::string* out, size_t max = TRACE_FIELD_MAX);

}  // namespace lynd
