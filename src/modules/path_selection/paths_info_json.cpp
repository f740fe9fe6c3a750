#include "modules/path_selection/paths_info_json.h"

#include <cstdio>
#include <cstring>

namespace {

struct Out {
    char* buf;
    size_t size;
    size_t len;
    bool ok;
};

void put(Out* o, const char* text, size_t n) {
    if (!o->ok || n > o->size - o->len) {
        o->ok = false;
        return;
    }
    std::memcpy(o->buf + o->len, text, n);
    o->len += n;
}

void put(Out* o, const char* text) { put(o, text, std::strlen(text)); }

// json-c's escapes: the solidus too, other control bytes as \u00xx.
void put_string(Out* o, const char* s) {
    put(o, "\"");
    for (const unsigned char* p = reinterpret_cast<const unsigned char*>(s); *p != '\0'; p++) {
        char esc[8];
        switch (*p) {
            case '\b':
                put(o, "\\b");
                break;
            case '\n':
                put(o, "\\n");
                break;
            case '\r':
                put(o, "\\r");
                break;
            case '\t':
                put(o, "\\t");
                break;
            case '\f':
                put(o, "\\f");
                break;
            case '"':
                put(o, "\\\"");
                break;
            case '\\':
                put(o, "\\\\");
                break;
            case '/':
                put(o, "\\/");
                break;
            default:
                if (*p < 0x20) {
                    std::snprintf(esc, sizeof esc, "\\u00%02x", *p);
                    put(o, esc);
                } else {
                    put(o, reinterpret_cast<const char*>(p), 1);
                }
        }
    }
    put(o, "\"");
}

void put_number(Out* o, uint32_t v) {
    char num[16];
    std::snprintf(num, sizeof num, "%u", v);
    put(o, num);
}

}  // namespace

size_t path_selection_format_paths_info(const paths_info_row* rows, size_t n, char* buf, size_t size) {
    Out o{buf, size, 0, true};
    put(&o, "[");
    for (size_t i = 0; i < n; i++) {
        put(&o, i == 0 ? "{\"name\":" : ",{\"name\":");
        put_string(&o, rows[i].name);
        put(&o, ",\"rate\":");
        put_number(&o, rows[i].rate);
        put(&o, ",\"utilization\":");
        put_number(&o, rows[i].util);
        put(&o, "}");
    }
    put(&o, "]");
    return o.ok ? o.len : 0;
}
