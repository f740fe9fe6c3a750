#include "sim/desk/trace_reader.h"

#include <cstring>

#include "core/mac.h"
#include "trace/trace_kinds.h"

namespace lynd {

namespace {

// No recorded buffer is near this; a longer run is a damaged trace.
constexpr size_t kMaxZeroRun = 16 * 1024 * 1024;

bool fail(std::string* error, int line, const std::string& why) {
    *error = "line " + std::to_string(line) + ": " + why;
    return false;
}

json_object* parse_line(const char* p, size_t n) {
    json_tokener* tok = json_tokener_new();
    if (tok == nullptr)
        return nullptr;
    json_object* o = json_tokener_parse_ex(tok, p, static_cast<int>(n));
    bool complete = json_tokener_get_error(tok) == json_tokener_success && json_tokener_get_parse_end(tok) == n;
    json_tokener_free(tok);
    if (o != nullptr && complete && json_object_is_type(o, json_type_object))
        return o;
    json_object_put(o);
    return nullptr;
}

bool read_header(const TraceRecord& r, TraceHeader* h, std::string* error) {
    if (r.kind != "header" || r.get("lynd_trace") == nullptr)
        return fail(error, r.line, "not a lynd trace (no header)");
    h->version = static_cast<int>(r.num("lynd_trace"));
    if (h->version != TRACE_FORMAT_VERSION)
        return fail(error, r.line,
                    "trace format version " + std::to_string(h->version) + ", this build reads version " +
                        std::to_string(TRACE_FORMAT_VERSION));
    h->daemon = r.str("daemon");
    h->host_order = r.str("host_order");
    h->word_bits = static_cast<int>(r.num("word_bits"));
    h->start = r.str("start");
    h->part = static_cast<int>(r.num("part", 1));
    h->began = r.num("began");
    if (h->part < 1)
        return fail(error, r.line, "part " + std::to_string(h->part) + " (parts count from 1)");
    h->config = r.text("config");
    json_object* args = r.get("args");
    if (args == nullptr || !json_object_is_type(args, json_type_array))
        return fail(error, r.line, "header has no argument list");
    for (size_t i = 0; i < json_object_array_length(args); i++)
        h->args.push_back(json_object_get_string(json_object_array_get_idx(args, i)));
    return true;
}

bool read_record(const char* p, size_t n, int line, TraceRecord* r, std::string* error) {
    json_object* o = parse_line(p, n);
    if (o == nullptr)
        return fail(error, line, "not a JSON object");
    r->line = line;
    r->obj.reset(o, json_object_put);
    json_object* t = r->get("t");
    json_object* k = r->get("k");
    if (t == nullptr || !json_object_is_type(t, json_type_int) || k == nullptr ||
        !json_object_is_type(k, json_type_string))
        return fail(error, line, "a record needs a time \"t\" and a type \"k\"");
    r->t = json_object_get_int64(t);
    r->kind = json_object_get_string(k);
    if (!trace_kind_is_known(r->kind.c_str()))
        return fail(error, line, "unknown record type \"" + r->kind + "\"");
    return true;
}

}  // namespace

json_object* TraceRecord::object() const {
    if (!obj && src)
        obj.reset(parse_line(src->data() + off, len), json_object_put);
    return obj.get();
}

json_object* TraceRecord::get(const char* key) const {
    json_object* v = nullptr;
    json_object* o = object();
    return o != nullptr && json_object_object_get_ex(o, key, &v) ? v : nullptr;
}

int64_t TraceRecord::num(const char* key, int64_t def) const {
    json_object* v = get(key);
    return v != nullptr && json_object_is_type(v, json_type_int) ? json_object_get_int64(v) : def;
}

std::string TraceRecord::str(const char* key) const {
    json_object* v = get(key);
    return v != nullptr && json_object_is_type(v, json_type_string) ? json_object_get_string(v) : "";
}

std::string TraceRecord::bytes(const char* key) const {
    std::string s = str(key), out;
    return trace_unhex(s.data(), s.size(), &out) ? out : std::string();
}

std::string TraceRecord::text(const char* key) const {
    if (get(key) != nullptr)
        return str(key);
    return bytes((std::string(key) + "_x").c_str());
}

bool trace_unhex(const char* hex, size_t len, std::string* out) {
    out->clear();
    for (size_t i = 0; i < len;) {
        if (hex[i] == 'z') {
            size_t run = 0, j = i + 1;
            while (j < len && hex[j] >= '0' && hex[j] <= '9' && run < kMaxZeroRun)
                run = run * 10 + static_cast<size_t>(hex[j++] - '0');
            if (j == i + 1 || j >= len || hex[j] != '.' || run > kMaxZeroRun)
                return false;
            out->append(run, '\0');
            i = j + 1;
            continue;
        }
        int hi = i + 1 < len ? lynd_hex_digit(hex[i]) : -1;
        int lo = i + 1 < len ? lynd_hex_digit(hex[i + 1]) : -1;
        if (hi < 0 || lo < 0)
            return false;
        out->push_back(static_cast<char>(hi * 16 + lo));
        i += 2;
    }
    return true;
}

bool trace_parse(const char* text_in, size_t len, Trace* out, std::string* error) {
    *out = Trace{};
    auto src = std::make_shared<const std::string>(text_in, len);
    const char* text = src->data();
    size_t pos = 0;
    int line = 0;
    int64_t last_t = INT64_MIN;
    while (pos < len) {
        line++;
        const char* start = text + pos;
        const void* nl = std::memchr(start, '\n', len - pos);
        if (nl == nullptr)
            return fail(error, line, "truncated record (no end of line)");
        size_t n = static_cast<size_t>(static_cast<const char*>(nl) - start);
        pos += n + 1;
        TraceRecord r;
        if (!read_record(start, n, line, &r, error))
            return false;
        if (line == 1) {
            if (!read_header(r, &out->header, error))
                return false;
            continue;
        }
        if (r.kind == "header")
            return fail(error, line, "a second header");
        r.part = out->header.part;
        r.src = src;
        r.off = static_cast<size_t>(start - text);
        r.len = n;
        r.release();
        if (r.t < last_t)
            return fail(error, line,
                        "record out of order (at " + std::to_string(r.t) + " ms after " + std::to_string(last_t) +
                            " ms)");
        last_t = r.t;
        out->records.push_back(std::move(r));
    }
    if (line == 0)
        return fail(error, 1, "empty trace");
    return true;
}

}  // namespace lynd
