#include "sim/replay_tape.h"

#include <cstring>

namespace lynd {

namespace {

constexpr size_t kRecent = 6;

bool is_input(const std::string& kind) {
    return kind != "log" && kind != "write" && kind != "send" && kind != "krel" && kind != "reply";
}

}  // namespace

std::string trace_record_text(const TraceRecord& r) { return r.src ? r.src->substr(r.off, r.len) : ""; }

const TraceRecord* ReplayTape::peek() const {
    if (over())
        return nullptr;
    const TraceRecord* r = &trace_.records[pos_];
    return r->kind == "stop" || r->kind == "cut" ? nullptr : r;
}

void ReplayTape::advance(const TraceRecord& r) {
    // The record before the one just taken is done with; a dispatch in
    // progress holds its own reference.
    if (pos_ >= 2)
        trace_.records[pos_ - 2].release();
    pos_++;
    now_ms_ = r.t;
    remember(r);
}

void ReplayTape::remember(const TraceRecord& r) {
    if (!is_input(r.kind))
        return;
    recent_.push_back(trace_record_text(r));
    if (recent_.size() > kRecent)
        recent_.pop_front();
}

const TraceRecord* ReplayTape::next() {
    const TraceRecord* r = peek();
    if (r == nullptr) {
        stopped_ = true;
        return nullptr;
    }
    advance(*r);
    return r;
}

TraceLine& ReplayTape::begin(const char* kind) {
    line_.begin(now_ms_, kind);
    return line_;
}

void ReplayTape::diverge(const std::string& expected, const std::string& actual) {
    if (divergence_.found)
        return;
    divergence_.found = true;
    divergence_.at_ms = now_ms_;
    divergence_.line = pos_ < trace_.records.size() ? trace_.records[pos_].line : 0;
    divergence_.expected = expected;
    divergence_.actual = actual;
    divergence_.before = recent_;
}

const TraceRecord* ReplayTape::take(TraceLine& request) {
    request.end();
    if (over())
        return nullptr;
    const TraceRecord* r = peek();
    std::string actual(request.data(), request.size() - 1);
    if (r == nullptr) {
        // A trace cut short (or a "cut" record): nothing more to compare.
        stopped_ = true;
        return nullptr;
    }
    json_object* want = json_tokener_parse(actual.c_str());
    bool same = want != nullptr;
    if (same) {
        json_object_object_foreach(want, key, val) {
            if (std::strcmp(key, "t") == 0)
                continue;
            json_object* got = r->get(key);
            if (got == nullptr || !json_object_equal(got, val)) {
                same = false;
                break;
            }
        }
    }
    json_object_put(want);
    if (!same) {
        diverge(trace_record_text(*r), actual);
        return nullptr;
    }
    advance(*r);
    return r;
}

}  // namespace lynd
