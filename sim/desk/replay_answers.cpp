#include "sim/desk/replay_answers.h"

#include <cstring>

#include "sim/desk/replay_tape.h"
#include "trace/trace_kinds.h"

namespace lynd {

namespace {

// Answers held by one run, and first answers by the index: far above the
// questions of a real daemon (their number follows its configuration, not
// the trace's length), and a bound on what a hostile trace can make us hold.
constexpr size_t kHeldMax = 8 * 1024 * 1024;
constexpr size_t kIndexMax = 8 * 1024 * 1024;
// The daemon asks the same few questions every period: their keys are kept
// by the request's text, up to this many.
constexpr size_t kAskedMax = 4096;
constexpr size_t kEntryCost = 96;
// Datagrams of one socket the run did not read (yet): the oldest go first.
constexpr size_t kUnreadMax = 256;

// Nothing reads the answer to a log line, a reply or a syslog line.
bool answered(const std::string& kind) {
    return kind != "log" && kind != "reply" && kind != "syslog" && kind != "stop" && kind != "cut" &&
           !trace_kind_is_dispatch(kind.c_str());
}

// An output's answer is its result alone: what it wrote stays behind.
TraceRecord slim(const TraceRecord& r) {
    if (!trace_kind_is_output(r.kind))
        return r;
    TraceRecord s;
    s.line = r.line;
    s.part = r.part;
    s.t = r.t;
    s.kind = r.kind;
    s.src = std::make_shared<const std::string>("{\"t\":" + std::to_string(r.t) + ",\"k\":\"" + r.kind +
                                                "\",\"rc\":" + std::to_string(r.num("rc")) + "}");
    return s;
}

size_t cost(const TraceRecord& r) { return kEntryCost + r.text().size(); }

uint64_t fnv1a(const std::string& s) {
    uint64_t h = 1469598103934665603ULL;
    for (unsigned char c : s)
        h = (h ^ c) * 1099511628211ULL;
    return h;
}

}  // namespace

uint64_t trace_question_key(const TraceRecord& r) {
    json_object* o = r.object();
    return o != nullptr ? fnv1a(trace_question(o)) : 0;
}

bool what_if_index(const TraceSource& source, WhatIfIndex* index, std::string* error) {
    *index = WhatIfIndex{};
    TraceStream in(source, true);
    if (!in.open()) {
        *error = in.error();
        return false;
    }
    index->header = in.header();
    TraceRecord r;
    while (in.next(&r)) {
        index->records++;
        index->end_ms = r.t;
        if (r.kind == "wall" && !index->has_wall && trace_clock_in_range(r.num("s"), 0)) {
            index->has_wall = true;
            index->wall_base = r.num("s");
            index->wall_base_ms = r.t;
        }
        if (!answered(r.kind))
            continue;
        uint64_t key = trace_question_key(r);
        if (index->first.count(key) != 0)
            continue;
        TraceRecord kept = slim(r);
        kept.release();
        if (index->held + cost(kept) > kIndexMax) {
            index->dropped++;
            continue;
        }
        index->held += cost(kept);
        index->first.emplace(key, std::move(kept));
    }
    *error = in.error();
    return error->empty();
}

void ReplayAnswers::keep(const TraceRecord& r) {
    if (!answered(r.kind))
        return;
    uint64_t key = trace_question_key(r);
    TraceRecord kept = slim(r);
    if (r.kind == "nl_recv") {
        kept.release();
        auto& q = unread_[key];
        if (q.size() >= kUnreadMax) {
            held_ -= cost(q.front());
            q.pop_front();
            dropped_++;
        }
        if (held_ + cost(kept) > kHeldMax) {
            dropped_++;
            return;
        }
        held_ += cost(kept);
        q.push_back(std::move(kept));
        return;
    }
    auto it = latest_.find(key);
    size_t before = it != latest_.end() ? cost(it->second) : 0;
    if (held_ - before + cost(kept) > kHeldMax) {
        dropped_++;
        return;
    }
    held_ = held_ - before + cost(kept);
    latest_[key] = std::move(kept);
}

void ReplayAnswers::absorb(int64_t now_ms) {
    while (has_ahead_ || in_.next(&ahead_)) {
        has_ahead_ = true;
        if (ahead_.t > now_ms)
            return;
        has_ahead_ = false;
        keep(ahead_);
    }
}

uint64_t ReplayAnswers::key_of(const TraceLine& request) {
    // The same question at another time is the same text after the time.
    const char* p = request.data();
    const char* after = static_cast<const char*>(std::memchr(p, ',', request.size()));
    std::string same = after != nullptr ? std::string(after, request.size() - static_cast<size_t>(after - p)) : "";
    auto it = asked_.find(same);
    if (it != asked_.end())
        return it->second;
    TraceRecord asked;
    asked.src = std::make_shared<const std::string>(p, request.size() - 1);
    uint64_t key = trace_question_key(asked);
    if (asked_.size() >= kAskedMax)
        asked_.clear();
    asked_.emplace(std::move(same), key);
    return key;
}

const TraceRecord* ReplayAnswers::answer(const TraceLine& request, const char* kind, int64_t now_ms) {
    if (!answered(kind))
        return nullptr;
    absorb(now_ms);
    uint64_t key = key_of(request);
    if (std::string(kind) == "nl_recv") {
        auto it = unread_.find(key);
        if (it == unread_.end() || it->second.empty())
            return nullptr;
        out_ = std::move(it->second.front());
        it->second.pop_front();
        held_ -= cost(out_);
        return &out_;
    }
    auto it = latest_.find(key);
    if (it != latest_.end())
        return &it->second;
    auto first = index_.first.find(key);
    return first != index_.first.end() ? &first->second : nullptr;
}

int64_t ReplayAnswers::wall_at(int64_t now_ms) const {
    return index_.wall_base + (now_ms - index_.wall_base_ms) / 1000;
}

}  // namespace lynd
