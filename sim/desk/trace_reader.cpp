#include "sim/desk/trace_reader.h"

#include <cstring>

#include "core/mac.h"
#include "trace/trace_kinds.h"

namespace lynd {

namespace {

bool fail(std::string* error, int line, const std::string& why) {
    *error = trace_line_error(line, why);
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

// The head the recorder writes, {"t":T,"k":"KIND", read without a parser.
bool read_head(const char* p, size_t n, int64_t* t, std::string* kind) {
    static const char kT[] = "{\"t\":";
    static const char kK[] = ",\"k\":\"";
    size_t i = sizeof kT - 1;
    if (n < i || std::memcmp(p, kT, i) != 0)
        return false;
    int64_t v = 0;
    size_t digits = 0;
    for (; i < n && p[i] >= '0' && p[i] <= '9' && digits < 15; i++, digits++)
        v = v * 10 + (p[i] - '0');
    if (digits == 0 || (digits > 1 && p[i - digits] == '0') || n - i < sizeof kK - 1 ||
        std::memcmp(p + i, kK, sizeof kK - 1) != 0)
        return false;
    i += sizeof kK - 1;
    const void* q = std::memchr(p + i, '"', n - i);
    if (q == nullptr)
        return false;
    size_t end = static_cast<size_t>(static_cast<const char*>(q) - p);
    kind->assign(p + i, end - i);
    *t = v;
    return kind->find('\\') == std::string::npos;
}

bool read_parsed(const char* p, size_t n, int line, TraceRecord* r, std::string* error) {
    json_object* o = parse_line(p, n);
    if (o == nullptr)
        return fail(error, line, "not a JSON object");
    r->obj.reset(o, json_object_put);
    json_object* t = r->get("t");
    json_object* k = r->get("k");
    if (t == nullptr || !json_object_is_type(t, json_type_int) || k == nullptr ||
        !json_object_is_type(k, json_type_string))
        return fail(error, line, "a record needs a time \"t\" and a type \"k\"");
    r->t = json_object_get_int64(t);
    r->kind = json_object_get_string(k);
    return true;
}

}  // namespace

std::string trace_line_error(int line, const std::string& why) { return "line " + std::to_string(line) + ": " + why; }

bool trace_read_record(const char* p, size_t n, int line, bool parse, TraceRecord* r, std::string* error) {
    *r = TraceRecord{};
    r->line = line;
    r->src = std::make_shared<const std::string>(p, n);
    if (parse || !read_head(p, n, &r->t, &r->kind)) {
        if (!read_parsed(r->src->data(), n, line, r, error))
            return false;
    }
    if (r->t < 0 || r->t > TRACE_TIME_MAX)
        return fail(error, line, "time " + std::to_string(r->t) + " ms out of range (0 to " +
                                     std::to_string(TRACE_TIME_MAX) + ")");
    if (!trace_kind_is_known(r->kind.c_str()))
        return fail(error, line, "unknown record type \"" + r->kind + "\"");
    return true;
}

bool trace_read_header(const TraceRecord& r, TraceHeader* h, std::string* error) {
    *h = TraceHeader{};
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
    int64_t part = r.num("part", 1);
    h->part = part < 0 ? 0 : part > 1000000 ? 1000000 : static_cast<int>(part);
    h->began = r.num("began");
    if (h->part < 1)
        return fail(error, r.line, "part " + std::to_string(part) + " (parts count from 1)");
    h->config = r.text("config", TRACE_LINE_MAX);
    json_object* args = r.get("args");
    if (args == nullptr || !json_object_is_type(args, json_type_array))
        return fail(error, r.line, "header has no argument list");
    for (size_t i = 0; i < json_object_array_length(args); i++)
        h->args.push_back(json_object_get_string(json_object_array_get_idx(args, i)));
    return true;
}

json_object* TraceRecord::object() const {
    if (!obj && src)
        obj.reset(parse_line(src->data(), src->size()), json_object_put);
    return obj.get();
}

const std::string& TraceRecord::text() const {
    static const std::string none;
    return src ? *src : none;
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

std::string TraceRecord::bytes(const char* key, size_t max) const {
    json_object* v = get(key);
    if (v == nullptr || !json_object_is_type(v, json_type_string))
        return "";
    std::string out;
    const char* s = json_object_get_string(v);
    return trace_unhex(s, static_cast<size_t>(json_object_get_string_len(v)), &out, max) ? out : std::string();
}

std::string TraceRecord::text(const char* key, size_t max) const {
    if (get(key) == nullptr)
        return bytes((std::string(key) + "_x").c_str(), max);
    std::string s = str(key);
    if (s.size() > max)
        s.resize(max);
    return s;
}

bool trace_unhex(const char* hex, size_t len, std::string* out, size_t max) {
    static uint8_t decoded[TRACE_FIELD_MAX];  // the replay is single-threaded
    size_t n = 0;
    if (!trace_unhex(hex, len, decoded, max < sizeof decoded ? max : sizeof decoded, &n)) {
        out->clear();
        return false;
    }
    out->assign(reinterpret_cast<const char*>(decoded), n < max ? n : max);
    return true;
}

}  // namespace lynd
