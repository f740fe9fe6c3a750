#include "trace/bus_requests.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <new>

namespace lynd {

namespace {

bool next_attr(const BusMessage& msg, size_t* pos, BusAttr* a) {
    if (msg.walk != nullptr)
        return msg.walk(msg.raw, msg.raw_len, pos, a);
    if (msg.attrs == nullptr || *pos >= msg.count)
        return false;
    *a = msg.attrs[(*pos)++];
    return true;
}

}  // namespace

void bus_msg_json(TraceLine& l, const char* key, const BusMessage& msg, TraceReply& arr) {
    arr.reset(nullptr);
    arr.open_array(nullptr);
    size_t pos = 0;
    BusAttr a{};
    while (next_attr(msg, &pos, &a)) {
        arr.open_array(nullptr);
        arr.put_string(nullptr, a.name != nullptr ? a.name : "");
        arr.put_int(nullptr, static_cast<int>(a.type));
        switch (a.type) {
        case BusType::STRING:
            arr.put_string(nullptr, a.str != nullptr ? a.str : "");
            break;
        case BusType::INT8:
        case BusType::INT16:
        case BusType::INT32:
        case BusType::INT64:
            arr.put_int(nullptr, a.i);
            break;
        case BusType::DOUBLE:
            arr.put_double(nullptr, a.d);
            break;
        default:
            break;
        }
        arr.close();
    }
    const char* t = arr.text();
    l.raw(key, t, std::strlen(t));
    if (msg.malformed)
        l.num("malformed", 1);
}

TraceReply::TraceReply(BusReply* fwd, size_t capacity) : fwd_(fwd) {
    buf_ = new (std::nothrow) char[capacity];
    cap_ = buf_ != nullptr ? capacity : 0;
}

TraceReply::~TraceReply() { delete[] buf_; }

void TraceReply::reset(BusReply* fwd) {
    fwd_ = fwd;
    len_ = 0;
    overflow_ = false;
    depth_ = 0;
}

void TraceReply::put(const char* s, size_t n) {
    if (overflow_ || cap_ < kDepth + 1 || n >= cap_ - len_ - kDepth) {
        overflow_ = true;
        return;
    }
    std::memcpy(buf_ + len_, s, n);
    len_ += n;
}

void TraceReply::put_str(const char* s) {
    put("\"", 1);
    for (; *s != '\0'; s++) {
        if (*s == '"' || *s == '\\') {
            char e[2] = {'\\', *s};
            put(e, 2);
        } else if (static_cast<unsigned char>(*s) < 0x20) {
            char e[8];
            std::snprintf(e, sizeof e, "\\u%04x", static_cast<unsigned>(static_cast<unsigned char>(*s)));
            put(e, 6);
        } else {
            put(s, 1);
        }
    }
    put("\"", 1);
}

void TraceReply::item(const char* name) {
    if (depth_ == 0 && len_ == 0) {
        // The reply itself is a table.
        put("{", 1);
        depth_ = 1;
        in_array_[0] = false;
        first_[0] = true;
    }
    int d = depth_ - 1;
    if (!first_[d])
        put(",", 1);
    first_[d] = false;
    if (!in_array_[d]) {
        put_str(name != nullptr ? name : "");
        put(":", 1);
    }
}

void TraceReply::open_table(const char* name) {
    if (fwd_ != nullptr)
        fwd_->open_table(name);
    item(name);
    put("{", 1);
    push(false);
}

void TraceReply::open_array(const char* name) {
    if (fwd_ != nullptr)
        fwd_->open_array(name);
    if (len_ == 0 && name == nullptr) {
        // A bare array at the top (a message's attribute list).
        put("[", 1);
        in_array_[0] = true;
        first_[0] = true;
        depth_ = 1;
        return;
    }
    item(name);
    put("[", 1);
    push(true);
}

// Deeper than kDepth the text goes on, without separators of its own.
void TraceReply::push(bool array) {
    if (depth_ < kDepth) {
        in_array_[depth_] = array;
        first_[depth_] = true;
        depth_++;
    }
}

void TraceReply::close() {
    if (fwd_ != nullptr)
        fwd_->close();
    if (depth_ <= 1)
        return;
    depth_--;
    put(in_array_[depth_] ? "]" : "}", 1);
}

void TraceReply::put_string(const char* name, const char* value) {
    if (fwd_ != nullptr)
        fwd_->put_string(name, value);
    item(name);
    put_str(value != nullptr ? value : "");
}

void TraceReply::put_int(const char* name, int64_t value) {
    if (fwd_ != nullptr)
        fwd_->put_int(name, value);
    item(name);
    char b[24];
    int n = std::snprintf(b, sizeof b, "%" PRId64, value);
    put(b, static_cast<size_t>(n));
}

void TraceReply::put_bool(const char* name, bool value) {
    if (fwd_ != nullptr)
        fwd_->put_bool(name, value);
    item(name);
    put(value ? "true" : "false", value ? 4 : 5);
}

void TraceReply::put_double(const char* name, double value) {
    if (fwd_ != nullptr)
        fwd_->put_double(name, value);
    item(name);
    char b[32];
    int n = std::snprintf(b, sizeof b, "%.17g", value);
    put(b, static_cast<size_t>(n));
}

const char* TraceReply::text() {
    if (len_ == 0) {
        put("{", 1);
        depth_ = 1;
        in_array_[0] = false;
    }
    // Close what is open without changing the state, then terminate.
    size_t keep = len_;
    for (int d = depth_ - 1; d >= 0; d--)
        put(in_array_[d] ? "]" : "}", 1);
    if (buf_ == nullptr)
        return "null";
    buf_[len_] = '\0';
    len_ = keep;
    return overflow_ ? "null" : buf_;
}

}  // namespace lynd
