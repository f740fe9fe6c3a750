// Reading a trace: one JSON object per line, a header first. A pure parser:
// text in, records out, or one error naming the line.
#pragma once
#include <json-c/json.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace lynd {

// A record keeps its line's text and is parsed again when read, so a day's
// trace is held as text, not as a day of parsed objects.
struct TraceRecord {
    int line = 0;
    int part = 1;  // of its recording: the file it was read from
    int64_t t = 0;
    std::string kind;
    std::shared_ptr<const std::string> src;
    size_t off = 0;
    size_t len = 0;
    mutable std::shared_ptr<json_object> obj;

    // The parsed object (parsed on first use); release() lets it go.
    json_object* object() const;
    void release() const { obj.reset(); }

    // Members of the record; the fallbacks when absent or of another type.
    int64_t num(const char* key, int64_t def = 0) const;
    std::string str(const char* key) const;
    // A "text" member or its hex form (key + "_x").
    std::string text(const char* key) const;
    // A hex member as bytes.
    std::string bytes(const char* key) const;
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

bool trace_parse(const char* text, size_t len, Trace* out, std::string* error);
// hex text to bytes; false on an odd length or a character not hex.
bool trace_unhex(const char* hex, size_t len, std::string* out);

}  // namespace lynd
