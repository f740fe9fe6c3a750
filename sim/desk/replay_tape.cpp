#include "sim/desk/replay_tape.h"

#include <cstring>

#include "sim/desk/replay_answers.h"
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

bool is_end(const TraceRecord& r) { return r.kind == "stop" || r.kind == "cut"; }

// An event from outside, which a what-if run injects at its time; the
// daemon's own timers run on their own schedule.
bool is_outside(const TraceRecord& r) { return trace_kind_is_dispatch(r.kind.c_str()) && r.kind != "timer"; }

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

std::string trace_record_text(const TraceRecord& r) { return r.text(); }

void ReplayTape::set_what_if(ReplayAnswers* answers, std::function<void(int64_t, const char*, const std::string&)> on_output) {
    answers_ = answers;
    on_output_ = std::move(on_output);
}

int64_t ReplayTape::wall_now() const { return answers_ != nullptr ? answers_->wall_at(now_ms_) : 0; }

bool ReplayTape::load() {
    if (has_cur_ || ended_)
        return has_cur_;
    if (stream_->next(&cur_)) {
        has_cur_ = true;
        return true;
    }
    ended_ = true;
    if (damage_.empty())
        damage_ = stream_->error();
    return false;
}

bool ReplayTape::over() { return divergence_.found || stopped_ || !damage_.empty() || !load(); }

const TraceRecord* ReplayTape::peek() {
    if (what_if() || over())
        return nullptr;
    return is_end(cur_) ? nullptr : &cur_;
}

bool ReplayTape::next_outside(TraceRecord* r) {
    while (!stopped_ && load()) {
        has_cur_ = false;
        if (is_outside(cur_)) {
            *r = cur_;
            return true;
        }
    }
    return false;
}

void ReplayTape::advance() {
    last_ = std::move(cur_);
    has_cur_ = false;
    taken_++;
    now_ms_ = last_.t;
    remember(last_);
}

void ReplayTape::remember(const TraceRecord& r) {
    if (!is_input(r.kind))
        return;
    recent_.push_back(r.src);
    if (recent_.size() > kRecent)
        recent_.pop_front();
}

const TraceRecord* ReplayTape::next() {
    const TraceRecord* r = peek();
    if (r == nullptr) {
        stopped_ = true;
        return nullptr;
    }
    advance();
    return &last_;
}

TraceLine& ReplayTape::begin(const char* kind) {
    line_.begin(now_ms_, kind);
    line_kind_ = kind;
    return line_;
}

void ReplayTape::diverge(const std::string& expected, const std::string& actual) {
    if (divergence_.found)
        return;
    divergence_.found = true;
    divergence_.at_ms = now_ms_;
    divergence_.line = has_cur_ ? cur_.line : 0;
    divergence_.part = has_cur_ ? cur_.part : 1;
    divergence_.expected = expected;
    divergence_.actual = actual;
    for (const auto& b : recent_)
        divergence_.before.push_back(*b);
}

void ReplayTape::refuse(const TraceRecord& r, const std::string& why) {
    if (damage_.empty())
        damage_ = trace_line_error(r.line, why) + (r.part > 1 ? " (part " + std::to_string(r.part) + ")" : "");
}

void ReplayTape::stop_early(const std::string& why) {
    stopped_ = true;
    if (early_.empty())
        early_ = why;
}

size_t ReplayTape::left_over(std::string* first) {
    size_t n = 0;
    first->clear();
    if (divergence_.found || !damage_.empty())
        return 0;
    while (load() && !is_end(cur_)) {
        if (n++ == 0)
            *first = cur_.text();
        has_cur_ = false;
    }
    return n;
}

const TraceRecord* ReplayTape::compare(TraceLine& request) {
    const TraceRecord* r = peek();
    if (r == nullptr) {
        // A trace cut short (or a "cut" record): nothing more to compare.
        stopped_ = true;
        return nullptr;
    }
    std::string actual(request.data(), request.size() - 1);
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
    advance();
    return &last_;
}

const TraceRecord* ReplayTape::take(TraceLine& request) {
    request.end();
    if (!what_if())
        return compare(request);
    if (trace_kind_is_output(line_kind_) && on_output_)
        on_output_(now_ms_, line_kind_, std::string(request.data(), request.size() - 1));
    return answers_->answer(request, line_kind_, now_ms_);
}

}  // namespace lynd
