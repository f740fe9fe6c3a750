#include "sim/desk/replay_tape.h"

#include <cstring>

#include "trace/trace_kinds.h"

namespace lynd {

namespace {

constexpr size_t kRecent = 6;

const char* const kAnswerFields[] = {"t",    "rc",   "out",  "out_x", "mac", "value", "value_x",
                                     "mode", "family", "addr", "got",  "data", "data_x", "s", "ns",
                                     "err", "nl_port", "nl_from"};

bool is_answer(const char* kind, const char* key) {
    if (std::strcmp(kind, "ifname") == 0 && std::strcmp(key, "name") == 0)
        return true;
    for (const char* a : kAnswerFields)
        if (std::strcmp(a, key) == 0)
            return std::strcmp(kind, "write") != 0 || std::strcmp(key, "data") != 0;
    return false;
}

bool is_input(const std::string& kind) { return !trace_kind_is_output(kind); }

// Datagrams are a stream: each is read once. Everything else is a state:
// asked again, it answers the latest reading.
bool is_stream(const std::string& kind) { return kind == "nl_recv"; }

}  // namespace

bool trace_kind_is_output(const std::string& kind) {
    return kind == "log" || kind == "write" || kind == "send" || kind == "krel" || kind == "reply";
}

std::string trace_question(json_object* record) {
    std::string q;
    json_object* k = nullptr;
    const char* kind = json_object_object_get_ex(record, "k", &k) ? json_object_get_string(k) : "";
    json_object_object_foreach(record, key, val) {
        if (is_answer(kind, key))
            continue;
        q += key;
        q += '=';
        q += json_object_to_json_string_ext(val, JSON_C_TO_STRING_PLAIN);
        q += ';';
    }
    return q;
}

void ReplayTape::set_what_if() {
    what_if_ = true;
    const auto& recs = trace_.records;
    for (size_t i = 0; i < recs.size(); i++) {
        const TraceRecord& r = recs[i];
        if (trace_kind_is_dispatch(r.kind.c_str()) || r.kind == "stop" || r.kind == "cut")
            continue;
        if (r.kind == "wall" && wall_base_ms_ == 0 && wall_base_ == 0) {
            wall_base_ = r.num("s");
            wall_base_ms_ = r.t;
        }
        answers_[trace_question(r.object())].at.push_back(i);
        r.release();
    }
}

int64_t ReplayTape::wall_now() const { return wall_base_ + (now_ms_ - wall_base_ms_) / 1000; }

const TraceRecord* ReplayTape::answer(TraceLine& request) {
    std::string text(request.data(), request.size() - 1);
    json_object* q = json_tokener_parse(text.c_str());
    std::string question = q != nullptr ? trace_question(q) : "";
    json_object_put(q);
    std::string kind = text.substr(text.find("\"k\":\"") + 5);
    kind = kind.substr(0, kind.find('"'));
    if (trace_kind_is_output(kind))
        outputs_.emplace_back(now_ms_, text);
    auto it = answers_.find(question);
    if (it == answers_.end())
        return nullptr;
    Answers& a = it->second;
    const auto& recs = trace_.records;
    if (is_stream(kind)) {
        if (a.next >= a.at.size() || recs[a.at[a.next]].t > now_ms_)
            return nullptr;
        return &recs[a.at[a.next++]];
    }
    while (a.next < a.at.size() && recs[a.at[a.next]].t <= now_ms_)
        a.next++;
    return &recs[a.at[a.next > 0 ? a.next - 1 : 0]];
}

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
    divergence_.part = pos_ < trace_.records.size() ? trace_.records[pos_].part : 1;
    divergence_.expected = expected;
    divergence_.actual = actual;
    divergence_.before = recent_;
}

const TraceRecord* ReplayTape::take(TraceLine& request) {
    request.end();
    if (what_if_)
        return answer(request);
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
