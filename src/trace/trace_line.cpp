#include "trace/trace_line.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <new>

#include "trace/trace_hex.h"

namespace lynd {

namespace {


}  // namespace

bool trace_is_plain_text(const char* s, size_t n) {
    for (size_t i = 0; i < n; i++) {
        auto c = static_cast<unsigned char>(s[i]);
        if ((c < 0x20 && c != '\n' && c != '\t') || c > 0x7e)
            return false;
    }
    return true;
}

TraceLine::TraceLine(size_t capacity) {
    if (capacity == 0)
        return;
    buf_ = new (std::nothrow) char[capacity];
    cap_ = buf_ != nullptr ? capacity : 0;
    lacking_ = buf_ == nullptr;
}

TraceLine::~TraceLine() { delete[] buf_; }

void TraceLine::begin(int64_t t, const char* kind) {
    len_ = 0;
    overflow_ = false;
    char head[48];
    int n = std::snprintf(head, sizeof head, "{\"t\":%" PRId64, t);
    put(head, static_cast<size_t>(n));
    str("k", kind);
}

void TraceLine::put(const char* s, size_t n) {
    if (overflow_ || cap_ < 2 || n > cap_ - 2 - len_) {
        overflow_ = true;
        return;
    }
    std::memcpy(buf_ + len_, s, n);
    len_ += n;
}

void TraceLine::put_char(char c) { put(&c, 1); }

void TraceLine::key(const char* k) {
    put(",\"", 2);
    put(k, std::strlen(k));
    put("\":", 2);
}

void TraceLine::put_escaped(const char* s, size_t n) {
    put_char('"');
    for (size_t i = 0; i < n; i++) {
        char c = s[i];
        if (c == '"' || c == '\\') {
            char e[2] = {'\\', c};
            put(e, 2);
        } else if (c == '\n') {
            put("\\n", 2);
        } else if (c == '\t') {
            put("\\t", 2);
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char e[7];
            std::snprintf(e, sizeof e, "\\u%04x", static_cast<unsigned>(static_cast<unsigned char>(c)));
            put(e, 6);
        } else {
            put_char(c);
        }
    }
    put_char('"');
}

void TraceLine::str(const char* k, const char* s) {
    key(k);
    if (s == nullptr) {
        put("null", 4);
        return;
    }
    put_escaped(s, std::strlen(s));
}

void TraceLine::text(const char* k, const char* s, size_t n) {
    if (trace_is_plain_text(s, n)) {
        key(k);
        put_escaped(s, n);
        return;
    }
    char hk[32];
    std::snprintf(hk, sizeof hk, "%s_x", k);
    hex(hk, s, n);
}

void TraceLine::num(const char* k, int64_t v) {
    key(k);
    char b[24];
    int n = std::snprintf(b, sizeof b, "%" PRId64, v);
    put(b, static_cast<size_t>(n));
}

void TraceLine::hex(const char* k, const void* p, size_t n) {
    key(k);
    put_char('"');
    if (overflow_)
        return;
    if (cap_ < 2) {
        overflow_ = true;
        return;
    }
    size_t room = cap_ - 2 - len_;
    size_t m = trace_hex(buf_ + len_, room, p, n);
    if (m > room) {
        overflow_ = true;
        return;
    }
    len_ += m;
    put_char('"');
}

void TraceLine::raw(const char* k, const char* json, size_t n) {
    key(k);
    put(json, n);
}

void TraceLine::argv(const char* k, const char* const argv[]) {
    key(k);
    put_char('[');
    for (size_t i = 0; argv != nullptr && argv[i] != nullptr; i++) {
        if (i > 0)
            put_char(',');
        put_escaped(argv[i], std::strlen(argv[i]));
    }
    put_char(']');
}

void TraceLine::end() { put("}\n", 2); }

}  // namespace lynd
